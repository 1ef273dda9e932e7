/// The tool `velmora`, run as a user runs it: transcripts of a shell, `data/tool/*.txt`. Below each
/// command are its output, its messages after "! " and its exit status if that is not 0; "## "
/// begins a comment.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/temporary_directory.h"
#include "tool/code_text.h"

namespace {

/// The sanitizers open libraries for the tool and do not know where it looks for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr const char* kPath = "${OTHER:+$OTHER:}$LIB";
#else
constexpr const char* kPath = "$OTHER";
#endif

class Tool : public testing::TestWithParam<const char*> {
 protected:
  /// The lines of a file, each after a prefix.
  static std::string lines(const std::string& file, const std::string& prefix) {
    std::string text;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) text.append(prefix).append(line) += '\n';
    return text;
  }

  /// Runs a command line in a directory of the test's own, with the tool of the build tree; what it
  /// leaves to be read.
  std::string run(const std::string& command) const {
    const std::string script = "cd '" + directory_ / "" + "' && exec >.out 2>.err </dev/null; " +
                               "DESIGN='" DESIGN_MANIFEST "' DATA='" TEST_DATA "' TOOL='" TOOL
                               "' BIN=$(dirname $TOOL) LIB='" LIBRARIES "' OTHER=; " +
                               "velmora() { LD_LIBRARY_PATH=\"" + kPath +
                               "\" \"$BIN/velmora\" \"$@\"; }; " + command;
    std::ofstream(directory_ / ".sh") << script;
    const int result = std::system(("sh '" + directory_ / ".sh" + "'").c_str());
    const int status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    return lines(directory_ / ".out", "") + lines(directory_ / ".err", "! ") +
           (status == 0 ? "" : "exit " + std::to_string(status) + '\n');
  }

  TemporaryDirectory directory_;
};

TEST_P(Tool, SaysWhatTheTranscriptSays) {
  const std::string file = std::string(TEST_DATA "/tool/") + GetParam() + ".txt";
  std::string said;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("## ")) said += line + '\n';
    if (line.starts_with("$ ")) said += line + '\n' + run(line.substr(2));
  }
  EXPECT_EQ(said, lines(file, "")) << "What it said lies in " << GetParam() << ".txt";
  if (HasFailure()) std::ofstream(std::string(GetParam()) + ".txt") << said;
}

TEST(Codes, HaveWords) {
  std::string said = velmora::tool::codeText(-4711) + '\n';
  std::ifstream header(ERROR_CODES);
  for (std::string line; std::getline(header, line);)
    if (const auto at = line.find(" = "); at != std::string::npos)
      said += velmora::tool::codeText(std::stoi(line.substr(at + 3))) + '\n';
  EXPECT_EQ(said, contentOf(TEST_DATA "/codes.txt"));
}

INSTANTIATE_TEST_SUITE_P(Files, Tool,
                         testing::Values("parameters", "refusals", "descriptions", "acquisition",
                                         "configurations", "designs", "hostile", "libraries",
                                         "help"));

}  // namespace
