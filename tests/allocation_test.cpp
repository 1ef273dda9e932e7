/// Accepted sets and gets take no memory, whatever the parameter, and refused ones need none.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "tests/applet_fixture.h"
#include "tests/fakes/allocation_hook.h"

namespace {

using fakes::AllocationHook;

TEST(Allocation, AcceptedSetsAndGetsAllocateNothing) {
  int allocations = 0;
  AllocationHook count([&] {
    ++allocations;
    count.again();
  });
  fixture::Applet applet;
  board::stopJournal();
  ASSERT_GT(allocations, 0) << "the count does not see the libraries";
  for (const int id : applet.ids()) {
    if (id == FG_HAP_FILE) continue;  // Its string is the caller's.
    const bool writable =
        applet.writable(id) && id != FG_SENDSOFTWARETRIGGER;  // Refused in the generator mode.
    SCOPED_TRACE(id);
    double buffer = 0;
    const int before = allocations;
    const int got = Fg_getParameterWithType(applet.fg(), id, &buffer, 0, FG_PARAM_TYPE_INT32);
    const int set =
        writable ? Fg_setParameterWithType(applet.fg(), id, &buffer, 0, FG_PARAM_TYPE_INT32) : 0;
    EXPECT_EQ(allocations, before);
    EXPECT_EQ(got, 0);
    EXPECT_EQ(set, 0);
  }
}

TEST(Allocation, RefusalsNeedNone) {
  setenv("KORV_LOG_LEVEL", "4", 1);  // They are logged.
  fixture::Applet applet;
  const auto set = [&](int id, unsigned port) {
    int value = 0;
    return Fg_setParameterWithType(applet.fg(), id, &value, port, FG_PARAM_TYPE_INT32);
  };
  {
    AllocationHook noMemory([&] {
      noMemory.again();
      throw std::bad_alloc();
    });
    EXPECT_EQ(set(FG_WIDTH, 4), VELMORA_INVALID_ARGUMENT);
    EXPECT_EQ(set(1, 0), VELMORA_INVALID_ARGUMENT);
    EXPECT_EQ(set(FG_DMASTATUS, 0), VELMORA_NOT_AVAILABLE);
  }
  testing::internal::CaptureStderr();
  EXPECT_EQ(set(FG_DMASTATUS, 0), VELMORA_NOT_AVAILABLE);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("read-only"), std::string::npos);
}

}  // namespace
