#include "tool/manual.h"

#include <fmt/format.h>

#include "tool/visible_commands.h"

namespace velmora::tool {
namespace {

/// Text that the formatter takes as it is.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character == '-' || character == '\\') result += '\\';
    if (character == '\n')
      result += ' ';
    else
      result += character == '\\' ? 'e' : character;
  }
  return result;
}

std::string optionItem(const CLI::Option& option) {
  std::string name = option.get_positional() ? option.get_name(true) : option.get_name(false, true);
  if (!option.get_positional() && !option.get_type_name().empty())
    name += ' ' + option.get_type_name();
  return fmt::format(".TP\n.B {}\n{}\n", escaped(name), escaped(option.get_description()));
}

std::string optionItems(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : app.get_options()) text += optionItem(*option);
  return text;
}

std::string usage(const CLI::App& command) {
  std::string text = command.get_name();
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional())
      text += fmt::format(" {}{}{}{}", option->get_required() ? "" : "[", option->get_type_name(),
                          option->get_items_expected_max() > 1 ? "..." : "",
                          option->get_required() ? "" : "]");
  return text;
}

}  // namespace

std::string manualPage(const CLI::App& program) {
  std::string text = fmt::format(
      ".TH {0} 1\n.SH NAME\n{0} \\- acquisition applet on a virtual board\n.SH SYNOPSIS\n"
      ".B {0}\n[OPTIONS] COMMAND [ARGUMENTS]\n.SH DESCRIPTION\n{1}\n.SH OPTIONS\n{2}"
      ".SH COMMANDS\n",
      program.get_name(), escaped(program.get_description()), optionItems(program));
  for (const CLI::App* command : visibleCommands(program))
    text += fmt::format(".SS {}\n{}\n{}", escaped(usage(*command)),
                        escaped(command->get_description()), optionItems(*command));
  return text;
}

}  // namespace velmora::tool
