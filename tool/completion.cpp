#include "tool/completion.h"

#include <algorithm>
#include <sstream>

#include "tool/parameter_access.h"
#include "tool/text.h"
#include "tool/visible_commands.h"

namespace velmora::tool {
namespace {

bool startsIgnoringCase(std::string_view text, std::string_view begin) {
  return equalIgnoringCase(text.substr(0, begin.size()), begin);
}

/// A line that has not ended.
struct Line {
  std::vector<std::string> words;  ///< Before the last one.
  std::string last;

  explicit Line(const std::string& text) {
    const auto blank = text.find_last_of(" \t");
    std::istringstream before(blank == std::string::npos ? "" : text.substr(0, blank));
    for (std::string word; before >> word;) words.push_back(word);
    last = blank == std::string::npos ? text : text.substr(blank + 1);
  }
};

std::vector<std::string> commandNames(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : visibleCommands(program)) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

/// What the value at the end of a line is called, such as "NAME[@PORT]"; empty when there is none.
std::string expectedType(const CLI::App& program, const CLI::App& command, const Line& line) {
  if (!line.words.empty()) {
    const std::string& before = line.words.back();
    for (const CLI::App* app : {&command, &program})
      if (const CLI::Option* option =
              before.starts_with('-') ? app->get_option_no_throw(before) : nullptr)
        if (option->get_items_expected_max() > 0 && !option->get_type_name().empty())
          return option->get_type_name();
  }
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional()) return option->get_type_name();
  return {};
}

/// Names of parameters that go on from `begin`, with their prefix where it is left out.
std::vector<std::string> parameterNames(Session& session, const std::string& begin) {
  std::vector<std::string> names;
  for (int i = 0; i < session.library().parameterCount(session.grabber()); ++i) {
    const std::string name = utf8(session.library().parameterName(session.grabber(), i));
    if (startsIgnoringCase(name, begin) || startsIgnoringCase(name, "FG_" + begin))
      names.push_back(name);
  }
  return names;
}

/// Names of a parameter's entries.
std::vector<std::string> valueNames(Session& session, const std::string& target) {
  std::vector<std::string> names;
  try {
    const ParameterName name = parseParameterName(target);
    const Parameter parameter = findParameter(session, name.name, name.port.value_or(0));
    if (parameter.node && parameter.node->kind == REGISTER_INFO_ENUM)
      for (std::uint32_t i = 0; i < parameter.node->value.enumeration.entryCount; ++i)
        names.push_back(entryName(*parameter.node, i));
  } catch (const Failure&) {  // What is no parameter has no values.
  }
  return names;
}

void keepThoseThatBegin(std::vector<std::string>& names, const std::string& begin) {
  std::erase_if(names, [&](const std::string& name) { return !startsIgnoringCase(name, begin); });
}

}  // namespace

std::vector<std::string> completions(const CLI::App& program, Session& session,
                                     const std::string& text) {
  const Line line(text);
  const CLI::App* command = nullptr;
  for (const CLI::App* visible : visibleCommands(program))
    if (std::ranges::find(line.words, visible->get_name()) != line.words.end()) command = visible;
  std::vector<std::string> names;
  if (line.last.starts_with('-')) {
    names = optionNames(program);
    if (command) std::ranges::copy(optionNames(*command), std::back_inserter(names));
    keepThoseThatBegin(names, line.last);
    return names;
  }
  const std::string type = expectedType(program, command ? *command : program, line);
  const auto separator = line.last.find_last_of("=@");
  const std::string begin = line.last.substr(separator == std::string::npos ? 0 : separator + 1);
  if (type.empty() && !command)
    names = commandNames(program);
  else if (type.starts_with("NAME") && separator == std::string::npos)
    return parameterNames(session, begin);
  else if (type.starts_with("NAME") && line.last[separator] == '=')
    names = valueNames(session, line.last.substr(0, separator));
  keepThoseThatBegin(names, begin);
  return names;
}

}  // namespace velmora::tool
