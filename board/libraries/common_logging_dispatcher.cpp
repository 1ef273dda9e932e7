/// Logging dispatcher `libcommon-logging-dispatcher.so` of the virtual board: writes the messages
/// of all loggers to standard error.
///
/// The environment variable KORV_LOG_LEVEL sets the lowest level that is written, 0 to 7. If it is
/// missing or invalid the level is 7, which silences the loggers.
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "board/parse_number.h"
#include "board/printable.h"
#include "external/logging_dispatcher.h"

namespace {

constexpr int kSilent = 7;
constexpr const char* kLevelVariable = "KORV_LOG_LEVEL";
constexpr const char* kPattern = "%n %l: %v";

/// Levels 0 to 7; the higher, the more serious.
constexpr std::array kLevels{spdlog::level::trace, spdlog::level::debug,   spdlog::level::debug,
                             spdlog::level::info,  spdlog::level::info,    spdlog::level::warn,
                             spdlog::level::err,   spdlog::level::critical};

std::int32_t thresholdFromEnvironment() {
  const char* text = std::getenv(kLevelVariable);
  const int level = board::parseNumber<int>(text ? text : "").value_or(kSilent);
  return level >= 0 && level < kSilent ? level : kSilent;
}

class Dispatcher {
 public:
  /// The handle of the logger called `name`, from 1 up.
  std::uint64_t handleOf(const char* name) {
    const std::lock_guard guard(mutex_);
    for (std::size_t i = 0; i < loggers_.size(); ++i) {
      if (loggers_[i]->name() == name) return i + 1;
    }
    loggers_.push_back(std::make_shared<spdlog::logger>(name, sink_));
    loggers_.back()->set_level(spdlog::level::trace);
    loggers_.back()->set_pattern(kPattern);
    return loggers_.size();
  }

  void log(std::uint64_t handle, int level, std::string_view text) {
    std::shared_ptr<spdlog::logger> logger;
    {
      const std::lock_guard guard(mutex_);
      if (handle == 0 || handle > loggers_.size()) return;
      logger = loggers_[handle - 1];
    }
    const auto row = static_cast<std::size_t>(std::clamp(level, 0, kSilent));
    logger->log(kLevels[row], board::printable(text));
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<spdlog::sinks::sink> sink_ = std::make_shared<spdlog::sinks::stderr_sink_mt>();
  std::vector<std::shared_ptr<spdlog::logger>> loggers_;
};

/// Never destroyed: clients log until the end of the process.
Dispatcher& dispatcher() {
  static Dispatcher& instance = *new Dispatcher;
  return instance;
}

void getLogger(const char* name, std::uint64_t* handle, std::int32_t* level) {
  *handle = dispatcher().handleOf(name);
  *level = thresholdFromEnvironment();
}

void log(std::uint64_t handle, int level, const char* text, int, std::uint64_t) {
  dispatcher().log(handle, level, text);
}

/// The threshold never changes and the dispatcher outlives its clients, so it needs neither of the
/// functions that they offer.
void registerLogging(void*, void* (*)(), void (*)(std::uint64_t, std::int32_t),
                     GetLogger* getLoggerOut, Log* logOut) {
  *getLoggerOut = getLogger;
  *logOut = log;
}

void unregisterLogging(void*) {}

}  // namespace

LoggingDispatcherDescriptor logging_dispatcher_descriptor{registerLogging, unregisterLogging};
