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
  std::vector<Logger*> loggers(8);
  std::latch start(8);
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
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(loggers, ::testing::Each(Logging::getLogger("10:4")));
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
