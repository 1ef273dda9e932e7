#include "gentl/interface.h"

namespace gentl {
namespace {

struct Board {
} theBoard;

constexpr char kDisplayName[] = "Velmora virtual board";

const InfoRow<Board> kInfos[] = {
    {INTERFACE_INFO_ID, INFO_DATATYPE_STRING, tell<kInterfaceId>, "InterfaceID"},
    {INTERFACE_INFO_DISPLAYNAME, INFO_DATATYPE_STRING, tell<kDisplayName>, "InterfaceDisplayName"},
    {INTERFACE_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
};

}  // namespace

Interface::Interface(std::shared_ptr<Module> system)
    : Module(kInterfaceId, "TLInterface", std::move(system), {}, deviceIds()) {
  addInfos(kInfos, []() -> Board& { return theBoard; });
  addEnumeration("InterfaceType", {kTechnology});
  addCommand("DeviceUpdateList");
  addSelector("DeviceSelector");
  const auto shown = [this] {
    const std::lock_guard guard(Registry::instance().structure);
    return facts(selected());
  };
  addInfos(kDeviceInfos, shown, {"DeviceSelector"});
  add({"DeviceAccessStatus_Reg",
       RegisterKind::kInteger,
       [=] { return toValue(shown().access); },
       nullptr,
       {"DeviceSelector"}});
  addEnumeration(
      "DeviceAccessStatus",
      {"Unknown", "ReadWrite", "ReadOnly", "NoAccess", "Busy", "OpenReadWrite", "OpenReadOnly"},
      element("pValue", "DeviceAccessStatus_Reg"));
}

void Interface::boardInfo(INTERFACE_INFO_CMD command, Answer to) {
  answer(kInfos, theBoard, command, to);
}

DeviceFacts Interface::facts(std::size_t port) const {
  if (const auto device = opened(port)) return static_cast<const Device&>(*device).facts();
  return {port, DEVICE_ACCESS_STATUS_READWRITE};
}

void Interface::deviceInfo(const char* wanted, DEVICE_INFO_CMD command, Answer to) {
  DeviceFacts found = facts(indexOf(wanted));
  answer(kDeviceInfos, found, command, to);
}

void Interface::openDevice(const char* wanted, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* handle) {
  require(access >= DEVICE_ACCESS_READONLY && access <= DEVICE_ACCESS_EXCLUSIVE,
          GC_ERR_INVALID_PARAMETER, "no such access");
  open(wanted, handle, [&] {
    const auto board = std::static_pointer_cast<Interface>(shared_from_this());
    auto made = std::make_shared<Device>(board, board->grabber, indexOf(wanted),
                                         access == DEVICE_ACCESS_READONLY);
    made->connect();
    return made;
  });
}

}  // namespace gentl
