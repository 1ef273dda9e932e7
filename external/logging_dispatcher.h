/// Logging dispatcher `lib64/libcommon-logging-dispatcher.so`: collects the messages of all parts
/// of the board's software. It is opened at run time and found through its descriptor.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Fills the handle and the level threshold of the logger called `name`.
typedef void (*GetLogger)(const char* name, uint64_t* handle, int32_t* level);
/// Takes a message of a logger; the last two arguments are 0 for plain texts.
typedef void (*Log)(uint64_t handle, int level, const char* text, int, uint64_t);

struct LoggingDispatcherDescriptor {
  /// Attaches a client: fills the functions that the client calls and keeps those that it offers.
  void (*registerLogging)(void* logging, void* (*detach)(void),
                          void (*setLevel)(uint64_t handle, int32_t level), GetLogger* getLogger,
                          Log* log);
  void (*unregisterLogging)(void* logging);
};

/// The symbol to look up in the dispatcher library.
extern struct LoggingDispatcherDescriptor logging_dispatcher_descriptor;

#ifdef __cplusplus
}
static_assert(offsetof(LoggingDispatcherDescriptor, unregisterLogging) == 8);
#endif
