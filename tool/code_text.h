/// Failures of the tool and the meaning of error codes.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace velmora::tool {

/// Ends the command. The messages say what failed and why, one line each, without the tool's name.
class Failure : public std::runtime_error {
 public:
  explicit Failure(const std::string& message) : Failure(std::vector{message}) {}
  explicit Failure(std::vector<std::string> messages)
      : std::runtime_error(messages.empty() ? "" : messages.front()),
        messages_(std::move(messages)) {}

  const std::vector<std::string>& messages() const { return messages_; }

 private:
  std::vector<std::string> messages_;
};

/// Collects what went wrong in a command that goes on after a failure.
class Failures {
 public:
  void add(const Failure& failure) { add(failure.messages()); }
  void add(const Failures& others) { add(others.messages_); }
  const std::vector<std::string>& messages() const { return messages_; }
  /// Throws all that was added as one `Failure`.
  void throwIfAny() const {
    if (!messages_.empty()) throw Failure(messages_);
  }

 private:
  void add(const std::vector<std::string>& messages) {
    messages_.insert(messages_.end(), messages.begin(), messages.end());
  }

  std::vector<std::string> messages_;
};

/// A code with its meaning, such as "-7080, value breaks a step rule".
std::string codeText(std::int64_t code);

}  // namespace velmora::tool
