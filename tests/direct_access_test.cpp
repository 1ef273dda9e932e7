/// Ids that lead past the SDK parameters: to the design's registers and to its own parameters.
#include <gtest/gtest.h>

#include <climits>

#include "tests/dispatch_support.h"

namespace {

using namespace fixture;

using Word = Applet::Reading<std::uint32_t>;

/// The names that a new applet lists beyond its own parameters; every one leads to its id.
Lines listed() {
  Applet applet;
  Lines names;
  for (int i = 85; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const char* name = Fg_getParameterName(applet.fg(), i);
    names.push_back(name);
    const int id = Fg_getParameterIdByName(applet.fg(), name);
    EXPECT_EQ(Fg_getParameterId(applet.fg(), i), id) << name;
    EXPECT_EQ(id > 2000000, names.back().starts_with("DKTA_")) << name;
    EXPECT_TRUE(id > 2000000 || id == 1000000 + i - 84) << name;
  }
  return names;
}

TEST(DirectAccess, IsSwitchedOnByVariables) {
  const ExternalDesign design("register A 8 rw\nuint P rw shared 0 9 1");
  EXPECT_EQ(listed(), Lines{});
  for (const auto& [variable, name] :
       {std::pair("KORV_ENABLE_DRA", "DRA_A"), std::pair("KORV_ENABLE_DKTA", "DKTA_P")}) {
    for (const char* value : {"yes", "TRUE", "On", "1"}) {
      const EnvironmentVariable set(variable, value);
      EXPECT_EQ(listed(), Lines{name}) << value;
    }
    for (const char* value : {"", "0", "no", "yes ", "11"}) {
      const EnvironmentVariable set(variable, value);
      EXPECT_EQ(listed(), Lines{}) << value;
    }
  }
}

TEST(DirectAccess, ListsRegistersThenPlainParametersByName) {
  const ExternalDesign design(kEveryKindOfRecord);
  const EnvironmentVariable registers("KORV_ENABLE_DRA", "1"), parameters("KORV_ENABLE_DKTA", "1");
  Lines expected = {"DRA_Bit",
                    "DRA_Word",
                    "DRA_Status",
                    "DRA_Odd",
                    "DRA_Wide",
                    "DKTA_Device1_Process0_A_Deep_Deeper_Double",
                    "DKTA_Device1_Process0_A_Deep_Int64",
                    "DKTA_Device1_Process0_A_Deep_Uint64",
                    "DKTA_Device1_Process0_A_Int",
                    "DKTA_Device1_Process0_B_Uint",
                    "DKTA_Device1_Process1_B_String",
                    "DKTA_Device1_Process1_Enum"};
  EXPECT_EQ(listed(), expected);
  expected.erase(expected.begin() + 5, expected.begin() + 7);
  for (const int absent : {0, -5}) {  // The runtime's answer for the first two names.
    board::failNamed("Fg_getParameterIdByName", absent, 2);
    EXPECT_EQ(listed(), expected) << absent;
  }
}

TEST(DirectAccess, ReachesRegisters) {
  const ExternalDesign design(ownRecords() +
                              "register Narrow 32 rw\nregister Wide 33 rw\nregister Fixed 8 ro");
  const EnvironmentVariable on("KORV_ENABLE_DRA", "yes");
  Applet applet;
  board::setValue(applet.device(), "Fixed", 0, 17);
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "DRA_Narrow"), 1000033);
  constexpr std::uint64_t kWritten = 0x123456789;
  const struct {
    int id, setCode, getCode;
    std::uint64_t read;
  } rows[] = {{1000033, 0, 0, 0xFFFFFFFF23456789},
              {1000034, 0, 0, 0x0000000123456789},
              {1000035, kRegisterReadOnly, 0, 0xFFFFFFFF00000011},
              {1000036, kNoSuchRegister, kNoSuchRegister, ~std::uint64_t{0}},
              {2000000, kNoSuchRegister, kNoSuchRegister, ~std::uint64_t{0}}};
  takeAccesses();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.id);
    std::uint64_t read = ~std::uint64_t{0};
    EXPECT_EQ(Fg_setParameterWithType(applet.fg(), row.id, &kWritten, 99, 5), row.setCode);
    EXPECT_EQ(applet.lastError(), row.setCode);
    EXPECT_EQ(Fg_getParameterWithType(applet.fg(), row.id, &read, 99, 5), row.getCode);
    EXPECT_EQ(applet.lastError(), row.getCode);
    EXPECT_EQ(read, row.read);
    EXPECT_EQ(Fg_setParameterWithType(applet.fg(), row.id, nullptr, 0, 2), -2070);
  }
  EXPECT_EQ(
      takeAccesses(),
      (Lines{"write Narrow = 591751049", "read Narrow -> 591751049", "write Wide = 4886718345",
             "read Wide -> 4886718345", "write Fixed = 591751049 failed: -2091", "read Fixed -> 17",
             "write #36 = 591751049 failed: -2090", "read #36 failed: -2090",
             "write #1000000 = 591751049 failed: -2090", "read #1000000 failed: -2090"}));
  board::failNamed("Narrow", kInjected);
  EXPECT_EQ(applet.set(1000033, 5), kInjected);
  EXPECT_EQ(applet.word(1000033), (Word{kInjected, 0xDEADBEEF}));
}

TEST(DirectAccess, ReachesDesignParametersListedOrNot) {
  const ExternalDesign design(kEveryKindOfRecord);
  int id = 0;
  {
    const EnvironmentVariable on("KORV_ENABLE_DKTA", "1");
    id = Fg_getParameterIdByName(Applet().fg(), "DKTA_Device1_Process0_B_Uint");
  }
  Applet applet;
  EXPECT_EQ(Fg_getNrOfParameter(applet.fg()), 85);
  takeAccesses();
  const auto recorded = [&](int code) {
    EXPECT_EQ(applet.lastError(), code);
    return code;
  };
  EXPECT_EQ(recorded(applet.set(id, 77, 2)), VELMORA_OK);
  EXPECT_EQ(applet.word(id, 1), (Word{0, 77}));
  EXPECT_EQ(recorded(applet.set(id, 78, 4)), kNoSuchChannel);
  EXPECT_EQ(recorded(applet.set(id, 78.0)), kWrongType);
  EXPECT_EQ(recorded(applet.word(2000005, 3).code), kNoSuchParameter);
  EXPECT_EQ(recorded(applet.set(INT_MAX, 1)), kNoSuchParameter);
  EXPECT_EQ(takeAccesses(),
            (Lines{"set Device1_Process0_B_Uint[2] = 77", "get Device1_Process0_B_Uint[1] -> 77",
                   "set Device1_Process0_B_Uint[4] = 78 failed: -2081",
                   "set Device1_Process0_B_Uint[0] = ? failed: -2083", "get #5[3] failed: -2080",
                   "set #2145483647[0] = 1 failed: -2080"}));
}

}  // namespace
