/// Logging dispatcher for tests. It reads the handle and the threshold of a logger from the
/// logger's name, "<handle>:<threshold> <anything>", and keeps what it is told.
#pragma once

#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "external/logging_dispatcher.h"

namespace fakes {

/// Handle, level, text, argument, data.
using Message = std::tuple<std::uint64_t, int, std::string, int, std::uint64_t>;

struct LoggingDispatcher {
  LoggingDispatcherDescriptor& descriptor = logging_dispatcher_descriptor;
  bool failing = false;  ///< All functions throw.
  int registrations = 0;
  void* client = nullptr;
  void* (*detach)() = nullptr;
  void (*setLevel)(std::uint64_t handle, std::int32_t level) = nullptr;

  std::mutex messagesMutex;
  std::vector<Message> messages;
};

/// The state of the loaded dispatcher; lives until the process is gone.
LoggingDispatcher& loggingDispatcher();

}  // namespace fakes
