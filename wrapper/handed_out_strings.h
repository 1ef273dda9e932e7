#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string_view>

namespace velmora {

/// Strings that callers hold until they give them back. Releasing one does not take the call lock,
/// so this class has a lock of its own.
class HandedOutStrings {
 public:
  /// A copy of `text` for the caller, valid until it is given back or this object is destroyed.
  char* handOut(std::string_view text);
  /// Releases a string; false when it was not handed out.
  bool takeBack(const void* handed);

 private:
  std::mutex mutex_;
  std::map<const void*, std::unique_ptr<char[]>> strings_;
};

}  // namespace velmora
