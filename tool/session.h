/// An applet opened on a device of the virtual board.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tool/applet_library.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace velmora::tool {

/// Which accesses to the board are shown on standard error.
enum class Trace {
  kNone,
  kCommand,  ///< Those after start-up and before the release.
  kAll
};

/// Shows every access to the board while it lives. One at a time.
class AccessTrace {
 public:
  AccessTrace();
  AccessTrace(const AccessTrace&) = delete;
  AccessTrace& operator=(const AccessTrace&) = delete;
  ~AccessTrace();
};

struct SessionOptions {
  Trace trace = Trace::kNone;
  std::string design;         ///< Design file to use instead of the applet's own; empty for none.
  bool writeDefaults = true;  ///< Whether start-up writes the parameters' defaults to the design.
};

/// Owns a device and an applet on it. `Failure` when the applet does not start.
class Session {
 public:
  Session(const AppletLibrary& library, const SessionOptions& options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  /// Releases the applet, then the device.
  ~Session();

  const AppletLibrary& library() const { return library_; }
  Fg_Struct* grabber() { return &grabber_; }
  KTdevice* device() const { return device_.get(); }

 private:
  struct DestroyDevice {
    void operator()(KTdevice* device) const;
  };

  const AppletLibrary& library_;
  Trace trace_;
  std::optional<AccessTrace> tracing_;
  std::unique_ptr<KTdevice, DestroyDevice> device_;
  Fg_Struct grabber_{};
};

}  // namespace velmora::tool
