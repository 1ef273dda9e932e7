#include "gentl/event.h"

#include <chrono>
#include <cstring>

namespace gentl {
namespace {

constexpr std::size_t kLimit = 4096;      ///< Events that wait; the oldest are lost.
constexpr std::size_t kText = 252;        ///< Of an error or a feature's name, with its zero.
constexpr std::size_t kHexadecimal = 17;  ///< A number as text, with its zero.

const InfoRow<Event> kInfos[] = {
    {EVENT_EVENT_TYPE, INFO_DATATYPE_INT32, tell<&Event::type>},
    {EVENT_NUM_IN_QUEUE, INFO_DATATYPE_SIZET, tell<&Event::waiting>},
    {EVENT_NUM_FIRED, INFO_DATATYPE_UINT64, tell<&Event::fired>},
    {EVENT_SIZE_MAX, INFO_DATATYPE_SIZET, tell<&Event::largest>},
    {EVENT_INFO_DATA_SIZE_MAX, INFO_DATATYPE_SIZET, tell<&Event::largestValue>},
};

/// An event's data, padded to their largest size.
struct Data {
  std::string bytes;

  template <std::size_t index>
  std::uint64_t word() const {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + index * sizeof value, sizeof value);
    return value;
  }
  template <std::size_t offset>
  std::string text() const {
    return bytes.substr(offset, bytes.find('\0', offset) - offset);
  }
  std::string hexadecimalId() const { return hexadecimal(word<0>()); }
  std::string behindId() const { return bytes.substr(sizeof(std::uint64_t)); }
};

const InfoRow<Data> kBufferData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_PTR, tell<&Data::word<0>>},
    {EVENT_DATA_VALUE, INFO_DATATYPE_PTR, tell<&Data::word<1>>},
    {EVENT_DATA_NUMID, INFO_DATATYPE_UINT64, tell<&Data::word<0>>},
};
const InfoRow<Data> kGenApiData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_STRING, tell<&Data::hexadecimalId>},
    {EVENT_DATA_VALUE, INFO_DATATYPE_BUFFER, tell<&Data::behindId>},
    {EVENT_DATA_NUMID, INFO_DATATYPE_UINT64, tell<&Data::word<0>>},
};
const InfoRow<Data> kFeatureData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_STRING, tell<&Data::text<0>>},
};
const InfoRow<Data> kErrorData[] = {
    {EVENT_DATA_ID, INFO_DATATYPE_INT32, tell<&Data::word<0>>},
    {EVENT_DATA_VALUE, INFO_DATATYPE_STRING, tell<&Data::text<sizeof(GC_ERROR)>>},
};

}  // namespace

std::size_t Event::largest() const {
  if (type == EVENT_ERROR) return sizeof(GC_ERROR) + kText;
  return type == EVENT_FEATURE_INVALIDATE ? kText : 2 * sizeof(std::uint64_t);
}
std::size_t Event::largestValue() const {
  return type == EVENT_ERROR || type == EVENT_FEATURE_INVALIDATE ? kText : kHexadecimal;
}

void Event::push(std::string data) {
  waiting_.push_back(std::move(data));
  if (type != EVENT_NEW_BUFFER && waiting_.size() > kLimit) waiting_.pop_front();
  ++fired_;
  changed_.notify_all();
}

void Event::fire(std::string data) {
  const std::lock_guard guard(mutex);
  if (registered_) push(std::move(data));
}

void Event::setRegistered(bool yes) {
  const std::lock_guard guard(mutex);
  registered_ = yes;
  ++registrations_;
  kills_ = 0;
  if (type != EVENT_NEW_BUFFER) drop();
  changed_.notify_all();
}

void Event::take(void* buffer, std::size_t* size, std::uint64_t timeout) {
  constexpr std::uint64_t kLongest = 1000ULL * 3600 * 24 * 365;
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(std::min(timeout, kLongest));
  std::unique_lock lock(mutex);
  const unsigned mine = registrations_;
  const auto over = [&] { return !registered_ || registrations_ != mine || kills_ > 0; };
  require(changed_.wait_until(lock, deadline, [&] { return over() || !waiting_.empty(); }),
          GC_ERR_TIMEOUT, "no event came in time");
  if (over()) {
    if (kills_ > 0 && registrations_ == mine) --kills_;
    fail(GC_ERR_ABORT, "the wait for an event was ended");
  }
  store(waiting_.front(), buffer, size);
  if (!buffer) return;
  if (taken_) taken_(waiting_.front(), true);
  waiting_.pop_front();
}

void Event::flush() {
  const std::lock_guard guard(mutex);
  for (; !waiting_.empty(); waiting_.pop_front())
    if (taken_) taken_(waiting_.front(), false);
}

void Event::kill() {
  const std::lock_guard guard(mutex);
  ++kills_;
  changed_.notify_all();
}

void Event::info(EVENT_INFO_CMD command, Answer to) {
  const std::lock_guard guard(mutex);
  answer(kInfos, *this, command, to);
}

void Event::dataInfo(const void* data, std::size_t size, EVENT_DATA_INFO_CMD command, Answer to) {
  requirePointer(data);
  Data copy{{static_cast<const char*>(data), std::min(size, largest())}};
  copy.bytes.resize(largest());  // Whatever a consumer hands in.
  if (type == EVENT_ERROR) return answer(kErrorData, copy, command, to);
  if (type == EVENT_NEW_BUFFER) return answer(kBufferData, copy, command, to);
  if (type == EVENT_FEATURE_INVALIDATE) return answer(kFeatureData, copy, command, to);
  answer(kGenApiData, copy, command, to);
}

std::string eventData(std::uint64_t id, std::uint64_t value) {
  return bytesOf(id) + bytesOf(value);
}

std::string errorData(GC_ERROR code, const std::string& text) {
  return bytesOf(code) + text.substr(0, kText - 1) + '\0';
}

}  // namespace gentl
