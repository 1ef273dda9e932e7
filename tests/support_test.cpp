// Locks, the search for the dispatcher library, and logging without a dispatcher.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <functional>
#include <thread>

#include "support/dispatcher_library.h"
#include "support/locks.h"
#include "support/logging.h"
#include "tests/other_thread.h"

namespace {

using namespace korv::templates::platform;
using namespace korv::templates::patterns;
using namespace korv::tools::logging;
using Access = ReadWriteLockGuard::Access;

void expectLogicError(const char* text, const std::function<void()>& misuse) {
  EXPECT_THAT(misuse, ::testing::ThrowsMessage<std::logic_error>(text));
}

/// Whether a thread that makes the guard `second` is held up while this one holds the guard
/// `first`.
bool excludes(const auto& first, const auto& second) {
  std::optional<OtherThread> other;
  const auto guard = first();
  return other.emplace([&] { const auto held = second(); }).isHeldUp();
}

TEST(SupportLocks, GuardsExcludeOtherThreadsAndLetTheirOwnInAgain) {
  RecursiveMutex mutex;
  CriticalSection section;
  ReadWriteLock readWrite;
  std::atomic<std::uint32_t> flag{0}, ownedFlag{0};
  std::atomic<pthread_t> owner{0};
  const auto mutexGuard = [&] { return RecursiveMutexGuard(mutex); };
  const auto sectionGuard = [&] { return CriticalSectionGuard(section); };
  const auto reader = [&] { return ReadWriteLockGuard(readWrite, Access::kRead); };
  const auto writer = [&] { return ReadWriteLockGuard(readWrite, Access::kWrite); };
  const auto spinGuard = [&] { return SpinLockVariableGuard(flag); };
  const auto ownedGuard = [&] { return SpinLockVariableGuard(ownedFlag, &owner); };
  EXPECT_TRUE(excludes(mutexGuard, mutexGuard));
  EXPECT_TRUE(excludes(sectionGuard, sectionGuard));
  EXPECT_TRUE(excludes(writer, reader) && excludes(reader, writer));
  EXPECT_TRUE(excludes(spinGuard, spinGuard) && excludes(ownedGuard, ownedGuard));
  const auto held = reader();
  std::thread([&] { const auto second = reader(); }).join();
  EXPECT_EQ((mutexGuard(), mutexGuard(), mutex.holds()), 2U);
  EXPECT_FALSE((ownedGuard(), ownedGuard().held()));
  EXPECT_TRUE((ownedGuard(), ownedGuard(), ownedFlag == 1));
  EXPECT_TRUE(mutex.holds() == 0 && ownedFlag == 0 && owner == pthread_t{0});
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
  setenv("LOCPATH", VELMORA_LOCALES, 1);
  ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr);  // where i is no small I
  const std::string deep(1024 - std::string("/lib/x.so").size(), 'd'), tooLong(1500, 'v');
  const struct {
    std::string path;
    std::optional<std::string> expected;
    const char* dir64 = nullptr;
    const char* dir32 = nullptr;
  } rows[] = {
      {"/opt/x/LIB64/libVelmora.so", "/opt/x", "/env64", "/env32"},
      {"/a/hardware applets/b//c.so", "/a"},
      {"/opt/bin/velmora", "/opt"},
      {"DLL/c.so", "."},
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
    if (row.dir64) setenv("KORVDIR5_64", row.dir64, 1);
    if (row.dir32) setenv("KORVDIR5", row.dir32, 1);
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
