#include "tests/fakes/logging_dispatcher.h"

#include <cstdio>

namespace fakes {

LoggingDispatcher& loggingDispatcher() {
  static auto* const state = new LoggingDispatcher;
  return *state;
}

namespace {

void getLogger(const char* name, uint64_t* handle, int32_t* level) {
  unsigned long number = 0;
  std::sscanf(name, "%lu:%d", &number, level);
  *handle = number;
}

void log(uint64_t handle, int level, const char* text, int argument, uint64_t data) {
  const std::scoped_lock lock(loggingDispatcher().messagesMutex);
  loggingDispatcher().messages.emplace_back(handle, level, text, argument, data);
}

void registerLogging(void* client, void* (*detach)(), void (*setLevel)(uint64_t, int32_t),
                     GetLogger* getLoggerField, Log* logField) {
  LoggingDispatcher& state = loggingDispatcher();
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
  LoggingDispatcher& state = loggingDispatcher();
  // The same at its end, when its loggers are gone.
  state.setLevel(1, 0);
  const bool same = client == state.client && state.detach() == client;
  std::fprintf(stderr, "unregistered %s client\n", same ? "the registered" : "another");
}

}  // namespace

}  // namespace fakes

LoggingDispatcherDescriptor logging_dispatcher_descriptor = {&fakes::registerLogging,
                                                             &fakes::unregisterLogging};
