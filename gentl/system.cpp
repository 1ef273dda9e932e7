#include "gentl/system.h"

#include <dlfcn.h>

#include <filesystem>

#include "gentl/interface.h"

namespace gentl {
namespace {

struct Producer {
  std::filesystem::path library() const {
    Dl_info found{};
    dladdr(this, &found);
    return found.dli_fname ? std::filesystem::absolute(found.dli_fname) : "";
  }
  std::string path() const { return library().string(); }
  std::string file() const { return library().filename().string(); }
} theProducer;

constexpr char kId[] = "velmora";
constexpr char kDisplayName[] = "Brightfold Velmora (velmora)";

const InfoRow<Producer> kInfos[] = {
    {TL_INFO_ID, INFO_DATATYPE_STRING, tell<kId>, "TLID"},
    {TL_INFO_VENDOR, INFO_DATATYPE_STRING, tell<kVendor>, "TLVendorName"},
    {TL_INFO_MODEL, INFO_DATATYPE_STRING, tell<kModel>, "TLModelName"},
    {TL_INFO_VERSION, INFO_DATATYPE_STRING, tell<kVersion>, "TLVersion"},
    {TL_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
    {TL_INFO_NAME, INFO_DATATYPE_STRING, tell<&Producer::file>, "TLFileName"},
    {TL_INFO_PATHNAME, INFO_DATATYPE_STRING, tell<&Producer::path>, "TLPath"},
    {TL_INFO_DISPLAYNAME, INFO_DATATYPE_STRING, tell<kDisplayName>, "TLDisplayName"},
    {TL_INFO_CHAR_ENCODING, INFO_DATATYPE_INT32, tell<TL_CHAR_ENCODING_UTF8>},
    {TL_INFO_GENTL_VER_MAJOR, INFO_DATATYPE_UINT32, tell<1>, "GenTLVersionMajor"},
    {TL_INFO_GENTL_VER_MINOR, INFO_DATATYPE_UINT32, tell<6>, "GenTLVersionMinor"},
};

}  // namespace

System::System() : Module(kId, "TLSystem", nullptr, {}, {kInterfaceId}) {
  addInfos(kInfos, []() -> Producer& { return theProducer; });
  addEnumeration("TLType", {kTechnology});
  addCommand("InterfaceUpdateList");
  addSelector("InterfaceSelector");
  addFeature("InterfaceID", RegisterKind::kText, [] { return kInterfaceId; });
}

std::shared_ptr<System>& System::current() {
  static std::shared_ptr<System> system;
  return system;
}

void System::producerInfo(TL_INFO_CMD command, Answer to) {
  answer(kInfos, theProducer, command, to);
}

void System::interfaceInfo(const char* wanted, INTERFACE_INFO_CMD command, Answer to) {
  indexOf(wanted);
  Interface::boardInfo(command, to);
}

void System::openInterface(const char* wanted, IF_HANDLE* handle) {
  open(wanted, handle, [this] { return std::make_shared<Interface>(shared_from_this()); });
}

void System::close() {
  Module::close();
  current().reset();
}

}  // namespace gentl
