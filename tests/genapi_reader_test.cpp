// An independent GenICam reader takes the documents of the ports.
#include <arv.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "tests/applet_fixture.h"
#include "tests/external_design.h"
#include "tests/genapi_document.h"
#include "velmora/register_info.h"

namespace {

using fixture::Applet;
using fixture::EnvironmentVariable;
using fixture::ExternalDesign;
using fixture::kPorts;

struct Unref {
  void operator()(ArvGc* genicam) const { g_object_unref(genicam); }
};
using Reader = std::unique_ptr<ArvGc, Unref>;

/// Feature to category, for all features.
using Features = std::map<std::string, std::string>;

/// What the reader answers to a question about a node; an error of the reader fails the test.
auto ask(auto* question, auto* node) {
  GError* error = nullptr;
  const auto answer = question(node, &error);
  EXPECT_EQ(error, nullptr) << error->message;
  return answer;
}

ArvGcNode* find(const Reader& reader, const std::string& name) {
  return arv_gc_get_node(reader.get(), name.c_str());
}

const GSList* featuresOf(const Reader& reader, const char* category) {
  return arv_gc_category_get_features(ARV_GC_CATEGORY(find(reader, category)));
}

/// What can be reached from the root category.
Features featuresOf(const Reader& reader) {
  Features found;
  for (const GSList* category = featuresOf(reader, "Root"); category; category = category->next) {
    const auto* name = static_cast<const char*>(category->data);
    for (const GSList* feature = featuresOf(reader, name); feature; feature = feature->next)
      EXPECT_TRUE(found.emplace(static_cast<const char*>(feature->data), name).second);
  }
  return found;
}

/// Documents show floats with six digits.
double shown(double number) { return std::stod(fmt::format("{:.6g}", number)); }

void expectIntegers(ArvGcNode* node, const auto& range) {
  ArvGcInteger* integer = ARV_GC_INTEGER(node);
  EXPECT_EQ(ask(arv_gc_integer_get_min, integer), gint64{range.min});
  EXPECT_EQ(ask(arv_gc_integer_get_max, integer), gint64{range.max});
  EXPECT_EQ(ask(arv_gc_integer_get_inc, integer), std::max<gint64>(range.inc, 1));
}

void expectEntries(ArvGcNode* node, const RegisterInfo& info) {
  std::map<std::string, gint64> entries, described;
  const auto& enumeration = info.value.enumeration;
  for (std::uint32_t i = 0; i < enumeration.entryCount; ++i)
    described[enumeration.identifiers[i]] = enumeration.values[i];
  const GSList* entry = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(node));
  for (; entry; entry = entry->next)
    entries[arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(entry->data))] =
        ask(arv_gc_enum_entry_get_value, ARV_GC_ENUM_ENTRY(entry->data));
  EXPECT_EQ(entries, described);
}

void expectValues(ArvGcNode* node, const RegisterInfo& info) {
  if (info.kind == REGISTER_INFO_UINT) return expectIntegers(node, info.value.uint32);
  if (info.kind == REGISTER_INFO_INT) return expectIntegers(node, info.value.int32);
  if (info.kind == REGISTER_INFO_ENUM) return expectEntries(node, info);
  EXPECT_EQ(info.kind == REGISTER_INFO_STRING, ARV_IS_GC_STRING(node) != 0);
  if (info.kind == REGISTER_INFO_STRING) return;
  EXPECT_EQ(ask(arv_gc_float_get_min, ARV_GC_FLOAT(node)), shown(info.value.real.min));
  EXPECT_EQ(ask(arv_gc_float_get_max, ARV_GC_FLOAT(node)), shown(info.value.real.max));
}

/// Lengths of registers; kinds that are not listed have no feature.
const std::map<std::uint32_t, guint64> kLengths = {{REGISTER_INFO_UINT, 4},
                                                   {REGISTER_INFO_INT, 4},
                                                   {REGISTER_INFO_ENUM, 4},
                                                   {REGISTER_INFO_DOUBLE, 8},
                                                   {REGISTER_INFO_STRING, 4096}};

void expectFeature(const Reader& reader, const RegisterInfo& info) {
  const std::string name = info.paramName;
  SCOPED_TRACE(name);
  ArvGcNode* node = find(reader, name);
  ASSERT_NE(node, nullptr);
  auto* feature = ARV_GC_FEATURE_NODE(node);
  EXPECT_STREQ(arv_gc_feature_node_get_description(feature), info.name);
  const bool writable = (info.accessMode & REGISTER_INFO_WRITABLE) != 0;
  EXPECT_EQ(arv_gc_feature_node_get_actual_access_mode(feature),
            writable ? ARV_GC_ACCESS_MODE_RW : ARV_GC_ACCESS_MODE_RO);

  ArvGcNode* reg = info.kind == REGISTER_INFO_STRING ? node : find(reader, name + "_Reg");
  ASSERT_TRUE(ARV_IS_GC_REGISTER(reg));
  EXPECT_EQ(ask(arv_gc_register_get_address, ARV_GC_REGISTER(reg)), static_cast<guint64>(info.id));
  EXPECT_EQ(ask(arv_gc_register_get_length, ARV_GC_REGISTER(reg)), kLengths.at(info.kind));
  expectValues(node, info);
}

/// Expects all features of a group's parameters; adds their categories.
void expectFeatures(const Reader& reader, const RegisterInfo& group, Features& categories) {
  std::string category = group.name;
  std::erase(category, ' ');
  for (std::uint32_t i = 0; i < group.value.group.childCount; ++i) {
    const RegisterInfo& child = *group.value.group.children[i];
    if (child.kind == REGISTER_INFO_GROUP) {
      expectFeatures(reader, child, categories);
    } else if (kLengths.contains(child.kind)) {
      expectFeature(reader, child);
      categories[child.paramName] = category;
    }
  }
}

/// Registers are left out, and what else a design offers is described like the applet's own.
void expectDocuments(Applet& applet, std::size_t features) {
  for (unsigned port = 0; port < kPorts; ++port) {
    SCOPED_TRACE(port);
    const std::string text = fixture::document(applet, port);
    const Reader reader(arv_gc_new(nullptr, text.data(), text.size()));
    ASSERT_NE(reader, nullptr);
    Features categories;
    const RegisterInfo* root = Fg_getParameterInfo(applet.fg(), static_cast<int>(port));
    for (; root; root = root->next)
      if (root->name != std::string("Direct Register Access"))
        expectFeatures(reader, *root, categories);
    EXPECT_EQ(categories.size(), features);
    EXPECT_EQ(featuresOf(reader), categories);
  }
}

TEST(GenApiReader, FindsEveryFeatureWithItsAddressRangeAndAccess) {
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  Applet applet;
  expectDocuments(applet, 78 + 258);
  const ExternalDesign design(fixture::kEveryKindOfRecord);
  Applet other;
  expectDocuments(other, 78 + 5);  // 64-bit numbers have no feature.
}

}  // namespace
