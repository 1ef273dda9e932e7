// The description tree of every port as a tool finds it through the exports, node by node.
#include <optional>

#include "tests/applet_test.h"
#include "velmora/register_info.h"

namespace {

using namespace fixture;

/// A text in quotes; the micro sign is the single byte B5.
std::string quoted(const char* text) {
  return text ? '"' + replaced(text, "\xB5", "\\xB5") + '"' : "null";
}

/// Lists a parameter; its id is the one that its name leads to.
std::string listValue(Applet& applet, const RegisterInfo& node, const std::string& indent) {
  EXPECT_EQ(node.visible, 1U) << node.paramName;
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), node.paramName), node.id) << node.paramName;
  std::string text = fmt::format(
      "{}{} {}{} {}, qualifier {}{}\n", indent, node.paramName,
      node.id > 1000000 ? "" : fmt::format("{} ", node.id),  // Beyond, ids depend on the design.
      quoted(node.name), limitsOf(node), node.qualifier,
      node.unit ? ", unit " + quoted(node.unit) : "");
  if (node.kind != REGISTER_INFO_ENUM) return text;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    text += fmt::format("{}  {} {} {}\n", indent, entries.values[i], entries.identifiers[i],
                        quoted(entries.names[i]));
  return text;
}

std::string listGroup(Applet& applet, const RegisterInfo& group, int port,
                      const std::string& indent = "") {
  EXPECT_EQ(group.process, port) << group.name;
  std::string text = fmt::format("{}[{}]\n", indent, group.name);
  for (std::uint32_t i = 0; i < group.value.group.childCount; ++i) {
    const RegisterInfo& child = *group.value.group.children[i];
    EXPECT_EQ(child.process, port) << child.name;
    text += child.kind == REGISTER_INFO_GROUP ? listGroup(applet, child, port, indent + "  ")
                                              : listValue(applet, child, indent + "  ");
  }
  return text;
}

/// All nodes of a port in the order in which they were registered: roots are found newest first.
std::string listing(Applet& applet, unsigned port) {
  const int index = static_cast<int>(port);
  std::string text;
  for (const auto* root = Fg_getParameterInfo(applet.fg(), index); root; root = root->next)
    text.insert(0, listGroup(applet, *root, index));
  return text;
}

/// The lines of a file that hold for a port.
std::string expected(unsigned port, const char* file = "catalogue.txt") {
  static const std::string kLaterPortsOnly = " (ports 1 to 3)";
  std::string text;
  for (const std::string& line : linesOf(contentOf(std::string(TEST_DATA "/") + file))) {
    const auto note = line.find(kLaterPortsOnly);
    if (port != 0 || note == std::string::npos) text += line.substr(0, note) + '\n';
  }
  return text;
}

TEST(Catalogue, DescribesEveryPortNodeByNode) {
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port) EXPECT_EQ(listing(applet, port), expected(port));
  for (const int port : {-1, 4}) EXPECT_EQ(Fg_getParameterInfo(applet.fg(), port), nullptr);
}

TEST(Catalogue, DirectAccessIsDescribedWhenEnabledRegistersFirstOnTheLastPort) {
  const ExternalDesign design(everyKindOfRecord());
  for (const bool registers : {false, true})
    for (const bool parameters : {false, true}) {
      std::optional<EnvironmentVariable> dra, dkta;
      if (registers) dra.emplace("KORV_ENABLE_DRA", "TRUE");
      if (parameters) dkta.emplace("KORV_ENABLE_DKTA", "on");
      Applet applet(kNoDefaults);
      for (unsigned port = 0; port < kPorts; ++port) {
        SCOPED_TRACE(testing::Message() << registers << parameters << " on port " << port);
        std::string text = expected(port);
        if (registers && port == 3) text += expected(port, "direct_registers.txt");
        if (parameters) text += expected(port, "direct_parameters.txt");
        if (registers && port != 3) text += expected(port, "direct_registers.txt");
        EXPECT_EQ(listing(applet, port), text);
      }
    }
  const ExternalDesign nothingToOffer("uint_field Device1_Process0_Field rw shared 3 4 5");
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  Applet applet(kNoDefaults);
  for (const unsigned port : {0u, 3u})
    EXPECT_EQ(listing(applet, port), expected(port) + "[Direct Register Access]\n");
}

}  // namespace
