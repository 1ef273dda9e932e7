/// An applet opened on a device of the virtual board.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "board/control.h"
#include "tool/applet_library.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace velmora::tool {

/// Calls a function for every access to the board while it lives, and those of the observations
/// before it, unless it is to be alone. They end in the opposite order.
class Observation {
 public:
  using Observer = std::function<void(const board::Access&)>;
  enum class Others { kGoOn, kPause };
  explicit Observation(Observer observer, Others others = Others::kGoOn);
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;
  ~Observation();

 private:
  static void install(const Observation* observation);
  void call(const board::Access& access) const;

  static inline const Observation* current = nullptr;
  Observer observer_;
  Others others_;
  const Observation* before_;
};

/// Shows an access on standard error.
void showAccess(const board::Access& access);

struct SessionOptions {
  bool trace = false;         ///< Whether the accesses of start-up and release are shown.
  std::string design;         ///< Design file to use instead of the applet's own; empty for none.
  bool writeDefaults = true;  ///< Whether start-up writes the parameters' defaults to the design.
};

/// Owns a device and an applet on it. `Failure` when the applet does not start.
class Session {
 public:
  Session(const AppletLibrary& library, SessionOptions options);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  /// Releases the applet, then the device.
  ~Session();

  const AppletLibrary& library() const { return library_; }
  Fg_Struct* grabber() { return &grabber_; }
  KTdevice* device() const { return device_.get(); }
  const SessionOptions& options() const { return options_; }

 private:
  struct DestroyDevice {
    void operator()(KTdevice* device) const;
  };

  const AppletLibrary& library_;
  SessionOptions options_;
  std::optional<Observation> tracing_;
  std::unique_ptr<KTdevice, DestroyDevice> device_;
  Fg_Struct grabber_{};
};

}  // namespace velmora::tool
