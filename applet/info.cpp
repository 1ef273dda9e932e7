/// Answers about the applet that need no instance.
#include <cstdint>
#include <string_view>

#include "applet/icon.h"
#include "design/design_image.h"
#include "parameters/applet_identity.h"
#include "parameters/table/enumerations.h"
#include "velmora/errors.h"
#include "velmora/velmora.h"
#include "wrapper/fg_kt_wrapper.h"

using namespace velmora;

namespace {

/// Where an answer goes; a caller that gives no place is not answered.
struct Answer {
  void* out;
  void** outPointer;

  template <class T>
  void number(T value) const {
    if (out) *static_cast<T*>(out) = value;
  }
  void pointer(const void* value) const {
    if (outPointer) *outPointer = const_cast<void*>(value);
  }
};

struct Query {
  int index;
  int sub;
  Answer answer;
};

using Handler = int (*)(const Query&);

template <int Result>
int constant(const Query&) {
  return Result;
}

int icon(const Query& query) {
  query.answer.number<uint64_t>(kIconSize);
  query.answer.pointer(velmora_icon);
  return 0;
}

int designImage(const Query& query) {
  query.answer.number<uint64_t>(kDesignImageSize);
  query.answer.pointer(velmora_design_image);
  return 0;
}

constexpr char kGuid[] = "ea8d16eb-c9c3-20a3-8f42-bc3daf387855";
constexpr char kNoText[] = "";
constexpr char kDescription[] =
    "Acquisition Applet with 8 bit image processing (per color component) and white balancing for "
    "four GigE Vision Bayer area scan cameras.";
constexpr char kCategory[] = "Imagelets:Area";
constexpr char kTags[] =
    "class=standard,family=legacy,type=quad,sensortype=area,color=bayer,interface=gige,lag=1";
constexpr char kVersion[] = "2.1.2.3";
constexpr char kBuildVersion[] = "2.1.2.3.20190221.013019";

template <const auto& Text>
int text(const Query& query) {
  query.answer.pointer(Text);
  return 0;
}

int appletName(const Query& query) {
  query.answer.pointer(kAppletName);
  return 0;
}

int zeroWord(const Query& query) {
  query.answer.number<uint32_t>(0);
  return 0;
}

int deviceHandle(const Query& query) {
  query.answer.number(reinterpret_cast<uintptr_t>(FgKtWrapper::accessDeviceHandle(nullptr)));
  return 0;
}

int designHandle(const Query& query) {
  query.answer.number(reinterpret_cast<uintptr_t>(FgKtWrapper::accessDesignHandle(nullptr)));
  return 0;
}

/// Reads constant data only: hosts ask until the last instruction of the process, when the static
/// objects of this library are gone.
int valueOfName(const Query& query) {
  if (!query.answer.out) return VELMORA_INVALID_ARGUMENT;
  const std::string_view name = static_cast<const char*>(query.answer.out);
  for (const Enumeration& enumeration : kEnumerations)
    for (const EnumEntry& entry : enumeration)
      if (entry.identifier == name) return entry.value;
  return VELMORA_INVALID_ARGUMENT;
}

bool isPort(int index) { return static_cast<unsigned>(index) < kProcesses; }

template <int Result>
int perPort(const Query& query) {
  return isPort(query.index) ? Result : int{VELMORA_INVALID_ARGUMENT};
}

/// Process and DMA channel of a port have the port's own number.
int samePort(const Query& query) {
  return isPort(query.index) && query.sub == 0 ? query.index : int{VELMORA_INVALID_ARGUMENT};
}

struct Property {
  int number;
  Handler handle;
};

constexpr Property kProperties[] = {
    {0x350, constant<0>},          {0x410, constant<0>},         {0x411, icon},
    {0x412, designImage},          {0x413, text<kGuid>},         {0x414, text<kNoText>},
    {0x415, constant<0>},          {0x700, constant<4>},         {0x750, constant<4>},
    {0x760, constant<4>},          {0x800, constant<0x20001>},   {0x870, constant<0>},
    {0x880, constant<kBoardType>}, {0x890, constant<0>},         {0x900, zeroWord},
    {0xa00, constant<0>},          {0xb00, constant<1>},         {0xc00, constant<0>},
    {0xd00, constant<0>},          {0x1000, text<kDescription>}, {0x1010, text<kCategory>},
    {0x1020, text<kTags>},         {0x1030, deviceHandle},       {0x1040, designHandle},
    {0x1050, appletName},          {0x1060, text<kVersion>},     {0x1070, text<kBuildVersion>},
    {0x1100, valueOfName},         {0x1200, constant<4>},        {0x1210, perPort<1>},
    {0x1220, perPort<1>},          {0x1230, samePort},           {0x1240, samePort},
    {0x1250, perPort<1>},          {0x1260, perPort<8>},
};

}  // namespace

int Info(int property, int index, int sub, void* out, void** outPointer) {
  for (const Property& known : kProperties)
    if (known.number == property) return known.handle({index, sub, {out, outPointer}});
  return VELMORA_NOT_SUPPORTED;
}
