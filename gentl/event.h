/// Events: what a module tells a consumer that has registered for it.
#pragma once

#include <condition_variable>
#include <deque>

#include "gentl/info.h"
#include "gentl/registry.h"

namespace gentl {

/// The events of one type that a module has: a queue of what nobody has taken yet, each some bytes.
/// It has a handle while a consumer is registered.
class Event : public Object {
 public:
  explicit Event(EVENT_TYPE type) : type(type) {}

  const EVENT_TYPE type;

  /// Held by callers of `push` and `drop`, and while the callback runs.
  std::mutex mutex;
  void push(std::string data);
  /// Forgets all events.
  void drop() { waiting_.clear(); }
  /// Is called with the data of each event that leaves the queue, to a consumer or flushed.
  using Taken = std::function<void(const std::string& data, bool consumed)>;
  void setTaken(Taken taken) { taken_ = std::move(taken); }

  /// Tells whoever is registered.
  void fire(std::string data);
  /// A change ends all waits.
  void setRegistered(bool yes);

  /// Waits up to `timeout` milliseconds for the oldest event and copies its data out; without a
  /// buffer only the size, and the event stays.
  void take(void* buffer, std::size_t* size, std::uint64_t timeout);
  /// The same as `drop`, through the callback.
  void flush();
  /// Ends one wait: one that goes on, or the next one.
  void kill();
  void info(EVENT_INFO_CMD command, Answer to);
  /// Explains data that `take` copied out.
  void dataInfo(const void* data, std::size_t size, EVENT_DATA_INFO_CMD command, Answer to);

  std::size_t waiting() const { return waiting_.size(); }  ///< Expects the lock, as `fired` does.
  std::uint64_t fired() const { return fired_; }
  std::size_t largest() const;       ///< Bytes of data.
  std::size_t largestValue() const;  ///< Bytes of an answer of `dataInfo`.

 private:
  std::condition_variable changed_;
  std::deque<std::string> waiting_;
  Taken taken_;
  std::uint64_t fired_ = 0;
  unsigned kills_ = 0, registrations_ = 0;
  bool registered_ = false;
};

/// Data of an event with a number and one more word: a buffer with the user's pointer, an event of
/// a module or a remote device with its time.
std::string eventData(std::uint64_t id, std::uint64_t value);
std::string errorData(GC_ERROR code, const std::string& text);

}  // namespace gentl
