#pragma once

#include <memory>

#include "gentl/module.h"

namespace gentl {

/// A buffer that a stream was told of. Its stream's lock guards all but the constants.
class Buffer : public Module {
 public:
  enum class State { kIdle, kInput, kOutput };

  /// @param base the consumer's memory; null for memory of the producer.
  Buffer(const std::string& stream, void* base, std::size_t size, void* user);

  void info(BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* out, std::size_t* room);

  struct Picture {
    bool present = false;  ///< The board made it, be it incomplete.
    bool incomplete = false;
    std::size_t filled = 0, width = 0, height = 0, lines = 0, xOffset = 0, yOffset = 0;
    std::uint64_t time = 0, number = 0;
    std::size_t bytes() const { return width * height * 3; }
  };

  const std::size_t size;
  void* const user;
  State state = State::kIdle;
  Picture picture;
  int index = -1;     ///< In the board's memory, while there is one.
  bool lent = false;  ///< The board may write to it.

  void* base() const { return base_; }
  bool own() const { return memory_ != nullptr; }

 private:
  std::unique_ptr<char[]> memory_;
  void* base_;
};

}  // namespace gentl
