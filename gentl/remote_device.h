#pragma once

#include "gentl/grabber.h"
#include "gentl/module.h"

namespace gentl {

class Device;

/// A camera port as GenICam sees it: the applet's registers under their parameter ids, and
/// registers of its own for standard features that no parameter serves.
class RemoteDevice : public Module {
 public:
  explicit RemoteDevice(std::shared_ptr<Device> above);

  bool writable() const override;

 protected:
  std::string makeDocument() override;
  std::string readOther(std::uint64_t address) override;
  void writeOther(std::uint64_t address, std::string_view bytes) override;

 private:
  void addAcquisition();
  void addTrigger();
  void addFrameRate();
  void addLimits(const std::string& feature, int parameter, std::vector<const char*> invalidators);

  bool active();
  bool triggered();
  void activate(std::uint32_t mode);
  void trigger();
  std::uint64_t source();

  std::shared_ptr<Device> device_;
  Grabber& grabber_;
  const unsigned port_;
  std::uint64_t source_ = 0;  ///< Of triggers: software, then the lines.
};

/// The nodes of the standard features (SFNC), which refer to those of the applet's document and to
/// the registers of `RemoteDevice`.
extern const char* const kStandardFeatures;

}  // namespace gentl
