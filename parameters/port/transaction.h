#pragma once

#include <utility>

namespace velmora {

/// Changes a setting provided that the design accepts it: stores the new value at once and restores
/// the previous one at the end of the scope unless it was committed.
template <class T>
class Transaction {
 public:
  Transaction(T& setting, T value) : setting_(setting), previous_(std::exchange(setting, value)) {}
  /// Guards a setting that may change within the scope.
  explicit Transaction(T& setting) : Transaction(setting, setting) {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (!committed_) setting_ = previous_;
  }

  void commit() { committed_ = true; }
  T previous() const { return previous_; }

 private:
  T& setting_;
  T previous_;
  bool committed_ = false;
};

}  // namespace velmora
