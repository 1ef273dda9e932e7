/// The stages of a trigger path, each with what it remembers; the settings are the caller's.
#pragma once

#include <utility>

#include "board/trigger/registers.h"
#include "board/trigger/train.h"

namespace board {

/// Of every `length` pulses the `selected`-th passes. Both count from 1; 0 counts as 1.
struct Downscaler {
  std::uint32_t position = 0;  ///< Pulses of the series so far.

  Train pass(const Train& in, std::uint32_t length, std::uint32_t selected);
};

/// Starts with a pulse and runs for a while, in which further pulses are lost.
struct OneShot {
  Time end = kNever;

  bool running() const { return end != kNever; }

  /// Takes the pulses of `in` and runs until `to`, which is no earlier than the last of them. Calls
  /// `starts` and `ends` with trains, each in order of time.
  template <class Starts, class Ends>
  void run(Train in, Time length, Time to, Starts starts, Ends ends) {
    if (running()) {
      in = in.from(end);
      if (end > to) return;
      ends(pulse(std::exchange(end, kNever)));
    }
    if (in.count == 0) return;
    if (in.count > 1) {
      const auto step = (length + in.period - Time{1}) / in.period;
      in = in.every(std::max<std::int64_t>(step, 1));
    }
    starts(in);
    if (in.count > 1) ends(Train{in.first + length, in.period, in.count - 1});
    end = in.last() + length;
    if (end <= to) ends(pulse(std::exchange(end, kNever)));
  }
};

/// A pulse form generator: downscale, delay, width.
struct PulseForm {
  Downscaler downscaler;
  OneShot delay, width;

  /// `settings` are the generator's four registers. Calls `rises` and `falls` with the edges.
  template <class Rises, class Falls>
  void run(const Train& in, const std::uint32_t* settings, Time to, Rises rises, Falls falls) {
    const Time length = settings[3] * kTick;
    delay.run(
        downscaler.pass(in, settings[0], settings[1]), settings[2] * kTick, to, [](const Train&) {},
        [&](const Train& delayed) { width.run(delayed, length, delayed.last(), rises, falls); });
    width.run({}, length, to, rises, falls);
  }
};

/// Sends pulses no closer than the minimum period: those that it was given, each as often as the
/// sequence says, or with the queue off as many as it can.
struct Generator {
  std::uint32_t played = 0;  ///< Of the sequence that the first waiting pulse is sent as.
  Time last = kLongAgo;      ///< Pulse, or the start of the free-running generator.

  static constexpr Time kLongAgo = Time::min() / 2;

  static Time period(const Registers& set);
  static bool queued(const Registers& set) { return set[kEnableQueue] != 0; }
  static std::uint32_t limit(const Registers& set);
  /// Forgets all pulses. A queue can send at once, the free generator after a period.
  void restart(Registers& set, Time now);
  /// Whether the minimum period has passed.
  bool ready(const Registers& set, Time now) const { return last + period(set) <= now; }
  /// Whether it could keep the pulse.
  static bool push(Registers& set);
  /// Time of the next pulse, which is not before `now`.
  Time next(const Registers& set, Time now) const;
  /// The next pulses up to `to`, all of one sequence. A waiting pulse is taken off with the last.
  Train take(Registers& set, Time now, Time to);
};

/// Counts pulses and measures their distances, in ticks.
struct InputStatistics {
  Time last = kNever;

  void add(Registers& set, Time time);
};

/// An input pin with its debouncer, and the wave that the outside drives it with.
struct Input {
  bool raw = false;
  bool level = false;    ///< Debounced.
  Time accept = kNever;  ///< When the raw level counts, unless it changes before.

  Time start{};            ///< Of the wave.
  double half = 0;         ///< Nanoseconds from edge to edge.
  std::int64_t edge = 0;   ///< The next one; even ones rise.
  std::int64_t edges = 0;  ///< All of them.

  Time nextEdge() const;
  Time next() const { return std::min(accept, nextEdge()); }
  void set(bool high, Time now, std::uint32_t debounce);
};

}  // namespace board
