#pragma once

#include <array>
#include <cstddef>

#include "external/vorn5.h"

namespace velmora {

/// The name of a runtime function and its position in the wrapper function table. The runtime's
/// tools rely on the positions.
struct RuntimeSymbol {
  std::size_t position;
  const char* name;
};

/// A runtime function that the applet calls, with its type.
template <class Signature>
struct RuntimeEntry : RuntimeSymbol {};

/// The runtime functions that the applet calls. Every other bound symbol is kept for the runtime's
/// tools.
namespace runtime {
inline constexpr RuntimeEntry<VornGetAppletId> kGetAppletId{4, "Fg_getAppletId"};
inline constexpr RuntimeEntry<VornSetParameter> kSetParameter{5, "Fg_setParameter"};
inline constexpr RuntimeEntry<VornSetParameterWithType> kSetParameterWithType{
    6, "Fg_setParameterWithType"};
inline constexpr RuntimeEntry<VornGetParameter> kGetParameter{7, "Fg_getParameter"};
inline constexpr RuntimeEntry<VornGetParameterWithType> kGetParameterWithType{
    8, "Fg_getParameterWithType"};
inline constexpr RuntimeEntry<VornFreeParameterStringWithType> kFreeParameterStringWithType{
    9, "Fg_freeParameterStringWithType"};
inline constexpr RuntimeEntry<VornGetLastPicNumberEx> kGetLastPicNumberEx{15,
                                                                          "Fg_getLastPicNumberEx"};
inline constexpr RuntimeEntry<VornGetLastPicNumberBlockingEx> kGetLastPicNumberBlockingEx{
    16, "Fg_getLastPicNumberBlockingEx"};
inline constexpr RuntimeEntry<VornFreeGrabber> kFreeGrabber{19, "Fg_FreeGrabber"};
inline constexpr RuntimeEntry<VornGetLastErrorNumber> kGetLastErrorNumber{20,
                                                                          "Fg_getLastErrorNumber"};
inline constexpr RuntimeEntry<VornGetStatusEx> kGetStatusEx{29, "Fg_getStatusEx"};
inline constexpr RuntimeEntry<VornAcquireEx> kAcquireEx{30, "Fg_AcquireEx"};
inline constexpr RuntimeEntry<VornStopAcquireEx> kStopAcquireEx{31, "Fg_stopAcquireEx"};
inline constexpr RuntimeEntry<VornGetParameterInfo> kGetParameterInfo{32, "Fg_getParameterInfo"};
}  // namespace runtime

/// Runtime functions bound by name; an entry is null when the runtime lacks the symbol.
class WrapperFunctionTable {
 public:
  static constexpr std::size_t kPositions = 42;

  /// Looks up every symbol in an open library. Missing ones stay null.
  void bind(void* library);

  /// The function of an entry, or null.
  template <class Signature>
  Signature* operator[](RuntimeEntry<Signature> entry) const {
    return reinterpret_cast<Signature*>(entries_[entry.position]);
  }

 private:
  std::array<void*, kPositions> entries_{};
};

}  // namespace velmora
