/// Acquisition runtime for tests: opens a handle on everything, notes how it is called and answers
/// what it is told to.
#pragma once

#include <cstdint>
#include <string>

struct RecordingRuntime {
  std::string call;       ///< The latest: name and arguments, without the handle when it is right.
  std::int64_t result{};  ///< Of the next calls.
  int lastError{};
  int id{};  ///< Of every design parameter; the description has one.
};

/// The state of the loaded library; to be looked up in it by name.
extern "C" RecordingRuntime recordingRuntime;
