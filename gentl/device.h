#pragma once

#include "gentl/grabber.h"
#include "gentl/remote_device.h"
#include "gentl/stream.h"

namespace gentl {

/// What is known of a device, be it open or not.
struct DeviceFacts {
  std::size_t port;
  std::uint64_t access;  ///< DEVICE_ACCESS_STATUS_...

  std::string id() const { return "velmora-port" + number(); }
  std::string number() const { return std::to_string(port); }
  std::string displayName() const;
};
std::vector<std::string> deviceIds();
extern const InfoRow<DeviceFacts> kDeviceInfos[10];

/// A camera port, from the side of the host.
class Device : public Module {
 public:
  Device(std::shared_ptr<Module> board, Grabber& grabber, std::size_t port, bool readOnly);

  Grabber& grabber;
  const unsigned port;
  const bool readOnly;

  DeviceFacts facts() const;
  void info(DEVICE_INFO_CMD command, Answer to);
  /// To be called once after construction, since the remote device refers to the device.
  void connect();
  void remotePort(PORT_HANDLE* handle) { put(handle, remote_->handle); }
  void openStream(const char* wanted, DS_HANDLE* handle);
  void close() override;

  /// @name The port's acquisition
  /// Pictures come while a stream is armed and the device sends.
  /// @{
  std::mutex control;
  bool sending = false;
  std::atomic<std::uint64_t> mode{0},
      pictures{1};           ///< `AcquisitionMode` and `AcquisitionFrameCount`.
  Stream* stream = nullptr;  ///< While one is open.
  void startSending();
  void stopSending();
  void send();  ///< Expects the control lock and an armed stream.
                /// @}

 protected:
  void registered(EVENT_TYPE type, bool yes) override;

 private:
  std::shared_ptr<RemoteDevice> remote_;
};

}  // namespace gentl
