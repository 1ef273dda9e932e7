/// Transcripts: what hosts and hardware do, and every access to the board, result and moved limit
/// that comes of it. Their form is told in `data/transcripts/README`.
#include "tests/applet_test.h"

namespace {

using namespace fixture;

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

  /// Does what the line says; the line as it should have been, with those that belong below it.
  std::string play(const std::string& line) {
    TranscriptLine told(line, applet, port);
    const auto before = limits();
    takeAccesses();
    const int code = told.play(applet, port);
    if (told.hardware()) return line + '\n';
    EXPECT_EQ(applet.lastError(), code);
    std::string out = told.name + ' ' + told.sign + ' ' + told.value;
    out += code == VELMORA_OK ? "\n" : fmt::format(" failed: {}\n", code);
    for (const std::string& access : takeAccesses()) out += "  " + access + '\n';
    for (const auto& [parameter, limit] : limits())
      if (limit != before.at(parameter)) out += "  " + parameter + ' ' + limit + '\n';
    return out;
  }

  Applet applet;
  unsigned port = 0;
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
