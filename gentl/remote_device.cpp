#include "gentl/remote_device.h"

#include "gentl/device.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace gentl {
namespace {

constexpr std::uint64_t kLargestId = 0x7FFFFFFF;

void replace(std::string& text, const std::string& mark, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += with.size())
    text.replace(at, mark.size(), with);
}

/// Lets the limits of an integer of the applet's document move.
void liveLimits(std::string& text, const std::string& name, const std::string& feature) {
  const std::size_t start = text.find("<Integer Name='" + name + "'>");
  if (start == std::string::npos) return;
  for (const char* const end : {"Min", "Max"}) {
    const std::size_t at = text.find(std::string("<").append(end), start);
    const std::size_t stop = text.find('\n', at) + 1;
    text.replace(at, stop - at, element(std::string("p").append(end), feature + "_" + end));
  }
}

/// Nodes by which a GenApi library shows the applet's events.
std::string eventNodes(Grabber& grabber, unsigned port) {
  std::string nodes, names;
  forEachEvent(grabber, port, [&](const std::string& name, std::uint64_t mask) {
    const std::string feature = "Event" + name + "Timestamp";
    names += element("pFeature", feature);
    nodes += "<Integer Name=\"" + feature + "\">\n" + element("Visibility", "Expert") +
             element("pValue", feature + "_Reg") + element("Unit", "ns") +
             "</Integer>\n<IntReg Name=\"" + feature + "_Reg\">\n" + element("Address", "0") +
             element("Length", "8") + element("AccessMode", "RO") +
             element("pPort", name + "_Event") + element("Cachable", "NoCache") +
             element("Sign", "Signed") + element("Endianess", "LittleEndian") +
             "</IntReg>\n<Port Name=\"" + name + "_Event\">\n" +
             element("EventID", hexadecimal(mask)) + "</Port>\n";
  });
  return "<Category Name=\"EventControl\" NameSpace=\"Standard\">\n" + names + "</Category>\n" +
         nodes;
}

std::uint64_t whole(const Value& value) { return std::get<std::uint64_t>(value); }

}  // namespace

RemoteDevice::RemoteDevice(std::shared_ptr<Device> above)
    : Module(above->id, "Device", {}),
      device_(std::move(above)),
      grabber_(*device_->grabber),
      port_(device_->port) {
  const auto text = [this](const char* name, const std::string& value) {
    add({name, RegisterKind::kText, [value] { return Value(value); }, nullptr, {}});
  };
  text("DeviceVendorName", kVendor);
  text("DeviceModelName", kModel);
  text("DeviceVersion", kVersion);
  text("DeviceID", id);
  text("DeviceSerialNumber", std::to_string(port_));
  add({"PayloadSize_Reg",
       RegisterKind::kInteger,
       [this] { return number(grabber_.payload(port_)); },
       nullptr,
       {"Width", "Height", "FG_WIDTH", "FG_HEIGHT"}});
  addAcquisition();
  addTrigger();
  addFrameRate();
  addLimits("Width", FG_WIDTH, {"OffsetX", "FG_XOFFSET"});
  addLimits("Height", FG_HEIGHT, {"OffsetY", "FG_YOFFSET"});
  addLimits("OffsetX", FG_XOFFSET, {"Width", "FG_WIDTH"});
  addLimits("OffsetY", FG_YOFFSET, {"Height", "FG_HEIGHT"});
  addLimits("AcquisitionFrameRate", FG_TRIGGER_FRAMESPERSECOND, {});
  addLimits("BalanceRatio", FG_SCALINGFACTOR_RED, {});
}

void RemoteDevice::addAcquisition() {
  const auto command = [this](const char* name, void (Device::*action)()) {
    add({name,
         RegisterKind::kInteger,
         [] { return number(0); },
         [this, action](const Value&) { ((*device_).*action)(); },
         {}});
  };
  command("AcquisitionStart_Reg", &Device::startSending);
  command("AcquisitionStop_Reg", &Device::stopSending);
  const auto setting = [this](const char* name, std::uint64_t Device::*field, std::uint64_t min,
                              std::uint64_t max) {
    add({name,
         RegisterKind::kInteger,
         [this, field] {
           const std::lock_guard guard(device_->control);
           return number((*device_).*field);
         },
         [=, this](const Value& value) {
           require(whole(value) >= min && whole(value) <= max, GC_ERR_INVALID_VALUE,
                   "value out of range");
           const std::lock_guard guard(device_->control);
           (*device_).*field = whole(value);
         },
         {}});
  };
  setting("AcquisitionMode_Reg", &Device::mode, 0, 2);
  setting("AcquisitionFrameCount_Reg", &Device::pictures, 1, 0x7FFFFFFF);
}

void RemoteDevice::addTrigger() {
  add({"TriggerMode_Reg",
       RegisterKind::kInteger,
       [this] { return number(triggered()); },
       [this](const Value& on) {
         if (whole(on) != 0) return trigger();
         if (triggered()) activate(ATM_GENERATOR);
       },
       {"FG_AREATRIGGERMODE", "FG_TRIGGERSTATE", "AcquisitionFrameRate",
        "AcquisitionFrameRateEnable"}});
  add({"TriggerSource_Reg",
       RegisterKind::kInteger,
       [this] { return number(source()); },
       [this](const Value& value) {
         constexpr std::uint64_t kLines = 8;
         require(whole(value) <= kLines, GC_ERR_INVALID_VALUE, "no such source");
         source_ = whole(value);
         if (triggered()) trigger();
       },
       {"FG_AREATRIGGERMODE", "FG_TRIGGERIN_SRC"}});
}

/// Without triggers, the design's generator paces the camera, or nothing does.
void RemoteDevice::addFrameRate() {
  add({"AcquisitionFrameRateEnable_Reg",
       RegisterKind::kInteger,
       [this] { return number(active() && !triggered()); },
       [this](const Value& on) {
         require(!triggered(), GC_ERR_ACCESS_DENIED, "TriggerMode is On");
         if (whole(on) != 0) return activate(ATM_GENERATOR);
         grabber_.setWord(FG_TRIGGERSTATE, port_, TS_ASYNC_STOP);
       },
       {"FG_AREATRIGGERMODE", "FG_TRIGGERSTATE", "AcquisitionFrameRate", "TriggerMode"}});
  add({"AcquisitionFrameRate_Reg",
       RegisterKind::kFloat,
       [this] {
         double rate = 0;
         grabber_.get(FG_TRIGGER_FRAMESPERSECOND, port_)
             .copy(reinterpret_cast<char*>(&rate), sizeof rate);
         return Value(rate);
       },
       [this](const Value& rate) {
         grabber_.set(FG_TRIGGER_FRAMESPERSECOND, port_, encoded(INFO_DATATYPE_FLOAT64, rate));
         if (!triggered()) activate(ATM_GENERATOR);
       },
       {"FG_TRIGGER_FRAMESPERSECOND"}});
}

void RemoteDevice::addLimits(const std::string& feature, int parameter,
                             std::vector<const char*> invalidators) {
  const auto kind = std::holds_alternative<double>(grabber_.limits(parameter, port_).min)
                        ? RegisterKind::kFloat
                        : RegisterKind::kInteger;
  const auto limit = [&](const char* name, Value Grabber::Limits::*field) {
    add({feature + "_" + name, kind,
         [this, parameter, field] { return grabber_.limits(parameter, port_).*field; }, nullptr,
         invalidators});
  };
  limit("Min", &Grabber::Limits::min);
  limit("Max", &Grabber::Limits::max);
  limit("Inc", &Grabber::Limits::inc);
}

bool RemoteDevice::writable() const { return !device_->readOnly; }

bool RemoteDevice::active() { return grabber_.word(FG_TRIGGERSTATE, port_) == TS_ACTIVE; }

bool RemoteDevice::triggered() {
  return active() && grabber_.word(FG_AREATRIGGERMODE, port_) != ATM_GENERATOR;
}

void RemoteDevice::activate(std::uint32_t mode) {
  grabber_.setWord(FG_AREATRIGGERMODE, port_, mode);
  grabber_.setWord(FG_TRIGGERSTATE, port_, TS_ACTIVE);
}

void RemoteDevice::trigger() {
  if (source_ == 0) return activate(ATM_SOFTWARE);
  grabber_.setWord(FG_TRIGGERIN_SRC, port_, static_cast<std::uint32_t>(source_ - 1));
  activate(ATM_EXTERNAL);
}

/// What the applet has, or what it will get when triggers are turned on.
std::uint64_t RemoteDevice::source() {
  const std::uint32_t mode = grabber_.word(FG_AREATRIGGERMODE, port_);
  if (mode == ATM_SOFTWARE) source_ = 0;
  if (mode == ATM_EXTERNAL) source_ = 1 + grabber_.word(FG_TRIGGERIN_SRC, port_);
  return source_;
}

std::string RemoteDevice::readOther(std::uint64_t address) {
  if (address > kLargestId) return Module::readOther(address);
  return grabber_.get(static_cast<int>(address), port_);
}

void RemoteDevice::writeOther(std::uint64_t address, std::string_view bytes) {
  if (address > kLargestId) return Module::writeOther(address, bytes);
  grabber_.set(static_cast<int>(address), port_, bytes);
}

/// The applet's document with the standard features before it. The applet's root category becomes
/// one of theirs.
std::string RemoteDevice::makeDocument() {
  std::string text = grabber_.document(port_);
  replace(text, "\"DevicePort\"", "\"Device\"");
  replace(text, "<pPort>DevicePort</pPort>\n",
          "<pPort>Device</pPort>\n<Cachable>NoCache</Cachable>\n");
  replace(text, "</Description>\n", "</Description>\n<Visibility>Expert</Visibility>\n");
  replace(text, "<Category Name='Root' NameSpace='Standard' >\n",
          "<Category Name='Applet'>\n<Visibility>Expert</Visibility>\n");
  liveLimits(text, "FG_WIDTH", "Width");
  liveLimits(text, "FG_HEIGHT", "Height");
  liveLimits(text, "FG_XOFFSET", "OffsetX");
  liveLimits(text, "FG_YOFFSET", "OffsetY");
  const std::size_t start = text.find('>', text.find("<RegisterDescription")) + 1;
  std::string front(1, '\n');
  front += kStandardFeatures;
  text.insert(start, front + eventNodes(grabber_, port_) + registerNodes());
  return text;
}

}  // namespace gentl
