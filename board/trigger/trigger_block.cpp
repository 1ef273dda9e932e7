#include "board/trigger/trigger_block.h"

#include <utility>

namespace board {
namespace {

constexpr double kFreeRunningRate = 30;    // Hz
constexpr double kLastSingleRate = 100e3;  ///< Above, the times of pictures are not exact.
constexpr std::uint32_t kExceededBit = 1, kFullBit = 2, kMissingBit = 4, kStatusBits = 3;
enum MultiplexerInput : unsigned { kFirstForm, kSecondForm, kBypass, kConstant };

}  // namespace

void TriggerBlock::powerOn(Time now) {
  time_ = now;
  paths_ = {};
  for (unsigned camera = 0; camera < kPorts; ++camera) {
    paths_[camera].generator.restart(paths_[camera].set, now);
    paths_[camera].input = inputs_[0].level;
    updateRate(camera);
  }
}

void TriggerBlock::advance(Time now) {
  if (now < time_) return;
  for (bool more = true; more;) {
    const Time due = nextInput(), to = std::min(due, now);
    for (unsigned camera = 0; camera < kPorts; ++camera) runGenerator(camera, to);
    for (unsigned camera = 0; camera < kPorts; ++camera) {
      runForms(camera, {}, to);
      takePictures(camera, to);
    }
    time_ = to;
    more = due <= now;
    if (more) stepInputs(due);
  }
}

Time TriggerBlock::next() const {
  Time next = nextInput();
  for (const auto& path : paths_) {
    next = std::min({next, path.generator.next(path.set, time_), path.pictures.due()});
    for (const auto& form : path.forms) next = std::min({next, form.delay.end, form.width.end});
  }
  return next;
}

// Inputs.

Time TriggerBlock::nextInput() const {
  Time next = kNever;
  for (const auto& input : inputs_) next = std::min(next, input.next());
  return next;
}

/// One change of each input whose time has come; a level that has held long enough counts although
/// it changes now.
void TriggerBlock::stepInputs(Time time) {
  const auto before = levels_;
  for (unsigned i = 0; i < kInputs; ++i) {
    auto& input = inputs_[i];
    if (input.accept <= time) {
      input.accept = kNever;
      input.level = input.raw;
      levels_ ^= 1U << i;
      events_.record(input.level ? kInputRises : kInputFalls, i, pulse(time));
    } else if (input.nextEdge() <= time) {
      input.set(input.edge++ % 2 == 0, time, paths_[0].set[kDebounce]);
    }
  }
  if (levels_ != before) levelsChanged(before);
}

/// Looks for rising edges at what the cameras have selected.
void TriggerBlock::levelsChanged(std::uint32_t before) {
  for (unsigned camera = 0; camera < kPorts; ++camera) {
    auto& path = paths_[camera];
    const auto& set = path.set;
    const bool high = ((levels_ >> set[kInputSelect] % kInputs ^ set[kInputInvert]) & 1) != 0;
    const bool rises = !std::exchange(path.input, high) && high;
    if (rises) {
      path.statistics.add(path.set, time_);
      const auto passed =
          path.downscaler.pass(pulse(time_), set[kInputDownscale], set[kInputSelected]);
      if (passed.count > 0 && set[kExternal] != 0) push(camera);
    }
    const bool bypassed = set[kAction] % 4 == kBypass;
    const auto changed = (levels_ ^ before) >> set[kBypassSelect] % kInputs & 1;
    if (bypassed && changed != 0 && level(camera, kAction)) command(camera, pulse(time_));
  }
}

void TriggerBlock::drive(unsigned input, double half, std::int64_t pulses) {
  inputs_[input].start = time_;
  inputs_[input].half = half;
  inputs_[input].edge = 0;
  inputs_[input].edges = 2 * pulses;
}

void TriggerBlock::drive(unsigned input, bool high) {
  inputs_[input].edges = 0;
  inputs_[input].set(high, time_, paths_[0].set[kDebounce]);
}

// Queue and generator.

void TriggerBlock::push(unsigned camera) {
  auto& path = paths_[camera];
  if (!Generator::queued(path.set) || path.set[kHold] != 0) return;
  if (path.generator.push(path.set)) {
    levelMoved(camera, time_);
    runGenerator(camera, time_);
  } else {
    raise(camera, kExceededBit);
    events_.record(kPeriodExceeded, camera, pulse(time_));
  }
}

void TriggerBlock::levelMoved(unsigned camera, Time time) {
  auto& path = paths_[camera];
  const auto level = path.set[kQueueLevel];
  if (path.threshold ? level > path.set[kOffLevel] : level < path.set[kOnLevel]) return;
  path.threshold = !path.threshold;
  events_.record(path.threshold ? kThresholdOn : kThresholdOff, camera, pulse(time));
}

void TriggerBlock::runGenerator(unsigned camera, Time to) {
  auto& path = paths_[camera];
  while (true) {
    const auto level = path.set[kQueueLevel];
    const auto pulses = path.generator.take(path.set, time_, to);
    if (pulses.count == 0) return;
    if (path.set[kQueueLevel] != level) levelMoved(camera, pulses.last());
    for (unsigned fed = 0; fed < kPorts; ++fed) {
      if (source(fed) == camera) runForms(fed, pulses, pulses.last());
    }
  }
}

// Pulse forms, outputs and camera.

void TriggerBlock::runForms(unsigned camera, const Train& pulses, Time to) {
  auto& path = paths_[camera];
  for (unsigned i = 0; i < path.forms.size(); ++i) {
    const bool commands = path.set[kAction] % 4 == i, inverted = path.set[kAction + 1] % 2 != 0;
    const auto rises = [&](const Train& times) {
      if (path.set[kStatisticsForm] % 2 == i) {
        path.set[kOutputPulses] += static_cast<std::uint32_t>(times.count);
      }
      if (path.set[kEventForm] % 2 == i) events_.record(kOutputPulse, camera, times);
      if (commands && !inverted) command(camera, times);
    };
    const auto falls = [&](const Train& times) {
      if (commands && inverted) command(camera, times);
    };
    path.forms[i].run(path.set[kFormsEnabled] != 0 ? pulses : Train{}, &path.set[kForm0 + 4 * i],
                      to, rises, falls);
  }
}

bool TriggerBlock::level(unsigned camera, unsigned multiplexer) const {
  const auto& path = paths_[camera];
  const auto select = path.set[multiplexer] % 4;
  const bool high = select == kBypass     ? (levels_ >> path.set[kBypassSelect] % kInputs & 1) != 0
                    : select == kConstant ? false
                                          : path.forms[select].width.running();
  return high != (path.set[multiplexer + 1] % 2 != 0);
}

unsigned TriggerBlock::outputs() const {
  unsigned mask = 0;
  for (unsigned camera = 0; camera < kPorts; ++camera) {
    mask |= (level(camera, kOutput0) ? 1U : 0U) << 2 * camera;
    mask |= (level(camera, kOutput1) ? 2U : 0U) << 2 * camera;
  }
  return mask;
}

/// Rising edges of the action command. While the pulse forms are disabled, no camera follows them.
void TriggerBlock::command(unsigned camera, const Train& times) {
  auto& path = paths_[camera];
  if (path.set[kFormsEnabled] == 0) return;
  if (path.simulator) {
    raise(camera, kMissingBit);
    path.set[kPendingCommands] += static_cast<std::uint32_t>(times.count);
    events_.record(kFrameMissing, camera, times);
  } else {
    path.set[kPendingCommands] = 0;
    pictures(camera, times);
  }
}

void TriggerBlock::pictures(unsigned port, const Train& times) {
  sink_(port, times);
  events_.record(kTransferStart, port, times);
  events_.record(kTransferEnd, port, times);
}

void TriggerBlock::takePictures(unsigned port, Time to) {
  auto& counter = paths_[port].pictures;
  if (counter.rate() <= kLastSingleRate) {
    for (Time due = counter.due(); due <= to; due = counter.due()) {
      counter.take(due);
      pictures(port, pulse(due));
    }
    return;
  }
  const Time first = counter.due();
  const auto count = counter.take(to);
  if (count > 0) pictures(port, {first, (to - first) / count, count});
}

void TriggerBlock::setSimulator(unsigned port, std::optional<double> rate) {
  paths_[port].simulator = rate;
  updateRate(port);
}

void TriggerBlock::updateRate(unsigned port) {
  auto& path = paths_[port];
  const double own = path.set[kFormsEnabled] != 0 ? 0 : kFreeRunningRate;
  path.pictures.setRate(time_, path.simulator.value_or(own));
}

bool TriggerBlock::delivers(unsigned port) const {
  const auto& fed = paths_[source(port)];
  return paths_[port].pictures.rate() > 0 ||
         (!paths_[port].simulator && fed.generator.next(fed.set, time_) != kNever);
}

// Registers.

void TriggerBlock::write(unsigned camera, unsigned index, std::uint32_t value) {
  auto& path = paths_[camera];
  const bool commanded = level(camera, kAction);
  const auto before = std::exchange(path.set[index], value);
  if (!commanded && level(camera, kAction)) command(camera, pulse(time_));
  if (index >= kFirstCommand || index == kHold || index == kEnableQueue) {
    obey(camera, index, before);
  }
  levelsChanged(levels_);
  updateRate(camera);
}

/// What a write does besides being kept. Commands take anything but 0.
void TriggerBlock::obey(unsigned camera, unsigned index, std::uint32_t before) {
  auto& path = paths_[camera];
  const auto value = path.set[index];
  if (index == kHold || index == kEnableQueue) {
    if ((value != 0) == (before != 0)) return;
    const auto level = path.set[kQueueLevel];
    path.generator.restart(path.set, time_);
    if (level != 0) levelMoved(camera, time_);
  } else if (index == kClearMinMax && value != before) {
    clear(camera, kInputMinimum);
    clear(camera, kInputMaximum);
  } else if (value != 0) {
    switch (index) {
      case kSoftwarePulse:
        return push(camera);
      case kClearInputDownscale:
        path.downscaler = {};
        return;
      case kClearSequence:
        path.generator.played = 0;
        return;
      case kClearForm0:
      case kClearForm1:
        path.forms[index - kClearForm0].downscaler = {};
        return;
      case kClearInputPulses:
        return clear(camera, kInputPulses);
      case kClearOutputPulses:
        return clear(camera, kOutputPulses);
      case kClearExceeded:
        return clear(0, kStatusWord, kExceededBit << kStatusBits * camera);
      case kClearMissing:
        return clear(0, kStatusWord, kMissingBit << kStatusBits * camera);
      case kResetMissing:
        return clear(camera, kPendingCommands);
    }
  }
}

std::uint32_t TriggerBlock::read(unsigned camera, unsigned index) const {
  const auto& path = paths_[camera];
  if (path.kept[index]) return *path.kept[index];
  auto value = path.set[index];
  if (index == kInputLevels) value = levels_;
  if (index == kMaximumReached) {
    value = path.set[kHold] != 0 || path.generator.ready(path.set, time_) ? 1 : 0;
  }
  for (unsigned each = 0; index == kStatusWord && each < kPorts; ++each) {
    const auto& set = paths_[each].set;
    const bool full = set[kQueueEnabled] != 0 && set[kQueueLevel] >= Generator::limit(set);
    if (full) value |= kFullBit << kStatusBits * each;
  }
  return value;
}

void TriggerBlock::keep(unsigned camera, unsigned index, std::uint32_t value) {
  paths_[camera].kept[index] = value;
}

/// A kept value that is cleared as a whole makes room for the block's own.
void TriggerBlock::clear(unsigned camera, unsigned index, std::uint32_t mask) {
  auto& path = paths_[camera];
  path.set[index] &= ~mask;
  if (mask == ~0U) path.kept[index].reset();
  if (path.kept[index]) *path.kept[index] &= ~mask;
}

void TriggerBlock::raise(unsigned camera, std::uint32_t bit) {
  paths_[0].set[kStatusWord] |= bit << kStatusBits * camera;
}

}  // namespace board
