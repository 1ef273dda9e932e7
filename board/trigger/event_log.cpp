#include "board/trigger/event_log.h"

#include <fmt/format.h>

#include <string>
#include <utility>

namespace board {
namespace {

/// `{0}` stands for the number, `{1}` for the monitoring module of a camera.
constexpr const char* kNames[kEventKinds] = {
    "Monitoring_FVAL_CamPort{0}TransferStart",
    "Monitoring_FVAL_CamPort{0}TransferEnd",
    "TriggerInput_InputEvents_InputEvents_Pin{0}",
    "TriggerInput_InputEvents_InputEvents_NotPin{0}",
    "Monitoring_MonitoringEvents{1}_Cam{0}Override",
    "Monitoring_MonitoringEvents_Cam{0}MissingFrame",
    "Monitoring_MonitoringEvents{1}_Cam{0}HysteresisOn",
    "Monitoring_MonitoringEvents{1}_Cam{0}HysteresisOff",
    "Monitoring_MonitoringEvents{1}_Cam{0}OutputEvent",
};
constexpr unsigned kMaskBits = 64;

}  // namespace

void EventLog::setNames(const std::vector<std::string_view>& names) {
  mask_ = 0;
  entries_.clear();
  for (unsigned kind = 0; kind < kEventKinds; ++kind) {
    for (unsigned number = 0; number < kNumbers; ++number) {
      const auto name = "Device1_Process4_Trigger_" +
                        fmt::format(fmt::runtime(kNames[kind]), number, number < 2 ? "" : "_1");
      const auto found = std::find(names.begin(), names.end(), name);
      // Past the mask when there is none.
      indices_[kind][number] =
          found == names.end() ? kMaskBits : static_cast<unsigned>(found - names.begin());
    }
  }
}

bool EventLog::listens(EventKind kind, unsigned number) const {
  const auto index = indices_[kind][number];
  return index < kMaskBits && (mask_ >> index & 1) != 0;
}

void EventLog::record(EventKind kind, unsigned number, const Train& times) {
  if (!listens(kind, number)) return;
  const auto kept = std::min<std::int64_t>(times.count, kCapacity);
  lost_ += static_cast<std::uint64_t>(times.count - kept);
  for (auto i = times.count - kept; i < times.count; ++i) {
    entries_.push_back({indices_[kind][number], times.at(i)});
  }
  ordered_ = false;
  if (entries_.size() > 2 * kCapacity) order();
}

/// Trains are recorded one after the other, though their events lie between each other.
void EventLog::order() {
  if (ordered_) return;
  std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
    return std::pair(a.time, a.index) < std::pair(b.time, b.index);
  });
  const auto excess = entries_.size() - std::min(entries_.size(), kCapacity);
  entries_.erase(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(excess));
  lost_ += excess;
  ordered_ = true;
}

std::optional<EventLog::Entry> EventLog::take() {
  order();
  if (entries_.empty()) return std::nullopt;
  const Entry oldest = entries_.front();
  entries_.pop_front();
  return oldest;
}

}  // namespace board
