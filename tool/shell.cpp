#include "tool/shell.h"

#include <editline/readline.h>
#include <fmt/format.h>
#include <wordexp.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

#include "tool/code_text.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

/// The words of a line as a shell reads them, without running commands; none for a bad one, with a
/// message.
std::optional<std::vector<std::string>> wordsOf(const std::string& line) {
  wordexp_t expanded{};
  const int error = wordexp(line.c_str(), &expanded, WRDE_NOCMD);
  if (error == WRDE_SYNTAX)
    printError("velmora: a quote is not closed: " + line);
  else if (error != 0)
    printError("velmora: characters such as | & ; < > ( ) { } have to be quoted: " + line);
  std::vector<std::string> words;
  if (error == 0) words.assign(expanded.we_wordv, expanded.we_wordv + expanded.we_wordc);
  if (error == 0 || error == WRDE_NOSPACE) wordfree(&expanded);
  return error == 0 ? std::optional(words) : std::nullopt;
}

bool isComment(const std::string& line) {
  const auto begin = line.find_first_not_of(" \t\r");
  return begin == std::string::npos || line[begin] == '#';
}

/// The status of a line; none when it is `exit`.
std::optional<int> runText(const std::string& line, const RunLine& runLine) {
  if (isComment(line)) return 0;
  const auto words = wordsOf(line);
  if (!words) return 1;
  if (*words == std::vector<std::string>{"exit"}) return std::nullopt;
  return runLine(*words);
}

// What libedit calls back has no context.
const Complete* completing = nullptr;

char* copyOf(const std::string& text) { return strdup(text.c_str()); }

/// The candidate `index` for the word that is being completed.
char* candidate(const char* /*word*/, int index) {
  static std::vector<std::string> candidates;
  if (index == 0)
    candidates =
        (*completing)(std::string(rl_line_buffer).substr(0, static_cast<std::size_t>(rl_point)));
  const auto i = static_cast<std::size_t>(index);
  return i < candidates.size() ? copyOf(candidates[i]) : nullptr;
}

struct Free {
  void operator()(char* text) const { std::free(text); }
};

}  // namespace

int runScript(const std::string& file, bool goOn, const RunLine& runLine) {
  std::ifstream stream;
  if (file != "-") {
    stream.open(file);
    if (std::filesystem::is_directory(file)) throw Failure(file + ": is a directory");
    if (!stream) throw Failure(fmt::format("{}: {}", file, std::strerror(errno)));
  }
  std::istream& lines = file == "-" ? std::cin : stream;
  int status = 0;
  unsigned number = 0;
  bool interrupted = false;
  for (std::string line; !interrupted && (goOn || status == 0) && std::getline(lines, line);) {
    ++number;
    if (line.ends_with('\r')) line.pop_back();
    const auto result = runText(line, runLine);
    if (!result) break;
    if (*result == 0) continue;
    interrupted = *result > 128;
    printError(fmt::format("velmora: {}, line {}: {}", file == "-" ? "standard input" : file,
                           number, line));
    if (status == 0) status = *result;
  }
  return status;
}

int runTerminal(const RunLine& runLine, const Complete& complete) {
  completing = &complete;
  rl_readline_name = const_cast<char*>("velmora");
  rl_completion_entry_function = candidate;
  rl_basic_word_break_characters = const_cast<char*>(" \t=@");
  rl_completer_word_break_characters = const_cast<char*>(" \t=@");
  while (const std::unique_ptr<char, Free> line{readline("velmora> ")}) {
    if (!isComment(line.get())) add_history(line.get());
    if (!runText(line.get(), runLine)) return 0;
  }
  printLine("");  // Behind the prompt of the line that never came.
  return 0;
}

}  // namespace velmora::tool
