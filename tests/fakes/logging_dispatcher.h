/// Logging dispatcher for tests. It reads the handle and the threshold of a logger from the
/// logger's name, "<handle>:<threshold> <anything>", and keeps what it is told.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/logging_dispatcher.h"

namespace fakes {

struct Message {
  uint64_t handle;
  int level;
  std::string text;
  int argument;
  uint64_t data;
  bool operator==(const Message&) const = default;
};

struct LoggingDispatcher {
  int registrations = 0;
  void* client = nullptr;
  void* (*detach)() = nullptr;
  void (*setLevel)(uint64_t handle, int32_t level) = nullptr;

  std::mutex messagesMutex;
  std::vector<Message> messages;
};

/// The state of the loaded dispatcher; lives until the process is gone.
LoggingDispatcher& loggingDispatcher();

}  // namespace fakes
