/// Events: what a module tells a consumer that has registered for it.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>

#include "gentl/info.h"
#include "gentl/registry.h"

namespace gentl {

/// The data of events that nobody has taken yet, each some bytes.
class EventQueue {
 public:
  /// Held by callers of `push`, `drop` and `closed`, and while the callback runs.
  std::mutex mutex;

  void push(std::string data);
  /// Forgets all events.
  void drop() { waiting_.clear(); }
  /// The same, through the callback.
  void flush();

  /// Called with the data of each event that leaves the queue.
  void setTaken(std::function<void(const std::string& data)> taken) { taken_ = std::move(taken); }
  /// At most this many; the oldest are lost. 0 for no limit.
  void setLimit(std::size_t limit) { limit_ = limit; }

  /// Waits up to `timeout` milliseconds for the oldest event and copies its data out; without a
  /// buffer only the size, and the event stays.
  void take(void* buffer, std::size_t* size, std::uint64_t timeout);
  /// Ends one wait: one that goes on, or the next one.
  void kill();
  /// Nobody is registered: ends all waits.
  void setClosed(bool closed);
  bool closed() const { return closed_; }

  std::size_t waiting();
  std::uint64_t fired();

 private:
  std::condition_variable changed_;
  std::deque<std::string> waiting_;
  std::function<void(const std::string&)> taken_;
  std::size_t limit_ = 0;
  std::uint64_t fired_ = 0;
  unsigned kills_ = 0;
  bool closed_ = true;
};

/// A registration.
class Event : public Object {
 public:
  Event(EVENT_TYPE type, std::shared_ptr<EventQueue> queue) : type(type), queue(std::move(queue)) {}

  void info(EVENT_INFO_CMD command, INFO_DATATYPE* kind, void* buffer, std::size_t* size);
  /// Explains data that `EventGetData` copied out.
  void dataInfo(std::string data, EVENT_DATA_INFO_CMD command, INFO_DATATYPE* kind, void* buffer,
                std::size_t* size);

  const EVENT_TYPE type;
  const std::shared_ptr<EventQueue> queue;
};

/// Data of an event with a number and one more word: a buffer with the user's pointer, an event of
/// a module or a remote device with its time.
std::string eventData(std::uint64_t id, std::uint64_t value);
std::string errorData(GC_ERROR code, std::string text);

}  // namespace gentl
