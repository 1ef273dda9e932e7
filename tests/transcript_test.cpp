/// Transcripts: what hosts and hardware do, and every access to the board, result and moved limit
/// that comes of it. Their form is told in `data/transcripts/README`.
#include <functional>
#include <map>

#include "tests/applet_test.h"

namespace {

using namespace fixture;
using Sight = std::map<std::pair<unsigned, int>, std::string>;

class Transcript : public testing::TestWithParam<const char*> {
 protected:
  /// Range and access of every parameter on every port.
  std::map<std::string, std::string> limits() {
    std::map<std::string, std::string> all;
    for (unsigned p = 0; p < kPorts; ++p)
      for (const int id : applet.ids())
        if (const RegisterInfo* node = applet.node(id, p))
          all[fmt::format("{}[{}]", node->paramName, p)] = limitsOf(*node);
    return all;
  }

  int set(int id, bool real, const std::string& value) {
    return real ? applet.set(id, std::stod(value), port) : applet.set(id, std::stoll(value), port);
  }
  /// A failing get leaves the value as it is.
  int get(int id, bool real, std::string& value) {
    const auto told = [&](const auto& reading, auto untouched) {
      if (reading.code != VELMORA_OK) {
        EXPECT_EQ(reading.value, untouched);
      }
      value = fmt::format("{}", reading.value);
      return reading.code;
    };
    return real ? told(applet.real(id, port), -1.0) : told(applet.word(id, port), 0xDEADBEEF);
  }

  /// All that can be read, by port and parameter: code and value of a get, and the description.
  /// Without the pulses, which the design counts as it likes, and what follows from registers,
  /// whose writes stay when a later one fails.
  Sight sight() {
    Sight all;
    for (unsigned p = 0; p < kPorts; ++p)
      for (const int id : applet.ids()) {
        if (id == FG_TRIGGEROUT_STATS_PULSECOUNT || id == FG_GEN_ACTIVE || id == FG_GEN_PASSIVE)
          continue;
        char value[32] = {};
        const int code = Fg_getParameterWithType(applet.fg(), id, value, p, FG_PARAM_TYPE_INT32);
        std::string& seen = all[{p, id}] = std::string(value, sizeof value);
        seen.append(reinterpret_cast<const char*>(&code), sizeof code);
        if (const RegisterInfo* node = applet.node(id, p))
          seen.append(reinterpret_cast<const char*>(node), sizeof *node);
      }
    return all;
  }

  /// Calls `action` until no access to the board fails; until then every one of them does, one
  /// after the other, which has to be told and recorded, to end the call, and to change nothing on
  /// any port. The call that succeeds or is refused changes its own port at most.
  int withEveryFailure(const std::function<int()>& action) {
    const Sight before = sight();
    Lines begun;  // What the latest attempt did: how the next one begins.
    int code = kInjected;
    for (unsigned k = 1; code == kInjected; ++k) {
      takeAccesses();
      board::failAt(k, kInjected);
      code = action();
      board::clearFaults();
      accesses = takeAccesses();
      EXPECT_EQ(applet.lastError(), code);
      const Sight after = sight();
      for (const auto& [place, seen] : before)
        // The debouncer serves all ports.
        EXPECT_TRUE(
            seen == after.at(place) ||
            (code == VELMORA_OK && (place.first == port || place.second == FG_TRIGGERIN_DEBOUNCE)))
            << place.second << " on port " << place.first << ", access " << k;
      EXPECT_TRUE(std::ranges::mismatch(begun, accesses).in1 == begun.end());
      if (code != kInjected) break;
      EXPECT_EQ(accesses.size(), k);
      begun.assign(accesses.begin(), accesses.end() - 1);
    }
    return code;
  }

  /// Does what the line says; the line as it should have been, with those that belong below it.
  std::string play(const std::string& line) {
    std::istringstream words(line);
    std::string name, sign, value;
    words >> name >> sign >> value;
    if (name == "hardware") {
      words >> value;
      board::setValue(applet.device(), sign, port, std::stod(value));
      return line + '\n';
    }
    const int id = Fg_getParameterIdByName(applet.fg(), name.c_str());
    const RegisterInfo* node = applet.node(id, port);
    const bool real = node && node->kind == REGISTER_INFO_DOUBLE;
    const auto before = limits();
    const int code = withEveryFailure(
        [&] { return sign == "->" ? get(id, real, value) : set(id, real, value); });
    std::string out = name + ' ' + sign + ' ' + value;
    out += code == VELMORA_OK ? "\n" : fmt::format(" failed: {}\n", code);
    for (const std::string& access : accesses) out += "  " + access + '\n';
    for (const auto& [parameter, limit] : limits())
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
    for (unsigned p = 0; p < kPorts; ++p)
      board::setValue(applet.device(), "FG_CAMSTATUS_EXTENDED", p, 1);
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
