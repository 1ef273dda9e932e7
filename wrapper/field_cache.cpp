#include "wrapper/field_cache.h"

#include <cstring>

namespace velmora {
namespace {

/// A record's first value in the cache; null without a cache or a record.
template <class Record>
std::byte* findElement(void* cache, const Record* record, std::size_t width) {
  if (!cache || !record) return nullptr;
  return static_cast<std::byte*>(cache) + record->index * width;
}

template <class Record>
void storeValue(void* cache, const Record* record) {
  std::byte* const element = findElement(cache, record, sizeof(Record::value));
  if (element) std::memcpy(element, &record->value, sizeof(Record::value));
}

template <class Record>
void loadValue(void* cache, Record* record) {
  const std::byte* const element = findElement(cache, record, sizeof(Record::value));
  if (element) std::memcpy(&record->value, element, sizeof(Record::value));
}

/// Bytes of one value; 0 for types that a cache does not hold.
std::size_t valueWidth(std::int32_t type) {
  if (type < 1 || type > 5) return 0;
  return type <= 2 ? sizeof(std::uint32_t) : sizeof(std::uint64_t);
}

/// An array record's part of the cache; empty when the record has no values of a known type.
struct Elements {
  std::byte* begin = nullptr;
  std::size_t size = 0;
};

Elements findElements(void* cache, const FieldParameterAccess* record) {
  if (!record || !record->values) return {};
  const std::size_t width = valueWidth(record->type);
  return {findElement(cache, record, width), record->count * width};
}

}  // namespace

void setFieldCache(void* cache, const FieldParameterInt_s* record) { storeValue(cache, record); }

void setFieldCache(void* cache, const FieldParameterDouble_s* record) { storeValue(cache, record); }

void setFieldCache(void* cache, const FieldParameterAccess* record) {
  const Elements elements = findElements(cache, record);
  if (elements.begin) std::memcpy(elements.begin, record->values, elements.size);
}

void getFieldCache(void* cache, FieldParameterInt_s* record) { loadValue(cache, record); }

void getFieldCache(void* cache, FieldParameterDouble_s* record) { loadValue(cache, record); }

void getFieldCache(void* cache, FieldParameterAccess* record) {
  const Elements elements = findElements(cache, record);
  if (elements.begin) std::memcpy(record->values, elements.begin, elements.size);
}

}  // namespace velmora
