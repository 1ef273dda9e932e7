/// A picture memory: the buffers that a DMA channel writes to, and the pictures in them.
///
/// The channel notes here which pictures are due, and their pixels are computed when the host takes
/// them: the notes hold what they depend on.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "board/model/camera.h"

namespace board {

class Device;

class PictureMemory {
 public:
  /// `addresses` are the host's own buffers; null for buffers of the memory.
  PictureMemory(std::uint32_t buffers, std::size_t bytes, void* const* addresses);

  std::size_t bytes() const { return bytes_; }
  /// Percentage of the buffers that are not free.
  unsigned fillLevel() const;

  /// @name The channel's side; the device's lock is held
  /// @{
  /// False when another channel uses the memory.
  bool attach(Device& device);
  /// No more pictures come; those that are due stay.
  void finish();
  void detach();
  /// Puts a picture into a free buffer; false when there is none. Does not allocate.
  bool add(const Exposure& exposure);
  bool release(std::uint32_t buffer);
  /// @}

  /// @name The host's side
  /// @{
  /// Waits for the oldest picture that is due, computes it and hands it over.
  int take(std::chrono::nanoseconds timeout, VirtualBoardPicture& picture);
  int returnBuffer(std::uint32_t buffer);
  bool inUse() const { return device_ != nullptr; }
  /// @}

 private:
  enum class State { kFree, kDue, kComputed, kHost };
  struct Buffer {
    std::uint8_t* address;
    State state = State::kFree;
    Exposure exposure{};
  };

  int nextDue(std::uint32_t& buffer);
  VirtualBoardPicture compute(std::uint32_t index) const;

  const std::size_t bytes_;
  std::unique_ptr<std::uint8_t[]> own_;
  std::atomic<Device*> device_{nullptr};
  mutable std::mutex mutex_;  ///< Of what follows; taken after the device's.
  bool expecting_ = false;
  std::vector<Buffer> buffers_;
  std::vector<std::uint32_t> due_;  ///< Oldest first.
};

}  // namespace board

struct VirtualBoardMemory : board::PictureMemory {
  using PictureMemory::PictureMemory;
};
