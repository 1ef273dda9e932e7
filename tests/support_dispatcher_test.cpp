// Logging with a dispatcher beside the program. What ends the process or the connection runs in a
// process of its own, which the leak checker also looks at.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <latch>
#include <thread>
#include <vector>

#include "support/logging.h"
#include "tests/fakes/logging_dispatcher.h"

namespace {

using fakes::loggingDispatcher;
using korv::tools::logging::Logger;
using korv::tools::logging::Logging;
using korv::tools::logging::logMessage;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;
using ::testing::Not;

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
  constexpr int kThreads = 8;
  std::vector<Logger*> loggers(kThreads);
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (Logger*& logger : loggers) {
    threads.emplace_back([&logger, &start] {
      start.arrive_and_wait();
      for (int i = 0; i < 100; ++i) {
        logger = Logging::getLogger("10:4");
        logger->setThreadEnabled(i % 2 == 0);
        logMessage(*logger, 4, "message ", i);
        loggingDispatcher().setLevel(10, 3 + i % 2);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_THAT(loggers, ::testing::Each(Logging::getLogger("10:4")));
  EXPECT_EQ(loggingDispatcher().registrations, 1);
  EXPECT_EQ(loggingDispatcher().messages.size(), kThreads * 50U);
}

TEST_F(SupportDispatcher, LoggersAreKeptByHandleWithTheirThresholds) {
  Logger* logger = Logging::getLogger("20:4 first");
  EXPECT_EQ(Logging::getLogger("20:6 other name, same handle"), logger);
  Logger* other = Logging::getLogger("21:-1");
  EXPECT_FALSE(logger->isEnabled(3));
  EXPECT_TRUE(logger->isEnabled(4));
  loggingDispatcher().setLevel(20, 6);
  loggingDispatcher().setLevel(22, 0);  // nobody's
  EXPECT_FALSE(logger->isEnabled(5));
  EXPECT_TRUE(logger->isEnabled(6));
  EXPECT_TRUE(other->isEnabled(-1));
}

TEST_F(SupportDispatcher, MessagesArriveAsGiven) {
  Logger* logger = Logging::getLogger("30:4");
  logger->log(2, "below the threshold", -5, UINT64_MAX);  // log itself does not ask
  logMessage(*logger, 3, "not wanted");
  const char* none = nullptr;
  logMessage(*logger, 4, "name '", std::string("FG_WIDTH"), "' ", -7, none, "|", UINT64_MAX);

  char thread[32];
  std::snprintf(thread, sizeof thread, "thread-id=%lu|", pthread_self());
  const std::string text = std::string(thread) + "name 'FG_WIDTH' -7|18446744073709551615";
  EXPECT_THAT(loggingDispatcher().messages,
              ElementsAre(fakes::Message{30, 2, "below the threshold", -5, UINT64_MAX},
                          fakes::Message{30, 4, text, 0, 0}));
}

TEST_F(SupportDispatcher, MutedThreadsAreNotHeard) {
  Logger* logger = Logging::getLogger("40:4");
  EXPECT_TRUE(logger->setThreadEnabled(false));
  EXPECT_FALSE(logger->setThreadEnabled(false));
  EXPECT_FALSE(logger->isEnabled(6));
  EXPECT_TRUE(Logging::getLogger("41:4")->isEnabled(6));
  bool otherThread = false;
  std::thread([&] { otherThread = logger->isEnabled(6); }).join();
  EXPECT_TRUE(otherThread);
  EXPECT_FALSE(logger->setThreadEnabled(true));
  EXPECT_TRUE(logger->setThreadEnabled(true));
  EXPECT_TRUE(logger->isEnabled(6));
}

TEST_F(SupportDispatcher, ProcessEndUnregistersOnce) {
  EXPECT_EXIT(
      {
        Logging::getLogger("50:4");
        std::exit(0);
      },
      ExitedWithCode(0), "^unregistered the registered client\n$");
}

TEST_F(SupportDispatcher, DetachedDispatcherIsLeftAlone) {
  const auto detachAndGoOn = [] {
    Logger* before = Logging::getLogger("60:0");
    const bool same = loggingDispatcher().detach() == loggingDispatcher().client;
    before->log(7, "to nobody", 0, 0);
    Logger* after = Logging::getLogger("60:0");
    std::fprintf(stderr, "same %d, messages %zu, one default %d, enabled %d %d\n", same,
                 loggingDispatcher().messages.size(), after == Logging::getLogger("61:0"),
                 after->isEnabled(6), after->isEnabled(7));
    std::exit(after == before);
  };
  EXPECT_EXIT(detachAndGoOn(), ExitedWithCode(0),
              AllOf(HasSubstr("same 1, messages 0, one default 1, enabled 0 1"),
                    Not(HasSubstr("unregistered"))));
}

// Destructors of a host may still call the applet when logging is gone.
TEST_F(SupportDispatcher, UseAfterTheEndLogsNothing) {
  const auto useLate = [] {
    std::atexit([] {
      Logger* late = Logging::getLogger("70:0");
      late->log(7, "to nobody", 0, 0);
      std::fprintf(stderr, "late: enabled %d, messages %zu, registrations %d\n", late->isEnabled(6),
                   loggingDispatcher().messages.size(), loggingDispatcher().registrations);
    });
    Logging::getLogger("70:0");
    std::exit(0);
  };
  EXPECT_EXIT(useLate(), ExitedWithCode(0),
              "unregistered the registered client\nlate: enabled 0, messages 0, registrations 1");
}

}  // namespace
