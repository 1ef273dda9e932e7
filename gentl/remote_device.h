#pragma once

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
  std::string readOther(std::uint64_t address) override;
  void writeOther(std::uint64_t address, std::string_view bytes) override;
  void written(std::uint64_t address) override;

 private:
  void addOwn(const std::string& feature, std::function<Value()> read,
              std::function<void(const Value&)> write, RegisterKind kind = RegisterKind::kInteger);
  void addAcquisition();
  void addTrigger();
  void addFrameRate();

  bool active();
  bool triggered();
  std::uint32_t mode();
  void activate(std::vector<Grabber::Setting> settings);
  std::uint64_t source();

  Device& device_;
  Grabber& grabber_;
  const unsigned port_;
  std::uint64_t source_ = 0;  ///< Of triggers: software, then the lines.
};

}  // namespace gentl
