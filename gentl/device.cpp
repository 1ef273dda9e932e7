#include "gentl/device.h"

#include "gentl/interface.h"

namespace gentl {
namespace {

const InfoRow<DeviceFacts> kInfos[] = {
    {DEVICE_INFO_ID, INFO_DATATYPE_STRING, [](DeviceFacts& d) { return Value(deviceId(d.port)); },
     "DeviceID"},
    {DEVICE_INFO_VENDOR, INFO_DATATYPE_STRING, [](DeviceFacts&) { return Value(kVendor); },
     "DeviceVendorName"},
    {DEVICE_INFO_MODEL, INFO_DATATYPE_STRING, [](DeviceFacts&) { return Value(kModel); },
     "DeviceModelName"},
    {DEVICE_INFO_TLTYPE, INFO_DATATYPE_STRING, [](DeviceFacts&) { return Value(kTechnology); }},
    {DEVICE_INFO_DISPLAYNAME, INFO_DATATYPE_STRING,
     [](DeviceFacts& d) {
       return Value(std::string(kVendor) + " " + kModel + " (" + deviceId(d.port) + ")");
     },
     "DeviceDisplayName"},
    {DEVICE_INFO_ACCESS_STATUS, INFO_DATATYPE_INT32,
     [](DeviceFacts& d) { return number(d.access); }},
    {DEVICE_INFO_USER_DEFINED_NAME, INFO_DATATYPE_STRING, nullptr},
    {DEVICE_INFO_SERIAL_NUMBER, INFO_DATATYPE_STRING,
     [](DeviceFacts& d) { return Value(std::to_string(d.port)); }, "DeviceSerialNumber"},
    {DEVICE_INFO_VERSION, INFO_DATATYPE_STRING, [](DeviceFacts&) { return Value(kVersion); },
     "DeviceVersion"},
    {DEVICE_INFO_TIMESTAMP_FREQUENCY, INFO_DATATYPE_UINT64,
     [](DeviceFacts&) { return number(1'000'000'000); }},
};

constexpr const char* kTypes[] = {kTechnology};

}  // namespace

std::string deviceId(unsigned port) { return "velmora-port" + std::to_string(port); }

void deviceInfo(DeviceFacts facts, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                std::size_t* size) {
  answer(kInfos, facts, command, type, buffer, size);
}

void forEachEvent(Grabber& grabber, unsigned port,
                  const std::function<void(const std::string&, std::uint64_t)>& each) {
  const std::string letter = std::string("_CAM_PORT_") + static_cast<char>('A' + port);
  const std::string camera = "_CAM" + std::to_string(port);
  for (unsigned bit = 0; bit < 64; ++bit) {
    const std::uint64_t mask = std::uint64_t{1} << bit;
    const char* const found = Fg_getEventName(grabber.fg(), mask);
    const std::string name = found ? found : "";
    const bool ofCameras = name.find("_CAM") != std::string::npos;
    const bool ofPort = name.ends_with(letter) || name.find(camera) != std::string::npos;
    if (found && (ofPort || !ofCameras)) each(name, mask);
  }
}

Device::Device(std::shared_ptr<Interface> above, unsigned port, bool readOnly)
    : Module(deviceId(port), "TLDevice", {EVENT_ERROR, EVENT_REMOTE_DEVICE, EVENT_MODULE}),
      parent(std::move(above)),
      grabber(parent->grabber),
      port(port),
      readOnly(readOnly) {
  for (const auto& row : kInfos)
    if (row.feature)
      addFeature(row.feature, row.type, [this, &row] {
        DeviceFacts now = facts();
        return row.get(now);
      });
  addEnumeration("DeviceType", kTypes, element("Value", "0"));
  addSelector("StreamSelector", 1, selected_);
  addFeature("StreamID", INFO_DATATYPE_STRING, [this] { return Value(streamId()); });
}

DeviceFacts Device::facts() const {
  return {port, static_cast<std::uint64_t>(readOnly ? DEVICE_ACCESS_STATUS_OPEN_READONLY
                                                    : DEVICE_ACCESS_STATUS_OPEN_READWRITE)};
}

void Device::connect() {
  remote_ = std::make_shared<RemoteDevice>(std::static_pointer_cast<Device>(shared_from_this()));
  Registry::instance().add(remote_);
}

std::shared_ptr<Stream> Device::openStream(std::string_view wanted) {
  require(wanted == streamId(), GC_ERR_INVALID_ID, "no stream has this id");
  const std::lock_guard guard(control);
  require(!stream_, GC_ERR_RESOURCE_IN_USE, "the stream is open");
  auto made = std::make_shared<Stream>(std::static_pointer_cast<Device>(shared_from_this()));
  Registry::instance().add(made);
  return stream_ = made;
}

void Device::streamClosed() {
  const std::lock_guard guard(control);
  stream_.reset();
}

void Device::close() {
  const auto stream = [this] {
    const std::lock_guard guard(control);
    sending = false;
    return std::move(stream_);
  }();
  if (stream) stream->close();
  Module::close();
  const auto remote = std::move(remote_);  // It holds the device.
  remote->close();
  parent->deviceClosed(port);
}

void Device::startSending() {
  const std::lock_guard guard(control);
  sending = true;
  if (stream_ && stream_->armed()) send();
}

void Device::send() {
  constexpr std::int64_t kEndless = -1;
  const std::int64_t numbers[] = {kEndless, 1, static_cast<std::int64_t>(pictures)};
  sending = mode == 0;  // The other modes end by themselves.
  stream_->begin(numbers[mode]);
}

void Device::stopSending() {
  const std::lock_guard guard(control);
  sending = false;
  if (stream_) stream_->end(false);
}

void Device::registered(EVENT_TYPE type, bool yes) {
  if (type != EVENT_REMOTE_DEVICE) return;
  if (!yes) return grabber->ignore(this);
  std::uint64_t all = 0;
  forEachEvent(*grabber, port, [&](const std::string&, std::uint64_t mask) { all |= mask; });
  grabber->listen(this, all, [this](const VirtualBoardEvent& event) {
    fire(EVENT_REMOTE_DEVICE, eventData(event.mask, static_cast<std::uint64_t>(event.time)));
  });
}

}  // namespace gentl
