#pragma once

#include <atomic>
#include <thread>

#include "gentl/buffer.h"
#include "gentl/grabber.h"

namespace gentl {

class Device;

/// The pictures of a port on their way into the consumer's buffers. A buffer is idle, or in the
/// input pool, where the board may fill it, or in the output queue, where it waits for a consumer
/// that takes new-buffer events. While the stream is armed and the device sends, a thread takes the
/// board's pictures.
class Stream : public Module {
 public:
  explicit Stream(const std::shared_ptr<Device>& device);
  ~Stream() override;

  void announce(void* base, std::size_t size, void* user, BUFFER_HANDLE* handle);
  void revoke(BUFFER_HANDLE handle, void** base, void** user);
  void enqueue(BUFFER_HANDLE handle);
  void flush(ACQ_QUEUE_TYPE operation);
  void bufferId(std::uint32_t index, BUFFER_HANDLE* handle);
  void bufferInfo(BUFFER_HANDLE handle, BUFFER_INFO_CMD command, Answer to);
  void requireBuffer(BUFFER_HANDLE handle);

  void start(ACQ_START_FLAGS flags, std::uint64_t pictures);
  void stop(ACQ_STOP_FLAGS flags);
  void info(STREAM_INFO_CMD command, Answer to);
  void close() override;

  struct Counts {
    std::uint64_t delivered, lost, started;
    std::size_t announced, input, output;
    bool grabbing;
  };
  Counts counts();
  std::size_t payload() const;

  /// @name For the device, which holds its control lock
  /// @{
  bool armed() const { return memory_ != nullptr; }
  void begin(std::int64_t pictures);
  void end(bool kill);
  /// @}

 private:
  using State = Buffer::State;

  void disarm(bool kill);
  void run();
  bool deliver(const VirtualBoardPicture& taken);
  std::uint64_t status(std::uint32_t which);
  // These expect the lock of the new-buffer queue, which guards the buffers and the counts.
  std::shared_ptr<Buffer>& announced(const void* handle);
  void requireRoom(const Buffer& buffer) const;
  void moveToInput(Buffer& buffer);
  void moveToOutput(Buffer& buffer);
  void lend(Buffer& buffer);
  bool takeBack(Buffer& buffer);
  std::uint64_t lost();

  Device& device_;
  Event& output_;
  std::vector<std::shared_ptr<Buffer>> buffers_;
  std::vector<void*> known_;          ///< To the board's memory, by index; it forgets none.
  std::condition_variable returned_;  ///< A buffer is no longer lent.
  VirtualBoardMemory* memory_ = nullptr;
  std::size_t payload_ = 0;
  std::uint64_t remaining_ = 0, delivered_ = 0, started_ = 0;
  /// Of earlier starts of the device: a picture's number goes on with the next start.
  std::uint64_t lostBefore_ = 0, numbersBefore_ = 0;
  std::uint64_t lastNumber_ = 0;
  bool begun_ = false, closed_ = false;

  std::atomic<bool> kill_{false};
  std::thread thread_;
};

}  // namespace gentl
