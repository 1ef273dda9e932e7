// Locks, the search for the dispatcher library, and logging without a dispatcher.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include "support/dispatcher_library.h"
#include "support/locks.h"
#include "support/logging.h"

namespace {

using namespace korv::templates::platform;
using namespace korv::templates::patterns;
using namespace korv::tools::logging;
using Access = ReadWriteLockGuard::Access;

void expectLogicError(const char* text, const std::function<void()>& misuse) {
  EXPECT_THAT(misuse, ::testing::ThrowsMessage<std::logic_error>(text));
}

/// Whether a thread that makes the guard `second` sleeps while this one holds the guard `first`.
bool excludes(const auto& first, const auto& second) {
  std::atomic<pid_t> id{0};
  std::atomic<bool> inside{false};
  const auto sleeps = [&] {
    std::ifstream state("/proc/self/task/" + std::to_string(id) + "/stat");
    const std::string text(std::istreambuf_iterator<char>(state), {});
    const std::size_t name = text.rfind(')');
    return name != std::string::npos && text[name + 2] == 'S';
  };
  std::thread other;
  bool excluded = false;
  {
    const auto guard = first();
    other = std::thread([&] {
      id = gettid();
      const auto held = second();
      inside = true;
    });
    while (!inside && !sleeps()) std::this_thread::yield();
    excluded = !inside;
  }
  other.join();
  return excluded;
}

TEST(SupportLocks, GuardsExcludeOtherThreads) {
  RecursiveMutex mutex;
  CriticalSection section;
  ReadWriteLock readWrite;
  const auto mutexGuard = [&] { return RecursiveMutexGuard(mutex); };
  const auto sectionGuard = [&] { return CriticalSectionGuard(section); };
  const auto reader = [&] { return ReadWriteLockGuard(readWrite, Access::kRead); };
  const auto writer = [&] { return ReadWriteLockGuard(readWrite, Access::kWrite); };
  EXPECT_TRUE(excludes(mutexGuard, mutexGuard));
  EXPECT_EQ((mutexGuard(), mutexGuard(), mutex.holds()), 2U);
  EXPECT_EQ(mutex.holds(), 0U);
  EXPECT_TRUE(excludes(sectionGuard, sectionGuard));
  EXPECT_TRUE(excludes(writer, reader) && excludes(reader, writer));
  const auto held = reader();
  std::thread([&] { const auto second = reader(); }).join();
}

TEST(SupportLocks, SpinFlagsExcludeOtherThreadsAndLetTheirOwnerInAgain) {
  std::atomic<uint32_t> flag{0};
  std::atomic<pthread_t> owner{0};
  int counter = 0;
  const auto incrementOften = [&](std::atomic<pthread_t>* known) {
    for (int i = 0; i < 1000; ++i) {
      const SpinLockVariableGuard guard(flag, known);
      if (known) const SpinLockVariableGuard again(flag, known);
      ++counter;
    }
  };
  for (auto* known : {&owner, static_cast<std::atomic<pthread_t>*>(nullptr)}) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(incrementOften, known);
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(counter, 8000);
  EXPECT_TRUE(flag == 0 && owner == pthread_t{0});
}

TEST(SupportLocks, GuardsReportMisuseAndKeepTheLock) {
  pthread_mutex_t foreign = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
  CriticalSection lock(foreign);
  auto* owned = new CriticalSection;
  constexpr const char* kMarked = "GenericLock object got lock but is already marked as locked";
  {
    const CriticalSectionGuard guard(lock);
    const GenericLockGuard owner{std::unique_ptr<GenericLock>(owned)};
    EXPECT_FALSE(lock.enter() || owned->enter());
    expectLogicError(kMarked, [&] { const CriticalSectionGuard again(lock); });
    expectLogicError(kMarked, [&] { GenericLockGuard{std::unique_ptr<GenericLock>(owned)}; });
    EXPECT_FALSE(lock.tryEnter()) << "given away by the refused guard";
  }
  EXPECT_TRUE(lock.tryEnter());
  EXPECT_EQ(pthread_mutex_trylock(&foreign), EBUSY);
  expectLogicError("GenericLock::leave() called with lock not held", [&] {
    const CriticalSectionGuard guard(lock);  // takes over what the thread has entered
    lock.setMarkedLocked(false);
  });
  expectLogicError("GenericLock object destroyed with lock still held",
                   [] { CriticalSection().setMarkedLocked(true); });
}

TEST(SupportDispatcherSearch, BaseDirectory) {
  const std::string deep(1024 - std::string("/lib/x.so").size(), 'd'), tooLong(1500, 'v');
  const struct {
    std::string path;
    std::optional<std::string> expected;
    const char* dir64 = nullptr;
    const char* dir32 = nullptr;
  } rows[] = {
      {"/opt/x/LIB64/libVelmora.so", "/opt/x", "/env64", "/env32"},
      {"/a/hardware applets/b//c.so", "/a"},
      {"/opt/lib32/x64/bin", std::nullopt},  // a file called bin
      {deep.substr(1) + "/lib/x.so", deep.substr(1), "/env64"},
      {deep + "/lib/x.so", "/env64", "/env64"},
      {"/opt/c.so", "/env64", "/env64///", "/env32"},
      {"/opt/c.so", "/env32", nullptr, "/env32/"},
      {"/opt/c.so", "", "", "/env32"},
      {"/opt/c.so", tooLong.substr(0, 1023), tooLong.c_str()},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.path);
    if (row.dir64 != nullptr) setenv("KORVDIR5_64", row.dir64, 1);
    if (row.dir32 != nullptr) setenv("KORVDIR5", row.dir32, 1);
    EXPECT_EQ(findBaseDirectory(row.path), row.expected);
    for (const char* name : {"KORVDIR5_64", "KORVDIR5"}) unsetenv(name);
  }
}

TEST(SupportLogging, LibraryThatIsNoDispatcherLogsNothing) {
  setenv("KORVDIR5_64", INSTALLATION_DIRECTORY, 1);  // when started by a path without directories
  Logger* logger = Logging::getLogger("korv.wrapper.Velmora");
  unsetenv("KORVDIR5_64");
  constexpr char kBeside[] = INSTALLATION_DIRECTORY "/lib64/libcommon-logging-dispatcher.so";
  EXPECT_NE(dlopen(kBeside, RTLD_NOW | RTLD_NOLOAD), nullptr) << "not even tried";
  EXPECT_EQ(Logging::getLogger("korv.wrapper.FgKtWrapper"), logger);
  EXPECT_TRUE(logger->isEnabled(7) && !logger->isEnabled(6));
  logMessage(*logger, 7, "to nobody");
  const LibraryRecord missing = openInstalledLibrary("/no/such", "thing");
  EXPECT_THAT(missing.error, ::testing::StartsWith("/no/such/lib64/libthing.so: "));
}

}  // namespace
