#include "tool/command_line.h"

#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tool/applet_library.h"
#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/interrupts.h"
#include "tool/session.h"
#include "tool/text.h"

namespace {

using namespace velmora::tool;

/// Read by the logging dispatcher.
constexpr const char* kLogLevelVariable = "KORV_LOG_LEVEL";

// What the flag --trace holds when it is given without and with its value.
constexpr const char* kTraceGiven = "true";
constexpr const char* kTraceAll = "all";

/// Options that every command takes.
struct CommonOptions {
  std::string trace;
  std::string design;
  bool noDefaults = false;
  std::optional<int> logLevel;
  std::string configuration;
  std::vector<std::string> assignments;
};

/// What the chosen command does.
using Command = std::function<void(const AppletLibrary&)>;

class CommandLine {
 public:
  CommandLine() {
    app_.require_subcommand(0, 1);
    app_.get_formatter()->column_width(32);
    addGlobalOptions();
    addInfo();
    addParameterCommands();
    addDescriptionCommands();
    addAcquire();
    addConfigurationCommands();
  }

  /// Exit status.
  int run(int argc, char** argv) {
    try {
      app_.parse(argc, argv);
      if (!command_) throw CLI::RequiredError("a command");
    } catch (const CLI::ParseError& error) {
      if (error.get_exit_code() == 0) return app_.exit(error);  // Help was asked for.
      report(unknownCommand().value_or(error.what()));
      printError("Run velmora --help for more information.");
      return 1;
    }
    if (common_.logLevel) setenv(kLogLevelVariable, std::to_string(*common_.logLevel).c_str(), 1);
    try {
      const AppletLibrary library;
      command_(library);
    } catch (const Interrupted& interrupted) {
      return report(interrupted, 128 + SIGINT);
    } catch (const Failure& failure) {
      return report(failure, 1);
    }
    return 0;
  }

  /// After a failed parse: the complaint about a word that stands in place of a command.
  std::optional<std::string> unknownCommand() const {
    const std::vector<std::string> rest = app_.remaining();
    if (!app_.get_subcommands().empty() || rest.empty() || rest.front().starts_with('-'))
      return std::nullopt;
    return "no such command: " + rest.front();
  }

  static void report(const std::string& message) { printError("velmora: " + message); }
  static int report(const Failure& failure, int status) {
    std::fflush(stdout);
    for (const std::string& message : failure.messages()) report(message);
    return status;
  }

 private:
  /// A range that is left out of the help text.
  template <class Number>
  static CLI::Validator range(Number least, Number most) {
    return CLI::Range(least, most).description("");
  }

  void addGlobalOptions() {
    app_.add_flag("--trace", common_.trace,
                  "Show the command's accesses to the board on standard\n"
                  "error; with --trace=all those of start-up and release too")
        ->check([](const std::string& value) {
          return value == kTraceGiven || value == kTraceAll ? "" : "takes no value but 'all'";
        });
    app_.add_option("--board", common_.design, "Use an external design")
        ->type_name("FILE")
        ->check(CLI::ExistingFile.description(""));
    app_.add_flag("--no-defaults", common_.noDefaults,
                  "Do not write the parameters' defaults at start-up");
    app_.add_option("--log", common_.logLevel, "Show log messages from this level on, 0 (all) to 7")
        ->type_name("LEVEL")
        ->check(range(0, 7));
    app_.add_option("--load", common_.configuration, "Load a configuration before the command")
        ->type_name("FILE");
    app_.add_option("--set", common_.assignments,
                    "Set a parameter before the command (several times: in\n"
                    "order), on the command's ports where none is given")
        ->type_name("NAME[@PORT]=VALUE")
        ->allow_extra_args(false);
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
    const auto onBoard = [this, command = std::move(command)](const AppletLibrary& library) {
      const Trace trace = common_.trace == "all"  ? Trace::kAll
                          : common_.trace.empty() ? Trace::kNone
                                                  : Trace::kCommand;
      Session session(library, {trace, common_.design, !common_.noDefaults});
      if (!common_.configuration.empty()) loadConfiguration(session, common_.configuration);
      assignParameters(session, common_.assignments, portsInUse());
      command(session);
    };
    return addCommand(name, description, onBoard);
  }

  std::vector<unsigned> portsInUse() const {
    if (!acquire_.ports.empty()) return acquire_.ports;
    return {port_.value_or(0)};
  }

  void addPort(CLI::App* command, const char* description) {
    command->add_option("--port", port_, description)
        ->type_name("N")
        ->check(range(0u, velmora::kPorts - 1));
  }

  void addInfo() {
    CLI::App* const info =
        addCommand("info", "Tell what the applet is; needs no board",
                   [this](const AppletLibrary& library) { showInfo(library, info_.icon); });
    info->add_option("--icon", info_.icon, "Write the applet's icon to a PNG file")
        ->type_name("FILE");
  }

  void addParameterCommands() {
    CLI::App* const list =
        addBoardCommand("list", "List all parameters with their values",
                        [this](Session& session) { listParameters(session, port_); });
    addPort(list, "Only this port");

    addBoardCommand("get", "Read parameters",
                    [this](Session& session) { getParameters(session, get_.names); })
        ->add_option("names", get_.names, "Parameters; port 0 where no port is given")
        ->type_name("NAME[@PORT]")
        ->required();

    addBoardCommand("set", "Set parameters in order until one is refused, and show the new values",
                    [this](Session& session) { setParameters(session, set_.assignments); })
        ->add_option("assignments", set_.assignments,
                     "Values are numbers (decimal or 0x) or value names such as FG_ON")
        ->type_name("NAME[@PORT]=VALUE")
        ->required();
  }

  void addDescriptionCommands() {
    CLI::App* const describe = addBoardCommand(
        "describe", "Show the parameters of a port as a tree, or all about one parameter",
        [this](Session& session) {
          if (describe_.name.empty())
            describePort(session, port_.value_or(0));
          else
            describeParameter(session, describe_.name, port_);
        });
    describe->add_option("name", describe_.name, "Parameter")->type_name("NAME[@PORT]");
    addPort(describe, "Port, 0 if not given");

    CLI::App* const xml = addBoardCommand(
        "xml", "Write the GenApi XML document of a port",
        [this](Session& session) { writeXml(session, port_.value_or(0), xml_.file); });
    xml->add_option("-o,--output", xml_.file, "File to write instead of standard output")
        ->type_name("FILE");
    addPort(xml, "Port, 0 if not given");

    addBoardCommand("events", "List the events with their masks", listEvents);
  }

  /// An option that may be given several times.
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

  void addAcquire() {
    CLI::App* const acquire =
        addBoardCommand("acquire", "Acquire pictures and report the rate",
                        [this](Session& session) { acquirePictures(session, acquire_); });
    acquire->add_option("--port", acquire_.ports, "Ports to acquire on, all at the same time")
        ->type_name("N")
        ->required()
        ->check(range(0u, velmora::kPorts - 1));
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
    acquire->add_option("--show", acquire_.shown, "Print parameters of the ports afterwards")
        ->type_name("NAME[@PORT]");
    acquire->add_option("--timeout", acquire_.timeout, "Longest wait for a picture")
        ->type_name("SECONDS")
        ->check(range(0, std::numeric_limits<int>::max()))
        ->capture_default_str();
  }

  void addConfigurationCommands() {
    constexpr const char* kFile = "Configuration file, with .mcf in its name";
    addBoardCommand("save", "Save the settings of all ports",
                    [this](Session& session) { saveConfiguration(session, save_.file); })
        ->add_option("file", save_.file, kFile)
        ->required();
    addBoardCommand("load", "Load the settings of all ports, or say what the file lacks",
                    [this](Session& session) { loadConfiguration(session, load_.file); })
        ->add_option("file", load_.file, kFile)
        ->required();
  }

  CLI::App app_{
      "Opens the acquisition applet Velmora on a virtual board.\n"
      "Options may come before or after the command; every command has --help.\n"
      "Exit status: 0, or 1 after an error, which is reported on standard error.",
      "velmora"};
  CommonOptions common_;
  std::optional<unsigned> port_;  ///< Of `list`, `describe` and `xml`.
  struct {
    std::string icon;
  } info_;
  struct {
    std::vector<std::string> names;
  } get_;
  struct {
    std::vector<std::string> assignments;
  } set_;
  struct {
    std::string name;
  } describe_;
  struct {
    std::string file;
  } xml_, save_, load_;
  Acquisition acquire_;
  Command command_;
};

}  // namespace

int velmora::tool::run(int argc, char** argv) {
  int status = 1;
  try {
    const int result = CommandLine().run(argc, argv);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
      throw Failure("cannot write the output");
    status = result;
  } catch (const std::exception& error) {
    CommandLine::report(error.what());
  }
  return status;
}
