/// The board as viewers see and change it, all at the same time.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tool/live_port.h"

namespace velmora::tool {

/// A thing to be seen of a board, in JSON.
struct LiveItem {
  enum class Kind { kParameter, kPort, kEvent };
  Kind kind;
  std::string json;
};

/// All functions may be called by any thread. Those that change nothing since something is wrong
/// throw `Failure`.
class LiveBoard {
 public:
  /// The session is used by nobody else meanwhile.
  explicit LiveBoard(Session& session);
  LiveBoard(const LiveBoard&) = delete;
  LiveBoard& operator=(const LiveBoard&) = delete;
  /// Stops the ports.
  ~LiveBoard();

  /// Starts or stops ports: their states, see `LivePort::state`.
  Json run(const std::vector<unsigned>& ports, bool wanted);
  /// {"values": [...], "failures": [...]}: what was set, until one was refused.
  Json set(const std::vector<std::string>& assignments);
  /// The settings of all ports as the content of a configuration file.
  std::string save();
  /// Applies such a content: {"ports": 4, "differences": [...]}.
  Json load(std::string_view content);
  Json tree(unsigned port);

  /// The same things at the same places at every moment.
  using Moment = std::shared_ptr<const std::vector<LiveItem>>;
  /// Waits for another moment than one; the same again when none comes in time.
  Moment next(const Moment& seen, std::chrono::milliseconds longest);

  LivePictures& pictures() { return pictures_; }

 private:
  void observe(const std::stop_token& stop);
  void look();
  void countEvents();
  /// Calls a function that changes something, which every viewer sees at once.
  template <class Function>
  auto change(const Function& function);

  std::mutex board_;  ///< Guards the session, the ports and the events.
  Session& session_;
  LivePictures pictures_;
  std::deque<LivePort> ports_;  ///< Ports do not move.
  struct Event {
    std::string name;
    std::uint64_t count = 0;
  };
  std::map<std::uint64_t, Event> events_;  ///< By mask.
  bool changed_ = false;
  std::condition_variable_any wake_;

  std::mutex mutex_;  ///< Guards the moment. Taken after the board's.
  std::condition_variable came_;
  Moment moment_;
  std::jthread observer_;
};

}  // namespace velmora::tool
