#include "gentl/device.h"

#include <utility>

namespace gentl {
const InfoRow<DeviceFacts> kDeviceInfos[] = {
    {DEVICE_INFO_ID, INFO_DATATYPE_STRING, tell<&DeviceFacts::id>, "DeviceID"},
    {DEVICE_INFO_VENDOR, INFO_DATATYPE_STRING, tell<kVendor>, "DeviceVendorName"},
    {DEVICE_INFO_MODEL, INFO_DATATYPE_STRING, tell<kModel>, "DeviceModelName"},
    {DEVICE_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
    {DEVICE_INFO_DISPLAYNAME, INFO_DATATYPE_STRING, tell<&DeviceFacts::displayName>,
     "DeviceDisplayName"},
    {DEVICE_INFO_ACCESS_STATUS, INFO_DATATYPE_INT32, tell<&DeviceFacts::access>},
    {DEVICE_INFO_USER_DEFINED_NAME, INFO_DATATYPE_STRING, nullptr},
    {DEVICE_INFO_SERIAL_NUMBER, INFO_DATATYPE_STRING, tell<&DeviceFacts::number>,
     "DeviceSerialNumber"},
    {DEVICE_INFO_VERSION, INFO_DATATYPE_STRING, tell<kVersion>, "DeviceVersion"},
    {DEVICE_INFO_TIMESTAMP_FREQUENCY, INFO_DATATYPE_UINT64, tell<1'000'000'000>},
};

std::string DeviceFacts::displayName() const {
  return std::string(kVendor) + " " + kModel + " (" + id() + ")";
}

std::vector<std::string> deviceIds() {
  std::vector<std::string> ids;
  for (std::size_t port = 0; port < VELMORA_PORTS; ++port) ids.push_back(DeviceFacts{port, 0}.id());
  return ids;
}

Device::Device(std::shared_ptr<Module> board, Grabber& grabber, std::size_t port, bool readOnly)
    : Module(DeviceFacts{port, 0}.id(), "TLDevice", std::move(board),
             {EVENT_REMOTE_DEVICE, EVENT_FEATURE_INVALIDATE},
             {DeviceFacts{port, 0}.id() + "-stream0"}),
      grabber(grabber),
      port(static_cast<unsigned>(port)),
      readOnly(readOnly) {
  addInfos(kDeviceInfos, [this] { return facts(); });
  addEnumeration("DeviceType", {kTechnology});
  addSelector("StreamSelector");
  addFeature("StreamID", RegisterKind::kText, [this] { return belowId(0); });
}

DeviceFacts Device::facts() const {
  return {port, static_cast<std::uint64_t>(readOnly ? DEVICE_ACCESS_STATUS_OPEN_READONLY
                                                    : DEVICE_ACCESS_STATUS_OPEN_READWRITE)};
}

void Device::info(DEVICE_INFO_CMD command, Answer to) {
  DeviceFacts now = facts();
  answer(kDeviceInfos, now, command, to);
}

void Device::connect() {
  remote_ = std::make_shared<RemoteDevice>(std::static_pointer_cast<Device>(shared_from_this()));
  Registry::instance().add(remote_);
}

void Device::openStream(const char* wanted, DS_HANDLE* handle) {
  open(wanted, handle, [this] {
    auto made = std::make_shared<Stream>(std::static_pointer_cast<Device>(shared_from_this()));
    const std::lock_guard guard(control);
    stream = made.get();
    return made;
  });
}

void Device::close() {
  Module::close();
  std::exchange(remote_, nullptr)->close();  // It holds the device.
}

void Device::startSending() {
  const std::lock_guard guard(control);
  if (stream && stream->armed()) return send();
  sending = true;
}

void Device::send() {
  constexpr std::int64_t kEndless = -1;
  const std::uint64_t now = mode;
  const std::int64_t numbers[] = {kEndless, 1, static_cast<std::int64_t>(pictures.load())};
  stream->begin(numbers[now]);
  sending = now == 0;  // The other modes end by themselves.
}

void Device::stopSending() {
  const std::lock_guard guard(control);
  sending = false;
  if (stream) stream->end(false);
}

void Device::registered(EVENT_TYPE type, bool yes) {
  if (type != EVENT_REMOTE_DEVICE) return;
  if (!yes) return grabber.listen(port, nullptr);
  grabber.listen(port, [this](const VirtualBoardEvent& happened) {
    event(EVENT_REMOTE_DEVICE)
        .fire(eventData(happened.mask, static_cast<std::uint64_t>(happened.time)));
  });
}

}  // namespace gentl
