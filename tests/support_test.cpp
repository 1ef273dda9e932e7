// Locks, the search for the dispatcher library, and logging without a dispatcher.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
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

TEST(SupportLocks, GuardsExcludeOtherThreadsAndLetTheirOwnInAgain) {
  RecursiveMutex recursive;
  CriticalSection section;
  ReadWriteLock readWrite;
  std::atomic<uint32_t> flag{0};
  std::atomic<pthread_t> owner{0};
  int counter = 0;
  const std::function<void()> increments[] = {
      [&] { ++(RecursiveMutexGuard(recursive), RecursiveMutexGuard(recursive), counter); },
      [&] { ++(CriticalSectionGuard(section), counter); },
      [&] { ++(ReadWriteLockGuard(readWrite, Access::kWrite), counter); },
      [&] {
        ++(SpinLockVariableGuard(flag, &owner), SpinLockVariableGuard(flag, &owner), counter);
      },
      [&] { ++(SpinLockVariableGuard(flag), counter); }};
  for (const auto& increment : increments) {
    counter = 0;
    const auto incrementOften = [&] {
      for (int i = 0; i < 500; ++i) increment();
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back(incrementOften);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 2000) << "lock " << &increment - increments;
  }
  EXPECT_TRUE(recursive.holds() == 0 && flag == 0 && owner == pthread_t{0});
  const ReadWriteLockGuard reader(readWrite, Access::kRead);
  std::thread([&] { const ReadWriteLockGuard second(readWrite, Access::kRead); }).join();
}

TEST(SupportLocks, GuardsReportMisuseAndKeepTheLock) {
  pthread_mutex_t foreign = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
  CriticalSection lock(foreign), own;
  {
    const CriticalSectionGuard guard(lock), ownGuard(own);
    EXPECT_FALSE(lock.enter() || own.enter());
    expectLogicError("GenericLock object got lock but is already marked as locked",
                     [&] { const CriticalSectionGuard again(lock); });
    EXPECT_EQ(pthread_mutex_trylock(&foreign), EBUSY) << "given away by the refused guard";
  }
  EXPECT_EQ(pthread_mutex_trylock(&foreign), 0);
  pthread_mutex_unlock(&foreign);
  expectLogicError("GenericLock::leave() called with lock not held",
                   [&] { const GenericLockGuard guard(lock, std::adopt_lock); });
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
