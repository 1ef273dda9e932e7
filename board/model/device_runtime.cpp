/// The device's runtime side: the runtime's own parameters and the acquisition channels.
#include <algorithm>

#include "board/model/board_error.h"
#include "board/model/clock.h"
#include "board/model/device.h"
#include "velmora/parameters.h"
#include "velmora/status.h"

namespace board {
namespace {

constexpr std::uint64_t kPixelBytes = 3;  ///< Of the colour pictures that the design delivers.
constexpr std::uint64_t kPixelClock = 1;  ///< Bits of the extended camera status.
constexpr std::uint64_t kLineAndFrameValid = 6;
constexpr std::int64_t kEndless = -1;
constexpr std::chrono::nanoseconds kLongestPause = std::chrono::milliseconds(2);
constexpr std::chrono::nanoseconds kShortestPause = std::chrono::microseconds(20);

/// Every port has one DMA channel, of its own number.
std::uint64_t portCount(const Device&, unsigned) { return kPorts; }
std::uint64_t portOfDma(const Device&, unsigned dma) { return dma; }

}  // namespace

const std::array<Device::RuntimeParameter, Device::kRuntimeParameterCount>
    Device::kRuntimeParameters{{
        {FG_TIMEOUT, "FG_TIMEOUT", REGISTER_INFO_INT, true, nullptr},
        {FG_APC_STOP_TIMEOUT, "FG_APC_STOP_TIMEOUT", REGISTER_INFO_INT, true, nullptr},
        {FG_DMASTATUS, "FG_DMASTATUS", REGISTER_INFO_UINT, false,
         [](const Device& device, unsigned dma) -> std::uint64_t {
           return device.acquiring(device.channels_[dma]) ? 1 : 0;
         }},
        {FG_CAMSTATUS_EXTENDED, "FG_CAMSTATUS_EXTENDED", REGISTER_INFO_UINT, false,
         [](const Device& device, unsigned dma) {
           return kPixelClock | (device.trigger_.delivers(dma) ? kLineAndFrameValid : 0);
         }},
        {FG_TRANSFER_LEN, "FG_TRANSFER_LEN", REGISTER_INFO_UINT64, false,
         [](const Device& device, unsigned dma) {
           return device.ports_[dma].width * device.ports_[dma].height * kPixelBytes;
         }},
        {FG_NR_OF_DMAS, "FG_NR_OF_DMAS", REGISTER_INFO_UINT, false, portCount},
        {FG_NR_OF_CAMS, "FG_NR_OF_CAMS", REGISTER_INFO_UINT, false, portCount},
        {FG_NR_OF_PROCESSES, "FG_NR_OF_PROCESSES", REGISTER_INFO_UINT, false, portCount},
        {FG_DMA_PORT, "FG_DMA_PORT", REGISTER_INFO_UINT, false, portOfDma},
        {FG_CAM_PORT, "FG_CAM_PORT", REGISTER_INFO_UINT, false, portOfDma},
    }};

std::size_t Device::runtimeIndex(int id) {
  const auto* row = std::find_if(kRuntimeParameters.begin(), kRuntimeParameters.end(),
                                 [id](const RuntimeParameter& r) { return r.id == id; });
  return static_cast<std::size_t>(row - kRuntimeParameters.begin());
}

std::uint64_t Device::readRuntime(std::size_t index, unsigned dma) {
  const auto& row = kRuntimeParameters[index];
  const auto& kept = runtime_[index][dma];
  if (kept) return *kept;
  if (!row.read) return 0;
  catchUp();
  return row.read(*this, dma);
}

bool Device::acquiring(const Channel& channel) const {
  return channel.running && (channel.limit == kEndless || channel.pictures < channel.limit);
}

int Device::start(unsigned dma, std::int64_t pictures) {
  if (dma >= kPorts) return kBadDma;
  if (pictures < 1 && pictures != kEndless) return kBadArgument;
  const std::lock_guard guard(mutex_);
  auto& channel = channels_[dma];
  if (channel.running) return kAlreadyStarted;
  catchUp();
  channel = {.started = true, .running = true, .limit = pictures};
  return kOk;
}

int Device::stop(unsigned dma) {
  if (dma >= kPorts) return kBadDma;
  const std::lock_guard guard(mutex_);
  auto& channel = channels_[dma];
  if (!channel.running) return kNotStarted;
  catchUp();
  channel.running = false;
  return kOk;
}

std::int64_t Device::lastPicture(unsigned dma) {
  if (dma >= kPorts) return kBadDma;
  const std::lock_guard guard(mutex_);
  catchUp();
  const auto& channel = channels_[dma];
  return channel.started ? channel.pictures : std::int64_t{kNotStarted};
}

std::int64_t Device::waitForPicture(std::int64_t picture, unsigned dma, std::int64_t seconds) {
  if (dma >= kPorts) return kBadDma;
  if (seconds < 0) return kBadArgument;
  const auto deadline = now() + std::chrono::seconds(seconds);
  // Polls, since settings can change in the meantime.
  while (true) {
    std::chrono::nanoseconds pause{};
    {
      const std::lock_guard guard(mutex_);
      const auto& channel = channels_[dma];
      if (!channel.started) return kNotStarted;
      const auto time = now();
      trigger_.advance(time);
      if (channel.pictures >= picture) return channel.pictures;
      if (!channel.running) return kNotStarted;
      if (time >= deadline) return kTimeout;
      pause = std::min(trigger_.next(), deadline) - time;
    }
    sleepFor(std::clamp(pause, kShortestPause, kLongestPause));
  }
}

std::int64_t Device::channelStatus(std::uint32_t status, unsigned dma) {
  if (dma >= kPorts) return kBadDma;
  const std::lock_guard guard(mutex_);
  catchUp();
  const auto& channel = channels_[dma];
  switch (status) {
    case VELMORA_STATUS_GRABBED_PICTURES:
      return channel.started ? channel.pictures : 0;
    case VELMORA_STATUS_LOST_PICTURES:
      return 0;
    case VELMORA_STATUS_ACQUIRING:
      return acquiring(channel) ? 1 : 0;
    default:
      return kBadArgument;
  }
}

}  // namespace board
