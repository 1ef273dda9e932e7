#include "tool/live_board.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <utility>

#include "tool/code_text.h"
#include "tool/configuration_access.h"
#include "tool/parameter_description.h"
#include "tool/scratch_directory.h"
#include "tool/text.h"
#include "velmora/errors.h"

namespace velmora::tool {
namespace {

constexpr std::chrono::milliseconds kPeriod{200};  ///< Between two moments.
constexpr int kMostEvents = 4096;                  ///< At a time; the board keeps no more.
constexpr unsigned kMasks = 64;
const std::vector<unsigned> kFirstPort{0};  ///< What is set where no port is named.

/// Calls a function with the name of a configuration file, which its failures do not tell.
template <class Function>
auto withFile(const Function& function) {
  const ScratchDirectory directory;
  const std::string file = directory.path() / "settings.mcf";
  try {
    return function(file);
  } catch (const Failure& failure) {
    std::vector<std::string> messages = failure.messages();
    for (std::string& message : messages)
      if (message.starts_with(file + ": ")) message.erase(0, file.size() + 2);
    throw Failure(messages);
  }
}

}  // namespace

LiveBoard::LiveBoard(Session& session) : session_(session) {
  for (unsigned port = 0; port < kPorts; ++port) ports_.emplace_back(session, port, pictures_);
  std::uint64_t masks = 0;
  for (unsigned bit = 0; bit < kMasks; ++bit) {
    const std::uint64_t mask = std::uint64_t{1} << bit;
    const char* const name = session.library().eventName(session.grabber(), mask);
    if (!name) continue;
    events_[mask].name = utf8(name);
    masks |= mask;
  }
  VirtualBoard_enableEvents(session.device(), masks);
  look();
  observer_ = std::jthread([this](const std::stop_token& stop) { observe(stop); });
}

LiveBoard::~LiveBoard() {
  observer_ = {};
  VirtualBoard_enableEvents(session_.device(), 0);
}

void LiveBoard::observe(const std::stop_token& stop) {
  std::unique_lock guard(board_);
  while (!stop.stop_requested()) {
    wake_.wait_for(guard, stop, kPeriod, [this] { return std::exchange(changed_, false); });
    try {
      look();
    } catch (const Failure&) {  // Viewers stay at the moment before.
    }
  }
}

void LiveBoard::look() {
  const Observation untold([](const board::Access&) {}, Observation::Others::kPause);
  auto items = std::make_shared<std::vector<LiveItem>>();
  const auto add = [&items](LiveItem::Kind kind, const Json& json) {
    items->push_back({kind, jsonText(json)});
  };
  for (unsigned port = 0; port < kPorts; ++port)
    for (const DescribedNode& described : describedNodes(session_, port))
      if (!isGroup(*described.node))
        add(LiveItem::Kind::kParameter, parameterJson(session_, parameterOf(described, port)));
  for (LivePort& port : ports_) add(LiveItem::Kind::kPort, port.state());
  countEvents();
  for (const auto& [mask, event] : events_)
    add(LiveItem::Kind::kEvent, {{"name", event.name}, {"count", event.count}});
  add(LiveItem::Kind::kEvent,
      {{"name", "lost"}, {"count", VirtualBoard_lostEvents(session_.device())}});
  {
    const std::lock_guard guard(mutex_);
    moment_ = std::move(items);
  }
  came_.notify_all();
}

/// Those that come meanwhile are counted the next time: they may come faster.
void LiveBoard::countEvents() {
  VirtualBoardEvent event{};
  for (int i = 0; i < kMostEvents; ++i) {
    if (VirtualBoard_takeEvent(session_.device(), 0, &event) != VELMORA_OK) return;
    ++events_[event.mask].count;
  }
}

LiveBoard::Moment LiveBoard::next(const Moment& seen, std::chrono::milliseconds longest) {
  std::unique_lock guard(mutex_);
  came_.wait_for(guard, longest, [&] { return moment_ != seen; });
  return moment_;
}

template <class Function>
auto LiveBoard::change(const Function& function) {
  const std::lock_guard guard(board_);
  changed_ = true;
  wake_.notify_all();
  auto result = function();
  for (LivePort& port : ports_) port.fitBuffers();
  return result;
}

Json LiveBoard::run(const std::vector<unsigned>& ports, bool wanted) {
  return change([&] {
    Json states = Json::array();
    for (const unsigned port : ports) {
      ports_.at(port).run(wanted);
      states.push_back(ports_.at(port).state());
    }
    return states;
  });
}

Json LiveBoard::set(const std::vector<std::string>& assignments) {
  return change([&]() -> Json {
    Failures failures;
    const auto written = writeParameters(session_, assignments, kFirstPort, failures);
    const auto values = readParameters(session_, written, kFirstPort, failures);
    return {{"values", valuesJson(values)}, {"failures", failures.messages()}};
  });
}

std::string LiveBoard::save() {
  const std::lock_guard guard(board_);
  return withFile([this](const std::string& file) -> std::string {
    writeConfiguration(session_, file).throwIfAny();
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
  });
}

Json LiveBoard::load(std::string_view content) {
  return change([&] {
    return withFile([&](const std::string& file) {
      writeFile(file, content);
      Json result = differencesJson("", applyConfiguration(session_, file));
      result.erase("file");
      return result;
    });
  });
}

Json LiveBoard::tree(unsigned port) {
  const std::lock_guard guard(board_);
  return treeJson(session_, port);
}

}  // namespace velmora::tool
