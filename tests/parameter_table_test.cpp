/// The table of docs/parameters.md is what the applet says of itself.
#include "tests/applet_test.h"

namespace {

using namespace fixture;

std::string typeOf(Applet& applet, int id, const RegisterInfo* node) {
  if (node)
    return node->kind == REGISTER_INFO_UINT     ? "uint32"
           : node->kind == REGISTER_INFO_DOUBLE ? "double"
           : node->kind == REGISTER_INFO_ENUM   ? "enumeration"
                                                : "text";
  takeAccesses();
  EXPECT_EQ(applet.word(id).code, VELMORA_OK) << id;
  return takeAccesses().empty() ? "uint32" : "runtime's own";
}

template <class Limits>
std::string rangeOf(const Limits& limits) {
  if (limits.max == limits.min && limits.inc == 0) return "";
  const std::string range = fmt::format("{} to {}", limits.min, limits.max);
  // The smallest number that there is stands for no step; that of integers goes without saying.
  const auto step = static_cast<double>(limits.inc);
  return step == 1 || step < 1e-9 ? range : fmt::format("{}, step {}", range, step);
}

std::string rangeOf(const RegisterInfo& node, const RegisterInfo& onPort0) {
  if (node.kind == REGISTER_INFO_UINT) return rangeOf(node.value.uint32);
  if (node.kind == REGISTER_INFO_DOUBLE) return rangeOf(node.value.real);
  if (node.kind != REGISTER_INFO_ENUM) return "";
  std::string text;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    text += fmt::format("{}{} {}{}", i ? ", " : "", entries.values[i], entries.identifiers[i],
                        i < onPort0.value.enumeration.entryCount ? "" : " (not port 0)");
  return text;
}

/// Needs no more room than the headers promise.
std::string helpOf(Applet& applet, const std::string& name) {
  const std::string beyond(1000, '#');
  std::string text = name + std::string(VELMORA_TEXT_ROOM - name.size(), '\0') + beyond;
  const unsigned port = static_cast<unsigned>(name.size()) % kPorts;
  EXPECT_EQ(Fg_getParameterWithType(applet.fg(), FG_PARAM_DESCR, text.data(), port, 2), VELMORA_OK);
  EXPECT_EQ(text.substr(VELMORA_TEXT_ROOM), beyond) << name;
  return text.c_str();
}

std::string table() {
  Applet applet(kNoDefaults);  // Those move ranges.
  const TemporaryDirectory directory;
  EXPECT_EQ(Fg_saveConfig(applet.fg(), (directory / "all.mcf").c_str()), VELMORA_OK);
  const std::string saved = contentOf(directory / "all.mcf");
  std::string text =
      "| name | id | type | range or values | unit | access | saved | description |\n"
      "|---|---|---|---|---|---|---|---|\n";
  for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const std::string name = Fg_getParameterName(applet.fg(), i);
    const int id = Fg_getParameterId(applet.fg(), i);
    const RegisterInfo* const node = applet.node(id, 1);
    const std::string help = helpOf(applet, name);
    text += fmt::format("| {} | {} | {} | {} | {} | {} | {} | {} |\n", name, id,
                        typeOf(applet, id, node), node ? rangeOf(*node, *applet.node(id)) : "",
                        node && node->unit ? replaced(node->unit, "\xB5", "µ") : "",
                        node && (node->accessMode & REGISTER_INFO_WRITABLE) ? "read/write" : "read",
                        saved.find('\n' + name + '=') == std::string::npos ? "" : "yes",
                        (node ? node->name : "") + (help.empty() ? "" : ": " + help));
  }
  return text;
}

TEST(Documents, ParametersAreTabulated) {
  const std::string document = contentOf(PARAMETER_TABLE);
  const std::string actual = document.substr(0, document.find("| name")) + table();
  EXPECT_EQ(document, actual) << "The applet's table lies in parameters.md";
  if (HasFailure()) std::ofstream("parameters.md") << actual;
}

}  // namespace
