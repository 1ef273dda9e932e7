/// Short names of the board's error codes, which `velmora/errors.h` explains.
#pragma once

#include "velmora/errors.h"

namespace board {

enum Error : int {
  kOk = VELMORA_OK,
  kNoHandle = VELMORA_BOARD_NO_HANDLE,
  kNoDesign = VELMORA_BOARD_NO_DESIGN,
  kDeviceBusy = VELMORA_BOARD_DEVICE_BUSY,
  kUnknownParameter = VELMORA_BOARD_UNKNOWN_PARAMETER,
  kBadDma = VELMORA_BOARD_BAD_DMA,
  kNullValue = VELMORA_BOARD_NULL_VALUE,
  kWrongType = VELMORA_BOARD_WRONG_TYPE,
  kReadOnly = VELMORA_BOARD_READ_ONLY,
  kDoesNotFit = VELMORA_BOARD_DOES_NOT_FIT,
  kUnknownString = VELMORA_BOARD_UNKNOWN_STRING,
  kBadArgument = VELMORA_BOARD_BAD_ARGUMENT,
  kUnknownRegister = VELMORA_BOARD_UNKNOWN_REGISTER,
  kRegisterReadOnly = VELMORA_BOARD_REGISTER_READ_ONLY,
  kAlreadyStarted = VELMORA_BOARD_ALREADY_STARTED,
  kNotStarted = VELMORA_BOARD_NOT_STARTED,
  kBufferTooSmall = VELMORA_BOARD_BUFFER_TOO_SMALL,
  kMemoryInUse = VELMORA_BOARD_MEMORY_IN_USE,
  kTimeout = VELMORA_BOARD_TIMEOUT,
  kNotOffered = VELMORA_NOT_SUPPORTED  ///< The board's runtime lacks the function.
};

/// What a code means; empty for any other code.
const char* errorText(int code);

}  // namespace board
