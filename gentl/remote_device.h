#pragma once

#include <atomic>

#include "gentl/grabber.h"
#include "gentl/module.h"

namespace gentl {

class Device;

/// A camera port as GenICam sees it: the applet's registers under their parameter ids, their limits
/// above, and registers of its own for standard features that no parameter serves.
class RemoteDevice : public Module {
 public:
  explicit RemoteDevice(const std::shared_ptr<Device>& device);

  bool writable() const override;

 protected:
  std::string makeDocument() override;
  std::string readRegister(std::uint64_t address) override;
  void writeRegister(std::uint64_t address, std::string_view bytes) override;

 private:
  template <auto get, auto set = nullptr>
  void addOwn(const std::string& feature, RegisterKind kind = RegisterKind::kInteger);
  void addSetting(const char* feature, std::atomic<std::uint64_t>& field, std::uint64_t min,
                  std::uint64_t max);

  /// @name What the registers read and write
  /// Without triggers, the design's generator paces the camera. Neither has a say while the
  /// simulator sends.
  /// @{
  std::size_t payload();
  bool simulated();
  void setSimulated(const Value& on);
  bool triggered();
  void setTriggered(const Value& on);
  std::uint64_t source();
  void setSource(const Value& source);
  double rate();
  void setRate(const Value& rate);
  /// @}
  void requireCamera();
  std::uint32_t mode();
  void activate(std::vector<Grabber::Setting> settings);

  Device& device_;
  Grabber& grabber_;
  const unsigned port_;
  std::uint64_t source_ = 0;  ///< Of triggers: software, then the lines.
};

}  // namespace gentl
