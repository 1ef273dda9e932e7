#pragma once

#include <cstdint>

namespace velmora {

/// The applet's identity, as tools and files show it.
inline constexpr const char* kAppletName = "Velmora";
inline constexpr const char* kVendorName = "Brightfold";
inline constexpr const char* kConfigurationVersion = "2.3";
inline constexpr int kLoadAppletId = 0;
inline constexpr const char* kHapFileName = "Velmora.hap";
inline constexpr int kBoardType = 3652;

inline constexpr std::uint32_t kAppletVersion = 2;
inline constexpr std::uint32_t kAppletRevision = 1;
inline constexpr std::uint32_t kAppletId = 0;

}  // namespace velmora
