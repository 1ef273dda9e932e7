/// The FPGA design of the applet, linked into the library: the packed manifest `Velmora.design`.
#pragma once

namespace velmora {
inline constexpr unsigned kDesignImageSize = 2662941;  ///< Bytes, fixed for the board's loader.
}

/// Start of the image. Writable, as the design runtime has always received it.
extern "C" unsigned char velmora_design_image[];
