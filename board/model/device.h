/// The board device: register file, KT parameter values and acquisition channels.
///
/// Opening the first inner handle configures the device with the handle's design: registers and
/// parameters take the values of a powered-on board. They then stay, over the handles' ends too,
/// until a design of other content is loaded.
///
/// All functions may be called from any thread. Results are 0 (or a count) on success and a code of
/// `errors.h` on failure. Parameter ids are the design's, or the runtime's own (below).
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "board/model/design.h"
#include "board/model/frame_source.h"

#pragma GCC visibility push(default)

namespace board {

class Device {
 public:
  /// Takes part in the device with a handle on `design`; `kDeviceBusy` while handles of another
  /// design are open.
  int attach(std::shared_ptr<const Design> design);
  /// Ends a handle's part; acquisitions end with the last handle.
  void detach();

  /// Types as for `loadScalar`, and 22: the text of any single value; for a set, the value is the
  /// text itself and the parameter a string.
  int setParameter(int id, const void* value, unsigned dma, int type);
  int getParameter(int id, void* value, unsigned dma, int type);

  int writeRegister(int id, std::uint64_t value);
  int readRegister(int id, std::uint64_t* value) const;

  /// Starts a channel; `pictures` to count, -1 for no end.
  int start(unsigned dma, std::int64_t pictures);
  int stop(unsigned dma);
  /// Number of the last picture since the start, from 1; 0 before the first.
  std::int64_t lastPicture(unsigned dma) const;
  /// Waits for a picture, `seconds` at most; the number of the last picture.
  std::int64_t waitForPicture(std::int64_t picture, unsigned dma, std::int64_t seconds) const;
  /// `status` is a `ChannelStatus`.
  std::int64_t channelStatus(std::uint32_t status, unsigned dma) const;

  /// The name behind an id, "#<id>" for an unknown one.
  std::string parameterName(int id) const;
  std::string registerName(int id) const;
  /// Kind of a parameter; a group for an unknown id.
  RegisterInfoKind parameterKind(int id) const;

  /// The hardware's side: access by name to parameters, runtime parameters and registers of a
  /// single number, whatever their access. A runtime parameter given a value keeps it. Unknown
  /// names and DMA indices throw `std::out_of_range`.
  void setByName(const std::string& name, unsigned dma, double value);
  double byName(const std::string& name, unsigned dma);

 private:
  /// What writing, or reading, a value does beyond keeping it.
  enum class Effect {
    kNone,
    kSetting,        ///< A setting of the picture source.
    kSoftwarePulse,  ///< Writing anything but 0 sends a trigger pulse.
    kOutputPulses,   ///< Reads as the pulses sent since it was written.
    kClear           ///< Writing clears what `clears_` says.
  };
  /// A value per DMA channel; shared parameters and registers use the first.
  struct Cell {
    std::array<std::uint64_t, kPorts> bits{};
    Effect effect = Effect::kNone;
    unsigned port = 0;  ///< That the effect is for.
    unsigned slot = 0;  ///< That the effect is on.
    std::uint64_t PortSettings::*setting = nullptr;
  };
  struct Clear {
    const Cell* command;
    Cell* target;
    std::uint64_t mask;
  };
  struct Channel {
    bool started = false;  ///< At least once since the first handle.
    bool running = false;
    std::int64_t limit = 0;
    std::int64_t atStop = 0;
    RateCounter pictures;
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
  /// Where an id or name leads: a cell, or a row of the runtime's parameters when it is null.
  struct Place {
    int error = 0;
    RegisterInfoKind kind = REGISTER_INFO_GROUP;
    bool writable = false;
    Cell* cell = nullptr;
    unsigned slot = 0;
    std::size_t runtime = 0;
  };
  using Texts = std::map<std::pair<const Cell*, unsigned>, std::string>;

  /// Index in the table of the runtime's parameters; its length for another id.
  static std::size_t runtimeIndex(int id);

  // All of these with the mutex held.
  const ParameterRecord* record(int id) const { return design_ ? design_->parameter(id) : nullptr; }
  void powerOn();
  void assignEffects();
  template <class Assign>
  void assignTo(const char* nameTemplate, Assign assign);
  Cell* cellNamed(const std::string& name);
  const char* knownName(int id) const;
  Place locate(int id, const void* value, unsigned dma);
  Place locate(const std::string& name, unsigned dma);
  std::uint64_t readCell(const Cell& cell, unsigned slot) const;
  void writeCell(Cell& cell, unsigned slot, std::uint64_t bits);
  void runCommand(const Cell& cell, std::uint64_t bits);
  std::uint64_t readRuntime(std::size_t index, unsigned dma) const;
  void updateRates();
  std::int64_t pictureNumber(const Channel& channel) const;
  bool acquiring(const Channel& channel) const;

  mutable std::mutex mutex_;
  std::shared_ptr<const Design> design_;
  int handles_ = 0;
  std::vector<Cell> parameters_;
  std::vector<Cell> registers_;
  Texts texts_;  ///< Values of the string parameters.
  std::vector<Clear> clears_;
  Ports ports_;
  std::array<Channel, kPorts> channels_;
  std::array<RateCounter, kPorts> outputPulses_;
  std::array<std::array<std::optional<std::uint64_t>, kPorts>, kRuntimeParameterCount> runtime_;
};

}  // namespace board

#pragma GCC visibility pop
