#include "board/model/device.h"

#include <fmt/format.h>

#include <algorithm>

#include "board/model/board_error.h"
#include "board/model/clock.h"
#include "board/model/ledger.h"
#include "board/model/scalar.h"
#include "velmora/values.h"

namespace board {
namespace {

constexpr const char* kFillLevel = "Device1_Process{}_Buffer_FillLevel";
constexpr const char* kOverflow = "Device1_Process{}_Buffer_Overflow";

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
  catchUp();
  for (unsigned port = 0; port < kPorts; ++port) {
    stopChannel(port);
    channels_[port].started = false;
  }
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
  runtime_ = {};
  trigger_.powerOn(now());
  assignEffects();
  std::vector<std::string_view> events;
  for (const auto& event : manifest.events) events.push_back(event.name);
  trigger_.events().setNames(events);
}

/// Finds the cells of each port that exist in the design.
void Device::assignEffects() {
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& source : settingSources()) {
      if (auto* cell = effectCell(nameFor(source.name, port), port)) {
        cell->effect = Effect::kSetting;
        cell->setting = source.member;
        writeCell(*cell, cell->slot, cell->bits[cell->slot]);
      }
    }
    fillLevels_[port] = effectCell(nameFor(kFillLevel, port), port);
    overflows_[port] = effectCell(nameFor(kOverflow, port), port);
    for (auto* cell : {fillLevels_[port], overflows_[port]})
      if (cell) cell->effect = Effect::kBuffers;
    for (unsigned index = 0; index < kTriggerRegisters; ++index) {
      if (auto* cell = effectCell(triggerRegisterName(index, port), port)) {
        cell->effect = index < kFirstStatus ? Effect::kTrigger : Effect::kStatus;
        cell->index = index;
        if (index < kFirstCommand) writeCell(*cell, cell->slot, cell->bits[cell->slot]);
      }
    }
  }
}

Device::Cell* Device::effectCell(const std::string& name, unsigned port) {
  auto* cell = cellNamed(name);
  if (!cell) return nullptr;
  const auto* parameter = design_->parameter(design_->parameterId(name));
  cell->port = port;
  cell->slot = !parameter || parameter->shared ? 0 : port;
  return cell;
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

std::uint64_t Device::readCell(const Cell& cell, unsigned slot) {
  if (cell.slot != slot) return cell.bits[slot];
  if (cell.effect == Effect::kStatus || cell.effect == Effect::kBuffers) catchUp();
  return cell.effect == Effect::kStatus ? trigger_.read(cell.port, cell.index) : cell.bits[slot];
}

void Device::writeCell(Cell& cell, unsigned slot, std::uint64_t bits) {
  cell.bits[slot] = bits;
  if (cell.slot != slot || cell.effect == Effect::kNone || cell.effect == Effect::kBuffers) return;
  if (cell.effect == Effect::kSetting) {
    if (channels_[cell.port].memory) catchUp();  // The pictures so far have the old setting.
    ports_[cell.port].*cell.setting = bits;
    const auto rate = simulatorRate(ports_[cell.port]);
    if (rate == trigger_.simulator(cell.port)) return;
    catchUp();
    trigger_.setSimulator(cell.port, rate);
  } else if (cell.effect == Effect::kStatus) {
    trigger_.keep(cell.port, cell.index, static_cast<std::uint32_t>(bits));
  } else {
    catchUp();
    trigger_.write(cell.port, cell.index, static_cast<std::uint32_t>(bits));
  }
}

void Device::catchUp() { trigger_.advance(now()); }

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
  if (dma >= kPorts) return {.error = kBadDma};
  if (!design_) return {.error = kUnknownParameter};
  // No value is accessed; any pointer passes the check for null.
  const auto parameter = [&](int id) {
    auto place = locate(id, this, dma);
    if (!isScalar(place.kind)) place.error = kWrongType;
    return place;
  };
  if (const int id = design_->parameterId(name)) return parameter(id);
  if (auto* cell = cellNamed(name)) return {.kind = REGISTER_INFO_UINT64, .cell = cell};
  const auto* row =
      std::find_if(kRuntimeParameters.begin(), kRuntimeParameters.end(),
                   [&](const RuntimeParameter& parameter) { return parameter.name == name; });
  return row != kRuntimeParameters.end() ? parameter(row->id) : Place{.error = kUnknownParameter};
}

int Device::setByName(const std::string& name, unsigned dma, double value) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(name, dma);
  if (place.error != kOk) return place.error;
  const auto bits = scalarFromDouble(place.kind, value);
  if (place.cell) {
    writeCell(*place.cell, place.slot, bits);
  } else {
    runtime_[place.runtime][dma] = bits;
  }
  return kOk;
}

int Device::getByName(const std::string& name, unsigned dma, double& value) {
  const std::lock_guard guard(mutex_);
  const auto place = locate(name, dma);
  if (place.error != kOk) return place.error;
  const auto bits =
      place.cell ? readCell(*place.cell, place.slot) : readRuntime(place.runtime, dma);
  value = scalarToDouble(place.kind, bits);
  return kOk;
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
