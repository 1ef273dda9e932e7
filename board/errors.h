/// Error codes of the virtual board's libraries.
#pragma once

namespace board {

enum Error : int {
  kOk = 0,
  kNoHandle = -2050,          ///< Null or unknown handle, or null device.
  kNoDesign = -2051,          ///< Inner handle requested without a device or a design.
  kDeviceBusy = -2052,        ///< Inner handles of another design are open on the device.
  kUnknownParameter = -2080,  ///< No parameter has this id or name.
  kBadDma = -2081,            ///< DMA index outside 0 to 3.
  kNullValue = -2082,         ///< Null pointer in place of a value.
  kWrongType = -2083,         ///< Value type that the parameter does not have.
  kReadOnly = -2084,          ///< Parameter that only the design writes.
  kDoesNotFit = -2085,        ///< Value too wide for the parameter or for the type asked for.
  kUnknownString = -2086,     ///< String that is not handed out.
  kBadArgument = -2087,       ///< Picture count, timeout or status number out of range.
  kUnknownRegister = -2090,   ///< No register has this id.
  kRegisterReadOnly = -2091,  ///< Register that only the design writes.
  kAlreadyStarted = -2110,    ///< Acquisition runs on the channel.
  kNotStarted = -2111,        ///< No acquisition runs, or ran, on the channel.
  kTimeout = -2120,           ///< The picture did not arrive in time.
  kNotOffered = -2130         ///< Function that the board's runtime does not have.
};

}  // namespace board
