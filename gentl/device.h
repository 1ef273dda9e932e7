#pragma once

#include "gentl/grabber.h"
#include "gentl/remote_device.h"
#include "gentl/stream.h"

namespace gentl {

class Interface;

/// What is known of a device, be it open or not.
struct DeviceFacts {
  unsigned port;
  std::uint64_t access;  ///< DEVICE_ACCESS_STATUS_...
};
std::string deviceId(unsigned port);
void deviceInfo(DeviceFacts facts, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                std::size_t* size);

/// A camera port, from the side of the host.
class Device : public Module {
 public:
  Device(std::shared_ptr<Interface> above, unsigned port, bool readOnly);

  const std::shared_ptr<Interface> parent;
  const std::shared_ptr<Grabber> grabber;
  const unsigned port;
  const bool readOnly;

  DeviceFacts facts() const;
  /// To be called once after construction, since the remote device refers to the device.
  void connect();
  std::shared_ptr<RemoteDevice> remote() const { return remote_; }

  std::string streamId() const { return id + "-stream0"; }
  std::shared_ptr<Stream> openStream(std::string_view wanted);
  void streamClosed();
  void close() override;

  /// @name The port's acquisition
  /// Pictures come while a stream is armed and the device sends.
  /// @{
  std::mutex control;
  bool sending = false;
  std::uint64_t mode = 0, pictures = 1;  ///< `AcquisitionMode` and `AcquisitionFrameCount`.
  void startSending();
  void stopSending();
  void send();  ///< Expects the control lock, an armed stream and `sending`.
                /// @}

 protected:
  void registered(EVENT_TYPE type, bool yes) override;

 private:
  std::shared_ptr<RemoteDevice> remote_;
  std::shared_ptr<Stream> stream_;
  std::uint64_t selected_ = 0;
};

/// Calls `each` with name and mask of the applet's events that a port has: its own and those of the
/// inputs.
void forEachEvent(Grabber& grabber, unsigned port,
                  const std::function<void(const std::string&, std::uint64_t)>& each);

}  // namespace gentl
