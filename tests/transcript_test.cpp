/// Transcripts: what hosts and hardware do, and every access to the board, result and moved limit
/// that comes of it. Their form is told in `data/transcripts/README`.
#include "tests/applet_test.h"

namespace {

using namespace fixture;

constexpr const char* kExtendedStatus = "FG_CAMSTATUS_EXTENDED";

class Transcript : public testing::TestWithParam<const char*> {
 protected:
  int id(const std::string& name) { return Fg_getParameterIdByName(applet.fg(), name.c_str()); }
  const RegisterInfo* described(const std::string& name) { return applet.node(id(name), port); }

  /// Range and access of every parameter on every port.
  std::map<std::string, std::string> limits() {
    std::map<std::string, std::string> all;
    for (unsigned p = 0; p < kPorts; ++p)
      for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i)
        if (const RegisterInfo* node = applet.node(Fg_getParameterId(applet.fg(), i), p))
          all[fmt::format("{}[{}]", node->paramName, p)] = limitsOf(*node);
    return all;
  }

  int set(const std::string& name, const std::string& value) {
    const RegisterInfo* node = described(name);
    return node && node->kind == REGISTER_INFO_DOUBLE
               ? applet.set(id(name), std::stod(value), port)
               : applet.set(id(name), std::stoll(value), port);
  }

  /// A get: what it yields as text.
  std::string get(const std::string& name) {
    const RegisterInfo* node = described(name);
    const auto text = [](const auto& reading) {
      return reading.code == 0 ? fmt::format("{}", reading.value)
                               : fmt::format("{} {}", reading.code, reading.value);
    };
    return node && node->kind == REGISTER_INFO_DOUBLE ? text(applet.real(id(name), port))
                                                      : text(applet.word(id(name), port));
  }

  /// Calls `action` until no access to the board fails; until then every one of them does, one
  /// after the other, which has to be told and recorded, to end the call, and to change nothing.
  /// `failed` tells failures from the results of `action`.
  template <class Action, class Failed>
  auto withEveryFailure(const Action& action, const Failed& failed) {
    const Sight before = sightOf(applet, port);
    std::vector<Lines> attempts;
    for (unsigned k = 1;; ++k) {
      takeAccesses();
      board::failAt(k, kInjected);
      const auto result = action();
      board::clearFaults();
      attempts.push_back(takeAccesses());
      if (!failed(result)) {
        // What the failing attempts did is how the whole one begins.
        for (std::size_t i = 0; i + 1 < attempts.size(); ++i) {
          EXPECT_EQ(attempts[i].size(), i + 1);
          for (std::size_t j = 0; j < i && j < attempts.back().size(); ++j)
            EXPECT_EQ(attempts[i][j], attempts.back()[j]);
        }
        accesses = attempts.back();
        return result;
      }
      EXPECT_EQ(applet.lastError(), kInjected);
      EXPECT_EQ(differences(before, sightOf(applet, port)), std::vector<int>{}) << "access " << k;
    }
  }

  /// Does what the line says; the line as it should have been, with those that belong below it.
  std::string play(const std::string& line) {
    std::istringstream words(line);
    std::string name, sign, value, out;
    words >> name >> sign >> value;
    if (name == "hardware") {
      words >> value;
      board::setValue(applet.device(), sign, port, std::stod(value));
      return line + '\n';
    }
    const auto before = limits();
    if (sign == "->") {
      out = name + " -> " +
            withEveryFailure([&] { return get(name); },
                             [](const auto& text) {
                               return text == fmt::format("{} {}", kInjected, 0xDEADBEEF) ||
                                      text == fmt::format("{} -1", kInjected);
                             });
    } else {
      const int code = withEveryFailure([&] { return set(name, value); },
                                        [](int result) { return result == kInjected; });
      EXPECT_EQ(applet.lastError(), code);
      out = name + " = " + value + (code == 0 ? "" : fmt::format(" failed: {}", code));
    }
    out += '\n';
    for (const std::string& access : accesses) out += "  " + access + '\n';
    const auto after = limits();
    for (const auto& [parameter, limit] : after)
      if (limit != before.at(parameter)) out += "  " + parameter + ' ' + limit + '\n';
    return out;
  }

  Applet applet;
  unsigned port = 0;
  Lines accesses;
};

TEST_P(Transcript, IsWhatHappensOnEveryPort) {
  const std::string text = contentOf(std::string(TEST_DATA "/transcripts/") + GetParam() + ".txt");
  ASSERT_FALSE(text.empty());
  // Port 0 has no Synchronized mode.
  for (port = std::string(GetParam()) == "synchronized" ? 1 : 0; port < kPorts; ++port) {
    // Follows from what is written, so it is kept still.
    board::setValue(applet.device(), kExtendedStatus, port, 1);
    std::string played;
    for (const std::string& line : linesOf(forPort(text, port)))
      if (line.empty() || line.starts_with('#'))
        played += line + '\n';
      else if (!line.starts_with("  "))
        played += play(line);
    EXPECT_EQ(played, forPort(text, port)) << GetParam() << " on port " << port;
  }
}

INSTANTIATE_TEST_SUITE_P(Files, Transcript,
                         testing::Values("image_path", "simulator", "trigger_input", "pulse_forms",
                                         "queue", "outputs", "status", "transitions",
                                         "synchronized"));

}  // namespace
