/// The control side's access to devices.
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "board/model/model.h"
#include "board/virtual_board.h"

namespace board {
namespace {

constexpr double kFastestTrain = 15e6;  // Hz

template <class Use>
void onInput(KTdevice* device, unsigned input, Use use) {
  if (input >= TriggerBlock::kInputs) throw std::out_of_range("trigger input");
  device->withTrigger(use);
}

}  // namespace

KTdevice* createDevice() { return new KTdevice; }

void destroyDevice(KTdevice* device) { delete device; }

void setValue(KTdevice* device, const std::string& name, unsigned dma, double value) {
  device->setByName(name, dma, value);
}

double value(KTdevice* device, const std::string& name, unsigned dma) {
  return device->byName(name, dma);
}

void setInput(KTdevice* device, unsigned input, bool level) {
  onInput(device, input, [&](TriggerBlock& trigger) { trigger.drive(input, level); });
}

void pulseInput(KTdevice* device, unsigned input, std::chrono::nanoseconds width) {
  const auto half = static_cast<double>(std::max(width.count(), std::int64_t{0}));
  onInput(device, input, [&](TriggerBlock& trigger) { trigger.drive(input, half, 1); });
}

void trainInput(KTdevice* device, unsigned input, double rate, std::int64_t pulses) {
  if (!(rate > 0)) return setInput(device, input, false);
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max() / 2;
  const double half = 0.5e9 / std::min(rate, kFastestTrain);
  const auto count = pulses == kEndless ? kMost : std::clamp(pulses, std::int64_t{0}, kMost);
  onInput(device, input, [&](TriggerBlock& trigger) { trigger.drive(input, half, count); });
}

unsigned outputs(KTdevice* device) {
  return device->withTrigger([](TriggerBlock& trigger) { return trigger.outputs(); });
}

void enableEvents(KTdevice* device, std::uint64_t mask) {
  device->withTrigger([=](TriggerBlock& trigger) { trigger.events().enable(mask); });
}

std::optional<BoardEvent> takeEvent(KTdevice* device) {
  const auto event =
      device->withTrigger([](TriggerBlock& trigger) { return trigger.events().take(); });
  if (!event) return std::nullopt;
  return BoardEvent{event->index, device->eventName(event->index), event->time};
}

std::uint64_t lostEvents(KTdevice* device) {
  return device->withTrigger([](TriggerBlock& trigger) { return trigger.events().lost(); });
}

}  // namespace board
