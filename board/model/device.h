/// The board device: register file, KT parameter values and acquisition channels.
///
/// The first inner handle configures the device with its design: registers and parameters take
/// their power-on values. They keep what is written to them, even while no handle is open, until a
/// handle is opened on a design with other content.
///
/// All functions may be called from any thread. Results are 0 (or a count) on success and a code of
/// `errors.h` on failure. Parameter ids are the design's, or the runtime's own (below).
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "board/model/board_error.h"
#include "board/model/camera.h"
#include "board/model/clock.h"
#include "board/model/design.h"
#include "board/model/frame_source.h"
#include "board/trigger/trigger_block.h"

#pragma GCC visibility push(default)

namespace board {

class PictureMemory;

class Device {
 public:
  /// Opens a handle on `design`; `kDeviceBusy` while handles on another design are open.
  int attach(std::shared_ptr<const Design> design);
  /// Closes a handle; acquisition ends with the last one.
  void detach();

  /// `type` is one of `loadScalar`'s, or 22 for text: a get returns any single value as text, a set
  /// takes the text of a string parameter.
  int setParameter(int id, const void* value, unsigned dma, int type);
  int getParameter(int id, void* value, unsigned dma, int type);

  int writeRegister(int id, std::uint64_t value);
  int readRegister(int id, std::uint64_t* value) const;

  /// Starts a channel for a number of pictures, -1 for no limit. A null memory counts them only.
  int start(unsigned dma, std::int64_t pictures, PictureMemory* memory);
  int stop(unsigned dma);
  /// Whether a call names the memory that a channel was started with, or none.
  bool usesMemory(unsigned dma, std::int64_t memory) const;
  /// Lets `change` act on the buffers of a memory that a channel of this device runs with.
  template <class Change>
  auto withMemory(const PictureMemory& memory, Change change) {
    const std::lock_guard guard(mutex_);
    catchUp();
    const auto result = change();
    for (unsigned port = 0; port < kPorts; ++port)
      if (channels_[port].memory == &memory) showFillLevel(port);
    return result;
  }
  /// Null for the camera of the board.
  void setCamera(unsigned port, std::shared_ptr<const HostCamera> camera);
  /// Number of the last picture since the start, from 1; 0 before the first.
  std::int64_t lastPicture(unsigned dma);
  /// Waits for a picture, at most `seconds`; returns the number of the last picture.
  std::int64_t waitForPicture(std::int64_t picture, unsigned dma, std::int64_t seconds);
  /// `status` is a `VelmoraChannelStatus`.
  std::int64_t channelStatus(std::uint32_t status, unsigned dma);

  /// The name that an id stands for; "#<id>" for an unknown one.
  std::string parameterName(int id) const;
  std::string registerName(int id) const;
  /// Kind of a parameter; a group for an unknown id.
  RegisterInfoKind parameterKind(int id) const;

  /// The hardware's side: access by name to all parameters, runtime parameters and registers that
  /// hold a single number, read-only ones too. A runtime parameter keeps a value set here.
  int setByName(const std::string& name, unsigned dma, double value);
  int getByName(const std::string& name, unsigned dma, double& value);

  /// Runs `use` on the trigger block, which has caught up with the clock.
  template <class Use>
  auto withTrigger(Use use) {
    const std::lock_guard guard(mutex_);
    catchUp();
    return use(trigger_);
  }
  /// Lets `attempt` see the device, which has caught up with the clock, until its answer is not
  /// `kTimeout` or the time is over. It polls, since settings can change in the meantime.
  template <class Attempt>
  auto poll(std::chrono::nanoseconds timeout, Attempt attempt) {
    const auto deadline = now() + std::clamp(timeout, std::chrono::nanoseconds{0}, kLongestTimeout);
    while (true) {
      std::chrono::nanoseconds pause{};
      {
        const std::lock_guard guard(mutex_);
        const auto time = now();
        trigger_.advance(time);
        const auto answer = attempt();
        if (answer != kTimeout || time >= deadline) return answer;
        pause = std::min(trigger_.next(), deadline) - time;
      }
      sleepFor(std::clamp(pause, kShortestPause, kLongestPause));
    }
  }
  /// The recorded events, to be used within `poll`.
  EventLog& events() { return trigger_.events(); }

 private:
  static constexpr std::chrono::nanoseconds kShortestPause = std::chrono::microseconds(20);
  static constexpr std::chrono::nanoseconds kLongestPause = std::chrono::milliseconds(2);
  static constexpr std::chrono::nanoseconds kLongestTimeout = std::chrono::hours(24 * 365);

  /// What writing or reading a cell does besides storing its value. Other cells leave the clock
  /// alone.
  enum class Effect {
    kNone,
    kSetting,  ///< A setting of the picture source.
    kTrigger,  ///< A register of the trigger block.
    kStatus,   ///< One that the trigger block writes.
    kBuffers   ///< Follows the picture memory.
  };
  /// A value per DMA channel; shared parameters and registers use the first.
  struct Cell {
    std::array<std::uint64_t, kPorts> bits{};
    Effect effect = Effect::kNone;
    unsigned port = 0;  ///< Of the effect.
    unsigned slot = 0;  ///< The one that has the effect.
    std::uint64_t PortSettings::*setting = nullptr;
    unsigned index = 0;  ///< Of the trigger block's register.
  };
  struct Channel {
    bool started = false;  ///< At least once since a handle was opened.
    bool running = false;
    std::int64_t limit = 0;
    std::int64_t pictures = 0;        ///< Since the start; none after the stop.
    std::int64_t lost = 0;            ///< Of them, for want of a free buffer.
    PictureMemory* memory = nullptr;  ///< While it runs.
    std::intptr_t memoryHandle = 0;   ///< Of that memory, after the stop too.
  };
  /// A parameter of the runtime itself, under its SDK id.
  struct RuntimeParameter {
    int id;
    const char* name;
    RegisterInfoKind kind;
    bool writable;
    std::uint64_t (*read)(const Device& device, unsigned dma);  ///< Null: 0 until written.
  };
  static constexpr std::size_t kRuntimeParameterCount = 10;
  static const std::array<RuntimeParameter, kRuntimeParameterCount> kRuntimeParameters;
  /// What an id or name refers to: a cell or, when that is null, a runtime parameter.
  struct Place {
    int error = 0;
    RegisterInfoKind kind = REGISTER_INFO_GROUP;
    bool writable = false;
    Cell* cell = nullptr;
    unsigned slot = 0;
    std::size_t runtime = 0;
  };
  using Texts = std::map<std::pair<const Cell*, unsigned>, std::string>;

  /// Index of a runtime parameter in the table; the table's length for any other id.
  static std::size_t runtimeIndex(int id);

  // All of these expect the mutex to be held.
  const ParameterRecord* record(int id) const { return design_ ? design_->parameter(id) : nullptr; }
  void powerOn();
  void assignEffects();
  Cell* effectCell(const std::string& name, unsigned port);
  Cell* cellNamed(const std::string& name);
  const char* knownName(int id) const;
  Place locate(int id, const void* value, unsigned dma);
  Place locate(const std::string& name, unsigned dma);
  std::uint64_t readCell(const Cell& cell, unsigned slot);
  void writeCell(Cell& cell, unsigned slot, std::uint64_t bits);
  std::uint64_t readRuntime(std::size_t index, unsigned dma);
  void catchUp();
  void receive(unsigned port, const Train& pictures);
  bool keep(unsigned port, std::int64_t number, Time time);
  void stopChannel(unsigned port);
  void showFillLevel(unsigned port);
  void showOverflow(unsigned port, bool overflow);
  bool acquiring(const Channel& channel) const;

  mutable std::mutex mutex_;
  std::shared_ptr<const Design> design_;
  int handles_ = 0;
  std::vector<Cell> parameters_;
  std::vector<Cell> registers_;
  Texts texts_;  ///< Values of the string parameters.
  std::array<PortSettings, kPorts> ports_;
  std::array<Channel, kPorts> channels_;
  std::array<Cell*, kPorts> fillLevels_{};  ///< Null if the design lacks them.
  std::array<Cell*, kPorts> overflows_{};
  TriggerBlock trigger_{[this](unsigned port, const Train& pictures) { receive(port, pictures); }};
  std::array<std::shared_ptr<const HostCamera>, kPorts> cameras_;
  std::array<std::array<std::optional<std::uint64_t>, kPorts>, kRuntimeParameterCount> runtime_;
};

}  // namespace board

#pragma GCC visibility pop
