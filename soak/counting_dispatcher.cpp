#include "soak/counting_dispatcher.h"

#include <atomic>

#include "external/logging_dispatcher.h"

namespace {

constexpr std::uint64_t kLogger = 1;
constexpr std::int32_t kSilent = 7;

std::atomic<std::uint64_t> messages{0};
void (*setLevel)(std::uint64_t, std::int32_t) = nullptr;

void getLogger(const char*, std::uint64_t* handle, std::int32_t* level) {
  *handle = kLogger;
  *level = kSilent;
}

void log(std::uint64_t, int, const char*, int, std::uint64_t) { ++messages; }

void registerLogging(void*, void* (*)(), void (*setClientLevel)(std::uint64_t, std::int32_t),
                     GetLogger* getLoggerOut, Log* logOut) {
  setLevel = setClientLevel;
  *getLoggerOut = &getLogger;
  *logOut = &log;
}

void unregisterLogging(void*) { setLevel = nullptr; }

}  // namespace

void fakes::setLogThreshold(std::int32_t level) { setLevel(kLogger, level); }
std::uint64_t fakes::loggedMessages() { return messages; }

LoggingDispatcherDescriptor logging_dispatcher_descriptor{&registerLogging, &unregisterLogging};
