#include "gentl/stream.h"

#include <chrono>
#include <cstring>

#include "gentl/device.h"
#include "velmora/errors.h"
#include "velmora/parameters.h"

namespace gentl {
namespace {

constexpr std::uint64_t kLostEvent = 1;  ///< Module event, with the number of lost pictures.

using Counts = Stream::Counts;

template <auto member>
Value counted(Stream& stream) {
  return toValue(stream.counts().*member);
}

const InfoRow<Stream> kInfos[] = {
    {STREAM_INFO_ID, INFO_DATATYPE_STRING, tell<&Module::id>, "StreamID"},
    {STREAM_INFO_NUM_DELIVERED, INFO_DATATYPE_UINT64, counted<&Counts::delivered>,
     "StreamDeliveredFrameCount"},
    {STREAM_INFO_NUM_UNDERRUN, INFO_DATATYPE_UINT64, counted<&Counts::lost>,
     "StreamLostFrameCount"},
    {STREAM_INFO_NUM_ANNOUNCED, INFO_DATATYPE_SIZET, counted<&Counts::announced>,
     "StreamAnnouncedBufferCount"},
    {STREAM_INFO_NUM_QUEUED, INFO_DATATYPE_SIZET, counted<&Counts::input>,
     "StreamInputBufferCount"},
    {STREAM_INFO_NUM_AWAIT_DELIVERY, INFO_DATATYPE_SIZET, counted<&Counts::output>,
     "StreamOutputBufferCount"},
    {STREAM_INFO_NUM_STARTED, INFO_DATATYPE_UINT64, counted<&Counts::started>,
     "StreamStartedFrameCount"},
    {STREAM_INFO_PAYLOAD_SIZE, INFO_DATATYPE_SIZET, tell<&Stream::payload>},
    {STREAM_INFO_IS_GRABBING, INFO_DATATYPE_BOOL8, counted<&Counts::grabbing>, "StreamIsGrabbing"},
    {STREAM_INFO_DEFINES_PAYLOADSIZE, INFO_DATATYPE_BOOL8, tell<false>},
    {STREAM_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
    {STREAM_INFO_NUM_CHUNKS_MAX, INFO_DATATYPE_SIZET, tell<0>},
    {STREAM_INFO_BUF_ANNOUNCE_MIN, INFO_DATATYPE_SIZET, tell<1>, "StreamAnnounceBufferMinimum"},
    {STREAM_INFO_BUF_ALIGNMENT, INFO_DATATYPE_SIZET, tell<1>},
    {STREAM_INFO_FLOW_TABLE, INFO_DATATYPE_BUFFER, nullptr},
    {STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR, INFO_DATATYPE_BUFFER, nullptr},
};

}  // namespace

Stream::Stream(const std::shared_ptr<Device>& device)
    : Module(device->belowId(0), "TLDataStream", device, {EVENT_NEW_BUFFER}),
      device_(*device),
      output_(event(EVENT_NEW_BUFFER)) {
  output_.setTaken([this](const std::string& data, bool consumed) {
    void* taken = nullptr;
    std::memcpy(&taken, data.data(), sizeof taken);
    announced(taken)->state = State::kIdle;
    if (consumed) ++delivered_;
  });
  addInfos(kInfos, [this]() -> Stream& { return *this; });
  addEnumeration("StreamType", {kTechnology});
  addEnumeration("StreamBufferHandlingMode", {"Default"});
  addEvent("EventLostFrames", kLostEvent);
}

Stream::~Stream() { disarm(true); }

void Stream::announce(void* base, std::size_t size, void* user, BUFFER_HANDLE* handle) {
  requirePointer(handle);
  require(size > 0, GC_ERR_INVALID_PARAMETER, "a buffer of no size");
  auto made = std::make_shared<Buffer>(shared_from_this(), base, size, user);
  const std::lock_guard guard(output_.mutex);
  require(!closed_, GC_ERR_INVALID_HANDLE, "the stream is closed");
  for (const auto& other : buffers_)
    require(other->base() != made->base(), GC_ERR_RESOURCE_IN_USE, "the memory is announced");
  buffers_.push_back(made);
  *handle = Registry::instance().add(made);
}

std::shared_ptr<Buffer>& Stream::announced(const void* handle) {
  const auto found = std::ranges::find(buffers_, handle, [](const auto& b) { return b->handle; });
  require(handle && found != buffers_.end(), GC_ERR_INVALID_HANDLE, "not a buffer of this stream");
  return *found;
}

void Stream::requireBuffer(BUFFER_HANDLE handle) {
  const std::lock_guard guard(output_.mutex);
  announced(handle);
}

void Stream::revoke(BUFFER_HANDLE handle, void** base, void** user) {
  std::shared_ptr<Buffer> gone;
  {
    const std::lock_guard guard(output_.mutex);
    std::shared_ptr<Buffer>& found = announced(handle);
    require(found->state == State::kIdle && !found->lent, GC_ERR_BUSY, "the buffer is queued");
    gone = found;
    std::erase(buffers_, gone);
  }
  gone->close();
  if (base) *base = gone->own() ? nullptr : gone->base();
  if (user) *user = gone->user;
}

void Stream::enqueue(BUFFER_HANDLE handle) {
  const std::lock_guard guard(output_.mutex);
  Buffer& buffer = *announced(handle);
  require(buffer.state == State::kIdle, GC_ERR_RESOURCE_IN_USE, "the buffer is queued");
  requireRoom(buffer);
  moveToInput(buffer);
}

void Stream::requireRoom(const Buffer& buffer) const {
  require(!memory_ || buffer.size >= payload_, GC_ERR_BUFFER_TOO_SMALL,
          "the buffer is smaller than a picture");
}

void Stream::moveToInput(Buffer& buffer) {
  if (memory_) lend(buffer);
  buffer.state = State::kInput;
  buffer.picture = {};
}

void Stream::moveToOutput(Buffer& buffer) {
  buffer.state = State::kOutput;
  output_.push(eventData(reinterpret_cast<std::uintptr_t>(buffer.handle),
                         reinterpret_cast<std::uintptr_t>(buffer.user)));
}

void Stream::lend(Buffer& buffer) {
  if (buffer.lent) return;
  if (buffer.index < 0) {
    const auto known = std::ranges::find(known_, buffer.base());
    const auto index = static_cast<int>(known - known_.begin());
    if (known == known_.end()) {
      require(VirtualBoard_addBuffer(memory_, buffer.base()) == index, GC_ERR_OUT_OF_MEMORY,
              "the board takes no more buffers");
      known_.push_back(buffer.base());
    }
    buffer.index = index;
  }
  VirtualBoard_returnBuffer(memory_, static_cast<std::uint32_t>(buffer.index));
  buffer.lent = true;
}

/// False if the board has a picture for the buffer already. What becomes of the picture depends on
/// the buffer's state when it comes.
bool Stream::takeBack(Buffer& buffer) {
  if (buffer.lent &&
      VirtualBoard_holdBuffer(memory_, static_cast<std::uint32_t>(buffer.index)) == VELMORA_OK)
    buffer.lent = false;
  return !buffer.lent;
}

void Stream::flush(ACQ_QUEUE_TYPE operation) {
  require(operation >= ACQ_QUEUE_INPUT_TO_OUTPUT && operation <= ACQ_QUEUE_ALL_DISCARD,
          GC_ERR_INVALID_PARAMETER, "no such operation");
  std::unique_lock lock(output_.mutex);
  const auto each = [&](State state, auto action) {
    for (const auto& buffer : buffers_)
      if (buffer->state == state) action(*buffer);
  };
  if (operation == ACQ_QUEUE_INPUT_TO_OUTPUT)
    return each(State::kInput, [&](Buffer& buffer) {
      if (!takeBack(buffer)) return;
      buffer.picture = {.incomplete = true};  // There is none in it.
      moveToOutput(buffer);
    });
  const auto fits = [&](const Buffer& buffer) { requireRoom(buffer); };
  const bool toInput =
      operation == ACQ_QUEUE_ALL_TO_INPUT || operation == ACQ_QUEUE_UNQUEUED_TO_INPUT;
  if (toInput) each(State::kIdle, fits);
  if (operation == ACQ_QUEUE_ALL_TO_INPUT) each(State::kOutput, fits);
  const auto discard = [](Buffer& buffer) { buffer.state = State::kIdle; };
  if (operation != ACQ_QUEUE_UNQUEUED_TO_INPUT) {
    each(State::kOutput, discard);
    output_.drop();
  }
  if (operation == ACQ_QUEUE_ALL_DISCARD) {
    each(State::kInput, [&](Buffer& buffer) {
      takeBack(buffer);
      discard(buffer);
    });
    // Those that the board has pictures for are free when these have come and are dropped.
    const auto comes = [](const auto& buffer) {
      return buffer->state == State::kIdle && buffer->lent;
    };
    returned_.wait(lock, [&] { return std::ranges::none_of(buffers_, comes); });
  }
  if (toInput) each(State::kIdle, [&](Buffer& buffer) { moveToInput(buffer); });
}

void Stream::bufferId(std::uint32_t index, BUFFER_HANDLE* handle) {
  const std::lock_guard guard(output_.mutex);
  requireIndex(index, buffers_.size());
  put(handle, buffers_[index]->handle);
}

void Stream::bufferInfo(BUFFER_HANDLE handle, BUFFER_INFO_CMD command, Answer to) {
  const std::lock_guard guard(output_.mutex);
  announced(handle)->info(command, to);
}

std::size_t Stream::payload() const { return device_.grabber.payload(device_.port); }

void Stream::start(ACQ_START_FLAGS flags, std::uint64_t pictures) {
  require(flags == ACQ_START_FLAGS_DEFAULT, GC_ERR_INVALID_PARAMETER, "no such flags");
  require(pictures > 0, GC_ERR_INVALID_PARAMETER, "no pictures to acquire");
  const std::lock_guard control(device_.control);
  require(!memory_, GC_ERR_RESOURCE_IN_USE, "the acquisition is started");
  const std::size_t payload = this->payload();
  {
    const std::lock_guard guard(output_.mutex);
    require(!closed_, GC_ERR_INVALID_HANDLE, "the stream is closed");
    for (const auto& buffer : buffers_)
      require(buffer->state != State::kInput || buffer->size >= payload, GC_ERR_BUFFER_TOO_SMALL,
              "a queued buffer is smaller than a picture");
    memory_ = VirtualBoard_createMemory(0, payload, nullptr);
    require(memory_, GC_ERR_OUT_OF_MEMORY, "no picture memory");
    payload_ = payload;
    remaining_ = pictures;
    delivered_ = started_ = lostBefore_ = numbersBefore_ = lastNumber_ = 0;
    for (const auto& buffer : buffers_)
      if (buffer->state == State::kInput) lend(*buffer);
  }
  if (!device_.sending) return;
  try {
    device_.send();
  } catch (...) {
    disarm(true);
    throw;
  }
}

void Stream::stop(ACQ_STOP_FLAGS flags) {
  require(flags == ACQ_STOP_FLAGS_DEFAULT || flags == ACQ_STOP_FLAGS_KILL, GC_ERR_INVALID_PARAMETER,
          "no such flags");
  const std::lock_guard control(device_.control);
  require(memory_, GC_ERR_RESOURCE_IN_USE, "no acquisition is started");
  disarm(flags == ACQ_STOP_FLAGS_KILL);
}

void Stream::disarm(bool kill) {
  if (!memory_) return;
  end(kill);
  const std::lock_guard guard(output_.mutex);
  lostBefore_ = lost();
  begun_ = false;
  VirtualBoard_destroyMemory(memory_);
  memory_ = nullptr;
  for (const auto& buffer : buffers_) {
    buffer->index = -1;
    buffer->lent = false;
  }
  returned_.notify_all();
  known_.clear();
}

void Stream::begin(std::int64_t pictures) {
  if (thread_.joinable()) {
    if (status(VELMORA_STATUS_ACQUIRING) > 0) return;
    thread_.join();  // It hands out what is left and ends.
  }
  const std::lock_guard guard(output_.mutex);
  if (remaining_ == 0) return;
  const std::uint64_t lostNow = lost();
  const std::uint64_t numbersNow =
      numbersBefore_ + (begun_ ? status(VELMORA_STATUS_GRABBED_PICTURES) : 0);
  if (const int code = Fg_AcquireEx(device_.grabber.fg(), device_.port, pictures, 0, memory_))
    fail(GC_ERR_INVALID_VALUE, "the acquisition does not start: " + codeText(code));
  lostBefore_ = lostNow;
  numbersBefore_ = numbersNow;
  begun_ = true;
  kill_ = false;
  thread_ = std::thread([this] { run(); });
}

void Stream::end(bool kill) {
  if (!thread_.joinable()) return;
  kill_ = kill;
  Fg_stopAcquireEx(device_.grabber.fg(), device_.port, 0, 0);
  thread_.join();
}

/// Takes pictures until none are left after a stop, which it does itself when nobody wants more.
void Stream::run() {
  constexpr double kPatience = 3600;  // Seconds; a stop ends the wait.
  const auto stop = [this] { Fg_stopAcquireEx(device_.grabber.fg(), device_.port, 0, 0); };
  for (;;) {
    VirtualBoardPicture picture{};
    const int code = VirtualBoard_takePicture(memory_, kPatience, &picture);
    if (code == VELMORA_BOARD_TIMEOUT) continue;
    if (code == VELMORA_BOARD_NOT_STARTED || kill_) break;
    if (code == VELMORA_OK) {
      if (!deliver(picture)) stop();
    } else {
      event(EVENT_ERROR).fire(errorData(GC_ERR_OUT_OF_MEMORY, codeText(code)));  // It stays due.
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  stop();
}

/// False when no more are wanted.
bool Stream::deliver(const VirtualBoardPicture& taken) {
  const std::uint64_t number = numbersBefore_ + static_cast<std::uint64_t>(taken.number);
  const std::uint64_t missed = number - lastNumber_ - 1;
  lastNumber_ = number;
  if (missed > 0) event(EVENT_MODULE).fire(eventData(kLostEvent, missed));
  const auto setting = [&](int id) { return device_.grabber.word(id, device_.port); };
  const Buffer::Picture picture{.present = true,
                                .incomplete = taken.complete == 0,
                                .filled = taken.bytes,
                                .width = taken.width,
                                .height = taken.complete ? taken.height : setting(FG_HEIGHT),
                                .lines = taken.height,
                                .xOffset = setting(FG_XOFFSET),
                                .yOffset = setting(FG_YOFFSET),
                                .time = static_cast<std::uint64_t>(taken.time),
                                .number = number};
  const std::lock_guard guard(output_.mutex);
  Buffer& buffer = **std::ranges::find(buffers_, static_cast<int>(taken.buffer),
                                       [](auto& b) { return b->index; });
  buffer.lent = false;
  returned_.notify_all();
  if (remaining_ == 0) return false;
  ++started_;
  if (buffer.state != State::kInput) return true;  // Discarded meanwhile.
  buffer.picture = picture;
  moveToOutput(buffer);
  return remaining_ == GENTL_INFINITE || --remaining_ > 0;
}

void Stream::info(STREAM_INFO_CMD command, Answer to) { answer(kInfos, *this, command, to); }

std::uint64_t Stream::status(std::uint32_t which) {
  const auto now = Fg_getStatusEx(device_.grabber.fg(), which, 0,
                                  static_cast<std::int32_t>(device_.port), nullptr);
  return static_cast<std::uint64_t>(std::max<std::int64_t>(now, 0));
}

std::uint64_t Stream::lost() {
  return lostBefore_ + (begun_ ? status(VELMORA_STATUS_LOST_PICTURES) : 0);
}

Stream::Counts Stream::counts() {
  const std::lock_guard guard(output_.mutex);
  const auto in = [&](State state) {
    return static_cast<std::size_t>(std::ranges::count(buffers_, state, &Buffer::state));
  };
  return {delivered_,
          lost(),
          started_,
          buffers_.size(),
          in(State::kInput),
          in(State::kOutput),
          memory_ && remaining_ > 0};
}

void Stream::close() {
  std::vector<std::shared_ptr<Buffer>> gone;
  {
    const std::lock_guard control(device_.control);
    disarm(true);
    device_.stream = nullptr;
    const std::lock_guard guard(output_.mutex);
    closed_ = true;
    output_.drop();
    gone.swap(buffers_);
  }
  for (const auto& buffer : gone) buffer->close();
  Module::close();
}

}  // namespace gentl
