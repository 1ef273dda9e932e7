/// The design's trigger block: eight inputs and a trigger path for each of the four cameras.
///
///   inputs -> debounce -> select, invert -> downscale -+-> queue, generator -> pulse forms ->
///   outputs
///                                     software pulses -+                                  ->
///                                     camera
///
/// `docs/virtual-board.md` tells what each stage does. The block has no thread: it catches up with
/// the time it is given, and everything else happens at the time that it has reached. Not
/// synchronised.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "board/trigger/event_log.h"
#include "board/trigger/rate_counter.h"
#include "board/trigger/registers.h"
#include "board/trigger/stages.h"

namespace board {

class TriggerBlock {
 public:
  static constexpr unsigned kInputs = 8;
  /// Told of all pictures that reach a camera port, in each port's order of time. It must not use
  /// the block.
  using PictureSink = std::function<void(unsigned port, const Train& pictures)>;

  explicit TriggerBlock(PictureSink sink) : sink_(std::move(sink)) {}

  /// All registers become 0. The inputs keep their levels.
  void powerOn(Time now);
  void advance(Time now);
  /// When something happens next, if nothing is written.
  Time next() const;

  void write(unsigned camera, unsigned index, std::uint32_t value);
  std::uint32_t read(unsigned camera, unsigned index) const;
  /// From now on a status register reads `value`, until it is cleared.
  void keep(unsigned camera, unsigned index, std::uint32_t value);

  /// Pictures per second of the simulator that takes the place of a camera.
  void setSimulator(unsigned port, std::optional<double> rate);
  std::optional<double> simulator(unsigned port) const { return paths_[port].simulator; }
  /// Whether pictures come, or will once pulses do that are on their way.
  bool delivers(unsigned port) const;

  /// The outside of an input: `pulses` pulses with an edge every `half` nanoseconds; a level.
  void drive(unsigned input, double half, std::int64_t pulses);
  void drive(unsigned input, bool high);
  /// Levels of all outputs, two for each camera, as a bit mask.
  unsigned outputs() const;

  EventLog& events() { return events_; }

 private:
  struct Path {
    Registers set{};
    std::array<std::optional<std::uint32_t>, kTriggerRegisters> kept{};
    bool input = false;  ///< The selected input's level, after the inverter.
    InputStatistics statistics;
    Downscaler downscaler;
    Generator generator;
    bool threshold = false;  ///< On level reached, off level not yet.
    std::array<PulseForm, 2> forms;
    std::optional<double> simulator;
    RateCounter pictures;  ///< Those that no command asks for.
  };

  Time nextInput() const;
  void stepInputs(Time time);
  void levelsChanged(std::uint32_t before);
  void push(unsigned camera);
  void levelMoved(unsigned camera, Time time);
  void runGenerator(unsigned camera, Time to);
  void runForms(unsigned camera, const Train& pulses, Time to);
  void takePictures(unsigned port, Time to);
  unsigned source(unsigned camera) const { return paths_[camera].set[kSlave] != 0 ? 0 : camera; }
  bool level(unsigned camera, unsigned multiplexer) const;
  void command(unsigned camera, const Train& times);
  void pictures(unsigned port, const Train& times);
  void obey(unsigned camera, unsigned index, std::uint32_t before);
  void raise(unsigned camera, std::uint32_t bit);
  void clear(unsigned camera, unsigned index, std::uint32_t mask = ~0U);
  void updateRate(unsigned port);

  PictureSink sink_;
  Time time_{};
  std::array<Input, kInputs> inputs_;
  std::uint32_t levels_ = 0;  ///< Of the debounced inputs.
  std::array<Path, kPorts> paths_;
  EventLog events_;
};

}  // namespace board
