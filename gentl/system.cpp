#include "gentl/system.h"

#include <dlfcn.h>

#include <filesystem>

namespace gentl {
namespace {

struct Producer {
} theProducer;

std::filesystem::path library() {
  Dl_info found{};
  dladdr(reinterpret_cast<const void*>(&systemInfo), &found);
  return found.dli_fname ? std::filesystem::absolute(found.dli_fname) : "";
}

const InfoRow<Producer> kInfos[] = {
    {TL_INFO_ID, INFO_DATATYPE_STRING, [](Producer&) { return Value("velmora"); }, "TLID"},
    {TL_INFO_VENDOR, INFO_DATATYPE_STRING, [](Producer&) { return Value(kVendor); },
     "TLVendorName"},
    {TL_INFO_MODEL, INFO_DATATYPE_STRING, [](Producer&) { return Value(kModel); }, "TLModelName"},
    {TL_INFO_VERSION, INFO_DATATYPE_STRING, [](Producer&) { return Value(kVersion); }, "TLVersion"},
    {TL_INFO_TLTYPE, INFO_DATATYPE_STRING, [](Producer&) { return Value(kTechnology); }},
    {TL_INFO_NAME, INFO_DATATYPE_STRING,
     [](Producer&) { return Value(library().filename().string()); }, "TLFileName"},
    {TL_INFO_PATHNAME, INFO_DATATYPE_STRING, [](Producer&) { return Value(library().string()); },
     "TLPath"},
    {TL_INFO_DISPLAYNAME, INFO_DATATYPE_STRING,
     [](Producer&) { return Value("Brightfold Velmora (velmora)"); }, "TLDisplayName"},
    {TL_INFO_CHAR_ENCODING, INFO_DATATYPE_INT32,
     [](Producer&) { return number(TL_CHAR_ENCODING_UTF8); }},
    {TL_INFO_GENTL_VER_MAJOR, INFO_DATATYPE_UINT32, [](Producer&) { return number(1); },
     "GenTLVersionMajor"},
    {TL_INFO_GENTL_VER_MINOR, INFO_DATATYPE_UINT32, [](Producer&) { return number(6); },
     "GenTLVersionMinor"},
};

constexpr const char* kTypes[] = {kTechnology};

}  // namespace

void systemInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  answer(kInfos, theProducer, command, type, buffer, size);
}

System::System() : Module("velmora", "TLSystem", {EVENT_ERROR, EVENT_MODULE}) {
  addInfos(kInfos, theProducer);
  addEnumeration("TLType", kTypes, element("Value", "0"));
  addCommand("InterfaceUpdateList");
  addSelector("InterfaceSelector", 1, selected_);
  addFeature("InterfaceID", INFO_DATATYPE_STRING, [] { return Value(kInterfaceId); });
}

std::shared_ptr<System>& System::open() {
  static std::shared_ptr<System> system;
  return system;
}

std::shared_ptr<Interface> System::openInterface(std::string_view wanted) {
  require(wanted == kInterfaceId, GC_ERR_INVALID_ID, "no interface has this id");
  require(!interface_, GC_ERR_RESOURCE_IN_USE, "the interface is open");
  interface_ = std::make_shared<Interface>(std::static_pointer_cast<System>(shared_from_this()));
  Registry::instance().add(interface_);
  return interface_;
}

void System::close() {
  if (const auto inside = interface_) inside->close();
  Module::close();
  open().reset();
}

}  // namespace gentl
