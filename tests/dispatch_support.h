/// What the suites of the parameter dispatch share: the parameters as applications know them, and
/// the lines that calls log.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <sstream>

#include "tests/applet_fixture.h"
#include "tests/external_design.h"

namespace fixture {

/// A code that neither the applet nor the board uses.
inline constexpr int kInjected = -4711;

/// The board's codes for what does not exist or does not fit.
inline constexpr int kNoSuchParameter = -2080, kNoSuchChannel = -2081, kWrongType = -2083,
                     kNoSuchString = -2086, kNoSuchRegister = -2090, kRegisterReadOnly = -2091;

/// A row of `data/parameters.txt`.
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
    std::ifstream file(TEST_DATA "/parameters.txt");
    for (std::string line; std::getline(file, line);) {
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
      const double value = p.real() ? applet.real(p.id, port).value
                                    : static_cast<double>(applet.word(p.id, port).value);
      EXPECT_DOUBLE_EQ(value, std::stod(p.initial)) << p.name << " on port " << port;
    }
}

inline std::string replaced(std::string text, const std::string& mark, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += with.size())
    text.replace(at, mark.size(), with);
  return text;
}

/// The records of the applet's own design, for an `ExternalDesign` that departs from it.
inline std::string ownRecords() {
  std::ostringstream text;
  text << std::ifstream(DESIGN_MANIFEST).rdbuf();
  return replaced(
      replaced(replaced(text.str(), "\nvelmora-design 1\n", "\n"), "\nboard 3652\n", "\n"),
      "\nend\n", "\n");
}

/// The lines that `action` logs, as "<last part of the logger's name>|<text>". A line without the
/// calling thread's prefix stays as it is.
template <class Action>
Lines logged(const Action& action) {
  testing::internal::CaptureStderr();
  action();
  std::istringstream output(testing::internal::GetCapturedStderr());
  Lines lines;
  for (std::string line; std::getline(output, line);) {
    line = replaced(line, " info: thread-id=" + std::to_string(pthread_self()) + "|", "|");
    lines.push_back(replaced(line, "korv.wrapper.", ""));
  }
  return lines;
}

}  // namespace fixture
