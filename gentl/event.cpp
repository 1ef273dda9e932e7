#include "gentl/event.h"

#include <chrono>
#include <cstring>

namespace gentl {
namespace {

constexpr std::size_t kErrorText = 252;  ///< With its zero.

std::uint64_t word(const std::string& data, std::size_t index) {
  std::uint64_t value = 0;
  std::memcpy(&value, data.data() + index * sizeof value, sizeof value);
  return value;
}

std::size_t largest(EVENT_TYPE type) {
  return type == EVENT_ERROR ? sizeof(GC_ERROR) + kErrorText : 2 * sizeof(std::uint64_t);
}

const InfoRow<Event> kInfos[] = {
    {EVENT_EVENT_TYPE, INFO_DATATYPE_INT32, [](Event& e) { return number(e.type); }},
    {EVENT_NUM_IN_QUEUE, INFO_DATATYPE_SIZET, [](Event& e) { return number(e.queue->waiting()); }},
    {EVENT_NUM_FIRED, INFO_DATATYPE_UINT64, [](Event& e) { return number(e.queue->fired()); }},
    {EVENT_SIZE_MAX, INFO_DATATYPE_SIZET, [](Event& e) { return number(largest(e.type)); }},
    {EVENT_INFO_DATA_SIZE_MAX, INFO_DATATYPE_SIZET,
     [](Event& e) { return number(e.type == EVENT_ERROR ? kErrorText : 17); }},
};

using Data = std::string;

const InfoRow<Data> kBufferData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_PTR, [](Data& data) { return number(word(data, 0)); }},
    {EVENT_DATA_VALUE, INFO_DATATYPE_PTR, [](Data& data) { return number(word(data, 1)); }},
    {EVENT_DATA_NUMID, INFO_DATATYPE_UINT64, [](Data& data) { return number(word(data, 0)); }},
};

const InfoRow<Data> kGenApiData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_STRING,
     [](Data& data) { return Value(hexadecimal(word(data, 0))); }},
    {EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER, [](Data& data) { return Value(data.substr(8)); }},
    {EVENT_DATA_NUMID, INFO_DATATYPE_UINT64, [](Data& data) { return number(word(data, 0)); }},
};

const InfoRow<Data> kErrorData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_INT32, [](Data& data) { return number(word(data, 0)); }},
    {EVENT_DATA_VALUE, INFO_DATATYPE_STRING,
     [](Data& data) { return Value(data.substr(sizeof(GC_ERROR)).c_str()); }},
};

}  // namespace

void EventQueue::push(std::string data) {
  waiting_.push_back(std::move(data));
  if (limit_ != 0 && waiting_.size() > limit_) waiting_.pop_front();
  ++fired_;
  changed_.notify_all();
}

void EventQueue::flush() {
  const std::lock_guard guard(mutex);
  for (; !waiting_.empty(); waiting_.pop_front())
    if (taken_) taken_(waiting_.front());
}

void EventQueue::take(void* buffer, std::size_t* size, std::uint64_t timeout) {
  constexpr std::uint64_t kLongest = 1000ULL * 3600 * 24 * 365;
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(std::min(timeout, kLongest));
  std::unique_lock lock(mutex);
  const bool done = changed_.wait_until(lock, deadline,
                                        [&] { return closed_ || kills_ > 0 || !waiting_.empty(); });
  require(done, GC_ERR_TIMEOUT, "no event came in time");
  if (closed_ || kills_ > 0) {
    if (kills_ > 0) --kills_;
    fail(GC_ERR_ABORT, "the wait for an event was ended");
  }
  store(waiting_.front(), buffer, size);
  if (!buffer) return;
  if (taken_) taken_(waiting_.front());
  waiting_.pop_front();
}

void EventQueue::kill() {
  const std::lock_guard guard(mutex);
  ++kills_;
  changed_.notify_all();
}

void EventQueue::setClosed(bool closed) {
  const std::lock_guard guard(mutex);
  closed_ = closed;
  kills_ = 0;
  changed_.notify_all();
}

std::size_t EventQueue::waiting() {
  const std::lock_guard guard(mutex);
  return waiting_.size();
}

std::uint64_t EventQueue::fired() {
  const std::lock_guard guard(mutex);
  return fired_;
}

void Event::info(EVENT_INFO_CMD command, INFO_DATATYPE* kind, void* buffer, std::size_t* size) {
  answer(kInfos, *this, command, kind, buffer, size);
}

void Event::dataInfo(std::string data, EVENT_DATA_INFO_CMD command, INFO_DATATYPE* kind,
                     void* buffer, std::size_t* size) {
  data.resize(largest(type));  // Whatever a consumer hands in.
  if (type == EVENT_ERROR) return answer(kErrorData, data, command, kind, buffer, size);
  if (type == EVENT_NEW_BUFFER) return answer(kBufferData, data, command, kind, buffer, size);
  answer(kGenApiData, data, command, kind, buffer, size);
}

std::string eventData(std::uint64_t id, std::uint64_t value) {
  const std::uint64_t words[] = {id, value};
  return {reinterpret_cast<const char*>(words), sizeof words};
}

std::string errorData(GC_ERROR code, std::string text) {
  text.resize(std::min(text.size(), kErrorText - 1));
  return std::string(reinterpret_cast<const char*>(&code), sizeof code) + text + '\0';
}

}  // namespace gentl
