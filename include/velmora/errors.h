/// Result codes. 0 is success. The applet passes on the codes of the acquisition runtime, the
/// design runtime and the register library unchanged.
#pragma once

enum VelmoraError {
  VELMORA_OK = 0,
  VELMORA_NOTHING_FOUND = -1,   ///< No shading object; no usable value in a configuration.
  VELMORA_NOT_AVAILABLE = -12,  ///< Read-only parameter; unbound runtime function; no inner handle.
  VELMORA_TRIGGER_BUSY = -60,   ///< Software trigger while busy with the queue off.
  VELMORA_NO_DESIGN = -100,     ///< Design refused, or the runtime refused it without a code.
  VELMORA_BUFFER_TOO_SMALL = -500,     ///< Buffer missing or too small; a text could not be copied.
  VELMORA_OUT_OF_MEMORY = -501,        ///< No memory: GenApi document, virtual board.
  VELMORA_NO_INSTANCE = -2001,         ///< Null frame grabber, or one without an applet instance.
  VELMORA_NO_RUNTIME = -2031,          ///< Runtime library missing or without an init function.
  VELMORA_INVALID_ARGUMENT = -2070,    ///< Null value, unknown id, process, name, index or string.
  VELMORA_NOT_REPRESENTABLE = -2075,   ///< A count that does not fit its register.
  VELMORA_NO_CONFIG_FILE = -2076,      ///< Configuration file missing or of another type.
  VELMORA_NO_DESCRIPTION = -2075,      ///< No parameter description for the port.
  VELMORA_NOT_A_STRING_TYPE = -2078,   ///< String release with a type other than 22.
  VELMORA_DOWNSCALE_PERIOD = -2078,    ///< Downscale fails the period check.
  VELMORA_TRIGGER_PERIOD = -2079,      ///< Frame rate, delay or width fails the period check.
  VELMORA_NOT_SUPPORTED = -2130,       ///< Shading, unknown `Info` property.
  VELMORA_NOT_SOFTWARE_MODE = -2140,   ///< Software trigger outside `ATM_SOFTWARE`.
  VELMORA_TRIGGER_NOT_ACTIVE = -2141,  ///< Software trigger outside `TS_ACTIVE`.
  VELMORA_CONFIG_NOT_LOADED = -5000,   ///< Another applet's file, or a missing key.
  VELMORA_CONFIG_NOT_SAVED = -5001,    ///< Configuration file cannot be written.
  VELMORA_OUT_OF_RANGE = -6000,        ///< Value outside its range or enumeration.
  VELMORA_STEP_VIOLATION = -7080,      ///< Value breaks a step rule.
  VELMORA_KEY_NOT_FOUND = -8000        ///< Configuration parser: section or key not found.
};

/// Codes of the virtual board's libraries. A real board may use others.
enum VelmoraBoardError {
  VELMORA_BOARD_NO_HANDLE = -2050,           ///< Null or unknown handle, or null device.
  VELMORA_BOARD_NO_DESIGN = -2051,           ///< Handle requested without a device or a design.
  VELMORA_BOARD_DEVICE_BUSY = -2052,         ///< Another design is open on the device.
  VELMORA_BOARD_UNKNOWN_PARAMETER = -2080,   ///< No design parameter has this id or name.
  VELMORA_BOARD_BAD_DMA = -2081,             ///< DMA index outside 0 to 3.
  VELMORA_BOARD_NULL_VALUE = -2082,          ///< Null pointer in place of a value.
  VELMORA_BOARD_WRONG_TYPE = -2083,          ///< Value type that the parameter does not have.
  VELMORA_BOARD_READ_ONLY = -2084,           ///< Parameter that only the design writes.
  VELMORA_BOARD_DOES_NOT_FIT = -2085,        ///< Value too wide for the parameter or for the type.
  VELMORA_BOARD_UNKNOWN_STRING = -2086,      ///< String that is not handed out.
  VELMORA_BOARD_BAD_ARGUMENT = -2087,        ///< Picture count, timeout or status out of range.
  VELMORA_BOARD_UNKNOWN_REGISTER = -2090,    ///< No register has this id.
  VELMORA_BOARD_REGISTER_READ_ONLY = -2091,  ///< Register that only the design writes.
  VELMORA_BOARD_ALREADY_STARTED = -2110,     ///< Acquisition runs on the channel.
  VELMORA_BOARD_NOT_STARTED = -2111,         ///< No acquisition runs, or ran, on the channel.
  VELMORA_BOARD_BUFFER_TOO_SMALL = -2112,  ///< Picture memory with buffers smaller than a picture.
  VELMORA_BOARD_MEMORY_IN_USE = -2113,     ///< Another channel uses the picture memory.
  VELMORA_BOARD_TIMEOUT = -2120            ///< The picture or event did not arrive in time.
};
