#include "gentl/remote_device.h"

#include <sstream>

#include "gentl/device.h"
#include "standard_features.h"
#include "velmora/parameters.h"
#include "velmora/status.h"
#include "velmora/values.h"

namespace gentl {
namespace {

constexpr std::uint64_t kLargestId = 0x7FFFFFFF;
/// The limits of a parameter have registers: these and its id.
constexpr std::uint64_t kMin = 0x100000000, kMax = 0x200000000;

/// Features of which a write changes the others, or their limits.
const std::vector<const char*> kTogether[] = {
    {"Width", "FG_WIDTH", "OffsetX", "FG_XOFFSET", "PayloadSize"},
    {"Height", "FG_HEIGHT", "OffsetY", "FG_YOFFSET", "PayloadSize"},
    {"TestPattern", "FG_GEN_ENABLE", "TriggerMode", "TriggerSource", "AcquisitionFrameRate",
     "FG_AREATRIGGERMODE", "FG_TRIGGERSTATE", "FG_TRIGGER_FRAMESPERSECOND", "FG_TRIGGERIN_SRC",
     "FG_TRIGGERQUEUE_MODE", "FG_SENDSOFTWARETRIGGER"},
    {"TriggerActivation", "FG_TRIGGERIN_POLARITY"},
    {"BalanceRatio", "FG_SCALINGFACTOR_RED", "FG_SCALINGFACTOR_GREEN", "FG_SCALINGFACTOR_BLUE"},
    {"FG_GEN_FREQ", "FG_GEN_ACCURACY", "FG_GEN_ACTIVE", "FG_GEN_PASSIVE"},
    {"FG_GEN_WIDTH", "FG_GEN_LINE_GAP", "FG_GEN_LINE_WIDTH"},
    {"FG_TRIGGERIN_DOWNSCALE", "FG_TRIGGERIN_DOWNSCALE_PHASE"},
    {"FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE", "FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE"},
    {"FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE", "FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE"},
};

std::vector<const char*> othersThan(const std::string& feature) {
  std::vector<const char*> others;
  for (const auto& group : kTogether)
    if (std::ranges::find(group, feature) != group.end())
      std::ranges::copy_if(group, std::back_inserter(others),
                           [&](const char* name) { return name != feature; });
  return others;
}

std::string withoutSuffix(const std::string& node) { return node.substr(0, node.rfind('_')); }

/// One line of the applet's document as a consumer gets it: values that are not kept, limits that
/// move, features for experts, and a root category that is one of the standard features'.
class AppletLines {
 public:
  explicit AppletLines(Grabber& grabber) : grabber_(grabber) {}

  std::string adapted(const std::string& line) {
    if (line.find("Name='Root'") != std::string::npos)
      return "<Category Name='Applet'>\n" + element("Visibility", "Expert");
    if (line.starts_with("<Port ")) return "<Port Name=\"Device\"></Port>\n";
    if (line.starts_with("<Min>")) return limit("Min", kMin);
    if (line.starts_with("<Max>")) return limit("Max", kMax);
    if (line.starts_with("<Description>")) return line + '\n' + element("Visibility", "Expert");
    if (line.starts_with("<pPort>")) return port();
    const std::size_t at = line.find(" Name=");
    if (at != std::string::npos && !line.starts_with("<EnumEntry")) {
      tag_ = line.substr(1, at - 1);
      const std::size_t start = at + 7;
      name_ = line.substr(start, line.find_first_of("'\"", start) - start);
    }
    return line + '\n';
  }
  /// The nodes that the lines refer to.
  const std::string& nodes() const { return nodes_; }

 private:
  std::string limit(const std::string& which, std::uint64_t address) {
    const std::string node = name_ + '_' + which;
    const auto kind = tag_ == "Float" ? RegisterKind::kFloat : RegisterKind::kInteger;
    nodes_ += registerNode({node, kind, nullptr, nullptr, othersThan(name_)},
                           address | static_cast<unsigned>(grabber_.idOf(name_)), "Device");
    return element("p" + which, node);
  }
  std::string port() const {
    std::string lines = element("pPort", "Device") + element("Cachable", "NoCache");
    for (const char* other : othersThan(withoutSuffix(name_)))
      lines += element("pInvalidator", other);
    return lines;
  }

  Grabber& grabber_;
  std::string tag_, name_, nodes_;
};

/// Nodes by which a GenApi library shows the applet's events.
std::string eventControl(Grabber& grabber, unsigned number) {
  std::string nodes, names;
  for (const auto& [name, mask] : grabber.events(number)) {
    const std::string feature = "Event" + name + "Timestamp";
    names += element("pFeature", feature);
    nodes += eventNodes(feature, mask, element("Unit", "ns"));
  }
  return "<Category Name=\"EventControl\" NameSpace=\"Standard\">\n" + names + "</Category>\n" +
         nodes;
}

using Settings = std::vector<Grabber::Setting>;

const Grabber::Setting kGenerator{FG_AREATRIGGERMODE, bytesOf(ATM_GENERATOR)};

/// By which the applet triggers from a source.
Settings settingsOf(std::uint64_t source) {
  if (source == 0) return {{FG_AREATRIGGERMODE, bytesOf(ATM_SOFTWARE)}};
  return {{FG_TRIGGERIN_SRC, bytesOf(static_cast<std::uint32_t>(source - 1))},
          {FG_AREATRIGGERMODE, bytesOf(ATM_EXTERNAL)}};
}

std::uint64_t whole(const Value& value) { return std::get<std::uint64_t>(value); }
bool flag(const Value& value) {
  require(whole(value) <= 1, GC_ERR_INVALID_VALUE, "value out of range");
  return whole(value) == 1;
}

}  // namespace

RemoteDevice::RemoteDevice(const std::shared_ptr<Device>& device)
    : Module(device->id, "Device", device),
      device_(*device),
      grabber_(device->grabber),
      port_(device->port) {
  addInfos(kDeviceInfos, [this] { return device_.facts(); });
  addOwn<&RemoteDevice::payload>("PayloadSize");
  addCommand("AcquisitionStart", [this] { device_.startSending(); });
  addCommand("AcquisitionStop", [this] { device_.stopSending(); });
  addSetting("AcquisitionMode", device_.mode, 0, 2);
  addSetting("AcquisitionFrameCount", device_.pictures, 1, 0x7FFFFFFF);
  addOwn<&RemoteDevice::simulated, &RemoteDevice::setSimulated>("TestPattern");
  addOwn<&RemoteDevice::triggered, &RemoteDevice::setTriggered>("TriggerMode");
  addOwn<&RemoteDevice::source, &RemoteDevice::setSource>("TriggerSource");
  addOwn<&RemoteDevice::rate, &RemoteDevice::setRate>("AcquisitionFrameRate", RegisterKind::kFloat);
}

template <auto get, auto set>
void RemoteDevice::addOwn(const std::string& feature, RegisterKind kind) {
  Register own{feature + "_Reg", kind, [this] { return tell<get>(*this); }};
  if constexpr (set != nullptr) own.write = std::bind_front(set, this);
  own.invalidators = othersThan(feature);
  add(std::move(own));
}

void RemoteDevice::addSetting(const char* feature, std::atomic<std::uint64_t>& field,
                              std::uint64_t min, std::uint64_t max) {
  const auto write = [this, &field, min, max](const Value& value) {
    const auto sends = Fg_getStatusEx(grabber_.fg(), VELMORA_STATUS_ACQUIRING, 0,
                                      static_cast<std::int32_t>(port_), nullptr);
    require(sends <= 0, GC_ERR_ACCESS_DENIED, "the camera is sending");
    require(whole(value) >= min && whole(value) <= max, GC_ERR_INVALID_VALUE, "value out of range");
    field = whole(value);
  };
  add({std::string(feature) + "_Reg", RegisterKind::kInteger,
       [&field] { return toValue(field.load()); }, write});
}

bool RemoteDevice::writable() const { return !device_.readOnly; }

std::size_t RemoteDevice::payload() { return grabber_.payload(port_); }
std::uint32_t RemoteDevice::mode() { return grabber_.word(FG_AREATRIGGERMODE, port_); }
bool RemoteDevice::simulated() { return grabber_.word(FG_GEN_ENABLE, port_) == FG_GENERATOR; }
/// Triggers rest meanwhile: the design would miss the camera's answer to each.
void RemoteDevice::setSimulated(const Value& on) {
  const bool wanted = flag(on);
  grabber_.setAll(port_, {{FG_TRIGGERSTATE, bytesOf(wanted ? TS_ASYNC_STOP : TS_ACTIVE)},
                          {FG_GEN_ENABLE, bytesOf(wanted ? FG_GENERATOR : FG_CAMPORT)}});
}
void RemoteDevice::requireCamera() {
  require(!simulated(), GC_ERR_ACCESS_DENIED, "TestPattern is on: the simulator paces itself");
}

void RemoteDevice::activate(std::vector<Grabber::Setting> settings) {
  requireCamera();
  source_ = source();
  settings.push_back({FG_TRIGGERSTATE, bytesOf(TS_ACTIVE)});
  grabber_.setAll(port_, settings);
}

bool RemoteDevice::triggered() {
  const bool active = grabber_.word(FG_TRIGGERSTATE, port_) == TS_ACTIVE;
  return active && mode() != ATM_GENERATOR && !simulated();
}
void RemoteDevice::setTriggered(const Value& on) {
  const bool wanted = flag(on);
  // Off brings the pictures back, even where an expert has stopped the triggers.
  if (wanted ? triggered() : simulated()) return;
  activate(wanted ? settingsOf(source()) : Settings{kGenerator});
}

/// What the applet has, or what it will get when triggers are turned on.
std::uint64_t RemoteDevice::source() {
  const std::uint32_t now = mode();
  if (now == ATM_EXTERNAL) return 1 + grabber_.word(FG_TRIGGERIN_SRC, port_);
  return now == ATM_SOFTWARE ? 0 : source_;
}
void RemoteDevice::setSource(const Value& source) {
  constexpr std::uint64_t kLines = 8;
  require(whole(source) <= kLines, GC_ERR_INVALID_VALUE, "no such source");
  if (mode() != ATM_GENERATOR) grabber_.setAll(port_, settingsOf(whole(source)));
  source_ = whole(source);
}

double RemoteDevice::rate() {
  requireCamera();
  return grabber_.value<double>(FG_TRIGGER_FRAMESPERSECOND, port_);
}
void RemoteDevice::setRate(const Value& rate) {
  const Grabber::Setting setting{FG_TRIGGER_FRAMESPERSECOND, bytesOf(std::get<double>(rate))};
  if (triggered()) return grabber_.setAll(port_, {setting});
  activate({setting, kGenerator});
}

std::string RemoteDevice::readRegister(std::uint64_t address) {
  const std::uint64_t which = address & ~kLargestId;
  const int parameter = static_cast<int>(address & kLargestId);
  if (which == 0) return grabber_.get(parameter, port_);
  if (which != kMin && which != kMax) return Module::readRegister(address);
  const auto [min, max] = grabber_.limits(parameter, port_);
  return encoded(INFO_DATATYPE_UINT64, which == kMin ? min : max);
}

void RemoteDevice::writeRegister(std::uint64_t address, std::string_view bytes) {
  std::string feature;
  if (address <= kLargestId) {
    const int parameter = static_cast<int>(address);
    grabber_.set(parameter, port_, bytes);
    feature = grabber_.nameOf(parameter, port_);
  } else {
    Module::writeRegister(address, bytes);
    feature = withoutSuffix(at(address).name);
  }
  for (const char* other : othersThan(feature))
    device_.event(EVENT_FEATURE_INVALIDATE).fire(std::string(other) + '\0');
}

/// The applet's document with the standard features before it.
std::string RemoteDevice::makeDocument() {
  AppletLines lines(grabber_);
  std::istringstream document(grabber_.document(port_));
  std::string text;
  for (std::string line; std::getline(document, line);) {
    text += lines.adapted(line);
    if (line.ends_with("GenApiSchema_Version_1_0.xsd\">"))
      text += kStandardFeatures + eventControl(grabber_, port_) + registerNodes();
  }
  return text.insert(text.rfind("<Port "), lines.nodes());
}

}  // namespace gentl
