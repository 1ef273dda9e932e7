/// What a parameter accepts, as data: for checking values and for describing it to tools.
#pragma once

#include <cstdint>
#include <span>

namespace velmora {

/// One value of an enumeration.
struct EnumEntry {
  const char* display;
  int value;
  const char* identifier;
};

using Enumeration = std::span<const EnumEntry>;

/// A range with its step, an enumeration or a text.
struct Limits {
  enum class Kind { kNone, kInteger, kReal, kEnumeration, kText };

  template <class T>
  struct Range {
    T min, max, inc;
  };

  Kind kind = Kind::kNone;
  Range<std::uint32_t> integer{};
  Range<double> real{};
  Enumeration allEntries{};
  bool lastEntryNotOnPort0 = false;
  const char* text = nullptr;

  /// Whether there are values and steps between them.
  constexpr bool sensible() const {
    if (kind == Kind::kInteger) return integer.min <= integer.max && integer.inc > 0;
    if (kind == Kind::kReal) return real.min <= real.max && real.inc > 0;
    return kind != Kind::kEnumeration || !allEntries.empty();
  }

  /// The entries of an enumeration on a port.
  constexpr Enumeration entries(unsigned port) const {
    return lastEntryNotOnPort0 && port == 0 ? allEntries.first(allEntries.size() - 1) : allEntries;
  }

  /// Whether a value lies in the range, or is an entry, on a port. Ignores the step.
  constexpr bool accepts(std::uint32_t value, unsigned port) const {
    if (kind == Kind::kInteger) return value >= integer.min && value <= integer.max;
    for (const EnumEntry& entry : entries(port))
      if (static_cast<std::uint32_t>(entry.value) == value) return true;
    return false;
  }

  /// NaN lies outside every range.
  constexpr bool accepts(double value, unsigned) const {
    return value >= real.min && value <= real.max;
  }
};

constexpr Limits range(std::uint32_t min, std::uint32_t max, std::uint32_t inc) {
  return {.kind = Limits::Kind::kInteger, .integer = {min, max, inc}};
}

constexpr Limits range(double min, double max, double inc) {
  return {.kind = Limits::Kind::kReal, .real = {min, max, inc}};
}

constexpr Limits oneOf(Enumeration entries) {
  return {.kind = Limits::Kind::kEnumeration, .allEntries = entries};
}

constexpr Limits oneOfLastNotOnPort0(Enumeration entries) {
  return {.kind = Limits::Kind::kEnumeration, .allEntries = entries, .lastEntryNotOnPort0 = true};
}

constexpr Limits text(const char* value) { return {.kind = Limits::Kind::kText, .text = value}; }

}  // namespace velmora
