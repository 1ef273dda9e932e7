#include "tests/fakes/fake_dispatcher.h"

#include <cstdio>
#include <stdexcept>

namespace fakes {

LoggingDispatcher& loggingDispatcher() {
  static auto* const state = new LoggingDispatcher;
  return *state;
}

namespace {

/// The state, for the work of a function.
LoggingDispatcher& working() {
  if (loggingDispatcher().failing) throw std::runtime_error("failing dispatcher");
  return loggingDispatcher();
}

void getLogger(const char* name, std::uint64_t* handle, std::int32_t* level) {
  working();
  unsigned long number = 0;
  std::sscanf(name, "%lu:%d", &number, level);
  *handle = number;
}

void log(std::uint64_t handle, int level, const char* text, int argument, std::uint64_t data) {
  LoggingDispatcher& state = working();
  const std::scoped_lock guard(state.messagesMutex);
  state.messages.emplace_back(handle, level, text, argument, data);
}

void registerLogging(void* client, void* (*detach)(), void (*setLevel)(std::uint64_t, std::int32_t),
                     GetLogger* getLoggerField, Log* logField) {
  LoggingDispatcher& state = working();
  ++state.registrations;
  state.client = client;
  state.detach = detach;
  state.setLevel = setLevel;
  // Calls into a client that is not complete yet must neither hang nor fail.
  setLevel(1, 0);
  *getLoggerField = &getLogger;
  *logField = &log;
}

void unregisterLogging(void* client) {
  LoggingDispatcher& state = working();
  // The same at its end, when its loggers are gone.
  state.setLevel(1, 0);
  const bool same = client == state.client && state.detach() == client;
  std::fprintf(stderr, "unregistered %s client\n", same ? "the registered" : "another");
}

}  // namespace

}  // namespace fakes

LoggingDispatcherDescriptor logging_dispatcher_descriptor = {&fakes::registerLogging,
                                                             &fakes::unregisterLogging};
