#include "gentl/info.h"

#include <cstdio>
#include <cstring>

namespace gentl {
namespace {

std::size_t sizeOfNumber(INFO_DATATYPE type) {
  if (type == INFO_DATATYPE_BOOL8) return 1;
  return type == INFO_DATATYPE_INT32 || type == INFO_DATATYPE_UINT32 ? 4 : 8;
}

}  // namespace

std::string encoded(INFO_DATATYPE type, const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value))
    return type == INFO_DATATYPE_STRING ? *text + '\0' : *text;
  const auto* real = std::get_if<double>(&value);
  return (real ? bytesOf(*real) : bytesOf(std::get<std::uint64_t>(value)))
      .substr(0, sizeOfNumber(type));
}

std::string hexadecimal(std::uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(value));
  return text;
}

void store(const std::string& bytes, void* buffer, std::size_t* size) {
  requirePointer(size);
  const std::size_t room = *size;
  *size = bytes.size();
  if (!buffer) return;
  require(room >= bytes.size(), GC_ERR_BUFFER_TOO_SMALL, "the buffer is too small");
  std::memcpy(buffer, bytes.data(), bytes.size());
}

}  // namespace gentl
