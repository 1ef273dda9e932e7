/// Diagnostic messages. They go to the logging dispatcher, a library of the board's software that
/// is loaded when the first logger is asked for; without it nothing is logged. No failure of
/// logging reaches the caller: what cannot be logged is dropped. Everything here may be used from
/// any thread.
///
///     Logger* logger = Logging::getLogger("korv.wrapper.Velmora");
///     logMessage(*logger, 4, "cannot retrieve KT id for KT parameter: '", name, "'");
#pragma once

#include <pthread.h>

#include <atomic>
#include <concepts>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "external/logging_dispatcher.h"
#include "support/cancellation.h"
#include "support/dispatcher_library.h"
#include "support/guarded_singleton.h"
#include "support/locks.h"

namespace korv::tools::logging {

/// Runs a step of logging and returns whether it succeeded. Exceptions of the dispatcher and of
/// memory running out end here; thread cancellation passes through.
template <class Step>
bool attempt(const Step& step) {
  try {
    step();
    return true;
  } catch (...) {
    velmora::rethrowCancellation();
    return false;
  }
}

/// A named source of messages. Larger levels are more serious.
class Logger {
 public:
  Logger(std::uint64_t handle, std::int32_t threshold) : handle_(handle), threshold_(threshold) {}

  /// Whether this may be the default logger, which is not worth keeping: a later
  /// `Logging::getLogger` may give a better one.
  bool isDefault() const { return handle_ == 0; }
  /// Whether a message of `level` from the calling thread is wanted. To be checked before the text
  /// is built; `log` does not check.
  bool isEnabled(int level);
  /// Hands a text to the dispatcher, if there is one. The last two arguments are 0 for texts.
  void log(int level, const char* text, int argument, std::uint64_t data);
  /// The lowest level that is enabled from now on.
  void setLevel(int threshold) { threshold_.store(threshold, std::memory_order_relaxed); }
  /// Mutes or unmutes the calling thread for this logger. Returns whether it was enabled before.
  bool setThreadEnabled(bool enabled);

 private:
  std::uint64_t handle_;
  templates::platform::RecursiveMutex mutex_;
  std::set<pthread_t> mutedThreads_;
  std::atomic<std::int32_t> threshold_;
};

/// The connection to the dispatcher and the owner of all loggers.
class Logging final : public templates::patterns::GuardedSingleton<Logging> {
 public:
  /// The logger called `name`, never null; one and the same for all names that the dispatcher gives
  /// the same handle. Without a dispatcher, and when memory runs out, the default logger, which
  /// enables no level below 7. Valid until the static objects of the process are destroyed or the
  /// library is unloaded.
  static Logger* getLogger(const char* name);

  /// True once the process is exiting: loggers obtained before are gone or about to go, those
  /// obtained from now on are silent.
  static bool ended() { return isOver(); }

  /// Releases the loggers and unregisters from the dispatcher.
  ~Logging() override;

 private:
  friend class Logger;
  friend class templates::patterns::GuardedSingleton<Logging>;

  static constexpr std::int32_t kDefaultThreshold = 7;

  Logging() = default;
  bool start();
  void attach();
  Logger* find(const char* name);
  void send(std::uint64_t handle, int level, const char* text, int argument, std::uint64_t data);

  // Called by the dispatcher.
  static void* detach();
  static void setLevel(std::uint64_t handle, std::int32_t level);

  Logger defaultLogger_{0, kDefaultThreshold};
  // Filled in by the dispatcher while it is being attached, constant afterwards.
  GetLogger getLogger_ = nullptr;
  Log log_ = nullptr;
  // Null while no dispatcher is attached.
  std::atomic<const LoggingDispatcherDescriptor*> descriptor_{nullptr};
  std::map<std::uint64_t, Logger> loggers_;
  std::optional<LibraryRecord> library_;
  templates::platform::ReadWriteLock loggersLock_;
};

/// "thread-id=<calling thread's id, unsigned decimal>|", the start of every message.
std::string messagePrefix();

/// Integers that a message can contain; char and bool excluded.
template <class T>
concept MessageNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

/// @name Pieces that a message can be made of; a null text counts as empty
/// @{
inline void appendPiece(std::string& message, std::string_view text) { message += text; }
inline void appendPiece(std::string& message, const char* text) { message += text ? text : ""; }
void appendPiece(std::string& message, MessageNumber auto number) {
  message += std::to_string(number);
}
/// @}

/// Logs the prefix and the pieces, one after the other, when the level is enabled for the calling
/// thread. Otherwise no text is built.
template <class... Pieces>
void logMessage(Logger& logger, int level, const Pieces&... pieces) {
  if (!logger.isEnabled(level)) return;
  attempt([&] {
    std::string message = messagePrefix();
    (appendPiece(message, pieces), ...);
    logger.log(level, message.c_str(), 0, 0);
  });
}

}  // namespace korv::tools::logging
