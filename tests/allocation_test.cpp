/// Accepted sets and gets take no memory, whatever the parameter.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/applet_fixture.h"

namespace {

std::atomic<int> allocations{0};

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

TEST(Allocation, AcceptedSetsAndGetsAllocateNothing) {
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

}  // namespace
