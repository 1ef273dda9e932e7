/// What tests of the applet share: designs, the parameters as applications know them, what can be
/// read of a port, the lines that calls log.
#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "tests/applet_fixture.h"
#include "tests/temporary_directory.h"

namespace fixture {

/// Of the own design.
inline constexpr std::size_t kDesignParameters = 258, kDesignRegisters = 32, kDesignEvents = 44;

/// A code that neither the applet nor the board uses.
inline constexpr int kInjected = -4711;

/// The board's codes for what does not exist or does not fit.
inline constexpr int kNoSuchParameter = -2080, kNoSuchChannel = -2081, kWrongType = -2083,
                     kNoSuchString = -2086, kNoSuchRegister = -2090, kRegisterReadOnly = -2091;

inline std::string replaced(std::string text, const std::string& mark, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += with.size())
    text.replace(at, mark.size(), with);
  return text;
}
inline std::string forPort(const std::string& text, unsigned port) {
  return replaced(text, "{p}", std::to_string(port));
}

inline Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A parameter's range and access. Doubles appear in their shortest exact form.
inline std::string limitsOf(const RegisterInfo& node) {
  const auto range = [](const char* kind, const auto& limits) {
    return fmt::format("{} {}..{} step {}", kind, limits.min, limits.max, limits.inc);
  };
  const auto& value = node.value;
  const std::string limits = node.kind == REGISTER_INFO_UINT     ? range("uint", value.uint32)
                             : node.kind == REGISTER_INFO_INT    ? range("int", value.int32)
                             : node.kind == REGISTER_INFO_UINT64 ? range("uint64", value.uint64)
                             : node.kind == REGISTER_INFO_INT64  ? range("int64", value.int64)
                             : node.kind == REGISTER_INFO_DOUBLE ? range("double", value.real)
                             : node.kind == REGISTER_INFO_STRING
                                 ? fmt::format("string \"{}\"", value.string.value)
                             : node.kind == REGISTER_INFO_ENUM ? "enum"
                                                               : fmt::format("kind {}", node.kind);
  return fmt::format("{}, access {}", limits, node.accessMode);
}

/// A line of a transcript that tells what a host or the hardware does on a port.
struct TranscriptLine {
  std::string name, sign, value;
  int id;
  bool real;

  TranscriptLine(const std::string& line, Applet& applet, unsigned port) {
    std::istringstream words(line);
    words >> name >> sign >> value;
    if (hardware()) words >> value;  // After the name and the sign.
    id = Fg_getParameterIdByName(applet.fg(), name.c_str());
    const RegisterInfo* node = applet.node(id, port);
    real = node && node->kind == REGISTER_INFO_DOUBLE;
  }
  bool hardware() const { return name == "hardware"; }

  /// The result of the set or get. A get stores what it has read, unless it fails.
  int play(Applet& applet, unsigned port) {
    const auto read = [&](const auto& reading, auto untouched) {
      EXPECT_TRUE(reading.code == VELMORA_OK || reading.value == untouched) << name;
      if (reading.code == VELMORA_OK) value = fmt::format("{}", reading.value);
      return reading.code;
    };
    if (hardware()) board::setValue(applet.device(), sign, port, std::stod(value));
    if (hardware()) return VELMORA_OK;
    if (sign == "->")
      return real ? read(applet.real(id, port), -1.0) : read(applet.word(id, port), 0xDEADBEEF);
    return real ? applet.set(id, std::stod(value), port) : applet.set(id, std::stoll(value), port);
  }
};

/// By port and parameter all that can be read: value and code of a get, and the description.
/// Without what the design counts by itself, and what follows from registers, whose writes stay
/// when a later one fails.
using Place = std::pair<unsigned, int>;
using Sight = std::map<Place, std::pair<std::string, std::string>>;
inline Sight sightOf(Applet& applet) {
  Sight all;
  const auto ids = applet.ids();
  for (unsigned port = 0; port < kPorts; ++port) {
    const auto nodes = applet.nodes(port);
    for (const int id : ids) {
      char value[32] = {};
      const int code = Fg_getParameterWithType(applet.fg(), id, value, port, FG_PARAM_TYPE_INT32);
      const auto node = nodes.find(id);
      all[{port, id}] = {std::string(value, sizeof value) + std::to_string(code),
                         node == nodes.end() ? "" : limitsOf(*node->second)};
    }
    for (const int id : {FG_TRIGGEROUT_STATS_PULSECOUNT, FG_TRIGGERIN_STATS_PULSECOUNT,
                         FG_CAMERA_ACTION_COMMAND_PENDING_COUNT, FG_GEN_ACTIVE, FG_GEN_PASSIVE})
      all.erase({port, id});
  }
  return all;
}

/// Where two sights of the same parameters differ.
inline std::vector<Place> differences(const Sight& one, const Sight& other) {
  std::vector<Place> places;
  for (const auto& [place, seen] : one)
    if (seen != other.at(place)) places.push_back(place);
  return places;
}

/// A port's GenApi document, fetched as a host does it: the size first.
inline std::string document(Applet& applet, unsigned port) {
  const int index = static_cast<int>(port);
  std::size_t size = 0;
  EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), index, nullptr, &size), VELMORA_OK);
  std::string text(size, '?');
  EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), index, text.data(), &size), VELMORA_OK);
  EXPECT_TRUE(text.ends_with('\0'));
  text.pop_back();
  return text;
}

/// Sets an environment variable for a while.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) { setenv(name, value, 1); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { unsetenv(name_); }

 private:
  const char* name_;
};

/// For a while, applets are opened on a design of these manifest records instead of their own.
class ExternalDesign {
 public:
  explicit ExternalDesign(const std::string& records) : before_(std::filesystem::current_path()) {
    std::ofstream(directory_ / "Velmora.hap") << "velmora-design 1\nboard 3652\n"
                                              << records << "\nend\n";
    std::filesystem::current_path(directory_ / "");
  }
  ExternalDesign(const ExternalDesign&) = delete;
  ~ExternalDesign() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_;
  TemporaryDirectory directory_;
  EnvironmentVariable forced_{"__KORV_FORCE_EXTERNAL_HAP", ""};
};

/// The records of the applet's own design, for an `ExternalDesign` that departs from it.
inline std::string ownRecords() {
  std::string records;
  for (const std::string& line : linesOf(contentOf(DESIGN_MANIFEST)))
    if (line != "velmora-design 1" && line != "board 3652" && line != "end") records += line + '\n';
  return records;
}

/// Registers of all widths that make a difference, and design parameters of every kind.
inline std::string everyKindOfRecord() { return contentOf(TEST_DATA "/every_kind.design"); }

/// A row of `data/sdk_parameters.txt`.
struct Parameter {
  std::string name;
  int id = 0;
  std::string kind, initial, text;

  bool writable() const { return initial != "ro"; }
  bool real() const { return kind == "real" || kind == "time"; }
};

inline const std::vector<Parameter>& parameters() {
  static const std::vector<Parameter> rows = [] {
    std::vector<Parameter> read;
    for (const std::string& line : linesOf(contentOf(TEST_DATA "/sdk_parameters.txt"))) {
      if (line.starts_with("#")) continue;
      Parameter& p = read.emplace_back();
      std::istringstream words(line);
      std::getline(words >> p.name >> p.id >> p.kind >> p.initial >> std::ws, p.text);
    }
    return read;
  }();
  return rows;
}

/// Every setting that the applet keeps reads its initial value.
inline void expectInitialSettings(Applet& applet) {
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Parameter& p : parameters()) {
      if (!p.writable() || p.kind == "time") continue;
      const double value = p.real() ? applet.real(p.id, port).value : applet.word(p.id, port).value;
      EXPECT_DOUBLE_EQ(value, std::stod(p.initial)) << p.name << " on port " << port;
    }
}

/// The lines that `action` logs, as "<last part of the logger's name>|<text>". A line without the
/// calling thread's prefix stays as it is.
template <class Action>
Lines logged(const Action& action) {
  testing::internal::CaptureStderr();
  action();
  const std::string prefix = fmt::format(" info: thread-id={}|", pthread_self());
  return linesOf(
      replaced(replaced(testing::internal::GetCapturedStderr(), prefix, "|"), "korv.wrapper.", ""));
}

}  // namespace fixture
