/// The applet, and the board that it is opened on once a command needs one.
#pragma once

#include <optional>

#include "tool/applet_library.h"
#include "tool/session.h"

namespace velmora::tool {

/// Both stay as they are from command to command.
class Host {
 public:
  const AppletLibrary& library() {
    if (!library_) library_.emplace();
    return *library_;
  }
  /// The options count at the first call.
  Session& session(const SessionOptions& options = {}) {
    if (session_) return *session_;
    library();
    library_->requireVirtualBoard();
    session_.emplace(*library_, options);
    return *session_;
  }

 private:
  std::optional<AppletLibrary> library_;
  std::optional<Session> session_;  // Goes before the library.
};

}  // namespace velmora::tool
