/// The control side in C: devices, their values, pictures, inputs and events.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <span>

#include "board/guarded.h"
#include "board/model/ledger.h"
#include "board/model/model.h"
#include "board/model/picture_memory.h"
#include "velmora/virtual_board.h"

namespace board {
namespace {

constexpr double kFastestTrain = 15e6;  // Hz
constexpr std::uint32_t kWidest = 8192;
constexpr std::uint32_t kHighest = 65535;

/// Nothing for a number that is no time to wait.
std::optional<std::chrono::nanoseconds> timeout(double seconds) {
  constexpr double kLongest = 3e8;
  if (!(seconds >= 0)) return std::nullopt;
  return std::chrono::nanoseconds(std::llround(std::min(seconds, kLongest) * 1e9));
}

bool acceptable(const VirtualBoardRawPicture& format) {
  return format.width - 1 < kWidest && format.height - 1 < kHighest &&
         (format.bits == 8 || format.bits == 16);
}

HostPicture formatOf(const VirtualBoardRawPicture& raw) {
  return {.width = raw.width, .height = raw.height, .bits = raw.bits};
}

std::shared_ptr<const HostCamera> copyOf(std::span<const VirtualBoardRawPicture> pictures) {
  auto camera = std::make_shared<HostCamera>();
  camera->pixels.reserve(pictures.size());
  for (const auto& raw : pictures) {
    const auto* first = static_cast<const std::uint8_t*>(raw.pixels);
    const std::size_t bytes = std::size_t{raw.width} * raw.height * (raw.bits / 8);
    auto& copy = camera->pixels.emplace_back(first, first + bytes);
    auto picture = formatOf(raw);
    picture.pixels = copy.data();
    camera->pictures.push_back(picture);
  }
  return camera;
}

/// What the trigger block answers; 0 without a device, or without memory to catch up with the
/// clock.
template <class Number>
Number ask(KTdevice* device, Number (*question)(TriggerBlock&)) {
  Number answer = 0;
  if (device) {
    guarded([&] {
      answer = device->withTrigger(question);
      return int{kOk};
    });
  }
  return answer;
}

template <class Use>
int onInput(KTdevice* device, std::uint32_t input, bool valid, Use use) {
  if (!device) return kNoHandle;
  if (input >= TriggerBlock::kInputs || !valid) return kBadArgument;
  return guarded([&] {
    device->withTrigger(use);
    return int{kOk};
  });
}

}  // namespace
}  // namespace board

using namespace board;

KTdevice* VirtualBoard_createDevice() {
  try {
    return new KTdevice;
  } catch (...) {
    return nullptr;
  }
}

void VirtualBoard_destroyDevice(KTdevice* device) { delete device; }

VirtualBoardMemory* VirtualBoard_createMemory(std::uint32_t buffers, std::size_t bytes,
                                              void* const* addresses) {
  if (bytes == 0 || buffers > std::numeric_limits<std::size_t>::max() / bytes) return nullptr;
  if (addresses && std::count(addresses, addresses + buffers, nullptr) != 0) return nullptr;
  try {
    auto memory = std::make_unique<VirtualBoardMemory>(buffers, bytes, addresses);
    handOut(HandedOut::kMemory, memory.get());
    return memory.release();
  } catch (...) {
    return nullptr;
  }
}

int VirtualBoard_destroyMemory(VirtualBoardMemory* memory) {
  if (!isHandedOut(HandedOut::kMemory, memory)) return kNoHandle;
  if (memory->inUse()) return kMemoryInUse;
  giveBack(HandedOut::kMemory, memory);
  delete memory;
  return kOk;
}

int VirtualBoard_takePicture(VirtualBoardMemory* memory, double seconds,
                             VirtualBoardPicture* picture) {
  if (!isHandedOut(HandedOut::kMemory, memory)) return kNoHandle;
  if (!picture) return kNullValue;
  const auto longest = timeout(seconds);
  if (!longest) return kBadArgument;
  return guarded([&] { return memory->take(*longest, *picture); });
}

int VirtualBoard_returnBuffer(VirtualBoardMemory* memory, std::uint32_t buffer) {
  if (!isHandedOut(HandedOut::kMemory, memory)) return kNoHandle;
  return guarded([&] { return memory->returnBuffer(buffer); });
}

int VirtualBoard_addBuffer(VirtualBoardMemory* memory, void* address) {
  if (!isHandedOut(HandedOut::kMemory, memory)) return kNoHandle;
  if (!address) return kNullValue;
  return guarded([&] { return memory->addBuffer(address); });
}

int VirtualBoard_holdBuffer(VirtualBoardMemory* memory, std::uint32_t buffer) {
  if (!isHandedOut(HandedOut::kMemory, memory)) return kNoHandle;
  return guarded([&] { return memory->holdBuffer(buffer); });
}

int VirtualBoard_setCameraPictures(KTdevice* device, std::uint32_t port, std::uint32_t count,
                                   const VirtualBoardRawPicture* pictures) {
  if (!device) return kNoHandle;
  if (port >= kPorts) return kBadDma;
  if (count != 0 && !pictures) return kNullValue;
  const std::span given(pictures, count);
  for (const auto& raw : given)
    if (!raw.pixels || !acceptable(raw)) return kBadArgument;
  return guarded([&] {
    device->setCamera(port, count != 0 ? copyOf(given) : nullptr);
    return int{kOk};
  });
}

int VirtualBoard_setCameraFunction(KTdevice* device, std::uint32_t port,
                                   VirtualBoardFillPicture fill, void* context,
                                   const VirtualBoardRawPicture* format) {
  if (!device) return kNoHandle;
  if (port >= kPorts) return kBadDma;
  if (!fill || !format) return kNullValue;
  if (!acceptable(*format)) return kBadArgument;
  return guarded([&] {
    auto camera = std::make_shared<HostCamera>();
    camera->fill = fill;
    camera->context = context;
    camera->format = formatOf(*format);
    device->setCamera(port, std::move(camera));
    return int{kOk};
  });
}

int VirtualBoard_setInput(KTdevice* device, std::uint32_t input, int level) {
  return onInput(device, input, true,
                 [=](TriggerBlock& trigger) { trigger.drive(input, level != 0); });
}

int VirtualBoard_pulseInput(KTdevice* device, std::uint32_t input, std::int64_t width) {
  return onInput(device, input, width >= 0, [=](TriggerBlock& trigger) {
    trigger.drive(input, static_cast<double>(width), 1);
  });
}

int VirtualBoard_trainInput(KTdevice* device, std::uint32_t input, double rate,
                            std::int64_t pulses) {
  if (rate == 0 && pulses >= -1) return VirtualBoard_setInput(device, input, 0);
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max() / 2;
  const bool valid = rate > 0 && rate <= kFastestTrain && pulses >= -1;
  return onInput(device, input, valid, [=](TriggerBlock& trigger) {
    trigger.drive(input, 0.5e9 / rate, pulses == -1 ? kMost : std::min(pulses, kMost));
  });
}

std::uint32_t VirtualBoard_outputs(KTdevice* device) {
  return ask<std::uint32_t>(device, [](TriggerBlock& trigger) { return trigger.outputs(); });
}

int VirtualBoard_enableEvents(KTdevice* device, std::uint64_t mask) {
  return onInput(device, 0, true, [=](TriggerBlock& trigger) { trigger.events().enable(mask); });
}

int VirtualBoard_takeEvent(KTdevice* device, double seconds, VirtualBoardEvent* event) {
  if (!device) return kNoHandle;
  if (!event) return kNullValue;
  const auto longest = timeout(seconds);
  if (!longest) return kBadArgument;
  return guarded([&] {
    return device->poll(*longest, [&] {
      const auto entry = device->events().take();
      if (entry) *event = {std::uint64_t{1} << entry->index, entry->time.count()};
      return entry ? kOk : kTimeout;
    });
  });
}

std::uint64_t VirtualBoard_lostEvents(KTdevice* device) {
  return ask<std::uint64_t>(device, [](TriggerBlock& trigger) { return trigger.events().lost(); });
}

int VirtualBoard_setValue(KTdevice* device, const char* name, std::uint32_t dma, double value) {
  if (!device) return kNoHandle;
  if (!name) return kNullValue;
  return guarded([&] { return device->setByName(name, dma, value); });
}

int VirtualBoard_getValue(KTdevice* device, const char* name, std::uint32_t dma, double* value) {
  if (!device) return kNoHandle;
  if (!name || !value) return kNullValue;
  return guarded([&] { return device->getByName(name, dma, *value); });
}

VirtualBoardOutstanding VirtualBoard_outstanding() { return outstanding(); }

const char* VirtualBoard_errorText(int code) { return errorText(code); }
