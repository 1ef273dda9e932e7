// The description tree of every port as a tool finds it through the exports, node by node.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/applet_fixture.h"
#include "tests/external_design.h"
#include "velmora/register_info.h"

namespace {

using fixture::Applet;
using fixture::EnvironmentVariable;
using fixture::ExternalDesign;
using fixture::kNoDefaults;
using fixture::kPorts;

/// Ids above this number depend on the design.
constexpr int kFixedIds = 1000000;

/// A text in ASCII and quotes: the micro sign is the single byte B5.
std::string quoted(const char* text) {
  if (!text) return "null";
  std::string result = "\"";
  for (; *text; ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    result += byte < 0x80 ? std::string(1, *text) : fmt::format("\\x{:X}", byte);
  }
  return result + '"';
}

/// Doubles appear in their shortest exact form: equal texts are equal bits.
std::string range(const char* kind, const auto& limits) {
  return fmt::format("{} {}..{} step {}", kind, limits.min, limits.max, limits.inc);
}

std::string limitsOf(const RegisterInfo& node) {
  switch (node.kind) {
    case REGISTER_INFO_UINT:
      return range("uint", node.value.uint32);
    case REGISTER_INFO_INT:
      return range("int", node.value.int32);
    case REGISTER_INFO_UINT64:
      return range("uint64", node.value.uint64);
    case REGISTER_INFO_INT64:
      return range("int64", node.value.int64);
    case REGISTER_INFO_DOUBLE:
      return range("double", node.value.real);
    case REGISTER_INFO_STRING:
      return "string " + quoted(node.value.string.value);
    case REGISTER_INFO_ENUM:
      return "enum";
    default:
      return fmt::format("kind {}", node.kind);
  }
}

void listValue(const RegisterInfo& node, const std::string& indent, std::string& text) {
  EXPECT_EQ(node.visible, 1U);
  EXPECT_EQ(node.parentName, nullptr);
  text += fmt::format(
      "{}{} {}{} {}, access {}, qualifier {}{}\n", indent, node.paramName ? node.paramName : "null",
      node.id > kFixedIds ? "" : fmt::format("{} ", node.id), quoted(node.name), limitsOf(node),
      node.accessMode, node.qualifier, node.unit ? ", unit " + quoted(node.unit) : "");
  if (node.kind != REGISTER_INFO_ENUM) return;
  const auto& entries = node.value.enumeration;
  for (std::uint32_t i = 0; i < entries.entryCount; ++i)
    text += fmt::format("{}  {} {} {}\n", indent, entries.values[i], entries.identifiers[i],
                        quoted(entries.names[i]));
}

void listGroup(const RegisterInfo& group, int port, std::uint32_t level, std::string& text) {
  SCOPED_TRACE(group.name);
  EXPECT_EQ(group.kind, unsigned{REGISTER_INFO_GROUP});
  EXPECT_EQ(group.level, level);
  EXPECT_EQ(group.process, port);
  EXPECT_EQ(group.paramName, nullptr);
  EXPECT_EQ(group.unit, nullptr);
  const std::string indent(std::size_t{level} * 2, ' ');
  text += fmt::format("{}[{}]\n", indent, group.name);
  const auto& children = group.value.group;
  for (std::uint32_t i = 0; i < children.childCount; ++i) {
    const RegisterInfo& child = *children.children[i];
    EXPECT_EQ(child.index, i);
    EXPECT_EQ(child.process, port);
    EXPECT_EQ(child.next, nullptr);
    EXPECT_EQ(child.prev, nullptr);
    if (child.kind != REGISTER_INFO_GROUP) {
      listValue(child, indent + "  ", text);
      continue;
    }
    EXPECT_STREQ(child.parentName, group.name);
    listGroup(child, port, level + 1, text);
  }
}

/// All nodes of a port in the order in which they were registered: roots are found newest first.
std::string listing(Applet& applet, unsigned port) {
  std::vector<const RegisterInfo*> roots;
  for (const auto* root = Fg_getParameterInfo(applet.fg(), static_cast<int>(port)); root;
       root = root->next) {
    EXPECT_EQ(root->prev, roots.empty() ? nullptr : roots.back());
    EXPECT_EQ(root->parentName, nullptr);
    roots.push_back(root);
  }
  std::string text;
  for (auto root = roots.rbegin(); root != roots.rend(); ++root)
    listGroup(**root, static_cast<int>(port), 0, text);
  return text;
}

/// The lines of a file that hold for a port.
std::string expected(unsigned port, const char* file = "catalogue.txt") {
  static const std::string kLaterPortsOnly = " (ports 1 to 3)";
  std::ifstream in(std::string(TEST_DATA "/") + file);
  std::string text;
  for (std::string line; std::getline(in, line);) {
    if (line.ends_with(kLaterPortsOnly)) {
      if (port == 0) continue;
      line.resize(line.size() - kLaterPortsOnly.size());
    }
    text += line + '\n';
  }
  return text;
}

TEST(Catalogue, DescribesEveryPortNodeByNode) {
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port) {
    SCOPED_TRACE(port);
    EXPECT_EQ(listing(applet, port), expected(port));
  }
  for (const int port : {-1, 4}) EXPECT_EQ(Fg_getParameterInfo(applet.fg(), port), nullptr);
}

TEST(Catalogue, DefaultsMoveTheLimitsOfTheirPartners) {
  const struct {
    const char* asRegistered;
    const char* moved;
  } rows[] = {
      {"\"XOffset\" uint 0..8184", "\"XOffset\" uint 0..7160"},
      {"\"YOffset\" uint 0..65534", "\"YOffset\" uint 0..64509"},
      {"\"Downscale Phase\" uint 0..4294967294", "\"Downscale Phase\" uint 0..0"},
      {"300217 \"Phase\" uint 0..6", "300217 \"Phase\" uint 0..0"},
      {"300221 \"Phase\" uint 0..6", "300221 \"Phase\" uint 0..0"},
      {"\"Accuracy\" uint 1..", "\"Accuracy\" uint 2.."},
  };
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    SCOPED_TRACE(port);
    std::string text = expected(port);
    for (const auto& [asRegistered, moved] : rows) {
      const auto at = text.find(asRegistered);
      ASSERT_NE(at, std::string::npos) << asRegistered;
      text.replace(at, std::strlen(asRegistered), moved);
    }
    EXPECT_EQ(listing(applet, port), text);
  }
}

TEST(Catalogue, DirectAccessIsDescribedWhenEnabledRegistersFirstOnTheLastPort) {
  const ExternalDesign design(fixture::kEveryKindOfRecord);
  for (const bool registers : {false, true}) {
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
  }
}

TEST(Catalogue, DirectAccessIsNotDescribedWhenTheDesignHasNothingToOffer) {
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  const ExternalDesign design("uint_field Device1_Process0_Field rw shared 3 4 5");
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port)
    EXPECT_EQ(listing(applet, port), expected(port) + "[Direct Register Access]\n");
}

/// The nodes below a group, all levels.
void collectValues(const RegisterInfo& group, std::vector<const RegisterInfo*>& nodes) {
  for (std::uint32_t i = 0; i < group.value.group.childCount; ++i) {
    const RegisterInfo* child = group.value.group.children[i];
    if (child->kind == REGISTER_INFO_GROUP)
      collectValues(*child, nodes);
    else
      nodes.push_back(child);
  }
}

TEST(Catalogue, IdsOfDirectAccessReachWhatTheyDescribe) {
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  const ExternalDesign design(fixture::kEveryKindOfRecord);
  Applet applet(kNoDefaults);
  ASSERT_TRUE(applet.opened());
  for (unsigned port = 0; port < kPorts; ++port) {
    std::vector<const RegisterInfo*> nodes;
    const RegisterInfo* newest = Fg_getParameterInfo(applet.fg(), static_cast<int>(port));
    collectValues(*newest, nodes);
    collectValues(*newest->next, nodes);
    EXPECT_EQ(nodes.size(), 12U);
    for (const RegisterInfo* node : nodes) {
      const std::string_view name = node->paramName;
      SCOPED_TRACE(name);
      fixture::takeAccesses();
      std::uint64_t value = 0;
      Fg_getParameterWithType(applet.fg(), node->id, &value, port, FG_PARAM_TYPE_UINT64);
      const auto accesses = fixture::takeAccesses();
      ASSERT_EQ(accesses.size(), 1U);
      const std::string access = name.starts_with("DRA_")
                                     ? fmt::format("read {} ", name.substr(4))
                                     : fmt::format("get {}[{}] ", name.substr(5), port);
      EXPECT_EQ(accesses[0].substr(0, access.size()), access);
    }
  }
}

}  // namespace
