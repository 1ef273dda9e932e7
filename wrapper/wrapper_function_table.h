#pragma once

#include <array>
#include <cstddef>

#include "external/vorn5.h"

namespace velmora {

/// Names one entry of the wrapper function table together with the function's type.
template <class Signature>
struct RuntimeEntry {
  std::size_t position;
};

/// The runtime functions that the applet calls. Every other bound symbol is kept for the runtime's
/// tools, which know the table by position.
namespace runtime {
inline constexpr RuntimeEntry<VornGetAppletId> kGetAppletId{4};
inline constexpr RuntimeEntry<VornSetParameter> kSetParameter{5};
inline constexpr RuntimeEntry<VornSetParameterWithType> kSetParameterWithType{6};
inline constexpr RuntimeEntry<VornGetParameter> kGetParameter{7};
inline constexpr RuntimeEntry<VornGetParameterWithType> kGetParameterWithType{8};
inline constexpr RuntimeEntry<VornFreeParameterStringWithType> kFreeParameterStringWithType{9};
inline constexpr RuntimeEntry<VornGetLastPicNumberEx> kGetLastPicNumberEx{15};
inline constexpr RuntimeEntry<VornGetLastPicNumberBlockingEx> kGetLastPicNumberBlockingEx{16};
inline constexpr RuntimeEntry<VornFreeGrabber> kFreeGrabber{19};
inline constexpr RuntimeEntry<VornGetLastErrorNumber> kGetLastErrorNumber{20};
inline constexpr RuntimeEntry<VornGetStatusEx> kGetStatusEx{29};
inline constexpr RuntimeEntry<VornAcquireEx> kAcquireEx{30};
inline constexpr RuntimeEntry<VornStopAcquireEx> kStopAcquireEx{31};
inline constexpr RuntimeEntry<VornGetParameterInfo> kGetParameterInfo{32};
}  // namespace runtime

/// Runtime functions bound by name; an entry is null when the runtime lacks the symbol.
class WrapperFunctionTable {
 public:
  /// Looks up every symbol in an open library. Missing symbols are no failure.
  void bind(void* library);

  /// The function of an entry, or null.
  template <class Signature>
  Signature* operator[](RuntimeEntry<Signature> entry) const {
    return reinterpret_cast<Signature*>(entries_[entry.position]);
  }

 private:
  static constexpr std::size_t kPositions = 42;
  std::array<void*, kPositions> entries_{};
};

}  // namespace velmora
