/// The device's runtime side: the runtime's own parameters and the acquisition channels.
#include <algorithm>

#include "board/model/device.h"
#include "board/model/picture_memory.h"
#include "velmora/parameters.h"
#include "velmora/status.h"

namespace board {
namespace {

constexpr std::uint64_t kPixelClock = 1;  ///< Bits of the extended camera status.
constexpr std::uint64_t kLineAndFrameValid = 6;
constexpr std::int64_t kEndless = -1;

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
           return device.ports_[dma].width * device.ports_[dma].height * kBytesPerPixel;
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

/// Counts pictures as far as the channel runs, and keeps those that find a free buffer. Buffers are
/// returned between two calls only, so after one loss the others are lost too.
void Device::receive(unsigned port, const Train& pictures) {
  auto& channel = channels_[port];
  if (!acquiring(channel)) return;
  const std::int64_t count = channel.limit == kEndless
                                 ? pictures.count
                                 : std::min(pictures.count, channel.limit - channel.pictures);
  std::int64_t kept = 0;
  if (channel.memory) {
    while (kept < count && keep(port, channel.pictures + kept + 1, pictures.at(kept))) ++kept;
    channel.lost += count - kept;
    showFillLevel(port);
    showOverflow(port, kept < count);
  }
  channel.pictures += count;
  if (channel.memory && !acquiring(channel)) channel.memory->finish();
}

bool Device::keep(unsigned port, std::int64_t number, Time time) {
  const auto& settings = ports_[port];
  Exposure exposure{.port = port,
                    .number = number,
                    .time = time.count(),
                    .path = picturePathOf(settings),
                    .source = Camera{port}};
  if (settings.simulatorEnabled != 0)
    exposure.source = simulatorOf(settings);
  else
    exposure.camera = cameras_[port];
  return channels_[port].memory->add(exposure);
}

void Device::showFillLevel(unsigned port) {
  if (auto* cell = fillLevels_[port]) cell->bits[port] = channels_[port].memory->fillLevel();
}

void Device::showOverflow(unsigned port, bool overflow) {
  if (auto* cell = overflows_[port]) cell->bits[port] = overflow ? 1 : 0;
}

int Device::start(unsigned dma, std::int64_t pictures, PictureMemory* memory) {
  if (dma >= kPorts) return kBadDma;
  if (pictures < 1 && pictures != kEndless) return kBadArgument;
  const std::lock_guard guard(mutex_);
  auto& channel = channels_[dma];
  if (channel.running) return kAlreadyStarted;
  catchUp();
  if (memory) {
    if (memory->bytes() < ports_[dma].width * ports_[dma].height * kBytesPerPixel)
      return kBufferTooSmall;
    if (!memory->attach(*this)) return kMemoryInUse;
  }
  channel = {.started = true,
             .running = true,
             .limit = pictures,
             .memory = memory,
             .memoryHandle = reinterpret_cast<std::intptr_t>(memory)};
  if (memory) {
    showFillLevel(dma);
    showOverflow(dma, false);
  }
  return kOk;
}

int Device::stop(unsigned dma) {
  if (dma >= kPorts) return kBadDma;
  const std::lock_guard guard(mutex_);
  auto& channel = channels_[dma];
  if (!channel.running) return kNotStarted;
  catchUp();
  stopChannel(dma);
  return kOk;
}

void Device::stopChannel(unsigned port) {
  auto& channel = channels_[port];
  channel.running = false;
  if (channel.memory) channel.memory->detach();
  channel.memory = nullptr;
}

bool Device::usesMemory(unsigned dma, std::int64_t memory) const {
  const std::lock_guard guard(mutex_);
  return memory == 0 || dma >= kPorts || memory == channels_[dma].memoryHandle;
}

void Device::setCamera(unsigned port, std::shared_ptr<const HostCamera> camera) {
  const std::lock_guard guard(mutex_);
  catchUp();
  cameras_[port] = std::move(camera);
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
  return poll(std::chrono::seconds(seconds), [&]() -> std::int64_t {
    const auto& channel = channels_[dma];
    if (!channel.started) return kNotStarted;
    if (channel.pictures >= picture) return channel.pictures;
    return channel.running ? kTimeout : kNotStarted;
  });
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
      return channel.lost;
    case VELMORA_STATUS_ACQUIRING:
      return acquiring(channel) ? 1 : 0;
    default:
      return kBadArgument;
  }
}

}  // namespace board
