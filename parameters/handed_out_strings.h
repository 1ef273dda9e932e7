#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string_view>

namespace velmora {

/// Strings that callers hold until they give them back. Releasing does not take the call lock, so
/// the set has a lock of its own.
class HandedOutStrings {
 public:
  /// A copy of `text` for the caller, valid until it is given back or this object goes.
  char* handOut(std::string_view text);
  /// Releases a string; false when it is not handed out.
  bool takeBack(const void* handed);

 private:
  std::mutex mutex_;
  std::map<const void*, std::unique_ptr<char[]>> strings_;
};

}  // namespace velmora
