/// An applet opened on a virtual board, for tests through the exports, and what such tests share.
#pragma once

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "board/virtual_board.h"
#include "tests/temporary_directory.h"
#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/velmora.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace fixture {

using Lines = std::vector<std::string>;

/// `Std_entry` flag: the design keeps what it has.
inline constexpr int kNoDefaults = 1;

inline constexpr unsigned kPorts = 4;

/// Of the own design.
inline constexpr std::size_t kDesignParameters = 258, kDesignRegisters = 32;

/// A code that neither the applet nor the board uses.
inline constexpr int kInjected = -4711;

/// The board's codes for what does not exist or does not fit.
inline constexpr int kNoSuchParameter = -2080, kNoSuchChannel = -2081, kWrongType = -2083,
                     kNoSuchString = -2086, kNoSuchRegister = -2090, kRegisterReadOnly = -2091;

/// Owns a device and, if `Std_entry` succeeds, an applet on it. The journal runs from construction
/// on and holds start-up until it is taken. Ends with no faults, no journal and everything
/// released.
class Applet {
 public:
  explicit Applet(int flags = 0) : device_(board::createDevice()) {
    board::startJournal();
    grabber_.applet = Std_entry(device_, &error_, flags);
  }
  Applet(const Applet&) = delete;
  ~Applet() {
    board::clearFaults();
    board::stopJournal();
    close();
    board::destroyDevice(device_);
  }

  /// Releases the applet ahead of time; the result of `Fg_FreeGrabber`, -2001 when it is gone.
  int close() { return Fg_FreeGrabber(&grabber_); }

  KTdevice* device() { return device_; }
  Fg_Struct* fg() { return &grabber_; }
  bool opened() const { return grabber_.applet != nullptr; }
  int error() const { return error_; }
  int lastError() { return Fg_getLastErrorNumber(&grabber_); }

  /// Sets a 32-bit or a double parameter; the result of the export.
  template <class T>
  int set(int id, T value, unsigned port = 0) {
    if constexpr (std::is_same_v<T, double>)
      return Fg_setParameterWithType(&grabber_, id, &value, port, FG_PARAM_TYPE_DOUBLE);
    const auto word = static_cast<std::uint32_t>(value);
    return Fg_setParameterWithType(&grabber_, id, &word, port, FG_PARAM_TYPE_INT32);
  }

  /// What a get returns and stores.
  template <class T>
  struct Reading {
    int code;
    T value;
    bool operator==(const Reading&) const = default;
  };
  using Word = Reading<std::uint32_t>;
  Word word(int id, unsigned port = 0) {
    Word reading{0, 0xDEADBEEF};
    reading.code =
        Fg_getParameterWithType(&grabber_, id, &reading.value, port, FG_PARAM_TYPE_INT32);
    return reading;
  }
  Reading<double> real(int id, unsigned port = 0) {
    Reading<double> reading{0, -1};
    reading.code =
        Fg_getParameterWithType(&grabber_, id, &reading.value, port, FG_PARAM_TYPE_DOUBLE);
    return reading;
  }

  /// The ids of all listed parameters.
  std::vector<int> ids() {
    std::vector<int> all;
    for (int i = 0; i < Fg_getNrOfParameter(fg()); ++i) all.push_back(Fg_getParameterId(fg(), i));
    return all;
  }

  /// A parameter's description node, or null.
  RegisterInfo* node(int id, unsigned port = 0) {
    for (RegisterInfo* root = Fg_getParameterInfo(&grabber_, static_cast<int>(port)); root;
         root = root->next)
      if (RegisterInfo* found = find(*root, id)) return found;
    return nullptr;
  }
  bool writable(int id) {
    const RegisterInfo* described = node(id);
    return described && (described->accessMode & REGISTER_INFO_WRITABLE) != 0;
  }

  /// A port's GenApi document, fetched as a host does it: the size first.
  std::string document(unsigned port) {
    const int index = static_cast<int>(port);
    std::size_t size = 0;
    EXPECT_EQ(Fg_getParameterInfoXML(fg(), index, nullptr, &size), VELMORA_OK);
    std::string text(size, '?');
    EXPECT_EQ(Fg_getParameterInfoXML(fg(), index, text.data(), &size), VELMORA_OK);
    EXPECT_TRUE(text.ends_with('\0'));
    text.pop_back();
    return text;
  }

 private:
  static RegisterInfo* find(RegisterInfo& node, int id) {
    if (node.kind != REGISTER_INFO_GROUP) return node.id == id ? &node : nullptr;
    for (std::uint32_t i = 0; i < node.value.group.childCount; ++i)
      if (RegisterInfo* found = find(*node.value.group.children[i], id)) return found;
    return nullptr;
  }

  KTdevice* device_;
  Fg_Struct grabber_{};
  int error_ = 1;
};

/// The accesses since the last take as journal lines, without the calls that are no parameter or
/// register access: "set NAME[1] = 3", "get NAME[0] -> 5", "write REG = 1", "read REG -> 1".
inline Lines takeAccesses() {
  Lines lines;
  for (const board::Access& access : board::takeJournal())
    if (access.kind != board::AccessKind::kCall) lines.push_back(board::describe(access));
  return lines;
}

inline std::string replaced(std::string text, const std::string& mark, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += with.size())
    text.replace(at, mark.size(), with);
  return text;
}
inline std::string forPort(const std::string& text, unsigned port) {
  return replaced(text, "{p}", std::to_string(port));
}

inline std::string contentOf(const std::string& file) {
  return (std::ostringstream() << std::ifstream(file, std::ios::binary).rdbuf()).str();
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

/// All that can be read of a port, by parameter: code and value of a get, and the description.
/// Without the pulses, which the design counts as it likes, and what follows from registers, whose
/// writes stay when a later one fails.
using Sight = std::map<std::pair<unsigned, int>, std::string>;

inline Sight sightOf(Applet& applet, unsigned port) {
  Sight sight;
  for (const int id : applet.ids()) {
    if (id == FG_TRIGGEROUT_STATS_PULSECOUNT || id == FG_GEN_ACTIVE || id == FG_GEN_PASSIVE)
      continue;
    char value[32] = {};
    const int code = Fg_getParameterWithType(applet.fg(), id, value, port, FG_PARAM_TYPE_INT32);
    std::string& seen = sight[{port, id}] = std::string(value, sizeof value);
    seen.append(reinterpret_cast<const char*>(&code), sizeof code);
    if (const RegisterInfo* node = applet.node(id, port))
      seen.append(reinterpret_cast<const char*>(node), sizeof *node);
  }
  return sight;
}

/// The parameters that differ between two sights.
inline std::vector<int> differences(const Sight& before, const Sight& after) {
  std::vector<int> ids;
  for (const auto& [place, seen] : before)
    if (seen != after.at(place)) ids.push_back(place.second);
  return ids;
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

}  // namespace fixture
