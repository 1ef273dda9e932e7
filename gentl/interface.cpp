#include "gentl/interface.h"

#include "gentl/system.h"

namespace gentl {
namespace {

struct Board {
} theBoard;

const InfoRow<Board> kInfos[] = {
    {INTERFACE_INFO_ID, INFO_DATATYPE_STRING, [](Board&) { return Value(kInterfaceId); },
     "InterfaceID"},
    {INTERFACE_INFO_DISPLAYNAME, INFO_DATATYPE_STRING,
     [](Board&) { return Value("Velmora virtual board"); }, "InterfaceDisplayName"},
    {INTERFACE_INFO_TLTYPE, INFO_DATATYPE_STRING, [](Board&) { return Value(kTechnology); }},
};

constexpr const char* kTypes[] = {kTechnology};
constexpr const char* kAccess[] = {"Unknown", "ReadWrite",     "ReadOnly",    "NoAccess",
                                   "Busy",    "OpenReadWrite", "OpenReadOnly"};

}  // namespace

void interfaceInfo(INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   std::size_t* size) {
  answer(kInfos, theBoard, command, type, buffer, size);
}

Interface::Interface(std::shared_ptr<System> above)
    : Module(kInterfaceId, "TLInterface", {EVENT_ERROR, EVENT_MODULE}), parent(std::move(above)) {
  addInfos(kInfos, theBoard);
  addEnumeration("InterfaceType", kTypes, element("Value", "0"));
  addCommand("DeviceUpdateList");
  addSelector("DeviceSelector", VELMORA_PORTS, selected_);
  const auto port = [this] { return static_cast<unsigned>(selected_); };
  addFeature("DeviceID", INFO_DATATYPE_STRING, [=] { return Value(deviceId(port())); },
             {"DeviceSelector"});
  addFeature("DeviceVendorName", INFO_DATATYPE_STRING, [] { return Value(kVendor); });
  addFeature("DeviceModelName", INFO_DATATYPE_STRING, [] { return Value(kModel); });
  add({"DeviceAccessStatus_Reg",
       RegisterKind::kInteger,
       [this, port] { return number(facts(port()).access); },
       nullptr,
       {"DeviceSelector"}});
  addEnumeration("DeviceAccessStatus", kAccess, element("pValue", "DeviceAccessStatus_Reg"));
}

DeviceFacts Interface::facts(unsigned port) {
  const std::lock_guard guard(lock_);
  if (devices_[port]) return devices_[port]->facts();
  return {port, DEVICE_ACCESS_STATUS_READWRITE};
}

DeviceFacts Interface::device(std::string_view wanted) {
  for (unsigned port = 0; port < VELMORA_PORTS; ++port)
    if (wanted == deviceId(port)) return facts(port);
  fail(GC_ERR_INVALID_ID, "no device has this id");
}

std::shared_ptr<Device> Interface::openDevice(std::string_view wanted, DEVICE_ACCESS_FLAGS access) {
  const unsigned port = device(wanted).port;
  require(access >= DEVICE_ACCESS_READONLY && access <= DEVICE_ACCESS_EXCLUSIVE,
          GC_ERR_INVALID_PARAMETER, "no such access");
  const std::lock_guard guard(lock_);
  require(!devices_[port], GC_ERR_RESOURCE_IN_USE, "the device is open");
  auto made = std::make_shared<Device>(std::static_pointer_cast<Interface>(shared_from_this()),
                                       port, access == DEVICE_ACCESS_READONLY);
  made->connect();
  Registry::instance().add(made);
  return devices_[port] = made;
}

void Interface::deviceClosed(unsigned port) {
  const std::lock_guard guard(lock_);
  devices_[port].reset();
}

void Interface::close() {
  const auto open = [this] {
    const std::lock_guard guard(lock_);
    return devices_;
  }();
  for (const auto& device : open)
    if (device) device->close();
  Module::close();
  parent->interfaceClosed();
}

}  // namespace gentl
