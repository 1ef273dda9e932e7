#include "tool/command_line.h"

#include <fmt/format.h>
#include <stdlib.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/completion.h"
#include "tool/host.h"
#include "tool/interrupts.h"
#include "tool/manual.h"
#include "tool/shell.h"
#include "tool/text.h"
#include "tool/view_server.h"

namespace {

using namespace velmora::tool;

/// Read by the logging dispatcher.
constexpr const char* kLogLevelVariable = "KORV_LOG_LEVEL";

// What the flag --trace holds when it is given without and with its value.
constexpr const char* kTraceGiven = "true";
constexpr const char* kTraceAll = "all";

void report(const std::string& message) { printError("velmora: " + message); }
int report(const Failure& failure, int status) {
  std::fflush(stdout);
  for (const std::string& message : failure.messages()) report(message);
  return status;
}

/// With the option before each of the assignments that follow a --set.
std::vector<std::string> withSetBeforeEach(const std::vector<std::string>& words) {
  const std::string set = "--set";
  std::vector<std::string> result;
  bool assigning = false;
  for (const std::string& word : words) {
    assigning = word == set || (assigning && !word.starts_with('-') && word.find('=') != word.npos);
    if (assigning && word != set && result.back() != set) result.push_back(set);
    result.push_back(word);
  }
  return result;
}

/// Options that every command on a board takes.
struct BoardOptions {
  std::string trace;
  std::string design;
  bool noDefaults = false;
  std::string configuration;
  bool force = false;
  std::vector<std::string> assignments;
  std::vector<unsigned> ports;
};

/// What the chosen command does.
using Command = std::function<void()>;

/// One command, with its options: those of the program, or of a line in its shell.
class CommandLine {
 public:
  enum class Place { kProgram, kShell };

  CommandLine(Host& host, Place place) : host_(host), place_(place) {
    app_.require_subcommand(0, 1);
    app_.get_formatter()->column_width(32);
    addGlobalOptions();
    if (place == Place::kProgram) addStartOptions();
    addInfo();
    addParameterCommands();
    addDescriptionCommands();
    addAcquire();
    addConfigurationCommands();
    if (place == Place::kShell) return;
    addView();
    addProgramCommands();
  }

  /// Exit status.
  int run(const std::vector<std::string>& words) {
    if (const auto status = parse(withSetBeforeEach(words))) return *status;
    try {
      command_();
    } catch (const Interrupted& interrupted) {
      return report(interrupted, 128 + SIGINT);
    } catch (const Failure& failure) {
      return report(failure, 1);
    }
    return status_;
  }

 private:
  /// The exit status if there is nothing to run.
  std::optional<int> parse(std::vector<std::string> words) {
    std::ranges::reverse(words);  // As the parser wants them.
    try {
      app_.parse(words);
      if (!command_) throw CLI::RequiredError("a command");
      refuseIgnored();
    } catch (const CLI::ExtrasError&) {
      return wrongUse(unexpected());
    } catch (const CLI::ParseError& error) {
      if (error.get_exit_code() == 0) return app_.exit(error);  // Help was asked for.
      return wrongUse(error.what());
    }
    if (logLevel_) setenv(kLogLevelVariable, std::to_string(*logLevel_).c_str(), 1);
    return std::nullopt;
  }

  int wrongUse(const std::string& message) const {
    report(message);
    printError(place_ == Place::kProgram ? "Run velmora --help for more information."
                                         : "--help tells more.");
    return 1;
  }

  /// After a failed parse: the complaint about the first word that nothing takes.
  std::string unexpected() const {
    const std::string word = app_.remaining(true).front();
    return app_.get_subcommands().empty() && !word.starts_with('-')
               ? "no such command: " + word
               : "unexpected argument: " + word;
  }

  void refuseIgnored() const {
    for (const CLI::Option* option : app_.parse_order()) {
      const bool ports = option == ports_ && !usesPorts_ && board_.assignments.empty();
      const bool force = option == force_ && !loads_ && board_.configuration.empty();
      const bool board = option->get_group() == kBoardGroup && !onBoard_;
      if (ports || force || board)
        throw CLI::ParseError(option->get_name() + ": without effect on this command",
                              CLI::ExitCodes::InvalidError);
    }
  }

  /// A number that lies in a range and is not rounded or clamped to get there.
  template <class Number>
  static CLI::Validator range(Number least, Number most) {
    return {[=](const std::string& text) {
              const auto number = parseWhole<Number>(text);
              return number && *number >= least && *number <= most
                         ? ""
                         : fmt::format("{} is not in range {} to {}", text, least, most);
            },
            ""};
  }

  void addGlobalOptions() {
    app_.add_flag("--trace", board_.trace,
                  "Show the command's accesses to the board on standard\n"
                  "error; with --trace=all those of start-up and release too")
        ->check([](const std::string& value) {
          return value == kTraceGiven || value == kTraceAll ? "" : "takes no value but 'all'";
        })
        ->group(kBoardGroup);
    app_.add_option("--load", board_.configuration, "Load a configuration before the command")
        ->type_name("FILE")
        ->group(kBoardGroup);
    force_ = app_.add_flag("--force", board_.force, "Go on when a load differs from its file")
                 ->group(kBoardGroup);
    addSeveral(&app_, "--set", board_.assignments, "NAME[@PORT]=VALUE",
               "Set parameters before the command, in order; on the\n"
               "command's ports where none is given")
        ->group(kBoardGroup);
    const auto add = [this](const std::vector<std::string>& texts) {
      std::string all;
      for (const std::string& text : texts) all += (all.empty() ? "" : ",") + text;
      board_.ports = parsePorts(all).value();
    };
    ports_ = app_.add_option_function<std::vector<std::string>>(
                     "--port", add, "Ports, such as 0,2 or all; 0 if not given")
                 ->type_name("PORTS")
                 ->allow_extra_args(false)
                 ->check([](const std::string& text) {
                   return parsePorts(text) ? "" : "'" + text + "' is neither ports 0 to 3 nor all";
                 })
                 ->group(kBoardGroup);
  }

  /// What counts when the board is opened.
  void addStartOptions() {
    app_.add_option("--board", board_.design, "Use an external design")
        ->type_name("FILE")
        ->check([](const std::string& file) {
          const std::ifstream stream(file);
          return !stream                               ? file + ": " + std::strerror(errno)
                 : std::filesystem::is_directory(file) ? file + ": is a directory"
                                                       : "";
        })
        ->group(kBoardGroup);
    app_.add_flag("--no-defaults", board_.noDefaults,
                  "Do not write the parameters' defaults at start-up")
        ->group(kBoardGroup);
    app_.add_option("--log", logLevel_, "Show log messages from this level on, 0 (all) to 7")
        ->type_name("LEVEL")
        ->check(range(0, 7));
    app_.set_version_flag("--version", "velmora " VELMORA_VERSION);
  }

  CLI::App* addCommand(const char* name, const char* description, Command command) {
    CLI::App* const added = app_.add_subcommand(name, description);
    added->fallthrough();
    added->callback([this, command = std::move(command)] { command_ = command; });
    return added;
  }

  /// A command that needs the applet on a board.
  CLI::App* addBoardCommand(const char* name, const char* description,
                            std::function<void(Session&)> command) {
    CLI::App* const added =
        addCommand(name, description, [this, command = std::move(command)] { onBoard(command); });
    added->parse_complete_callback([this] { onBoard_ = true; });
    return added;
  }

  /// The same for one that acts on the ports of --port.
  CLI::App* addPortCommand(const char* name, const char* description,
                           std::function<void(Session&)> command) {
    CLI::App* const added = addBoardCommand(name, description, std::move(command));
    added->parse_complete_callback([this] { onBoard_ = usesPorts_ = true; });
    return added;
  }

  void onBoard(const std::function<void(Session&)>& command) {
    Session& session =
        host_.session({board_.trace == kTraceAll, board_.design, !board_.noDefaults});
    std::optional<Observation> trace;
    if (!board_.trace.empty()) trace.emplace(showAccess);
    if (!board_.configuration.empty())
      loadConfiguration(session, board_.configuration, {.force = board_.force});
    assignParameters(session, board_.assignments, ports());
    command(session);
  }

  std::vector<unsigned> ports() const {
    return board_.ports.empty() ? std::vector{0u} : board_.ports;
  }

  void addJson(CLI::App* command) { command->add_flag("--json", json_, "Answer in JSON"); }

  /// An option that may be given several times.
  static CLI::Option* addSeveral(CLI::App* command, const char* name,
                                 std::vector<std::string>& values, const char* type,
                                 const char* description) {
    return command->add_option(name, values, description)->type_name(type)->allow_extra_args(false);
  }

  /// The same, with texts to be read.
  template <class Value>
  static void addSeveral(CLI::App* command, const char* name, std::vector<Value>& values,
                         Value (*parse)(const std::string&), const char* type,
                         const char* description) {
    const auto add = [&values, parse](const std::vector<std::string>& texts) {
      for (const std::string& text : texts) values.push_back(parse(text));
    };
    command->add_option_function<std::vector<std::string>>(name, add, description)
        ->type_name(type)
        ->allow_extra_args(false);
  }

  void addInfo() {
    CLI::App* const info = addCommand("info", "Tell what the applet is; needs no board",
                                      [this] { showInfo(host_.library(), icon_, json_); });
    info->add_option("--icon", icon_, "Write the applet's icon to a PNG file")->type_name("FILE");
    addJson(info);
  }

  void addParameterCommands() {
    CLI::App* const list =
        addPortCommand("list", "List all parameters with their values", [this](Session& session) {
          const bool every = flat_ && board_.ports.empty();
          listParameters(session, every ? parsePorts("all").value() : ports(),
                         json_   ? ListForm::kJson
                         : flat_ ? ListForm::kFlat
                                 : ListForm::kTree);
        });
    list->add_flag("--flat", flat_, "In a table of all ports, or of those given");
    addJson(list);

    CLI::App* const get = addPortCommand("get", "Read parameters", [this](Session& session) {
      getParameters(session, words_, ports(), json_);
    });
    get->add_option("names", words_, "Parameters")->type_name("NAME[@PORT]")->required();
    addJson(get);

    CLI::App* const set = addPortCommand(
        "set", "Set parameters in order until one is refused, and show the new values",
        [this](Session& session) { setParameters(session, words_, ports(), json_); });
    set->add_option("assignments", words_,
                    "Values are numbers (decimal or 0x) or value names such as FG_ON")
        ->type_name("NAME[@PORT]=VALUE")
        ->required();
    addJson(set);
  }

  void addDescriptionCommands() {
    CLI::App* const describe = addPortCommand(
        "describe", "Show the parameters as a tree, or all about one", [this](Session& session) {
          if (word_.empty())
            describePorts(session, ports(), json_);
          else
            describeParameter(session, word_, ports(), json_);
        });
    describe->add_option("name", word_, "Parameter")->type_name("NAME[@PORT]");
    addJson(describe);

    CLI::App* const xml =
        addPortCommand("xml", "Write the GenApi XML document of a port",
                       [this](Session& session) { writeXml(session, ports(), output_); });
    xml->add_option("-o,--output", output_, "File to write instead of standard output")
        ->type_name("FILE");

    addJson(addBoardCommand("events", "List the events with their masks",
                            [this](Session& session) { listEvents(session, json_); }));
  }

  void addAcquire() {
    CLI::App* const acquire =
        addPortCommand("acquire", "Acquire pictures on ports at the same time and report the rates",
                       [this](Session& session) {
                         acquire_.ports = ports();
                         acquire_.json = json_;
                         acquirePictures(session, acquire_);
                       });
    acquire->add_option("--count", acquire_.pictures, "Pictures to acquire on each port")
        ->type_name("N")
        ->required()
        ->check(range<std::int64_t>(1, std::numeric_limits<std::int64_t>::max()));
    acquire
        ->add_option("-o,--output", acquire_.output,
                     "Write PNG files into a directory, or by a pattern such as\n"
                     "'name-{port}-{number}.png'")
        ->type_name("DIR");
    addSeveral(acquire, "--camera", acquire_.cameras, parseCameraFiles, "PORT=DIR",
               "Play the PNG files of a directory as the camera of a port");
    addSeveral(acquire, "--trigger", acquire_.triggers, parseTriggerTrain,
               "input=N,rate=HZ[,pulses=N]", "Send pulses to a trigger input meanwhile");
    acquire
        ->add_option("--software-trigger", acquire_.softwareTrigger,
                     "Send software triggers meanwhile")
        ->type_name("HZ")
        ->check(range(0.001, 1e6));
    addSeveral(acquire, "--show", acquire_.shown, "NAME[@PORT]",
               "Print parameters of the ports afterwards");
    acquire->add_option("--timeout", acquire_.timeout, "Longest wait for a picture")
        ->type_name("SECONDS")
        ->check(range(0, std::numeric_limits<int>::max()))
        ->capture_default_str();
    addJson(acquire);
  }

  void addConfigurationCommands() {
    constexpr const char* kFile = "Configuration file, with .mcf in its name";
    addBoardCommand("save", "Save the settings of all ports",
                    [this](Session& session) { saveConfiguration(session, word_); })
        ->add_option("file", word_, kFile)
        ->type_name("FILE")
        ->required();
    CLI::App* const load = addBoardCommand(
        "load", "Load the settings of all ports, and tell where they differ from the file",
        [this](Session& session) {
          loadConfiguration(session, word_, {.force = board_.force, .json = json_});
        });
    load->parse_complete_callback([this] { onBoard_ = loads_ = true; });
    load->add_option("file", word_, kFile)->type_name("FILE")->required();
    addJson(load);
  }

  void addView() {
    addBoardCommand("view", "Show the ports live in a browser, until Ctrl-C",
                    [this](Session& session) { viewBoard(session, listen_); })
        ->add_option("--listen", listen_, "Address and port to listen on")
        ->type_name("HOST:PORT")
        ->capture_default_str()
        ->check([](const std::string& text) {
          return parseListenAddress(text) ? "" : "'" + text + "' is no HOST:PORT";
        });
  }

  void addProgramCommands() {
    CLI::App* const shell =
        addBoardCommand("shell", "Run commands on one board, line by line; `exit` ends it",
                        [this](Session& session) { runShell(session, "-"); });
    CLI::App* const script =
        addBoardCommand("script", "Run the commands of a file on one board",
                        [this](Session& session) { runShell(session, word_); });
    for (CLI::App* command : {shell, script})
      command->add_flag("--continue", goOn_, "Go on after a line that fails");
    script->add_option("file", word_, "Lines of commands; - for standard input")
        ->type_name("FILE")
        ->required();

    addCommand("complete", "Tell how a command line may go on",
               [this] {
                 for (const std::string& word : completions(app_, host_.session(), word_))
                   printLine(word);
               })
        ->group("")
        ->add_option("line", word_);
    addCommand("manual", "Write the manual page", [this] {
      const std::string page = manualPage(app_);
      std::fwrite(page.data(), 1, page.size(), stdout);
    })->group("");
  }

  void runShell(Session& session, const std::string& file) {
    const auto runLine = [this](const std::vector<std::string>& words) {
      const int status = CommandLine(host_, Place::kShell).run(words);
      std::fflush(stdout);
      return status;
    };
    const bool terminal = file == "-" && isatty(STDIN_FILENO) != 0;
    const auto complete = [&](const std::string& line) {
      return completions(CommandLine(host_, Place::kShell).app_, session, line);
    };
    status_ = terminal ? runTerminal(runLine, complete) : runScript(file, goOn_, runLine);
  }

  static constexpr const char* kBoardGroup = "On the board";

  CLI::App app_{
      "Opens the acquisition applet Velmora on a virtual board.\n"
      "Options may come before or after the command; every command has --help.\n"
      "Exit status: 0, or 1 after an error, which is reported on standard error,\n"
      "or 130 after Ctrl-C.",
      "velmora"};
  Host& host_;
  Place place_;
  Command command_;
  int status_ = 0;  ///< Of a command that did what it should.
  // What the chosen command is.
  bool onBoard_ = false;
  bool usesPorts_ = false;
  bool loads_ = false;
  // What it was given.
  std::optional<int> logLevel_;
  BoardOptions board_;
  const CLI::Option* ports_ = nullptr;
  const CLI::Option* force_ = nullptr;
  bool json_ = false;
  bool flat_ = false;
  bool goOn_ = false;
  std::string icon_;
  std::string listen_ = "127.0.0.1:8077";
  std::string output_;
  std::string word_;
  std::vector<std::string> words_;
  Acquisition acquire_;
};

}  // namespace

int velmora::tool::run(int argc, char** argv) {
  setlocale(LC_CTYPE, "");  // Texts only: numbers have points everywhere.
  int status = 1;
  try {
    Host host;
    const int result = CommandLine(host, CommandLine::Place::kProgram).run({argv + 1, argv + argc});
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
      throw Failure("cannot write the output");
    status = result;
  } catch (const std::exception& error) {
    report(error.what());
  }
  return status;
}
