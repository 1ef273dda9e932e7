// An independent GenICam reader takes the documents of the ports and drives the applet by them.
#include <arv.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
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

/// What the reader takes for the device's memory: addresses are parameter ids, and the length of an
/// access, which is that of a register, tells the type.
struct PortDevice {
  ArvDevice device;
  Applet* applet;
  unsigned port;
};

int typeOf(guint32 length) { return length == 8 ? FG_PARAM_TYPE_DOUBLE : FG_PARAM_TYPE_INT32; }

gboolean finish(int code, GError** error) {
  if (code != 0)
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_TRANSFER_ERROR, "applet: %d", code);
  return code == 0;
}

gboolean readMemory(ArvDevice* memory, guint64 address, guint32 length, void* buffer,
                    GError** error) {
  const auto* device = reinterpret_cast<PortDevice*>(memory);
  Fg_Struct* fg = device->applet->fg();
  const int id = static_cast<int>(address);
  if (length <= 8)
    return finish(Fg_getParameterWithType(fg, id, buffer, device->port, typeOf(length)), error);
  char* text = nullptr;
  const int code = Fg_getParameterWithType(fg, id, &text, device->port, FG_PARAM_TYPE_STRING);
  if (code != 0) return finish(code, error);
  std::strncpy(static_cast<char*>(buffer), text, length);
  return finish(Fg_freeParameterStringWithType(fg, id, text, device->port, FG_PARAM_TYPE_STRING),
                error);
}

gboolean writeMemory(ArvDevice* memory, guint64 address, guint32 length, void* buffer,
                     GError** error) {
  const auto* device = reinterpret_cast<PortDevice*>(memory);
  return finish(Fg_setParameterWithType(device->applet->fg(), static_cast<int>(address), buffer,
                                        device->port, typeOf(length)),
                error);
}

GType portDeviceType() {
  static const GType type = g_type_register_static_simple(
      ARV_TYPE_DEVICE, "PortDevice", sizeof(ArvDeviceClass),
      [](gpointer klass, gpointer) {
        ARV_DEVICE_CLASS(klass)->read_memory = readMemory;
        ARV_DEVICE_CLASS(klass)->write_memory = writeMemory;
      },
      sizeof(PortDevice), nullptr, G_TYPE_FLAG_NONE);
  return type;
}

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};

/// Takes an error of the reader, which fails the test.
class NoError {
 public:
  NoError() = default;
  NoError(const NoError&) = delete;
  NoError& operator=(const NoError&) = delete;
  ~NoError() {
    EXPECT_EQ(error_, nullptr) << error_->message;
    g_clear_error(&error_);
  }
  operator GError**() { return &error_; }

 private:
  GError* error_ = nullptr;
};

/// The reader on a port's document.
class Reader {
 public:
  Reader(Applet& applet, unsigned port)
      : device_(static_cast<ArvDevice*>(g_object_new(portDeviceType(), nullptr))) {
    auto* memory = reinterpret_cast<PortDevice*>(device_.get());
    memory->applet = &applet;
    memory->port = port;
    const std::string text = fixture::document(applet, port);
    genicam_.reset(arv_gc_new(device_.get(), text.data(), text.size()));
  }

  ArvGc* genicam() { return genicam_.get(); }
  ArvGcNode* node(const std::string& name) { return arv_gc_get_node(genicam(), name.c_str()); }
  ArvGcInteger* integer(const char* name) { return ARV_GC_INTEGER(node(name)); }

  /// The features that can be reached from the root category, with the category of each.
  std::map<std::string, std::string> features() {
    std::map<std::string, std::string> found;
    for (const auto* category = featuresOf("Root"); category; category = category->next) {
      const auto* name = static_cast<const char*>(category->data);
      for (const auto* feature = featuresOf(name); feature; feature = feature->next)
        EXPECT_TRUE(found.emplace(static_cast<const char*>(feature->data), name).second);
    }
    return found;
  }

 private:
  const GSList* featuresOf(const char* category) {
    return arv_gc_category_get_features(ARV_GC_CATEGORY(node(category)));
  }

  std::unique_ptr<ArvDevice, Unref> device_;
  std::unique_ptr<ArvGc, Unref> genicam_;
};

/// Documents show floats with six digits.
double shown(double number) { return std::stod(fmt::format("{:.6g}", number)); }

void expectIntegers(ArvGcNode* node, const auto& range) {
  ArvGcInteger* integer = ARV_GC_INTEGER(node);
  EXPECT_EQ(arv_gc_integer_get_min(integer, NoError()), gint64{range.min});
  EXPECT_EQ(arv_gc_integer_get_max(integer, NoError()), gint64{range.max});
  EXPECT_EQ(arv_gc_integer_get_inc(integer, NoError()), std::max<gint64>(range.inc, 1));
}

void expectEntries(ArvGcNode* node, const RegisterInfo& info) {
  std::map<std::string, gint64> entries, described;
  const auto& enumeration = info.value.enumeration;
  for (std::uint32_t i = 0; i < enumeration.entryCount; ++i)
    described[enumeration.identifiers[i]] = enumeration.values[i];
  const GSList* entry = arv_gc_enumeration_get_entries(ARV_GC_ENUMERATION(node));
  for (; entry; entry = entry->next)
    entries[arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(entry->data))] =
        arv_gc_enum_entry_get_value(ARV_GC_ENUM_ENTRY(entry->data), NoError());
  EXPECT_EQ(entries, described);
}

void expectValues(ArvGcNode* node, const RegisterInfo& info) {
  switch (info.kind) {
    case REGISTER_INFO_UINT:
      return expectIntegers(node, info.value.uint32);
    case REGISTER_INFO_INT:
      return expectIntegers(node, info.value.int32);
    case REGISTER_INFO_ENUM:
      return expectEntries(node, info);
    case REGISTER_INFO_STRING:
      EXPECT_TRUE(ARV_IS_GC_STRING(node));
      return;
    default:
      EXPECT_EQ(arv_gc_float_get_min(ARV_GC_FLOAT(node), NoError()), shown(info.value.real.min));
      EXPECT_EQ(arv_gc_float_get_max(ARV_GC_FLOAT(node), NoError()), shown(info.value.real.max));
  }
}

/// Lengths of registers; kinds that are not listed have no feature.
const std::map<std::uint32_t, guint64> kLengths = {{REGISTER_INFO_UINT, 4},
                                                   {REGISTER_INFO_INT, 4},
                                                   {REGISTER_INFO_ENUM, 4},
                                                   {REGISTER_INFO_DOUBLE, 8},
                                                   {REGISTER_INFO_STRING, 4096}};

void expectFeature(Reader& reader, const RegisterInfo& info) {
  const std::string name = info.paramName;
  SCOPED_TRACE(name);
  ArvGcNode* node = reader.node(name);
  ASSERT_NE(node, nullptr);
  auto* feature = ARV_GC_FEATURE_NODE(node);
  EXPECT_STREQ(arv_gc_feature_node_get_description(feature), info.name);
  const bool writable = (info.accessMode & REGISTER_INFO_WRITABLE) != 0;
  EXPECT_EQ(arv_gc_feature_node_get_actual_access_mode(feature),
            writable ? ARV_GC_ACCESS_MODE_RW : ARV_GC_ACCESS_MODE_RO);

  ArvGcNode* reg = info.kind == REGISTER_INFO_STRING ? node : reader.node(name + "_Reg");
  ASSERT_TRUE(ARV_IS_GC_REGISTER(reg));
  EXPECT_EQ(arv_gc_register_get_address(ARV_GC_REGISTER(reg), NoError()),
            static_cast<guint64>(info.id));
  EXPECT_EQ(arv_gc_register_get_length(ARV_GC_REGISTER(reg), NoError()), kLengths.at(info.kind));
  expectValues(node, info);
}

/// Expects all features of a group's parameters; adds their categories.
void expectFeatures(Reader& reader, const RegisterInfo& group,
                    std::map<std::string, std::string>& categories) {
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
    Reader reader(applet, port);
    ASSERT_NE(reader.genicam(), nullptr);
    std::map<std::string, std::string> categories;
    const RegisterInfo* root = Fg_getParameterInfo(applet.fg(), static_cast<int>(port));
    for (; root; root = root->next)
      if (root->name != std::string("Direct Register Access"))
        expectFeatures(reader, *root, categories);
    EXPECT_EQ(categories.size(), features);
    EXPECT_EQ(reader.features(), categories);
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

TEST(GenApiReader, ReadsAndWritesParametersByTheirFeatures) {
  Applet applet;
  ASSERT_TRUE(applet.opened());
  Reader reader(applet, 1);
  arv_gc_integer_set_value(reader.integer("FG_WIDTH"), 1000, NoError());
  EXPECT_EQ(applet.word(FG_WIDTH, 1).value, 1000U);
  EXPECT_EQ(applet.word(FG_WIDTH, 0).value, 1024U);
  EXPECT_EQ(arv_gc_integer_get_value(reader.integer("FG_WIDTH"), NoError()), 1000);

  auto* frequency = ARV_GC_FLOAT(reader.node("FG_GEN_FREQ"));
  arv_gc_float_set_value(frequency, 62.5, NoError());
  EXPECT_EQ(applet.real(FG_GEN_FREQ, 1).value, 62.5);
  EXPECT_EQ(arv_gc_float_get_value(frequency, NoError()), 62.5);

  auto* mode = ARV_GC_ENUMERATION(reader.node("FG_AREATRIGGERMODE"));
  EXPECT_TRUE(arv_gc_enumeration_set_string_value(mode, "ATM_SYNCHRONIZED", NoError()));
  EXPECT_EQ(applet.word(FG_AREATRIGGERMODE, 1).value, std::uint32_t{ATM_SYNCHRONIZED});
  EXPECT_STREQ(arv_gc_enumeration_get_string_value(mode, NoError()), "ATM_SYNCHRONIZED");

  auto* file = ARV_GC_STRING(reader.node("FG_HAP_FILE"));
  EXPECT_STREQ(arv_gc_string_get_value(file, NoError()), "Velmora.hap");
  EXPECT_EQ(board::outstanding().strings, 0);

  // What a value moved is in the next document, not in the one at hand.
  EXPECT_EQ(arv_gc_integer_get_max(reader.integer("FG_XOFFSET"), NoError()), 7160);
  EXPECT_EQ(arv_gc_integer_get_max(Reader(applet, 1).integer("FG_XOFFSET"), NoError()), 7184);
}

}  // namespace
