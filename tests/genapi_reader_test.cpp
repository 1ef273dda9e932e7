// An independent GenICam reader takes the documents of the ports, those of direct access too.
#include <arv.h>

#include "tests/applet_test.h"

namespace {

using namespace fixture;

TEST(GenApiReader, FindsFeaturesWithAddressRangeAndAccess) {
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    const std::string text = document(applet, port);
    ArvGc* const reader = arv_gc_new(nullptr, text.data(), text.size());
    ASSERT_NE(reader, nullptr);
    const auto features = [&](const void* category) {
      ArvGcNode* node = arv_gc_get_node(reader, static_cast<const char*>(category));
      return arv_gc_category_get_features(ARV_GC_CATEGORY(node));
    };
    std::size_t found = 0;
    for (const GSList* category = features("Root"); category; category = category->next)
      for (const GSList* each = features(category->data); each; each = each->next, ++found) {
        const auto* name = static_cast<const char*>(each->data);
        const int id = Fg_getParameterIdByName(applet.fg(), name);
        ArvGcNode* node = arv_gc_get_node(reader, name);
        ASSERT_TRUE(ARV_IS_GC_FEATURE_NODE(node)) << name;
        EXPECT_EQ(arv_gc_feature_node_get_actual_access_mode(ARV_GC_FEATURE_NODE(node)),
                  applet.node(id, port)->accessMode & REGISTER_INFO_WRITABLE
                      ? ARV_GC_ACCESS_MODE_RW
                      : ARV_GC_ACCESS_MODE_RO)
            << name;
        if (ARV_IS_GC_STRING(node)) continue;
        ArvGcNode* reg = arv_gc_get_node(reader, fmt::format("{}_Reg", name).c_str());
        EXPECT_EQ(arv_gc_register_get_address(ARV_GC_REGISTER(reg), nullptr),
                  static_cast<guint64>(id));
      }
    // All that are described, of the design's own too; registers have no features.
    const auto described = std::ranges::count_if(applet.ids(), [&](int id) {
      return applet.node(id, port) && (id < 1000000 || id > 2000000);
    });
    EXPECT_EQ(found, static_cast<std::size_t>(described));
    ArvGcNode* width = arv_gc_get_node(reader, "FG_WIDTH");
    EXPECT_EQ(arv_gc_integer_get_max(ARV_GC_INTEGER(width), nullptr), 8192);
    g_object_unref(reader);
  }
}

}  // namespace
