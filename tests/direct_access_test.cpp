/// Ids that lead past the SDK parameters: to the design's registers and to its own parameters.
#include <dlfcn.h>

#include <climits>

#include "external/dervin.h"
#include "tests/applet_test.h"

/// Where the register "Far" lies, whatever the design says; 0 leaves it there.
static int farRegister = 0;

extern "C" [[gnu::visibility("default")]] int HapGetRegisterByName(fpga_design* design,
                                                                   const char* name) {
  static auto* const real =
      reinterpret_cast<decltype(&HapGetRegisterByName)>(dlsym(RTLD_NEXT, "HapGetRegisterByName"));
  return farRegister != 0 && std::string(name) == "Far" ? farRegister : real(design, name);
}

namespace {

using namespace fixture;

/// The names that a new applet lists beyond its own parameters; every one leads to its id.
std::string listed() {
  Applet applet;
  std::string names;
  const int own = static_cast<int>(parameters().size());
  for (int i = own; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const std::string name = Fg_getParameterName(applet.fg(), i);
    const int id = Fg_getParameterIdByName(applet.fg(), name.c_str());
    EXPECT_EQ(Fg_getParameterId(applet.fg(), i), id) << name;
    EXPECT_TRUE(name.starts_with("DKTA_") ? id > 2000000 : id == 1000001 + i - own) << name;
    names += name + " ";
  }
  return names;
}

TEST(DirectAccess, IsSwitchedOnByVariables) {
  const ExternalDesign design("register A 8 rw\nuint P rw shared 0 9 1");
  EXPECT_EQ(listed(), "");
  const EnvironmentVariable off("KORV_ENABLE_DRA", "11"), on("KORV_ENABLE_DKTA", "TRUE");
  EXPECT_EQ(listed(), "DKTA_P ");
  // Described, but not there, unless the id is positive.
  for (const int id : {kNoSuchParameter, 0, 1}) {
    board::failNamed("Fg_getParameterIdByName", id);
    EXPECT_EQ(listed(), id == 1 ? "DKTA_P " : "");
  }
}

TEST(DirectAccess, ListsRegistersThenPlainParametersByName) {
  const ExternalDesign design(everyKindOfRecord());
  const EnvironmentVariable registers("KORV_ENABLE_DRA", "1"), parameters("KORV_ENABLE_DKTA", "1");
  EXPECT_EQ(listed(),
            "DRA_Bit DRA_Word DRA_Status DRA_Odd DRA_Wide "
            "DKTA_Device1_Process0_A_Deep_Deeper_Double DKTA_Device1_Process0_A_Deep_Int64 "
            "DKTA_Device1_Process0_A_Deep_Uint64 DKTA_Device1_Process0_A_Int "
            "DKTA_Device1_Process0_B_Uint DKTA_Device1_Process1_B_String "
            "DKTA_Device1_Process1_Enum ");
}

TEST(DirectAccess, LeavesOutWhatHasNoId) {
  const ExternalDesign design("register Far 8 rw\nregister Near 8 rw");
  const EnvironmentVariable on("KORV_ENABLE_DRA", "1");
  const auto own = static_cast<int>(parameters().size());
  for (const bool fits : {true, false}) {
    farRegister = INT_MAX - 1000000 + (fits ? 0 : 1);
    Applet applet;
    EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "DRA_Far"), fits ? INT_MAX : -2070);
    EXPECT_EQ(Fg_getNrOfParameter(applet.fg()), own + (fits ? 2 : 1));
    EXPECT_EQ(applet.node(INT_MAX) != nullptr, fits);
    EXPECT_NE(applet.node(1000002), nullptr);
  }
  farRegister = 0;
}

TEST(DirectAccess, ReachesRegisters) {
  const ExternalDesign design(ownRecords() +
                              "register Narrow 32 rw\nregister Wide 33 rw\nregister Fixed 8 ro");
  const EnvironmentVariable on("KORV_ENABLE_DRA", "yes");
  Applet applet;
  board::setValue(applet.device(), "Fixed", 0, 17);
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "DRA_Narrow"), 1000033);
  constexpr std::uint64_t kWritten = 0x123456789;
  takeAccesses();
  Lines results;
  for (const int id : {1000033, 1000034, 1000035, 1000036, 2000000}) {
    std::uint64_t read = ~std::uint64_t{0};
    const int set = Fg_setParameterWithType(applet.fg(), id, &kWritten, 99, 5);
    const int got = Fg_getParameterWithType(applet.fg(), id, &read, 99, 5);
    EXPECT_EQ(applet.lastError(), got);
    results.push_back(fmt::format("{} {} {:X}", set, got, read));
    EXPECT_EQ(Fg_setParameterWithType(applet.fg(), id, nullptr, 0, 2), -2070);
  }
  EXPECT_EQ(results, (Lines{"0 0 FFFFFFFF23456789", "0 0 123456789", "-2091 0 FFFFFFFF00000011",
                            "-2090 -2090 FFFFFFFFFFFFFFFF", "-2090 -2090 FFFFFFFFFFFFFFFF"}));
  EXPECT_EQ(
      takeAccesses(),
      (Lines{"write Narrow = 591751049", "read Narrow -> 591751049", "write Wide = 4886718345",
             "read Wide -> 4886718345", "write Fixed = 591751049 failed: -2091", "read Fixed -> 17",
             "write #36 = 591751049 failed: -2090", "read #36 failed: -2090",
             "write #1000000 = 591751049 failed: -2090", "read #1000000 failed: -2090"}));
}

TEST(DirectAccess, ReachesDesignParametersListedOrNot) {
  const ExternalDesign design(everyKindOfRecord());
  int id = 0;
  {
    const EnvironmentVariable on("KORV_ENABLE_DKTA", "1");
    id = Fg_getParameterIdByName(Applet().fg(), "DKTA_Device1_Process0_B_Uint");
  }
  Applet applet;
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "DKTA_Device1_Process0_B_Uint"), -2070);
  takeAccesses();
  EXPECT_EQ(applet.set(id, 77, 2), VELMORA_OK);
  EXPECT_EQ(applet.word(id, 1), (Applet::Word{0, 77}));
  EXPECT_EQ(applet.set(id, 78, 4), kNoSuchChannel);
  EXPECT_EQ(applet.set(id, 78.0), kWrongType);
  EXPECT_EQ(applet.word(2000005, 3).code, kNoSuchParameter);
  EXPECT_EQ(takeAccesses(),
            (Lines{"set Device1_Process0_B_Uint[2] = 77", "get Device1_Process0_B_Uint[1] -> 77",
                   "set Device1_Process0_B_Uint[4] = 78 failed: -2081",
                   "set Device1_Process0_B_Uint[0] = ? failed: -2083", "get #5[3] failed: -2080"}));
}

}  // namespace
