/// `Info`: questions about the applet that need no instance.
#include "velmora/info.h"

#include <cstdint>
#include <string_view>

#include "applet/icon.h"
#include "design/design_image.h"
#include "parameters/families/enumerations.h"
#include "parameters/port/applet_identity.h"
#include "velmora/errors.h"
#include "velmora/velmora.h"
#include "wrapper/fg_kt_wrapper.h"

using namespace velmora;

namespace {

/// How a property is answered.
enum class Kind {
  kResult,
  kText,
  kIcon,
  kDesignImage,
  kZeroWord,
  kDevice,
  kDesign,
  kValueOfName,
  kPerPort,   ///< The result, if the index is a port.
  kSamePort,  ///< The port: its process and DMA channel have the same number.
};
using enum Kind;

struct Property {
  int number;
  Kind kind;
  int result = 0;
  const char* text = nullptr;
};

constexpr Property kProperties[] = {
    {VELMORA_INFO_ICON, kIcon},
    {VELMORA_INFO_DESIGN_IMAGE, kDesignImage},
    {VELMORA_INFO_UNIQUE_ID, kText, 0, "ea8d16eb-c9c3-20a3-8f42-bc3daf387855"},
    {VELMORA_INFO_BOARD_TYPE, kResult, kBoardType},
    {VELMORA_INFO_DESCRIPTION, kText, 0,
     "Acquisition Applet with 8 bit image processing (per color component) and white balancing for "
     "four GigE Vision Bayer area scan cameras."},
    {VELMORA_INFO_CATEGORY, kText, 0, "Imagelets:Area"},
    {VELMORA_INFO_TAGS, kText, 0,
     "class=standard,family=legacy,type=quad,sensortype=area,color=bayer,interface=gige,lag=1"},
    {VELMORA_INFO_DEVICE, kDevice},
    {VELMORA_INFO_DESIGN, kDesign},
    {VELMORA_INFO_NAME, kText, 0, kAppletName},
    {VELMORA_INFO_VERSION, kText, 0, "2.1.2.3"},
    {VELMORA_INFO_BUILD_VERSION, kText, 0, "2.1.2.3.20190221.013019"},
    {VELMORA_INFO_VALUE_OF_NAME, kValueOfName},
    {VELMORA_INFO_PORTS, kResult, VELMORA_PORTS},
    {VELMORA_INFO_PORT_1210, kPerPort, 1},
    {VELMORA_INFO_PORT_1220, kPerPort, 1},
    {VELMORA_INFO_PORT_1230, kSamePort},
    {VELMORA_INFO_PORT_1240, kSamePort},
    {VELMORA_INFO_PORT_1250, kPerPort, 1},
    {VELMORA_INFO_PORT_1260, kPerPort, 8},
    {VELMORA_INFO_RUNTIME_0350, kResult, 0},
    {VELMORA_INFO_RUNTIME_0410, kResult, 0},
    {VELMORA_INFO_RUNTIME_0414, kText, 0, ""},
    {VELMORA_INFO_RUNTIME_0415, kResult, 0},
    {VELMORA_INFO_RUNTIME_0700, kResult, 4},
    {VELMORA_INFO_RUNTIME_0750, kResult, 4},
    {VELMORA_INFO_RUNTIME_0760, kResult, 4},
    {VELMORA_INFO_RUNTIME_0800, kResult, 0x20001},
    {VELMORA_INFO_RUNTIME_0870, kResult, 0},
    {VELMORA_INFO_RUNTIME_0890, kResult, 0},
    {VELMORA_INFO_RUNTIME_0900, kZeroWord},
    {VELMORA_INFO_RUNTIME_0A00, kResult, 0},
    {VELMORA_INFO_RUNTIME_0B00, kResult, 1},
    {VELMORA_INFO_RUNTIME_0C00, kResult, 0},
    {VELMORA_INFO_RUNTIME_0D00, kResult, 0},
};

/// Where `Info` stores its answer. A null pointer is ignored.
struct Output {
  void* out;
  void** outPointer;

  template <class T>
  int number(T value) const {
    if (out) *static_cast<T*>(out) = value;
    return VELMORA_OK;
  }
  int pointer(const void* value) const {
    if (outPointer) *outPointer = const_cast<void*>(value);
    return VELMORA_OK;
  }
  int handle(const void* value) const { return number(reinterpret_cast<std::uintptr_t>(value)); }
  int block(const void* bytes, std::uint64_t size) const {
    number(size);
    return pointer(bytes);
  }
};

/// Reads constant data only: hosts may ask while the process exits, when the static objects of this
/// library have been destroyed.
int valueOf(std::string_view name) {
  for (const Enumeration& enumeration : kEnumerations)
    for (const EnumEntry& entry : enumeration)
      if (entry.identifier == name) return entry.value;
  return VELMORA_INVALID_ARGUMENT;
}

int answer(const Property& property, int index, int sub, const Output& output) {
  const bool isPort = index >= 0 && index < VELMORA_PORTS;
  switch (property.kind) {
    case kResult:
      return property.result;
    case kText:
      return output.pointer(property.text);
    case kIcon:
      return output.block(velmora_icon, kIconSize);
    case kDesignImage:
      return output.block(velmora_design_image, kDesignImageSize);
    case kZeroWord:
      return output.number(std::uint32_t{0});
    case kDevice:
      return output.handle(FgKtWrapper::accessDeviceHandle(nullptr));
    case kDesign:
      return output.handle(FgKtWrapper::accessDesignHandle(nullptr));
    case kValueOfName:
      if (!output.out) break;
      return valueOf(static_cast<const char*>(output.out));
    case kPerPort:
      if (!isPort) break;
      return property.result;
    case kSamePort:
      if (!isPort || sub != 0) break;
      return index;
  }
  return VELMORA_INVALID_ARGUMENT;
}

}  // namespace

int Info(int property, int index, int sub, void* out, void** outPointer) {
  for (const Property& known : kProperties)
    if (known.number == property) return answer(known, index, sub, {out, outPointer});
  return VELMORA_NOT_SUPPORTED;
}
