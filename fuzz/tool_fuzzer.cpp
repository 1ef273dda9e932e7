/// The input is a command line, an argument a line up to an empty line, and then the content of the
/// file "file.mcf" in the working directory. The tool ends with 0, or with 1 and a complaint. What
/// it says is text, which a terminal shows and does not obey.
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <utility>
#include <vector>

#include "board/control.h"
#include "board/printable.h"
#include "fuzz/fuzzing.h"
#include "tool/command_line.h"

using namespace fuzzing;

namespace {

constexpr std::size_t kMostDigits = 3;
constexpr std::size_t kMostArguments = 20;

/// Takes what stands before the separator off `rest`.
std::string take(std::string_view& rest, std::string_view separator) {
  const std::size_t length = std::min(rest.find(separator), rest.size());
  const std::string taken(rest.substr(0, length));
  rest.remove_prefix(std::min(length + separator.size(), rest.size()));
  return taken;
}

/// Arguments that stay in the working directory, serve nobody and, when pictures are acquired, end
/// soon.
bool harmless(const std::vector<std::string>& arguments) {
  const bool acquires = std::ranges::count(arguments, "acquire") > 0;
  return arguments.size() <= kMostArguments && std::ranges::count(arguments, "view") == 0 &&
         std::ranges::none_of(arguments, [acquires](const std::string& argument) {
           const auto digits = std::ranges::count_if(
               argument, [](unsigned char c) { return c >= '0' && c <= '9'; });
           return argument.find('/') != std::string::npos ||
                  (acquires && static_cast<std::size_t>(digits) > kMostDigits);
         });
}

/// Takes the place of a standard stream while it lives.
class Capture {
 public:
  explicit Capture(std::FILE*& stream) : stream_(stream), before_(stream) {
    stream = open_memstream(&text_, &size_);
  }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  ~Capture() {
    std::fclose(std::exchange(stream_, before_));
    std::free(text_);
  }
  std::string_view text() const {
    std::fflush(stream_);
    return {text_, size_};
  }

 private:
  std::FILE*& stream_;
  std::FILE* before_;
  char* text_ = nullptr;
  std::size_t size_ = 0;
};

/// Whether no line has a control character, or a byte that is part of none.
bool isText(std::string_view output) {
  bool text = true;
  while (text && !output.empty()) {
    const std::string line = take(output, "\n");
    text = board::printable(line) == line;
  }
  return text;
}

void clearWorkingDirectory() {
  for (const auto& entry : std::filesystem::directory_iterator("."))
    std::filesystem::remove_all(entry.path());
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  keepOpen("libVelmora.so");
  keepOpen("libvorn5.so");
  std::filesystem::current_path(directory() / "");
  // Waits for pictures take no time.
  static std::atomic<std::int64_t> time{0};
  board::setClock([] { return std::chrono::nanoseconds(time); },
                  [](std::chrono::nanoseconds pause) { time += pause.count(); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view file = textOf(data, size);
  std::string_view lines = file.substr(0, file.find("\n\n"));
  file.remove_prefix(std::min(lines.size() + 2, size));
  std::vector<std::string> arguments{"velmora"};
  while (!lines.empty()) arguments.push_back(take(lines, "\n"));
  if (!harmless(arguments)) return -1;
  clearWorkingDirectory();
  writeFile("file.mcf", file);

  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const Capture output(stdout), errors(stderr);
  const int status = velmora::tool::run(static_cast<int>(arguments.size()), argv.data());
  const bool complained =
      ("\n" + std::string(errors.text())).find("\nvelmora: ") != std::string::npos;
  require(status == (complained ? 1 : 0), "the status tells whether there was a complaint");
  // A document is written as it is: not to a terminal.
  require(output.text().starts_with("<?xml") || isText(output.text()), "the output is text");
  require(isText(errors.text()), "the messages are text");
  requireNothingOutstanding();
  return 0;
}
