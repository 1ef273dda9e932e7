/// Devices, clock and error texts of the control interface; the journal and the faults are in
/// `watch.cpp`.
#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "board/model/clock.h"
#include "board/model/errors.h"
#include "board/model/ledger.h"
#include "board/model/model.h"
#include "board/virtual_board.h"

namespace board {
namespace {

struct ErrorText {
  int code;
  const char* text;
};
constexpr ErrorText kErrorTexts[] = {
    {kNoHandle, "no such handle or device"},
    {kNoDesign, "no device or no design to open"},
    {kDeviceBusy, "the device is in use with another design"},
    {kUnknownParameter, "no such design or runtime parameter"},
    {kBadDma, "no such DMA channel"},
    {kNullValue, "no place for the value"},
    {kWrongType, "the parameter has another type"},
    {kReadOnly, "the parameter cannot be written"},
    {kDoesNotFit, "the value does not fit the type"},
    {kUnknownString, "the string was not handed out"},
    {kBadArgument, "argument out of range"},
    {kUnknownRegister, "no such register"},
    {kRegisterReadOnly, "the register cannot be written"},
    {kAlreadyStarted, "the channel is acquiring already"},
    {kNotStarted, "the channel is not acquiring"},
    {kTimeout, "the picture did not arrive in time"},
    {kNotOffered, "not offered by this runtime"},
};

struct Clock {
  std::function<std::chrono::nanoseconds()> now;
  std::function<void(std::chrono::nanoseconds)> sleep;
};

std::atomic<bool> clockReplaced{false};
std::mutex clockMutex;

std::shared_ptr<const Clock>& replacement() {
  static auto& clock = *new std::shared_ptr<const Clock>;
  return clock;
}

/// The clock in place of the steady one, or null.
std::shared_ptr<const Clock> replacedClock() {
  if (!clockReplaced.load(std::memory_order_relaxed)) return nullptr;
  const std::lock_guard guard(clockMutex);
  return replacement();
}

}  // namespace

void setClock(std::function<std::chrono::nanoseconds()> now,
              std::function<void(std::chrono::nanoseconds)> sleep) {
  const std::lock_guard guard(clockMutex);
  clockReplaced = now || sleep;
  replacement() = std::make_shared<const Clock>(Clock{std::move(now), std::move(sleep)});
}

std::chrono::nanoseconds now() {
  const auto clock = replacedClock();
  return clock && clock->now ? clock->now() : std::chrono::steady_clock::now().time_since_epoch();
}

void sleepFor(std::chrono::nanoseconds time) {
  const auto clock = replacedClock();
  if (clock && clock->sleep) {
    clock->sleep(time);
  } else {
    std::this_thread::sleep_for(time);
  }
}

KTdevice* createDevice() { return new KTdevice; }

void destroyDevice(KTdevice* device) { delete device; }

void setValue(KTdevice* device, const std::string& name, unsigned dma, double value) {
  device->setByName(name, dma, value);
}

double value(KTdevice* device, const std::string& name, unsigned dma) {
  return device->byName(name, dma);
}

Outstanding outstanding() { return countOutstanding(); }

const char* errorText(int code) {
  const auto* row = std::find_if(std::begin(kErrorTexts), std::end(kErrorTexts),
                                 [code](const ErrorText& entry) { return entry.code == code; });
  return row != std::end(kErrorTexts) ? row->text : "";
}

}  // namespace board
