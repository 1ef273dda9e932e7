/// A picture memory: the buffers that a DMA channel writes to, and the pictures in them.
///
/// The channel notes here which pictures are due, and their pixels are computed when the host takes
/// them: the notes hold what they depend on.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
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
  /// Moves a buffer from the host to the channel or back; false when it is not there.
  bool release(std::uint32_t buffer) { return move(buffer, State::kHost, State::kFree); }
  bool hold(std::uint32_t buffer) { return move(buffer, State::kFree, State::kHost); }
  /// @}

  /// @name The host's side
  /// @{
  /// Waits for the oldest picture that is due, computes it and hands it over.
  int take(std::chrono::nanoseconds timeout, VirtualBoardPicture& picture);
  int returnBuffer(std::uint32_t buffer) { return change(buffer, &PictureMemory::release); }
  int holdBuffer(std::uint32_t buffer) { return change(buffer, &PictureMemory::hold); }
  int addBuffer(void* address);
  bool inUse() const { return device_ != nullptr; }
  /// @}

 private:
  enum class State { kFree, kDue, kComputed, kHost };
  struct Buffer {
    std::uint8_t* address;
    State state;
    Exposure exposure{};
  };
  using Change = bool (PictureMemory::*)(std::uint32_t buffer);

  bool move(std::uint32_t buffer, State from, State to);
  /// Makes a change when everything before it has happened.
  int change(std::uint32_t buffer, Change how);

  int nextDue(std::uint32_t& index, Buffer*& buffer);
  VirtualBoardPicture compute(std::uint32_t index, const Buffer& buffer) const;

  const std::size_t bytes_;
  std::unique_ptr<std::uint8_t[]> own_;
  std::atomic<Device*> device_{nullptr};
  mutable std::mutex mutex_;  ///< Of what follows; taken after the device's.
  bool expecting_ = false;
  std::deque<Buffer> buffers_;      ///< Buffers do not move.
  std::vector<std::uint32_t> due_;  ///< Oldest first.
};

}  // namespace board

struct VirtualBoardMemory : board::PictureMemory {
  using PictureMemory::PictureMemory;
};
