#include <array>
#include <functional>
#include <type_traits>

#include "tests/applet_test.h"
#include "tests/fakes/recording_runtime.h"
#include "tests/loaded_runtime.h"

namespace {

using namespace fixture;
using Export = std::function<int64_t(Fg_Struct*)>;

/// A call of an export with these arguments after the frame grabber, its result as a number.
template <class Result, class... Arguments>
Export with(Result (*function)(Fg_Struct*, Arguments...),
            std::type_identity_t<Arguments>... arguments) {
  return [=](Fg_Struct* fg) {
    if constexpr (std::is_pointer_v<Result>)
      return static_cast<int64_t>(reinterpret_cast<uintptr_t>(function(fg, arguments...)));
    else
      return static_cast<int64_t>(function(fg, arguments...));
  };
}

/// A call that goes to the runtime, with the arguments that it has to see.
struct RuntimeCall {
  std::string name;
  Export make;
  std::string arguments;
  bool wide = false;
};

void* const kSome = reinterpret_cast<void*>(0x12);
const auto kShading = static_cast<ShadingMaster*>(kSome);
const uint32_t kWidth = 512;
uint32_t read;
size_t xmlSize;
constexpr int64_t kBeyond = -0x100000001;  // Of 32 bits.

const RuntimeCall kRuntimeCalls[] = {
    {"Fg_getAppletId", with(Fg_getAppletId, kSome), " 0x12"},
    {"Fg_AcquireEx", with(Fg_AcquireEx, 8, kBeyond, -3, kSome), " 8 -4294967297 -3 0x12"},
    {"Fg_stopAcquireEx", with(Fg_stopAcquireEx, 7, kBeyond, -4), " 7 -4294967297 -4"},
    {"Fg_getLastPicNumberEx", with(Fg_getLastPicNumberEx, 9, kBeyond), " 9 -4294967297", true},
    {"Fg_getLastPicNumberBlockingEx",
     with(Fg_getLastPicNumberBlockingEx, -kBeyond, ~0U, -5, kBeyond),
     " 4294967297 4294967295 -5 -4294967297", true},
    {"Fg_getStatusEx", with(Fg_getStatusEx, ~0U, kBeyond, -6, kSome),
     " 4294967295 -4294967297 -6 0x12", true}};

template <class... Calls>
std::vector<Export> exports(const Calls&... calls) {
  return {calls...};
}

const auto kShadingCalls =
    exports(with(Fg_FreeShading, kShading), with(Shad_SetSubValueLine, kShading, 1, 2, 3.F),
            with(Shad_SetMultValueLine, kShading, 1, 2, 3.F), with(Shad_GetMaxLine, kShading),
            with(Shad_SetFixedPatternNoiseLine, kShading, 1, 2, 3), with(Shad_GetAccess, kShading),
            with(Shad_FreeAccess, kShading), with(Shad_WriteActLine, kShading, 1));
const auto kOtherCalls = exports(
    with(Fg_setParameterWithType, FG_WIDTH, &kWidth, 0, 2),
    with(Fg_getParameterWithType, FG_WIDTH, nullptr, 0, 2), with(Fg_getNrOfParameter),
    with(Fg_freeParameterStringWithType, FG_HAP_FILE, nullptr, 0, 2), with(Fg_getParameterId, 0),
    with(Fg_freeParameterStringWithType, FG_HAP_FILE, nullptr, 0, 22), with(Fg_getLastErrorNumber),
    with(Fg_getParameterIdByName, "FG_WIDTH"), with(Fg_saveConfig, "/none/a.mcf"),
    with(Fg_loadConfig, "/none/a.mcf"), with(Fg_getParameterInfoXML, 0, nullptr, &xmlSize));
/// Without an instance they answer 0.
const auto kCallsWithoutCode =
    exports(with(Fg_getParameterName, 0), with(Fg_getParameterInfo, 0), with(Fg_AllocShading, 1, 2),
            with(Fg_getEventMask, "FG_START_OF_FRAME_CAM_PORT_A"), with(Fg_getEventName, 1));

/// All results, in the order of the tables.
std::vector<int64_t> callAll(Fg_Struct* fg) {
  std::vector<int64_t> results;
  for (const RuntimeCall& call : kRuntimeCalls) results.push_back(call.make(fg));
  for (const auto& calls : {kShadingCalls, kOtherCalls, kCallsWithoutCode})
    for (const Export& call : calls) results.push_back(call(fg));
  return results;
}

/// Leaves 0 as the last error.
void clearError(Applet& applet) {
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "FG_WIDTH"), FG_WIDTH);
  EXPECT_EQ(applet.lastError(), 0);
}

TEST(Forwarding, WithoutAnInstanceNothingIsCalled) {
  board::startJournal();
  Fg_Struct empty{nullptr};
  std::vector<int64_t> expected(6 + 8 + 11, -2001);
  expected.resize(expected.size() + 5, 0);
  for (Fg_Struct* fg : {static_cast<Fg_Struct*>(nullptr), &empty}) {
    EXPECT_EQ(callAll(fg), expected);
    EXPECT_EQ(Fg_FreeGrabber(fg), -2001);
  }
  EXPECT_TRUE(board::takeJournal().empty());
  board::stopJournal();
}

TEST(Forwarding, RuntimeSeesItsHandleAndTheArguments) {
  const Library runtime = loadRuntime("recording");
  auto& recording = *static_cast<RecordingRuntime*>(dlsym(runtime.get(), "recordingRuntime"));
  Applet applet(kNoDefaults);
  ASSERT_TRUE(applet.opened());
  recording.lastError = -77;
  for (const RuntimeCall& call : kRuntimeCalls)
    for (const int64_t result : {0L, -1L, 0x7FFFFFFFL, 0x80000000L, -0x100000000L}) {
      if (!call.wide && result != static_cast<int32_t>(result)) continue;
      SCOPED_TRACE(call.name + " " + std::to_string(result));
      recording.result = result;
      EXPECT_EQ(call.make(applet.fg()), result);
      EXPECT_EQ(recording.call, call.name + call.arguments);
      EXPECT_EQ(applet.lastError(), result < 0 ? -77 : 0);
    }
  recording.result = -5;
  EXPECT_EQ(applet.close(), -5);
  EXPECT_EQ(recording.call, "Fg_FreeGrabber");
  EXPECT_FALSE(applet.opened());
}

TEST(Forwarding, DesignParametersWhoseIdIsNoIntAreLeftOut) {
  const EnvironmentVariable on("KORV_ENABLE_DKTA", "1");
  const Library runtime = loadRuntime("recording");
  auto& recording = *static_cast<RecordingRuntime*>(dlsym(runtime.get(), "recordingRuntime"));
  for (const bool fits : {true, false}) {
    recording.id = INT_MAX - 2000000 + (fits ? 0 : 1);
    Applet applet(kNoDefaults);
    EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "DKTA_Far"), fits ? INT_MAX : -2070);
    EXPECT_EQ(applet.node(INT_MAX) != nullptr, fits);
    if (!fits) continue;
    // Its group is described by all that the runtime tells of it.
    const RegisterInfo& newest = *Fg_getParameterInfo(applet.fg(), 0);
    EXPECT_STREQ(newest.value.group.children[0]->paramName, "Far");
  }
}

/// Where a function is missing, what needs it says so, and everything else goes on.
TEST(Forwarding, MissingFunctionsAreNotAvailable) {
  struct Row {
    std::string lacking;
    Export call;
    int64_t result;
    int lastError;
  };
  const auto get = with(Fg_getParameterWithType, FG_FILLLEVEL, &read, 0, 2);
  const auto set = with(Fg_setParameterWithType, FG_WIDTH, &kWidth, 0, 2);
  const auto release = with(Fg_freeParameterStringWithType, 2'000'001, nullptr, 0, 22);
  const auto releaseOwn = with(Fg_freeParameterStringWithType, FG_NR_OF_PROCESSES, nullptr, 0, 22);
  std::vector<Row> rows = {
      {"Fg_getLastErrorNumber", with(Fg_AcquireEx, 4, 1, 0, nullptr), -2081, -12},
      {"Fg_setParameterWithType", set, -12, -12},
      {"Fg_setParameterWithType", get, 0, 0},
      {"Fg_getParameterWithType", get, -12, -12},
      {"Fg_getParameterWithType", set, 0, 0},
      {"Fg_getParameterIdByName", set, -2080, -2080},  // The runtime's code for an unknown id.
      {"Fg_freeParameterStringWithType", release, -12, -12},
      {"Fg_freeParameterStringWithType", releaseOwn, -12, 0},
      {"Fg_getParameterInfo", with(Fg_getParameterInfoXML, 0, nullptr, &xmlSize), 0, 0}};
  for (const RuntimeCall& call : kRuntimeCalls) rows.push_back({call.name, call.make, -12, -12});
  for (const char* lacking : {"Fg_InitHandle", "Fg_InitHandleSlaveAware", "Fg_setParameter",
                              "Fg_getParameter", "uncalled_ones", "Fg_FreeGrabber"})
    rows.push_back({lacking, set, 0, 0});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.lacking + " " + std::to_string(&row - rows.data()));
    Library runtime = loadRuntime("without/" + row.lacking);
    Applet applet;
    ASSERT_TRUE(applet.opened());
    clearError(applet);
    EXPECT_EQ(row.call(applet.fg()), row.result);
    EXPECT_EQ(applet.lastError(), row.lastError);
    for (const int id : applet.ids()) {
      std::array<char, 1024> value{};
      EXPECT_LE(Fg_getParameterWithType(applet.fg(), id, &value, 3, 2), 0);
      EXPECT_LE(Fg_setParameterWithType(applet.fg(), id, &value, 3, 2), 0);
    }
    callAll(applet.fg());
    EXPECT_EQ(applet.close(), 0);
    runtime.reset();
    EXPECT_TRUE(allReleased(row.lacking == "Fg_FreeGrabber"));
  }
}

TEST(Forwarding, ShadingIsNotSupported) {
  Applet applet(kNoDefaults);
  for (const Export& call : kShadingCalls) {
    clearError(applet);
    EXPECT_EQ(call(applet.fg()), -2130) << &call - kShadingCalls.data();
    EXPECT_EQ(applet.lastError(), -2130);
  }
  EXPECT_EQ(Fg_AllocShading(applet.fg(), 1, 2), nullptr);
  EXPECT_EQ(applet.lastError(), -1);
}

}  // namespace
