/// Copies the values of field parameters to and from a caller's cache: an array, aligned or not, of
/// elements as wide as the values. The caller guarantees its size. A null cache, record or values
/// pointer copies nothing.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velmora {

struct FieldParameterInt_s {
  std::uint32_t value;
  std::uint32_t index;  ///< In elements of 4 bytes.
};

struct FieldParameterDouble_s {
  double value;
  std::uint32_t index;  ///< In elements of 8 bytes.
};

struct FieldParameterAccess {
  std::int32_t type;    ///< `FgParamTypes`: 1 and 2 are 32 bits wide, 3 to 5 are 64.
  std::uint32_t index;  ///< First element, in elements of the value's width.
  std::uint32_t count;
  void* values;  ///< `count` values; owned by the caller.
};

static_assert(sizeof(FieldParameterInt_s) == 8);
static_assert(sizeof(FieldParameterDouble_s) == 16);
static_assert(offsetof(FieldParameterAccess, count) == 8);
static_assert(offsetof(FieldParameterAccess, values) == 16);

/// Stores the record's value in the cache.
void setFieldCache(void* cache, const FieldParameterInt_s* record);
void setFieldCache(void* cache, const FieldParameterDouble_s* record);
/// Stores the record's values in the cache; none for an unknown type.
void setFieldCache(void* cache, const FieldParameterAccess* record);

/// Reads the record's value from the cache.
void getFieldCache(void* cache, FieldParameterInt_s* record);
void getFieldCache(void* cache, FieldParameterDouble_s* record);
/// Reads the record's values from the cache into its array; none for an unknown type.
void getFieldCache(void* cache, FieldParameterAccess* record);

}  // namespace velmora
