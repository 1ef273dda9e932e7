#include "parameters/design/design_events.h"

#include <algorithm>

#include "external/dervin.h"
#include "parameters/design/design_ids.h"
#include "parameters/design/marks.h"

namespace velmora {
namespace {

constexpr int kEventsLookedAt = 65;
constexpr int kMaskBits = 64;
constexpr std::int32_t kReported = 1;
constexpr unsigned kTriggerInputs = 8;

/// What is kept of a design event: the design runtime may reuse its record for the next one.
struct Event {
  std::string name;  ///< Empty for an event without a name, which is not reported.
  bool reported;
};

/// The events that have a bit in the mask, in the design's order.
std::vector<Event> eventsOf(fpga_design* design) {
  std::vector<Event> events;
  for (int i = 0; i < kEventsLookedAt; ++i) {
    const HapEvent* event = HapGetEvent(design, i);
    if (!event) break;
    if (i < kMaskBits)
      events.push_back({event->name ? event->name : "", event->name && event->kind == kReported});
  }
  return events;
}

/// An SDK event and the design event it maps to. {c} stands for the port, {L} for its letter,
/// {i} for a trigger input, {M} for the monitoring module of the port, which serves two ports.
struct SdkEvent {
  const char* name;
  const char* designName;
};

constexpr SdkEvent kFrameEvents[] = {
    {"FG_START_OF_FRAME_CAM_PORT_{L}",
     "Device1_Process4_Trigger_Monitoring_FVAL_CamPort{c}TransferStart"},
    {"FG_END_OF_FRAME_CAM_PORT_{L}",
     "Device1_Process4_Trigger_Monitoring_FVAL_CamPort{c}TransferEnd"},
};

constexpr SdkEvent kInputEvents[] = {
    {"FG_TRIGGER_INPUT{i}_RISING",
     "Device1_Process4_Trigger_TriggerInput_InputEvents_InputEvents_Pin{i}"},
    {"FG_TRIGGER_INPUT{i}_FALLING",
     "Device1_Process4_Trigger_TriggerInput_InputEvents_InputEvents_NotPin{i}"},
};

constexpr SdkEvent kMonitoringEvents[] = {
    {"FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CAM{c}",
     "Device1_Process4_Trigger_Monitoring_{M}_Cam{c}Override"},
    {"FG_MISSING_CAM{c}_FRAME_RESPONSE",
     "Device1_Process4_Trigger_Monitoring_MonitoringEvents_Cam{c}MissingFrame"},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_THRESHOLD_CAM{c}_ON",
     "Device1_Process4_Trigger_Monitoring_{M}_Cam{c}HysteresisOn"},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_THRESHOLD_CAM{c}_OFF",
     "Device1_Process4_Trigger_Monitoring_{M}_Cam{c}HysteresisOff"},
    {"FG_TRIGGER_OUTPUT_CAM{c}", "Device1_Process4_Trigger_Monitoring_{M}_Cam{c}OutputEvent"},
};

std::string expand(const char* pattern, unsigned port, unsigned input) {
  const unsigned module = port / 2;
  return expandMarks(pattern, {{'c', std::to_string(port)},
                               {'L', std::string(1, static_cast<char>('A' + port))},
                               {'i', std::to_string(input)},
                               {'M', module == 0 ? "MonitoringEvents"
                                                 : "MonitoringEvents_" + std::to_string(module)}});
}

}  // namespace

std::vector<std::string> DesignEvents::read(fpga_design* design) {
  const std::vector<Event> events = eventsOf(design);
  for (std::size_t i = 0; i < events.size(); ++i) {
    if (!events[i].reported) continue;
    masks_[events[i].name] = std::uint64_t{1} << i;
    names_[std::uint64_t{1} << i] = events[i].name;
  }

  std::vector<std::string> missing;
  const auto add = [&](const SdkEvent& event, unsigned port, unsigned input) {
    const std::string designName = expand(event.designName, port, input);
    const auto found = std::ranges::find(events, designName, &Event::name);
    if (found == events.end()) return missing.push_back(designName);
    const std::uint64_t mask = std::uint64_t{1} << (found - events.begin());
    const std::string name = expand(event.name, port, input);
    masks_[name] = mask;
    names_[mask] = name;
  };
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const SdkEvent& event : kFrameEvents) add(event, port, 0);
    for (unsigned input = 0; input < kTriggerInputs; ++input)
      for (const SdkEvent& event : kInputEvents) add(event, port, input);
    for (const SdkEvent& event : kMonitoringEvents) add(event, port, 0);
  }
  return missing;
}

std::uint64_t DesignEvents::maskOf(const char* name) const {
  const auto found = name ? masks_.find(name) : masks_.end();
  return found == masks_.end() ? 0 : found->second;
}

const char* DesignEvents::nameOf(std::uint64_t mask) const {
  const auto found = names_.find(mask);
  return found == names_.end() ? nullptr : found->second.c_str();
}

}  // namespace velmora
