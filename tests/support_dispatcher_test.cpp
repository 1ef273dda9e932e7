// Logging with a dispatcher beside the program. What ends the process or the connection runs in a
// process of its own, which the leak checker also looks at.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <optional>
#include <thread>
#include <vector>

#include "support/logging.h"
#include "tests/fakes/allocation_hook.h"
#include "tests/fakes/fake_dispatcher.h"
#include "tests/other_thread.h"

namespace {

using fakes::AllocationHook;
using fakes::loggingDispatcher;
using namespace korv::tools::logging;

class SupportDispatcher : public ::testing::Test {
 protected:
  SupportDispatcher() {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // For a program that is started by a path without its directories.
    setenv("KORVDIR5_64", INSTALLATION_DIRECTORY "//", 1);
    loggingDispatcher().messages.clear();
  }
  ~SupportDispatcher() override { unsetenv("KORVDIR5_64"); }
};

TEST_F(SupportDispatcher, FirstUseByManyThreadsRegistersOnce) {
  constexpr const char* kNames[] = {"10:4", "11:4"};
  {
    std::optional<OtherThread> second;
    const AllocationHook whenStarting(
        [&] { second.emplace([&] { Logging::getLogger(kNames[1]); }).isHeldUp(); });
    Logging::getLogger(kNames[0]);
  }
  std::vector<Logger*> loggers(8);
  std::vector<std::thread> threads;
  for (Logger*& logger : loggers) {
    threads.emplace_back([&logger, name = kNames[threads.size() % 2]] {
      for (int i = 0; i < 100; ++i) {
        logger = Logging::getLogger(name);
        logger->setThreadEnabled(i % 2 == 0);
        logMessage(*logger, 4, "message ", i);
        loggingDispatcher().setLevel(10, 3 + i % 2);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < loggers.size(); ++i)
    EXPECT_EQ(loggers[i], Logging::getLogger(kNames[i % 2]));
  EXPECT_EQ(loggingDispatcher().registrations, 1);
  EXPECT_EQ(loggingDispatcher().messages.size(), 8U * 50);
}

TEST_F(SupportDispatcher, LoggersAreKeptByHandleWithTheirThresholds) {
  Logger* logger = Logging::getLogger("20:4 first");
  EXPECT_EQ(Logging::getLogger("20:6 other name, same handle"), logger);
  EXPECT_TRUE(logger->isEnabled(4) && !logger->isEnabled(3));
  loggingDispatcher().setLevel(20, 6);
  loggingDispatcher().setLevel(22, 0);  // nobody's
  EXPECT_TRUE(logger->isEnabled(6) && !logger->isEnabled(5));
  EXPECT_TRUE(Logging::getLogger("21:-1")->isEnabled(-1));

  EXPECT_TRUE(logger->setThreadEnabled(false));
  EXPECT_FALSE(logger->isEnabled(6));
  std::thread([&] { EXPECT_TRUE(logger->isEnabled(6)); }).join();
  EXPECT_FALSE(logger->setThreadEnabled(true));
  EXPECT_TRUE(logger->isEnabled(6));
}

TEST_F(SupportDispatcher, LoggersAreAddedWhileNobodyReads) {
  Logging::getLogger("50:4");
  std::optional<OtherThread> reader;
  bool heldUp = false;
  const AllocationHook whenAdding(
      [&] { heldUp = reader.emplace([] { loggingDispatcher().setLevel(50, 4); }).isHeldUp(); });
  Logging::getLogger("51:4");
  EXPECT_TRUE(heldUp);
}

TEST_F(SupportDispatcher, MessagesArriveAsGiven) {
  Logger* logger = Logging::getLogger("30:4");
  logger->log(2, "below the threshold", -5, UINT64_MAX);  // log itself does not ask
  logMessage(*logger, 3, "not wanted");
  const char* none = nullptr;
  logMessage(*logger, 4, "name '", std::string("FG_WIDTH"), "' ", -7, none, "|", UINT64_MAX);
  const std::string text =
      "thread-id=" + std::to_string(pthread_self()) + "|name 'FG_WIDTH' -7|18446744073709551615";
  EXPECT_THAT(loggingDispatcher().messages,
              ::testing::ElementsAre(fakes::Message{30, 2, "below the threshold", -5, UINT64_MAX},
                                     fakes::Message{30, 4, text, 0, 0}));
}

TEST_F(SupportDispatcher, DetachedDispatcherIsLeftAlone) {
  const auto detachAndGoOn = [] {
    Logger* before = Logging::getLogger("60:0");
    const bool same = loggingDispatcher().detach() == loggingDispatcher().client;
    before->log(7, "to nobody", 0, 0);
    std::fprintf(stderr, "same %d, new %d, messages %zu\n", same,
                 Logging::getLogger("60:0") != before, loggingDispatcher().messages.size());
    std::exit(0);
  };
  EXPECT_EXIT(detachAndGoOn(), testing::ExitedWithCode(0), "^same 1, new 1, messages 0\n$");
}

TEST_F(SupportDispatcher, FunctionsMayBeMissing) {
  LoggingDispatcherDescriptor& descriptor = loggingDispatcher().descriptor;
  const auto useWithout = [](auto& function, bool enabled) {
    function = nullptr;
    std::exit(Logging::getLogger("80:0")->isEnabled(6) != enabled);
  };
  EXPECT_EXIT(useWithout(descriptor.registerLogging, false), testing::ExitedWithCode(0), "^$");
  EXPECT_EXIT(useWithout(descriptor.unregisterLogging, true), testing::ExitedWithCode(0), "^$");
}

TEST_F(SupportDispatcher, FunctionsMayThrow) {
  const auto use = [] {
    bool& failing = loggingDispatcher().failing;
    failing = true;
    Logger* silent = Logging::getLogger("80:0");
    failing = false;
    Logger* logger = Logging::getLogger("80:0");
    failing = true;
    logger->log(7, "lost", 0, 0);
    const bool same = silent == Logging::getLogger("81:0");
    std::fprintf(stderr, "%d %d %d", silent->isEnabled(6), logger->isEnabled(0), same);
    std::exit(0);
  };
  EXPECT_EXIT(use(), testing::ExitedWithCode(0), "^0 1 1$");
}

// Every allocation of the first use fails once, each in a process of its own.
TEST_F(SupportDispatcher, MemoryMayRunOut) {
  enum { kRecovered, kLost, kNothingFailed };
  const auto useWithFailure = [](int left) {
    {
      AllocationHook failure([&] {
        if (left-- == 0) throw std::bad_alloc();
        failure.again();
      });
      logMessage(*Logging::getLogger("90:4"), 4, "may be lost");
    }
    loggingDispatcher().messages.clear();
    logMessage(*Logging::getLogger("90:4"), 4, "arrives");
    const bool logs = loggingDispatcher().messages.size() == 1;
    _exit(!logs || loggingDispatcher().registrations != 1 ? kLost
          : left < 0                                      ? kRecovered
                                                          : kNothingFailed);
  };
  const auto useWithEveryFailure = [&] {
    int count = 0, status = 0;
    for (; status == 0; ++count) {
      const pid_t child = fork();
      if (child == 0) useWithFailure(count);
      waitpid(child, &status, 0);
    }
    _exit(count > 4 ? WEXITSTATUS(status) : kLost);
  };
  EXPECT_EXIT(useWithEveryFailure(), testing::ExitedWithCode(kNothingFailed), "");
}

// Destructors of a host may still call the applet when logging is gone.
TEST_F(SupportDispatcher, ProcessEndUnregistersOnceAndUseAfterItLogsNothing) {
  const auto useLate = [] {
    std::atexit([] {
      Logging::getLogger("70:0")->log(7, "to nobody", 0, 0);
      std::fprintf(stderr, "late: messages %zu, registrations %d\n",
                   loggingDispatcher().messages.size(), loggingDispatcher().registrations);
    });
    Logging::getLogger("70:0");
    std::exit(0);
  };
  EXPECT_EXIT(useLate(), testing::ExitedWithCode(0),
              "^unregistered the registered client\nlate: messages 0, registrations 1\n$");
}

}  // namespace
