#include "board/model/picture_memory.h"

#include <algorithm>
#include <span>

#include "board/model/board_error.h"
#include "board/model/device.h"

namespace board {

PictureMemory::PictureMemory(std::uint32_t buffers, std::size_t bytes, void* const* addresses)
    : bytes_(bytes) {
  if (!addresses) own_ = std::make_unique<std::uint8_t[]>(buffers * bytes);
  due_.reserve(buffers);
  for (std::uint32_t i = 0; i < buffers; ++i)
    buffers_.push_back(
        {addresses ? static_cast<std::uint8_t*>(addresses[i]) : &own_[i * bytes], State::kFree});
}

unsigned PictureMemory::fillLevel() const {
  const std::lock_guard guard(mutex_);
  const auto used = std::ranges::count_if(
      buffers_, [](const Buffer& buffer) { return buffer.state != State::kFree; });
  return buffers_.empty()
             ? 0
             : static_cast<unsigned>(static_cast<std::size_t>(used) * 100 / buffers_.size());
}

bool PictureMemory::attach(Device& device) {
  const std::lock_guard guard(mutex_);
  Device* none = nullptr;
  if (!device_.compare_exchange_strong(none, &device)) return false;
  expecting_ = true;
  return true;
}

void PictureMemory::finish() {
  const std::lock_guard guard(mutex_);
  expecting_ = false;
}

void PictureMemory::detach() {
  finish();
  device_ = nullptr;
}

bool PictureMemory::add(const Exposure& exposure) {
  const std::lock_guard guard(mutex_);
  const auto free = std::ranges::find(buffers_, State::kFree, &Buffer::state);
  if (free == buffers_.end()) return false;
  free->state = State::kDue;
  free->exposure = exposure;
  due_.push_back(static_cast<std::uint32_t>(free - buffers_.begin()));
  return true;
}

bool PictureMemory::move(std::uint32_t buffer, State from, State to) {
  const std::lock_guard guard(mutex_);
  if (buffer >= buffers_.size() || buffers_[buffer].state != from) return false;
  buffers_[buffer].state = to;
  return true;
}

int PictureMemory::change(std::uint32_t buffer, Change how) {
  const auto changed = [&] { return (this->*how)(buffer); };
  Device* const device = device_;
  return (device ? device->withMemory(*this, changed) : changed()) ? kOk : kBadArgument;
}

int PictureMemory::addBuffer(void* address) {
  const auto add = [&] {
    const std::lock_guard guard(mutex_);
    due_.reserve(buffers_.size() + 1);
    buffers_.push_back({static_cast<std::uint8_t*>(address), State::kHost});
    return static_cast<int>(buffers_.size()) - 1;
  };
  Device* const device = device_;
  return device ? device->withMemory(*this, add) : add();
}

/// Reserves the oldest picture; `kTimeout` when there is none yet.
int PictureMemory::nextDue(std::uint32_t& index, Buffer*& buffer) {
  const std::lock_guard guard(mutex_);
  if (due_.empty()) return expecting_ ? kTimeout : kNotStarted;
  index = due_.front();
  due_.erase(due_.begin());
  buffer = &buffers_[index];
  buffer->state = State::kComputed;
  return kOk;
}

int PictureMemory::take(std::chrono::nanoseconds timeout, VirtualBoardPicture& picture) {
  std::uint32_t index = 0;
  Buffer* buffer = nullptr;
  const auto next = [&] { return nextDue(index, buffer); };
  Device* const device = device_;
  if (const int code = device ? device->poll(timeout, next) : next()) return code;
  try {
    picture = compute(index, *buffer);
  } catch (...) {
    const std::lock_guard guard(mutex_);
    buffer->state = State::kDue;
    due_.insert(due_.begin(), index);  // There is room: it was in before.
    throw;
  }
  const std::lock_guard guard(mutex_);
  buffer->state = State::kHost;
  return kOk;
}

/// Nobody else uses a buffer that is being computed.
VirtualBoardPicture PictureMemory::compute(std::uint32_t index, const Buffer& buffer) const {
  const auto& [port, number, time, path, source, camera] = buffer.exposure;
  PictureSource seen = source;
  std::vector<std::uint8_t> filled;
  bool sent = true;
  if (camera && camera->fill) {
    HostPicture next = camera->format;
    filled.resize(std::size_t{next.width} * next.height * (next.bits / 8));
    next.pixels = filled.data();
    sent = camera->fill(camera->context, port, number, filled.data()) == 0;
    seen = next;
  } else if (camera) {
    seen = camera->picture(number);
  }
  const std::size_t lines =
      sent ? renderPicture(seen, number, path, std::span(buffer.address, bytes_)) : 0;
  return {.buffer = index,
          .port = port,
          .number = number,
          .time = time,
          .pixels = buffer.address,
          .bytes = lines * path.width * kBytesPerPixel,
          .width = path.width,
          .height = static_cast<std::uint32_t>(lines),
          .complete = lines == path.height ? 1 : 0};
}

}  // namespace board
