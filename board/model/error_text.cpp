/// The meaning of error codes, as text.
#include <algorithm>
#include <iterator>

#include "board/model/board_error.h"

namespace board {
namespace {

struct ErrorText {
  int code;
  const char* text;
};
constexpr ErrorText kErrorTexts[] = {
    {kNoHandle, "no such handle or device"},
    {kNoDesign, "no device or no design to open"},
    {kDeviceBusy, "the device is in use with another design"},
    {kUnknownParameter, "no such design or runtime parameter"},
    {kBadDma, "no such DMA channel"},
    {kNullValue, "no place for the value"},
    {kWrongType, "the parameter has another type"},
    {kReadOnly, "the parameter cannot be written"},
    {kDoesNotFit, "the value does not fit the type"},
    {kUnknownString, "the string was not handed out"},
    {kBadArgument, "argument out of range"},
    {kUnknownRegister, "no such register"},
    {kRegisterReadOnly, "the register cannot be written"},
    {kAlreadyStarted, "the channel is acquiring already"},
    {kNotStarted, "the channel is not acquiring"},
    {kBufferTooSmall, "the buffers of the picture memory are smaller than a picture"},
    {kMemoryInUse, "the picture memory is in use"},
    {kTimeout, "the picture did not arrive in time"},
    {kNotOffered, "not offered by this runtime"},
};

}  // namespace

const char* errorText(int code) {
  const auto* row = std::find_if(std::begin(kErrorTexts), std::end(kErrorTexts),
                                 [code](const ErrorText& entry) { return entry.code == code; });
  return row != std::end(kErrorTexts) ? row->text : "";
}

}  // namespace board
