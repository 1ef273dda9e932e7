#pragma once

#include <memory>

#include "gentl/module.h"

namespace gentl {

/// A buffer that a stream was told of. Its stream's lock guards all but the constants.
class Buffer : public Module {
 public:
  enum class State { kIdle, kInput, kOutput };

  /// @param base the consumer's memory; null for memory of the producer.
  Buffer(const std::shared_ptr<Module>& stream, void* base, std::size_t size, void* user);

  void info(BUFFER_INFO_CMD command, Answer to);

  struct Picture {
    bool present = false;  ///< The board made it, be it incomplete.
    bool incomplete = false;
    std::size_t filled = 0, width = 0, height = 0, lines = 0, xOffset = 0, yOffset = 0;
    std::uint64_t time = 0, number = 0;
    std::size_t bytes() const { return width * height * 3; }
    bool hasPixels() const { return filled > 0; }
  };

  const std::size_t size;
  void* const user;
  State state = State::kIdle;
  Picture picture;
  int index = -1;     ///< In the board's memory, while there is one.
  bool lent = false;  ///< The board may write to it.

  void* base() const { return base_; }
  bool own() const { return memory_ != nullptr; }
  bool queued() const { return state != State::kIdle; }
  bool acquiring() const { return lent && state != State::kInput; }

 private:
  std::unique_ptr<char[]> memory_;
  void* base_;
};

}  // namespace gentl
