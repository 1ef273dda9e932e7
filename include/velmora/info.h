/// Properties that `Info` answers.
///
/// The comments name the kind of answer:
/// - result: what `Info` returns; nothing is written. The other kinds return 0.
/// - text: `*outPointer` becomes a `const char*`.
/// - block: `*outPointer` becomes the address of the first byte, `out` the size as a `uint64_t`.
/// - handle: `out` becomes the pointer as a `uint64_t`; 0 before the first successful start-up.
///
/// Texts and blocks belong to the library: they stay valid while it is loaded and must not be
/// changed or freed. Handles are those of the latest successful start-up; what they refer to may
/// have been released since. Only the port mapping reads `index` and `sub`.
#pragma once

enum VelmoraInfo {
  VELMORA_INFO_ICON = 0x411,            ///< Block: PNG image, 32 by 32 pixels, RGBA.
  VELMORA_INFO_DESIGN_IMAGE = 0x412,    ///< Block: the embedded design, opaque.
  VELMORA_INFO_UNIQUE_ID = 0x413,       ///< Text: GUID in lower case, without braces.
  VELMORA_INFO_BOARD_TYPE = 0x880,      ///< Result: 3652, the board that the design is made for.
  VELMORA_INFO_DESCRIPTION = 0x1000,    ///< Text: one sentence.
  VELMORA_INFO_CATEGORY = 0x1010,       ///< Text: "Imagelets:Area".
  VELMORA_INFO_TAGS = 0x1020,           ///< Text: "key=value" pairs, separated by commas.
  VELMORA_INFO_DEVICE = 0x1030,         ///< Handle: `KTdevice*`.
  VELMORA_INFO_DESIGN = 0x1040,         ///< Handle: `fpga_design*`.
  VELMORA_INFO_NAME = 0x1050,           ///< Text: "Velmora".
  VELMORA_INFO_VERSION = 0x1060,        ///< Text: four numbers, "2.1.2.3".
  VELMORA_INFO_BUILD_VERSION = 0x1070,  ///< Text: the version, date and time of the build.

  /// Result: the value of a name in `velmora/values.h`, such as "FG_ON"; -2070 when there is none.
  /// Here `out` is the input, a `const char*`; case matters.
  VELMORA_INFO_VALUE_OF_NAME = 0x1100,

  VELMORA_INFO_PORTS = 0x1200,  ///< Result: 4, the number of camera ports.

  /// @name Port mapping; `index` is the port
  /// Result: as below for ports 0 to 3, -2070 for others. Only the runtime knows what the constant
  /// answers count.
  /// @{
  VELMORA_INFO_PORT_1210 = 0x1210,  ///< 1.
  VELMORA_INFO_PORT_1220 = 0x1220,  ///< 1.
  VELMORA_INFO_PORT_1230 = 0x1230,  ///< `index` if `sub` is 0, else -2070: a port's process and DMA
                                    ///< channel have the port's number.
  VELMORA_INFO_PORT_1240 = 0x1240,  ///< As 0x1230.
  VELMORA_INFO_PORT_1250 = 0x1250,  ///< 1.
  VELMORA_INFO_PORT_1260 = 0x1260,  ///< 8.
  /// @}

  /// @name Answers whose meaning only the runtime knows
  /// @{
  VELMORA_INFO_RUNTIME_0350 = 0x350,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0410 = 0x410,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0414 = 0x414,  ///< Text: empty.
  VELMORA_INFO_RUNTIME_0415 = 0x415,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0700 = 0x700,  ///< Result: 4.
  VELMORA_INFO_RUNTIME_0750 = 0x750,  ///< Result: 4.
  VELMORA_INFO_RUNTIME_0760 = 0x760,  ///< Result: 4.
  VELMORA_INFO_RUNTIME_0800 = 0x800,  ///< Result: 0x20001.
  VELMORA_INFO_RUNTIME_0870 = 0x870,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0890 = 0x890,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0900 = 0x900,  ///< Result: 0; `out` becomes 0 as a `uint32_t`.
  VELMORA_INFO_RUNTIME_0A00 = 0xa00,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0B00 = 0xb00,  ///< Result: 1.
  VELMORA_INFO_RUNTIME_0C00 = 0xc00,  ///< Result: 0.
  VELMORA_INFO_RUNTIME_0D00 = 0xd00   ///< Result: 0.
  /// @}
};
