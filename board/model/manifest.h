/// Design manifests: the readable description of an FPGA design. `design/Velmora.design` documents
/// the syntax.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velmora/register_info.h"

namespace board {

inline constexpr int kBoardType = 3652;  ///< The type of board that is modelled.

/// A KT parameter. Numbers are bits of its kind, see `scalar.h`.
struct ParameterRecord {
  std::string name;
  RegisterInfoKind kind = REGISTER_INFO_UINT;
  bool writable = false;
  bool shared = false;  ///< One value for all DMA channels.
  std::uint64_t min = 0;
  std::uint64_t max = 0;
  std::uint64_t step = 0;
  std::uint64_t initial = 0;                                  ///< Value at power-on.
  std::uint32_t count = 0;                                    ///< Elements of a field kind.
  std::vector<std::pair<std::string, std::int32_t>> entries;  ///< Of an enumeration.
  std::string text;                                           ///< Of a string at power-on.
  std::string unit;                                           ///< Empty when there is none.
};

struct RegisterRecord {
  std::string name;
  int bits = 0;
  bool writable = false;
};

struct EventRecord {
  std::string name;
  std::int32_t kind = 0;
};

/// All records of a manifest in their order, patterns expanded.
struct Manifest {
  std::vector<ParameterRecord> parameters;
  std::vector<RegisterRecord> registers;
  std::vector<EventRecord> events;
};

/// What is wrong with a manifest, and in which line.
class ManifestError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Parses a manifest; throws `ManifestError` for a malformed line, a name used twice for records of
/// one type, another board's manifest or a missing end.
Manifest parseManifest(std::string_view text);

}  // namespace board
