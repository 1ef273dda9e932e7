// Designs: what the manifest of the applet offers, images and files that are no designs, and
// external manifests.
#include <fstream>
#include <iterator>
#include <limits>
#include <set>
#include <vector>

#include "board_session.h"
#include "temporary_directory.h"

namespace {

constexpr int kBoardType = 3652;

std::vector<const RegisterInfo*> valueNodes(const RegisterInfo* group) {
  std::vector<const RegisterInfo*> nodes;
  for (uint32_t i = 0; i < group->value.group.childCount; ++i) {
    const auto* child = group->value.group.children[i];
    if (child->kind != REGISTER_INFO_GROUP) {
      nodes.push_back(child);
    } else {
      const auto below = valueNodes(child);
      nodes.insert(nodes.end(), below.begin(), below.end());
    }
  }
  return nodes;
}

std::vector<const RegisterInfo*> allNodes(Fg_Struct* fg) {
  std::vector<const RegisterInfo*> nodes;
  for (const auto* root = Fg_getParameterInfo(fg, 0); root != nullptr; root = root->next) {
    const auto below = valueNodes(root);
    nodes.insert(nodes.end(), below.begin(), below.end());
  }
  return nodes;
}

std::string manifestText() {
  std::ifstream in(DESIGN_MANIFEST);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A design of the given manifest text, through a file; null when it is refused.
fpga_design* loadText(const std::string& text, int boardType = kBoardType) {
  static const TemporaryDirectory directory;
  const std::string file = directory / "Velmora.hap";
  std::ofstream(file) << text;
  return HapLoadHapFileWithType(file.c_str(), boardType, 1);
}

/// Whether a design is loaded; gives it back.
bool accepted(fpga_design* design) {
  HapUnloadHapFile(design);
  return design != nullptr;
}

std::string manifest(const std::string& records) {
  return "velmora-design 1\nboard 3652\n" + records + "\nend\n";
}

TEST(BoardDesign, OffersWhatTheAppletDrives) {
  const BoardSession session;
  const auto nodes = allNodes(session.fg);
  EXPECT_EQ(nodes.size(), 258U);
  std::set<int> ids;
  for (const auto* node : nodes) {
    ids.insert(node->id);
    EXPECT_EQ(node->id, session.id(node->paramName)) << node->paramName;
  }
  EXPECT_EQ(ids.size(), nodes.size());

  EXPECT_EQ(HapGetNrOfRegister(session.design), 32);
  for (int index = 1; index <= 32; ++index) {
    const char* name = HapGetRegisterName(session.design, index);
    ASSERT_NE(name, nullptr);
    const int id = HapGetRegisterByName(session.design, name);
    EXPECT_GT(id, 0) << name;
    EXPECT_EQ(ids.count(id), 0U) << name;
    EXPECT_EQ(HapGetRegisterDirection(session.design, id), 1) << name;
  }
  int events = 0;
  while (const auto* event = HapGetEvent(session.design, events)) {
    EXPECT_EQ(event->kind, 1) << event->name;
    ++events;
  }
  EXPECT_EQ(events, 44);
}

TEST(BoardDesign, HasNoOtherNames) {
  const BoardSession session;
  for (const char* name :
       {"Device1_Process4_Trigger_TriggerCam0_Synchronize_SlaveMode_Select",
        "Device1_Process4_Buffer_XLength", "Device1_Process0_Buffer_XLengt", "CamGenEnable0", ""}) {
    EXPECT_LT(session.id(name), 1) << name;
  }
  for (const char* name : {"CamGenEnable4", "CamGenGap0", "Device1_Process0_Buffer_XLength"}) {
    EXPECT_EQ(HapGetRegisterByName(session.design, name), 0) << name;
  }
  EXPECT_EQ(HapGetRegisterName(session.design, 0), nullptr);
  EXPECT_EQ(HapGetRegisterName(session.design, 33), nullptr);
  EXPECT_EQ(Fg_getParameterInfo(session.fg, 1), nullptr);
}

TEST(BoardDesign, RefusesDamagedImages) {
  const std::string intact(reinterpret_cast<const char*>(velmora_design_image),
                           velmora::kDesignImageSize);
  const auto load = [](const std::string& image) {
    return accepted(HapLoadDesignFromBuffer(image.data(), static_cast<unsigned>(image.size()), 1));
  };
  EXPECT_TRUE(load(intact));
  const std::size_t size = intact.size();
  const std::size_t text = manifestText().size();
  for (const std::size_t position :
       {std::size_t{0}, text / 2, text - 1, text, size / 2, size - 17, size - 16, size - 13,
        size - 12, size - 9, size - 8, size - 5, size - 4, size - 1}) {
    auto damaged = intact;
    damaged[position] = static_cast<char>(damaged[position] ^ 0x10);
    EXPECT_FALSE(load(damaged)) << "byte " << position;
  }
  for (const std::size_t length : {std::size_t{0}, std::size_t{15}, text, size - 1}) {
    EXPECT_FALSE(load(intact.substr(0, length))) << "length " << length;
  }
  EXPECT_FALSE(load(intact + '\0'));
  EXPECT_EQ(HapLoadDesignFromBuffer(nullptr, velmora::kDesignImageSize, 1), nullptr);
  EXPECT_TRUE(nothingOutstanding());
}

TEST(BoardDesign, JudgesManifestFiles) {
  EXPECT_TRUE(accepted(loadText(manifestText())));
  EXPECT_FALSE(accepted(loadText(manifestText(), kBoardType + 1)));
  EXPECT_EQ(HapLoadHapFileWithType("/nonexistent/Velmora.hap", kBoardType, 1), nullptr);
  EXPECT_EQ(HapLoadHapFileWithType("/tmp", kBoardType, 1), nullptr);
  EXPECT_EQ(HapLoadHapFileWithType(nullptr, kBoardType, 1), nullptr);

  const struct {
    const char* records;
    bool good;
  } cases[] = {
      {"", true},
      {"# comment\n\n  register  A 33\trw", true},
      {"register A{0-3}_{5-6} 8 ro", true},
      {"enum A rw shared X=-1 Y=2 unit=V initial=2", true},
      {"double A rw channel -1.5 1e300 0 initial=-0.25 unit=V", true},
      {"int_field A ro shared 4 -7 100", true},
      {"register A 33", false},
      {"register A 65 rw", false},
      {"register A 0 rw", false},
      {"register A 33 wr", false},
      {"register A 8 rw\nregister A 8 rw", false},
      {"register A{3-0} 8 rw", false},
      {"register A{0-3 8 rw", false},
      {"register A{} 8 rw", false},
      {"register A{0-9999}{0-9999} 8 rw", false},
      {"register A-B 8 rw", false},
      {"event E x", false},
      {"event E{0-1} 1\nevent E1 1", false},
      {"board 3653", false},
      {"uint A rw shared 0 1", false},
      {"uint A rw shared 0 1 1 1", false},
      {"uint A rw shared 0 4294967296 1", false},
      {"uint A rw both 0 1 1", false},
      {"uint A", false},
      {"int A rw shared 0 1 1 initial=x", false},
      {"enum A rw shared X", false},
      {"enum A rw shared =1", false},
      {"string A rw shared", false},
      {"string A rw shared text initial=1", false},
      {"float A rw shared 0 1 1", false},
      {"end", false},
  };
  for (const auto& [records, good] : cases) {
    EXPECT_EQ(accepted(loadText(manifest(records))), good) << records;
  }
  for (const char* text : {"", "end\n", "velmora-design 1\nend\n", "velmora-design 1\nboard 3652\n",
                           "velmora-design 2\nboard 3652\nend\n"}) {
    EXPECT_FALSE(accepted(loadText(text))) << text;
  }
  EXPECT_TRUE(nothingOutstanding());
}

// Whatever is cut off or overwritten, loading ends with a design or without one.
TEST(BoardDesign, SurvivesMutatedManifests) {
  const std::string text = manifestText();
  const auto end = text.rfind("end");
  for (std::size_t length = 0; length < end; length += 499) {
    EXPECT_FALSE(accepted(loadText(text.substr(0, length)))) << length;
  }
  const std::string junk = "{}-=#\n\t 9z\xff";
  std::size_t refused = 0;
  for (std::size_t i = 0; i < text.size(); i += 149) {
    auto mutated = text;
    mutated[i] = junk[i / 149 % junk.size()];
    refused += accepted(loadText(mutated)) ? 0 : 1;
  }
  EXPECT_GT(refused, 20U);
  EXPECT_TRUE(nothingOutstanding());
}

TEST(BoardDesign, ExternalDesignMayDiffer) {
  BoardSession session(loadText(
      manifest("register Wide 33 rw\nregister Status 8 ro\nevent First 0\nevent E{1-69} 1")));
  ASSERT_NE(session.fg, nullptr);
  const auto max = std::numeric_limits<uint64_t>::max();
  uint64_t value = 0;
  const int wide = HapGetRegisterByName(session.design, "Wide");
  EXPECT_EQ(HapGetRegisterBitRange(session.design, wide), 33);
  EXPECT_EQ(KorvRegisterWrite(session.device, wide, max), 0);
  EXPECT_EQ(KorvRegisterRead(session.device, wide, &value), 0);
  EXPECT_EQ(value, max);
  const int status = HapGetRegisterByName(session.design, "Status");
  EXPECT_EQ(HapGetRegisterDirection(session.design, status), 0);
  EXPECT_EQ(KorvRegisterWrite(session.device, status, 1), -2091);

  EXPECT_EQ(HapGetEvent(session.design, 0)->kind, 0);
  EXPECT_STREQ(HapGetEvent(session.design, 69)->name, "E69");
  EXPECT_EQ(HapGetEvent(session.design, 69)->id, 69U);
  EXPECT_EQ(HapGetEvent(session.design, 70), nullptr);
  EXPECT_EQ(HapGetEvent(session.design, -1), nullptr);
  EXPECT_EQ(Fg_getParameterInfo(session.fg, 0), nullptr);
}

constexpr const char* kEveryKind = R"(
uint Device1_Process0_A_Uint rw shared 1 4000000000 5 unit=px
int Device1_Process0_A_Int ro shared -5 5 1
uint64 Device1_Process0_B_Uint64 rw shared 0 18446744073709551615 1
int64 Device1_Process0_B_Int64 rw shared -9223372036854775808 5 1 initial=-3
double Device1_Process0_B_C_Double rw shared -0.5 0.5 0.25
enum Device1_Process0_Enum rw shared On=1 Off=0
string Device1_Process1_String rw shared start
uint_field Field_A rw shared 3 4 5
int_field Field_B rw shared 3 -4 5
double_field FieldC rw shared 3 0.5 5
)";

TEST(BoardDesign, DescribesEveryKind) {
  const BoardSession session(loadText(manifest(kEveryKind)));
  ASSERT_NE(session.fg, nullptr);
  std::vector<std::string> roots;
  for (const auto* root = Fg_getParameterInfo(session.fg, 0); root; root = root->next) {
    roots.emplace_back(root->name);
  }
  EXPECT_EQ(roots,
            (std::vector<std::string>{"Design", "Field", "Device1_Process1", "Device1_Process0"}));

  const auto node = [&](const std::string& name) -> const RegisterInfo& {
    for (const auto* found : allNodes(session.fg)) {
      if (name == found->paramName) return *found;
    }
    throw std::out_of_range(name);
  };
  const auto& uintNode = node("Device1_Process0_A_Uint");
  EXPECT_EQ(uintNode.kind, unsigned{REGISTER_INFO_UINT});
  EXPECT_STREQ(uintNode.name, "Uint");
  EXPECT_STREQ(uintNode.unit, "px");
  EXPECT_EQ(uintNode.accessMode, 7U);
  EXPECT_EQ(uintNode.value.uint32.max, 4000000000U);
  EXPECT_EQ(uintNode.value.uint32.inc, 5U);
  const auto& intNode = node("Device1_Process0_A_Int");
  EXPECT_EQ(intNode.kind, unsigned{REGISTER_INFO_INT});
  EXPECT_EQ(intNode.accessMode, 1U);
  EXPECT_EQ(intNode.value.int32.min, -5);
  EXPECT_EQ(node("Device1_Process0_B_Uint64").value.uint64.max,
            std::numeric_limits<uint64_t>::max());
  EXPECT_EQ(node("Device1_Process0_B_Int64").value.int64.min, std::numeric_limits<int64_t>::min());
  EXPECT_EQ(node("Device1_Process0_B_C_Double").value.real.inc, 0.25);
  const auto& enumNode = node("Device1_Process0_Enum");
  ASSERT_EQ(enumNode.value.enumeration.entryCount, 2U);
  EXPECT_STREQ(enumNode.value.enumeration.names[0], "On");
  EXPECT_EQ(enumNode.value.enumeration.values[0], 1);
  EXPECT_STREQ(node("Device1_Process1_String").value.string.value, "start");
  EXPECT_EQ(node("Field_A").value.uintField.count, 3U);
  EXPECT_EQ(node("Field_B").value.intField.value, -4);
  EXPECT_EQ(node("FieldC").value.realField.initial, 0.5);
}

TEST(BoardDesign, KeepsEveryKindInItsWidth) {
  const BoardSession session(loadText(manifest(kEveryKind)));
  ASSERT_NE(session.fg, nullptr);
  const struct {
    const char* name;
    int type;
    uint64_t pattern;  // What the caller's eight bytes hold.
    int setResult;
    int getType;
    uint64_t readBack;
    int getResult;
  } cases[] = {
      {"Device1_Process0_A_Uint", 2, 4250000000, 0, 2, 4250000000, 0},
      {"Device1_Process0_A_Uint", 1, 4250000000, 0, 3, 4250000000, 0},
      {"Device1_Process0_A_Uint", 4, 1ULL << 32, -2085, 2, 4250000000, 0},
      {"Device1_Process0_A_Uint", 5, 7, -2083, 5, 0, -2083},
      {"Device1_Process0_A_Int", 2, 1, -2084, 2, 0, 0},
      {"Device1_Process0_Enum", 2, 0xffffffff, 0, 3, ~0ULL, 0},
      {"Device1_Process0_B_Int64", 3, ~0ULL, 0, 2, 0xffffffff, 0},
      {"Device1_Process0_B_Int64", 2, 0xfffffffe, 0, 3, ~1ULL, 0},
      {"Device1_Process0_B_Uint64", 4, 1ULL << 40, 0, 4, 1ULL << 40, 0},
      {"Device1_Process0_B_Uint64", 1, 9, 0, 4, 9, 0},
      {"Device1_Process0_B_Uint64", 4, 1ULL << 40, 0, 2, 0, -2085},
      {"Device1_Process0_B_C_Double", 5, 0x3fd0000000000000, 0, 5, 0x3fd0000000000000, 0},
      {"Device1_Process0_B_C_Double", 2, 1, -2083, 2, 0, -2083},
      {"Field_A", 2, 1, -2083, 2, 0, -2083},
      {"Device1_Process1_String", 2, 1, -2083, 2, 0, -2083},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(testing::Message() << row.name << " as " << row.type);
    const int id = session.id(row.name);
    EXPECT_EQ(Fg_setParameterWithType(session.fg, id, &row.pattern, 0, row.type), row.setResult);
    uint64_t value = 0;
    EXPECT_EQ(Fg_getParameterWithType(session.fg, id, &value, 0, row.getType), row.getResult);
    EXPECT_EQ(value, row.readBack);
  }
}

TEST(BoardDesign, StringsAreCountedUntilReleased) {
  const BoardSession session(loadText(manifest(kEveryKind)));
  ASSERT_NE(session.fg, nullptr);
  const int id = session.id("Device1_Process1_String");
  EXPECT_EQ(Fg_setParameterWithType(session.fg, id, "new text", 0, 22), 0);
  char* first = nullptr;
  char* number = nullptr;
  EXPECT_EQ(Fg_getParameter(session.fg, id, &first, 3), 0);
  EXPECT_STREQ(first, "new text");
  const int wideId = session.id("Device1_Process0_B_Int64");
  EXPECT_EQ(Fg_getParameterWithType(session.fg, wideId, &number, 0, 22), 0);
  EXPECT_STREQ(number, "-3");
  EXPECT_EQ(board::outstanding().strings, 2);
  EXPECT_EQ(Fg_freeParameterStringWithType(session.fg, id, first, 0, 2), -2083);
  for (char* text : {first, number}) {
    EXPECT_EQ(Fg_freeParameterStringWithType(session.fg, id, text, 0, 22), 0);
  }
  EXPECT_EQ(Fg_freeParameterStringWithType(session.fg, id, nullptr, 0, 22), -2082);
  char own[] = "new text";
  EXPECT_EQ(Fg_freeParameterStringWithType(session.fg, id, own, 0, 22), -2086);
  EXPECT_EQ(board::outstanding().strings, 0);
}

}  // namespace
