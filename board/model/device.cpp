#include "board/model/device.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "board/model/board_error.h"
#include "board/model/clock.h"
#include "board/model/ledger.h"
#include "board/model/scalar.h"
#include "velmora/values.h"

namespace board {
namespace {

constexpr const char* kSoftwarePulseName =
    "Device1_Process4_Trigger_TriggerCam{}_TriggerMode_SoftwareTrigger_Mode";
constexpr const char* kOutputPulsesName =
    "Device1_Process4_Trigger_TriggerCam{}_OutputStatistics_ReadPulses_Status";

/// Writing `command` clears `target`: all of it, or bit `bit` of the camera's three.
struct ClearSource {
  const char* command;
  const char* target;
  int bit = -1;
};
constexpr ClearSource kClearSources[] = {
    {"Device1_Process4_Trigger_TriggerCam{}_OutputStatistics_ClearPulses_Mode", kOutputPulsesName},
    {"Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ClearPulses_Mode",
     "Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ReadPulses_Status"},
    {"Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ClearMinMax_Value",
     "Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ReadMin_Status"},
    {"Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ClearMinMax_Value",
     "Device1_Process4_Trigger_TriggerCam{}_InputStatistics_ReadMax_Status"},
    {"Device1_Process4_Trigger_Monitoring_ClearOverrideCam{}_Mode",
     "Device1_Process4_Trigger_Monitoring_ReadQueueStatus_Status", 0},
    {"Device1_Process4_Trigger_Monitoring_ClearMissingFrame_Cam{}_Mode",
     "Device1_Process4_Trigger_Monitoring_ReadQueueStatus_Status", 2},
};

std::string nameFor(const char* nameTemplate, unsigned port) {
  return fmt::format(fmt::runtime(nameTemplate), port);
}

}  // namespace

int Device::attach(std::shared_ptr<const Design> design) {
  const std::lock_guard guard(mutex_);
  const bool same = design_ && design_->fingerprint() == design->fingerprint();
  if (handles_ > 0 && !same) return kDeviceBusy;
  if (!same) {
    design_ = std::move(design);
    try {
      powerOn();
    } catch (...) {
      design_.reset();  // The next handle powers the device on.
      throw;
    }
  }
  ++handles_;
  return kOk;
}

void Device::detach() {
  const std::lock_guard guard(mutex_);
  if (--handles_ > 0) return;
  for (auto& channel : channels_) channel.started = channel.running = false;
}

void Device::powerOn() {
  const auto& manifest = design_->manifest();
  texts_.clear();
  parameters_.assign(manifest.parameters.size(), {});
  registers_.assign(manifest.registers.size(), {});
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    const auto& record = manifest.parameters[i];
    parameters_[i].bits.fill(record.initial);
    for (unsigned slot = 0; slot < kPorts && record.kind == REGISTER_INFO_STRING; ++slot) {
      texts_[{&parameters_[i], slot}] = record.text;
    }
  }
  ports_ = {};
  channels_ = {};
  outputPulses_ = {};
  runtime_ = {};
  assignEffects();
  updateRates();
}

/// Calls `assign` for the cell of each port that exists in the design.
template <class Assign>
void Device::assignTo(const char* nameTemplate, Assign assign) {
  for (unsigned port = 0; port < kPorts; ++port) {
    const auto name = nameFor(nameTemplate, port);
    auto* cell = cellNamed(name);
    if (!cell) continue;
    const auto* parameter = design_->parameter(design_->parameterId(name));
    cell->port = port;
    cell->slot = !parameter || parameter->shared ? 0 : port;
    assign(*cell, port);
  }
}

void Device::assignEffects() {
  for (const auto& source : settingSources()) {
    assignTo(source.name, [&](Cell& cell, unsigned port) {
      cell.effect = Effect::kSetting;
      cell.setting = source.member;
      ports_[port].*source.member = cell.bits[cell.slot];
    });
  }
  assignTo(kSoftwarePulseName, [](Cell& cell, unsigned) { cell.effect = Effect::kSoftwarePulse; });
  assignTo(kOutputPulsesName, [](Cell& cell, unsigned) { cell.effect = Effect::kOutputPulses; });
  clears_.clear();
  for (const auto& source : kClearSources) {
    assignTo(source.command, [&](Cell& cell, unsigned port) {
      auto* target = cellNamed(nameFor(source.target, port));
      if (!target) return;
      cell.effect = Effect::kClear;
      const auto shift = 3 * port + static_cast<unsigned>(std::max(source.bit, 0));
      clears_.push_back(
          {&cell, target, source.bit < 0 ? ~std::uint64_t{0} : std::uint64_t{1} << shift});
    });
  }
}

Device::Cell* Device::cellNamed(const std::string& name) {
  if (!design_) return nullptr;
  if (const int id = design_->parameterId(name)) {
    return &parameters_[static_cast<std::size_t>(id - kFirstParameterId)];
  }
  if (const int id = design_->registerId(name)) {
    return &registers_[static_cast<std::size_t>(id - kFirstRegisterId)];
  }
  return nullptr;
}

std::uint64_t Device::readCell(const Cell& cell, unsigned slot) const {
  std::uint64_t bits = cell.bits[slot];
  if (cell.effect == Effect::kOutputPulses) {
    bits = static_cast<std::uint32_t>(
        bits + static_cast<std::uint64_t>(outputPulses_[cell.port].count(now())));
  }
  return bits;
}

void Device::writeCell(Cell& cell, unsigned slot, std::uint64_t bits) {
  cell.bits[slot] = bits;
  if (cell.slot != slot) return;
  if (cell.effect == Effect::kSetting) {
    ports_[cell.port].*cell.setting = bits;
    updateRates();
  } else if (cell.effect == Effect::kOutputPulses) {
    outputPulses_[cell.port].restart(now());
  }
}

void Device::runCommand(const Cell& cell, std::uint64_t bits) {
  if (cell.effect == Effect::kSoftwarePulse && bits != 0) {
    for (unsigned port = 0; port < kPorts; ++port) {
      if (!softwarePulseReaches(ports_, cell.port, port)) continue;
      outputPulses_[port].add(1);
      if (followsTrigger(ports_[port])) channels_[port].pictures.add(1);
    }
  } else if (cell.effect == Effect::kClear) {
    for (const auto& clear : clears_) {
      if (clear.command == &cell) writeCell(*clear.target, 0, clear.target->bits[0] & ~clear.mask);
    }
  }
}

void Device::updateRates() {
  const auto time = now();
  for (unsigned port = 0; port < kPorts; ++port) {
    outputPulses_[port].setRate(time, triggerRate(ports_, port));
    channels_[port].pictures.setRate(time, pictureRate(ports_, port));
  }
}

Device::Place Device::locate(int id, const void* value, unsigned dma) {
  Place place;
  if (const auto* design = record(id)) {
    place.kind = design->kind;
    place.writable = design->writable;
    place.cell = &parameters_[static_cast<std::size_t>(id - kFirstParameterId)];
    place.slot = design->shared ? 0 : dma;
  } else {
    place.runtime = runtimeIndex(id);
    if (place.runtime == kRuntimeParameterCount) return {.error = kUnknownParameter};
    place.kind = kRuntimeParameters[place.runtime].kind;
    place.writable = kRuntimeParameters[place.runtime].writable;
    place.slot = dma;
  }
  place.error = dma >= kPorts ? kBadDma : value ? kOk : kNullValue;
  return place;
}

int Device::setParameter(int id, const void* value, unsigned dma, int type) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(id, value, dma);
  if (place.error != kOk) return place.error;
  if (!place.writable) return kReadOnly;
  if (place.kind == REGISTER_INFO_STRING) {
    if (type != FG_PARAM_TYPE_STRING && type != kNaturalType) return kWrongType;
    texts_[{place.cell, place.slot}] = static_cast<const char*>(value);
    return kOk;
  }
  std::uint64_t bits = 0;
  if (const int error = loadScalar(place.kind, type, value, bits)) return error;
  if (!place.cell) {
    runtime_[place.runtime][dma] = bits;
    return kOk;
  }
  writeCell(*place.cell, place.slot, bits);
  runCommand(*place.cell, bits);
  return kOk;
}

int Device::getParameter(int id, void* value, unsigned dma, int type) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(id, value, dma);
  if (place.error != kOk) return place.error;
  if (place.kind == REGISTER_INFO_STRING) {
    if (type != FG_PARAM_TYPE_STRING && type != kNaturalType) return kWrongType;
    *static_cast<char**>(value) = handOutString(texts_.at({place.cell, place.slot}));
    return kOk;
  }
  if (!isScalar(place.kind)) return kWrongType;
  const auto bits =
      place.cell ? readCell(*place.cell, place.slot) : readRuntime(place.runtime, dma);
  if (type != FG_PARAM_TYPE_STRING) return storeScalar(place.kind, type, bits, value);
  *static_cast<char**>(value) = handOutString(scalarText(place.kind, bits));
  return kOk;
}

int Device::writeRegister(int id, std::uint64_t value) {
  const std::lock_guard guard(mutex_);
  const auto* reg = design_ ? design_->registerWithId(id) : nullptr;
  if (!reg) return kUnknownRegister;
  if (!reg->writable) return kRegisterReadOnly;
  writeCell(registers_[static_cast<std::size_t>(id - kFirstRegisterId)], 0, value);
  return kOk;
}

int Device::readRegister(int id, std::uint64_t* value) const {
  const std::lock_guard guard(mutex_);
  if (!design_ || !design_->registerWithId(id)) return kUnknownRegister;
  if (!value) return kNullValue;
  *value = registers_[static_cast<std::size_t>(id - kFirstRegisterId)].bits[0];
  return kOk;
}

Device::Place Device::locate(const std::string& name, unsigned dma) {
  if (dma >= kPorts) throw std::out_of_range("DMA index");
  if (design_) {
    // No value is accessed; any pointer passes the check for null.
    if (const int id = design_->parameterId(name)) return locate(id, this, dma);
    if (auto* cell = cellNamed(name)) return {.kind = REGISTER_INFO_UINT64, .cell = cell};
  }
  const auto* row =
      std::find_if(kRuntimeParameters.begin(), kRuntimeParameters.end(),
                   [&](const RuntimeParameter& parameter) { return parameter.name == name; });
  if (!design_ || row == kRuntimeParameters.end()) throw std::out_of_range("board name " + name);
  return locate(row->id, this, dma);
}

void Device::setByName(const std::string& name, unsigned dma, double value) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(name, dma);
  const auto bits = scalarFromDouble(place.kind, value);
  if (place.cell) {
    writeCell(*place.cell, place.slot, bits);
  } else {
    runtime_[place.runtime][dma] = bits;
  }
}

double Device::byName(const std::string& name, unsigned dma) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(name, dma);
  const auto bits =
      place.cell ? readCell(*place.cell, place.slot) : readRuntime(place.runtime, dma);
  return scalarToDouble(place.kind, bits);
}

const char* Device::knownName(int id) const {
  if (const auto* found = record(id)) return found->name.c_str();
  const auto runtime = runtimeIndex(id);
  return runtime < kRuntimeParameterCount ? kRuntimeParameters[runtime].name : nullptr;
}

std::string Device::parameterName(int id) const {
  const std::lock_guard guard(mutex_);
  const auto* name = knownName(id);
  return name ? name : fmt::format("#{}", id);
}

std::string Device::registerName(int id) const {
  const std::lock_guard guard(mutex_);
  const auto* found = design_ ? design_->registerWithId(id) : nullptr;
  return found ? found->name : fmt::format("#{}", id);
}

RegisterInfoKind Device::parameterKind(int id) const {
  const std::lock_guard guard(mutex_);
  if (const auto* found = record(id)) return found->kind;
  const auto runtime = runtimeIndex(id);
  return runtime < kRuntimeParameterCount ? kRuntimeParameters[runtime].kind : REGISTER_INFO_GROUP;
}

}  // namespace board
