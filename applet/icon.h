#pragma once

namespace velmora {
inline constexpr unsigned kIconSize = 1872;  ///< Bytes.
}

/// Start of the applet's icon, a PNG image of 32 by 32 pixels.
extern "C" const unsigned char velmora_icon[velmora::kIconSize];
