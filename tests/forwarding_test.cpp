#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <type_traits>

#include "tests/applet_fixture.h"
#include "tests/fakes/recording_runtime.h"
#include "tests/loaded_runtime.h"

namespace {

using fixture::Applet;
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

struct Call {
  std::string name;
  Export make;
  int64_t withoutInstance = -2001;
};

/// A call that goes to the runtime, with the arguments that it has to see.
struct RuntimeCall : Call {
  std::string arguments;
  bool wide;
};

void* const kSome = reinterpret_cast<void*>(0x12);
const auto kShading = static_cast<ShadingMaster*>(kSome);
const uint32_t kWidth = 512;
size_t xmlSize;

const RuntimeCall kRuntimeCalls[] = {
    {{"Fg_getAppletId", with(Fg_getAppletId, kSome)}, " 0x12", false},
    {{"Fg_AcquireEx", with(Fg_AcquireEx, UINT32_MAX, INT64_MIN, -3, kSome)},
     " 4294967295 -9223372036854775808 -3 0x12",
     false},
    {{"Fg_stopAcquireEx", with(Fg_stopAcquireEx, 7, INT64_MIN, -4)},
     " 7 -9223372036854775808 -4",
     false},
    {{"Fg_getLastPicNumberEx", with(Fg_getLastPicNumberEx, UINT32_MAX, INT64_MIN)},
     " 4294967295 -9223372036854775808",
     true},
    {{"Fg_getLastPicNumberBlockingEx",
      with(Fg_getLastPicNumberBlockingEx, INT64_MAX, UINT32_MAX, -5, INT64_MIN)},
     " 9223372036854775807 4294967295 -5 -9223372036854775808",
     true},
    {{"Fg_getStatusEx", with(Fg_getStatusEx, UINT32_MAX, INT64_MIN, -6, kSome)},
     " 4294967295 -9223372036854775808 -6 0x12",
     true}};

const Call kShadingCalls[] = {
    {"Fg_FreeShading", with(Fg_FreeShading, kShading)},
    {"Shad_SetSubValueLine", with(Shad_SetSubValueLine, kShading, 1, 2, 3.F)},
    {"Shad_SetMultValueLine", with(Shad_SetMultValueLine, kShading, 1, 2, 3.F)},
    {"Shad_SetFixedPatternNoiseLine", with(Shad_SetFixedPatternNoiseLine, kShading, 1, 2, 3)},
    {"Shad_GetMaxLine", with(Shad_GetMaxLine, kShading)},
    {"Shad_GetAccess", with(Shad_GetAccess, kShading)},
    {"Shad_FreeAccess", with(Shad_FreeAccess, kShading)},
    {"Shad_WriteActLine", with(Shad_WriteActLine, kShading, 1)}};

const Call kOtherCalls[] = {
    {"Fg_setParameterWithType", with(Fg_setParameterWithType, FG_WIDTH, &kWidth, 0, 2)},
    {"Fg_getParameterWithType", with(Fg_getParameterWithType, FG_WIDTH, nullptr, 0, 2)},
    {"free, no string", with(Fg_freeParameterStringWithType, FG_HAP_FILE, nullptr, 0, 2)},
    {"free, string", with(Fg_freeParameterStringWithType, FG_HAP_FILE, nullptr, 0, 22)},
    {"Fg_getNrOfParameter", with(Fg_getNrOfParameter)},
    {"Fg_getParameterName", with(Fg_getParameterName, 0), 0},
    {"Fg_getParameterId", with(Fg_getParameterId, 0)},
    {"Fg_getParameterIdByName", with(Fg_getParameterIdByName, "FG_WIDTH")},
    {"Fg_saveConfig", with(Fg_saveConfig, "/none/a.mcf")},
    {"Fg_loadConfig", with(Fg_loadConfig, "/none/a.mcf")},
    {"Fg_getParameterInfoXML", with(Fg_getParameterInfoXML, 0, nullptr, &xmlSize)},
    {"Fg_getParameterInfo", with(Fg_getParameterInfo, 0), 0},
    {"Fg_getEventMask", with(Fg_getEventMask, "FG_START_OF_FRAME_CAM_PORT_A"), 0},
    {"Fg_getEventName", with(Fg_getEventName, 1), 0},
    {"Fg_getLastErrorNumber", with(Fg_getLastErrorNumber)},
    {"Fg_AllocShading", with(Fg_AllocShading, 1, 2), 0}};

template <class Visit>
void forEachCall(Visit visit) {
  for (const Call& call : kRuntimeCalls) visit(call);
  for (const Call& call : kShadingCalls) visit(call);
  for (const Call& call : kOtherCalls) visit(call);
}

/// Leaves 0 as the last error.
void clearError(Applet& applet) {
  EXPECT_EQ(Fg_getParameterIdByName(applet.fg(), "FG_WIDTH"), FG_WIDTH);
  EXPECT_EQ(applet.lastError(), 0);
}

TEST(Forwarding, WithoutAnInstanceNothingIsCalled) {
  board::startJournal();
  Fg_Struct empty{nullptr};
  for (Fg_Struct* fg : {static_cast<Fg_Struct*>(nullptr), &empty}) {
    forEachCall(
        [&](const Call& call) { EXPECT_EQ(call.make(fg), call.withoutInstance) << call.name; });
    EXPECT_EQ(Fg_FreeGrabber(fg), -2001);
  }
  EXPECT_TRUE(board::takeJournal().empty());
  board::stopJournal();
}

TEST(Forwarding, RuntimeSeesItsHandleAndTheArguments) {
  const LoadedRuntime runtime("recording");
  auto& recording = *static_cast<RecordingRuntime*>(runtime.symbol("recordingRuntime"));
  Applet applet(fixture::kNoDefaults);
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

TEST(Forwarding, MissingFunctionsAreNotAvailable) {
  struct Row {
    std::string lacking;
    Export call;
    int64_t result;
    int lastError;
  };
  const auto get = [](int id) {
    static uint32_t value;
    return with(Fg_getParameterWithType, id, &value, 0, 2);
  };
  const auto set = with(Fg_setParameterWithType, FG_WIDTH, &kWidth, 0, 2);
  const auto release = [](int id) {
    return with(Fg_freeParameterStringWithType, id, nullptr, 0, 22);
  };
  std::vector<Row> rows = {
      {"Fg_getLastErrorNumber", with(Fg_AcquireEx, 4, 1, 0, nullptr), -2081, -12},
      {"Fg_setParameterWithType", set, -12, -12},
      {"Fg_setParameterWithType", get(FG_FILLLEVEL), 0, 0},
      {"Fg_getParameterWithType", get(FG_FILLLEVEL), -12, -12},
      {"Fg_getParameterWithType", set, 0, 0},
      {"Fg_getParameterIdByName", set, -2080, -2080},  // The runtime's code for an unknown id.
      {"Fg_freeParameterStringWithType", release(2'000'001), -12, -12},
      {"Fg_freeParameterStringWithType", release(FG_NR_OF_PROCESSES), -12, 0},
      {"Fg_getParameterInfo", with(Fg_getParameterInfo, 0), 0, 0},
      {"Fg_getParameterInfo", with(Fg_getParameterInfoXML, 0, nullptr, &xmlSize), 0, 0}};
  for (const Call& call : kRuntimeCalls) rows.push_back({call.name, call.make, -12, -12});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.lacking + " " + std::to_string(&row - rows.data()));
    const LoadedRuntime runtime("without/" + row.lacking);
    Applet applet;
    ASSERT_TRUE(applet.opened());
    clearError(applet);
    EXPECT_EQ(row.call(applet.fg()), row.result);
    EXPECT_EQ(applet.lastError(), row.lastError);
  }
}

/// Every export and every parameter answers, whatever the runtime lacks.
TEST(Forwarding, LivesWithEveryRuntimeThatOpens) {
  int opened = 0;
  int lost = 0;
  for (const auto& directory : std::filesystem::directory_iterator(RUNTIMES "/without")) {
    const std::string lacking = directory.path().filename();
    if (lacking == "any_init") continue;
    SCOPED_TRACE(lacking);
    {
      const LoadedRuntime runtime("without/" + lacking);
      Applet applet;
      ASSERT_TRUE(applet.opened());
      EXPECT_EQ(applet.error(), 0);
      ++opened;
      for (int index = 0; index < 85; ++index)
        for (unsigned port = 0; port < fixture::kPorts; ++port) {
          std::array<char, 1024> value{};
          const int id = Fg_getParameterId(applet.fg(), index);
          EXPECT_LE(Fg_getParameterWithType(applet.fg(), id, &value, port, 2), 0);
          EXPECT_LE(Fg_setParameterWithType(applet.fg(), id, &value, port, 2), 0);
        }
      forEachCall([&](const Call& call) { call.make(applet.fg()); });
      EXPECT_EQ(applet.close(), 0);
      if (lacking == "Fg_FreeGrabber") ++lost;
    }
    EXPECT_TRUE(allReleased(lost));
  }
  EXPECT_EQ(opened, 18);
}

TEST(Forwarding, ShadingIsNotSupported) {
  Applet applet(fixture::kNoDefaults);
  for (const Call& call : kShadingCalls) {
    clearError(applet);
    EXPECT_EQ(call.make(applet.fg()), -2130) << call.name;
    EXPECT_EQ(applet.lastError(), -2130) << call.name;
  }
  EXPECT_EQ(Fg_AllocShading(applet.fg(), 1, 2), nullptr);
  EXPECT_EQ(Fg_getNrOfParameter(applet.fg()), 85);  // Records nothing.
  EXPECT_EQ(applet.lastError(), -1);
}

}  // namespace
