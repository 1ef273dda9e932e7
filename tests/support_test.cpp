// Locks, the search for the dispatcher library, logging without a dispatcher, and the parser's log.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/dispatcher_library.h"
#include "support/fg_log.h"
#include "support/locks.h"
#include "support/logging.h"

namespace {

using namespace korv::templates::platform;
using namespace korv::templates::patterns;
using namespace korv::tools::logging;
using Access = ReadWriteLockGuard::Access;
using ::testing::MatchesRegex;

void expectLogicError(const char* text, const std::function<void()>& misuse) {
  EXPECT_THAT(misuse, ::testing::ThrowsMessage<std::logic_error>(text));
}

constexpr const char* kAlreadyMarked =
    "GenericLock object got lock but is already marked as locked";

TEST(SupportLocks, GuardsExcludeOtherThreads) {
  RecursiveMutex recursive;
  CriticalSection section;
  ReadWriteLock readWrite;
  std::atomic<uint32_t> flag{0};
  std::atomic<pthread_t> owner{0};
  int counter = 0;
  const auto countUnder = [&counter](auto makeGuard) {
    return [&counter, makeGuard] {
      const auto guard = makeGuard();
      ++counter;
    };
  };
  const std::vector<std::function<void()>> increments = {
      countUnder([&] { return RecursiveMutexGuard(recursive); }),
      countUnder([&] { return CriticalSectionGuard(section); }),
      countUnder([&] { return ReadWriteLockGuard(readWrite, Access::kWrite); }),
      countUnder([&] { return SpinLockVariableGuard(flag, &owner); }),
      countUnder([&] { return SpinLockVariableGuard(flag); })};
  for (const auto& increment : increments) {
    counter = 0;
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) {
      thread = std::thread([&increment] {
        for (int i = 0; i < 500; ++i) increment();
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 2000) << "lock " << &increment - increments.data();
  }
}

TEST(SupportLocks, WhoMayEnterAgain) {
  RecursiveMutex mutex;
  {
    const RecursiveMutexGuard outer(mutex), inner(mutex);
    EXPECT_EQ(mutex.holds(), 2U);
  }
  EXPECT_EQ(mutex.holds(), 0U);

  ReadWriteLock readWrite;
  const ReadWriteLockGuard reader(readWrite, Access::kRead);
  std::thread([&] { const ReadWriteLockGuard second(readWrite, Access::kRead); }).join();

  std::atomic<uint32_t> flag{0};
  std::atomic<pthread_t> owner{0};
  {
    const SpinLockVariableGuard outer(flag, &owner);
    { const SpinLockVariableGuard inner(flag, &owner); }
    EXPECT_EQ(flag, 1U);
    EXPECT_EQ(owner, pthread_self());
  }
  EXPECT_EQ(flag, 0U);
  EXPECT_EQ(owner, pthread_t{0});
}

TEST(SupportLocks, CriticalSectionRefusesReentry) {
  pthread_mutex_t foreign = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;
  for (const bool useForeign : {false, true}) {
    SCOPED_TRACE(useForeign);
    const auto lock = useForeign ? std::make_unique<CriticalSection>(foreign)
                                 : std::make_unique<CriticalSection>();
    const auto isFree = [&lock] {
      bool taken = false;
      std::thread([&] {
        if ((taken = lock->tryEnter())) lock->leave();
      }).join();
      return taken;
    };
    {
      const CriticalSectionGuard guard(*lock);
      EXPECT_FALSE(lock->enter());
      expectLogicError(kAlreadyMarked, [&] { const CriticalSectionGuard again(*lock); });
      EXPECT_FALSE(isFree()) << "the refused guard gave the outer guard's lock away";
    }
    EXPECT_TRUE(isFree());
  }
  EXPECT_EQ(pthread_mutex_trylock(&foreign), 0) << "not the lock's to destroy";
  pthread_mutex_unlock(&foreign);
}

/// Counts its holds, lets anybody in, and leaves -1 behind.
class CountingLock : public GenericLock {
 public:
  explicit CountingLock(int& holds) : holds_(holds) { holds_ = 0; }
  ~CountingLock() noexcept(false) override { holds_ = -1; }
  bool enter() override { return ++holds_ > 0; }
  bool tryEnter() override { return enter(); }
  void leave() override { --holds_; }

 private:
  int& holds_;
};

TEST(SupportLocks, GuardsReportMisuseAndDeleteTheirOwnLocks) {
  int holds = 0;
  auto lock = std::make_unique<CountingLock>(holds);
  expectLogicError("GenericLock::leave() called with lock not held",
                   [&] { const GenericLockGuard guard(*lock, std::adopt_lock); });
  lock->setMarkedLocked(true);
  expectLogicError(kAlreadyMarked, [&] { const GenericLockGuard guard(*lock); });
  EXPECT_EQ(holds, 0) << "a refused guard keeps the lock";
  expectLogicError("GenericLock object destroyed with lock still held",
                   [&] { delete lock.release(); });

  {
    const GenericLockGuard guard(std::make_unique<CountingLock>(holds));
    EXPECT_EQ(holds, 1);
  }
  EXPECT_EQ(holds, -1);
}

TEST(SupportDispatcherSearch, BaseDirectory) {
  struct Row {
    std::string path;
    std::optional<std::string> expected;
    const char* dir64 = nullptr;
    const char* dir32 = nullptr;
  };
  const std::string deep(1024 - std::string("/lib/x.so").size(), 'd');
  const std::string tooLong(1500, 'v');
  const Row rows[] = {
      {"/opt/x/lib64/libVelmora.so", "/opt/x", "/env64", "/env32"},
      {"/opt/x/LIB64/libVelmora.so", "/opt/x"},
      {"/a/hardware applets/b/c.so", "/a"},
      {"/bin/x/Dll/y/c.so", "/bin/x"},
      {"/opt//x///lib//c.so", "/opt//x"},
      {"/lib/c.so", ""},
      {"bin/tool", "."},
      {"/opt/lib32/x64/bin", std::nullopt},  // a file called bin
      {"", std::nullopt},
      {deep.substr(1) + "/lib/x.so", deep.substr(1), "/env64"},
      {deep + "/lib/x.so", "/env64", "/env64"},
      {"/opt/c.so", "/env64", "/env64///", "/env32"},
      {"/opt/c.so", "/env32", nullptr, "/env32/"},
      {"/opt/c.so", "", "///", "/env32"},
      {"/opt/c.so", "", "", "/env32"},
      {"/opt/c.so", tooLong.substr(0, 1023), tooLong.c_str()},
  };
  const auto setVariable = [](const char* name, const char* value) {
    value != nullptr ? setenv(name, value, 1) : unsetenv(name);
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.path);
    setVariable("KORVDIR5_64", row.dir64);
    setVariable("KORVDIR5", row.dir32);
    EXPECT_EQ(findBaseDirectory(row.path), row.expected);
  }
  setVariable("KORVDIR5_64", nullptr);
}

TEST(SupportDispatcherSearch, MissingLibraryLeavesTheLoadersWords) {
  const LibraryRecord record = openInstalledLibrary("/no/such", "thing");
  EXPECT_EQ(record.handle, nullptr);
  EXPECT_THAT(record.error, ::testing::StartsWith("/no/such/lib64/libthing.so: "));
  EXPECT_THAT(ownLibraryPath(), ::testing::EndsWith("support_test"));
}

TEST(SupportLogging, LibraryThatIsNoDispatcherLogsNothing) {
  setenv("KORVDIR5_64", INSTALLATION_DIRECTORY, 1);  // when started by a path without directories
  Logger* logger = Logging::getLogger("korv.wrapper.Velmora");
  unsetenv("KORVDIR5_64");
  EXPECT_NE(dlopen(INSTALLATION_DIRECTORY "/lib64/libcommon-logging-dispatcher.so",
                   RTLD_NOW | RTLD_NOLOAD),
            nullptr)
      << "the library beside the program was not even tried";
  ASSERT_NE(logger, nullptr);
  EXPECT_EQ(Logging::getLogger("korv.wrapper.FgKtWrapper"), logger);
  EXPECT_FALSE(logger->isEnabled(6));
  EXPECT_TRUE(logger->isEnabled(7));
  logMessage(*logger, 7, "to nobody");
}

/// The parser's log with a stream in memory.
class MemoryLog : public velmora::Fg_Log {
 public:
  MemoryLog() : Fg_Log("test") {}
  ~MemoryLog() override {
    CloseLogFile();
    std::free(text_);
  }
  void open() { stream_ = open_memstream(&text_, &size_); }
  std::string flushed() const { return {text_, size_}; }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
};

TEST(SupportFgLog, WritesToAnOpenStreamOnly) {
  MemoryLog log;
  log.OpenLogFile("/tmp/support-test-never-opened");
  for (const bool open : {false, true}) {
    if (open) log.open();
    log.Func("function");
    log.Info("not written");
    log.Info("value", -3);
    log.ErrorInt("text", "detail", 7);
    log.ErrorDouble("text", "detail", 1.0 / 3);
    log.Error("last");
  }
  const std::string lines =
      "StrandlineIV::Info >> value >> -3;\n"
      "StrandlineIV::Error >> text >> detail >> 7;\n"
      "StrandlineIV::Error >> text >> detail >> 0.333333333333;\n"
      "StrandlineIV::Error >> last;\n";
  EXPECT_EQ(log.flushed(), lines);
  log.UsrDbg("%s %d", "debug", 1);
  EXPECT_EQ(log.flushed(), lines) << "flushed without need";
  log.CloseLogFile();
  log.Error("after the end");
  log.UsrDbg("after the end");
  log.WriteWelcome();
  EXPECT_EQ(log.flushed(), lines + "debug 1");
}

TEST(SupportFgLog, WelcomeNamesContentAndTime) {
  MemoryLog log;
  log.open();
  log.WriteWelcome();
  log.CloseLogFile();
  const std::string dashes = std::string(73, '-') + "\n";
  EXPECT_THAT(
      log.flushed(),
      MatchesRegex(dashes + "[^\n]+\nContents: Log details for Strandline Dll\n" +
                   "[A-Z][a-z]+ [A-Z][a-z]+ [ 0-9]+ [0-9]+:[0-9]+:[0-9]+ [0-9]+\n" + dashes));
}

}  // namespace
