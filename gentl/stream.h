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
  explicit Stream(std::shared_ptr<Device> above);
  ~Stream() override;

  const std::shared_ptr<Device> parent;  ///< Until it is closed, each holds the other.
  Device& device;

  std::shared_ptr<Buffer> announce(void* base, std::size_t size, void* user);
  void revoke(const Buffer& buffer);
  void enqueue(Buffer& buffer);
  void flush(ACQ_QUEUE_TYPE operation);
  std::shared_ptr<Buffer> buffer(const void* handle);
  void* bufferId(std::uint32_t index);
  void bufferInfo(Buffer& buffer, BUFFER_INFO_CMD command, INFO_DATATYPE* type, void* out,
                  std::size_t* size);

  void start(std::uint64_t pictures);
  void stop(bool kill);
  void info(STREAM_INFO_CMD command, INFO_DATATYPE* type, void* out, std::size_t* size);
  void close() override;

  /// @name For the device, which holds its control lock
  /// @{
  bool armed() const { return memory_ != nullptr; }
  void begin(std::int64_t pictures);
  void end(bool kill);
  /// @}

  struct Counts {
    std::uint64_t delivered, lost, started;
    std::size_t announced, input, output;
    bool grabbing;
  };
  Counts counts();

 private:
  using State = Buffer::State;

  void disarm(bool kill);
  void run();
  bool deliver(const VirtualBoardPicture& taken);
  // These expect the lock of the new-buffer queue, which guards the buffers and the counts.
  Buffer& announcedOne(const void* handle);
  void moveToInput(Buffer& buffer);
  void moveToOutput(Buffer& buffer);
  void lend(Buffer& buffer);
  bool takeBack(Buffer& buffer);
  std::uint64_t lost();

  EventQueue& output_;
  std::vector<std::shared_ptr<Buffer>> buffers_;
  std::vector<std::shared_ptr<Buffer>>
      known_;  ///< To the board, by index; it keeps them till the end.
  VirtualBoardMemory* memory_ = nullptr;
  std::size_t payload_ = 0;
  std::uint64_t remaining_ = 0, delivered_ = 0, started_ = 0, lostBefore_ = 0;
  std::int64_t lastNumber_ = 0;
  bool begun_ = false, closed_ = false;

  std::atomic<bool> kill_{false}, finished_{true};
  std::thread thread_;
};

}  // namespace gentl
