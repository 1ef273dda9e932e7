/// The parameters as applications know them, and the lines that calls log.
#pragma once

#include <pthread.h>

#include "tests/applet_fixture.h"

namespace fixture {

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
    for (const std::string& line : linesOf(contentOf(TEST_DATA "/parameters.txt"))) {
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
