// Designs: images and files that are none, external manifests, devices that change theirs.
#include <set>
#include <utility>

#include "board_session.h"
#include "temporary_directory.h"
#include "velmora/register_info.h"

namespace {

/// A design of the given manifest text, through a file; null when it is refused.
fpga_design* loadText(const std::string& text) {
  static const TemporaryDirectory directory;
  const std::string file = directory / "Velmora.hap";
  std::ofstream(file) << text;
  return HapLoadHapFileWithType(file.c_str(), 3652, 1);
}

fpga_design* loadRecords(const std::string& records) {
  return loadText("velmora-design 1\nboard 3652\n" + records + "\nend\n");
}

/// Whether a design is loaded; gives it back.
bool accepted(fpga_design* design) {
  HapUnloadHapFile(design);
  return design != nullptr;
}

bool acceptedImage(const std::string& image) {
  return accepted(HapLoadDesignFromBuffer(image.data(), static_cast<unsigned>(image.size()), 1));
}

TEST(BoardDesign, RefusesDamagedImages) {
  const std::string intact(reinterpret_cast<const char*>(velmora_design_image),
                           velmora::kDesignImageSize);
  const std::size_t size = 2662941;
  EXPECT_EQ(intact.size(), size);
  EXPECT_TRUE(acceptedImage(intact));
  EXPECT_FALSE(acceptedImage(intact + '\0'));
  const std::size_t text = contentOf(DESIGN_MANIFEST).size();
  for (const auto position : {std::size_t{0}, text - 1, text, size / 2, size - 16, size - 12,
                              size - 8, size - 4, size - 1}) {
    auto damaged = intact;
    damaged[position] = static_cast<char>(damaged[position] ^ 0x10);
    EXPECT_FALSE(acceptedImage(damaged)) << "byte " << position;
    EXPECT_FALSE(acceptedImage(intact.substr(0, position))) << "length " << position;
  }
}

TEST(BoardDesign, ExternalDesignMayDiffer) {
  const BoardSession session(loadRecords(
      "register Wide 33 rw\nregister CamGenStatus 8 ro\nevent First 0\nevent E{1-69} 1\n"
      "string Text rw shared start\nuint_field U rw shared 3 4 5\n"
      "int_field I rw shared 3 -4 5\ndouble_field D rw shared 3 0.5 5"));
  uint64_t value = 0;
  const int wide = HapGetRegisterByName(session.design, "Wide");
  EXPECT_EQ(HapGetRegisterBitRange(session.design, wide), 33);
  EXPECT_EQ(KorvRegisterWrite(session.device, wide, ~0ULL), 0);
  EXPECT_EQ(KorvRegisterRead(session.device, wide, &value), 0);
  EXPECT_EQ(value, ~0ULL);
  EXPECT_EQ(session.set("CamGenStatus", 1), -2091);
  EXPECT_EQ(HapGetEvent(session.design, 0)->kind, 0);
  EXPECT_STREQ(HapGetEvent(session.design, 69)->name, "E69");
  EXPECT_EQ(HapGetEvent(session.design, 70), nullptr);
  std::set<uint32_t> kinds;
  const auto& described = Fg_getParameterInfo(session.fg, 0)->value.group;
  for (uint32_t i = 0; i < described.childCount; ++i) kinds.insert(described.children[i]->kind);
  EXPECT_EQ(kinds, (std::set<uint32_t>{REGISTER_INFO_STRING, 7, 8, 13}));

  double number = 0;
  for (const char* manifold : {"Text", "U"}) {
    EXPECT_EQ(VirtualBoard_setValue(session.device, manifold, 0, 1), -2083);
    EXPECT_EQ(VirtualBoard_getValue(session.device, manifold, 0, &number), -2083);
  }

  const int id = session.id("Text");
  char* text = nullptr;
  char foreign[] = "new text";
  board::startJournal();
  board::failNamed("Text", -77, 2);
  for (const int code : {-77, -77, 0})
    EXPECT_EQ(Fg_setParameterWithType(session.fg, id, "text", 0, 22), code);
  EXPECT_EQ(Fg_setParameter(session.fg, id, foreign, 0), 0);  // In the parameter's own type.
  EXPECT_EQ(Fg_getParameter(session.fg, id, &text, 0), 0);
  EXPECT_EQ(Fg_getParameterWithType(session.fg, id, &text, 0, 2), -2083);
  board::failNamed("Fg_InitHandle", -82, 1);
  EXPECT_EQ(Fg_InitHandle("Own.hap", session.device, session.design), nullptr);
  EXPECT_EQ(Fg_getLastErrorNumber(nullptr), -82);
  EXPECT_EQ(session.id("Nothing"), -2080);
  std::string lines;
  for (const auto& access : board::takeJournal()) lines += board::describe(access) + "\n";
  EXPECT_EQ(lines,
            "set Text[0] = text failed: -77\nset Text[0] = text failed: -77\n"
            "set Text[0] = text\nset Text[0] = new text\nget Text[0] -> new text\n"
            "get Text[0] failed: -2083\ncall Fg_InitHandle(Own.hap) -> null\n"
            "call Fg_getLastErrorNumber() -> -82\n"
            "call Fg_getParameterIdByName(Nothing) failed: -2080\n");
  board::stopJournal();
  EXPECT_STREQ(text, foreign);
  for (const auto& [own, left] : {std::pair<char*, int>(foreign, 1), {text, 0}}) {
    EXPECT_EQ(board::outstanding().strings, 1);
    EXPECT_EQ(Fg_freeParameterStringWithType(session.fg, id, own, 0, 22), left * -2086);
    EXPECT_EQ(board::outstanding().strings, left);
  }
}

TEST(BoardDesign, AnotherDesignTakesADeviceOverWhenItIsFree) {
  auto* device = VirtualBoard_createDevice();
  fpga_design* const designs[] = {loadRecords("register A 8 rw"), loadRecords("register A 16 rw")};
  auto* fg = Fg_InitHandle("", device, designs[0]);
  board::setValue(device, "A", 0, 5);
  EXPECT_EQ(Fg_InitHandle("", device, designs[1]), nullptr);
  EXPECT_EQ(Fg_getLastErrorNumber(nullptr), -2052);
  for (const int next : {0, 1}) {
    EXPECT_EQ(Fg_FreeGrabber(fg), 0);
    fg = Fg_InitHandle("", device, designs[next]);
    EXPECT_EQ(board::value(device, "A", 0), next == 0 ? 5 : 0);
    EXPECT_EQ(board::outstanding().handles, 1);
  }
  EXPECT_EQ(Fg_FreeGrabber(fg), 0);
  for (auto* design : designs) HapUnloadHapFile(design);
  EXPECT_EQ(board::outstanding().handles + board::outstanding().designs, 0);
  VirtualBoard_destroyDevice(device);
}

}  // namespace
