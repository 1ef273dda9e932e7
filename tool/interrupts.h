/// Ctrl-C and SIGTERM end a long command instead of the program.
#pragma once

#include <atomic>
#include <csignal>

#include "tool/code_text.h"

namespace velmora::tool {

/// Ends the program with the status of an interrupted one, after reporting what failed until then.
class Interrupted : public Failure {
 public:
  explicit Interrupted(const Failures& failures) : Failure(failures.messages()) {}
};

/// Notes the signals while it lives. One at a time.
class Interrupts {
 public:
  Interrupts() {
    noted = 0;
    struct sigaction note = {};
    note.sa_handler = [](int) { noted = 1; };
    sigaction(SIGINT, &note, &interrupt_);
    sigaction(SIGTERM, &note, &terminate_);
  }
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
  ~Interrupts() {
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &terminate_, nullptr);
  }

  /// Any thread.
  static bool came() { return noted != 0; }

 private:
  static inline std::atomic<int> noted{0};
  static_assert(std::atomic<int>::is_always_lock_free);

  struct sigaction interrupt_ = {};
  struct sigaction terminate_ = {};
};

}  // namespace velmora::tool
