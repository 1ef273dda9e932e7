#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The names that applications can list, each at an index, with their ids. Filled at start-up and
/// only read afterwards; names stay where they are.
class ParameterNames {
 public:
  /// Lists a name at the next index. A name listed again takes the newer id.
  void add(std::string name, int id) {
    const auto entry = ids_.insert_or_assign(std::move(name), id).first;
    byIndex_.push_back(entry);
  }

  int count() const { return static_cast<int>(byIndex_.size()); }

  /// The name at an index; null when there is none.
  const char* nameAt(int index) const {
    return isIndex(index) ? byIndex_[static_cast<std::size_t>(index)]->first.c_str() : nullptr;
  }

  std::optional<int> idAt(int index) const {
    if (!isIndex(index)) return std::nullopt;
    return byIndex_[static_cast<std::size_t>(index)]->second;
  }

  std::optional<int> idOf(std::string_view name) const {
    const auto found = ids_.find(name);
    if (found == ids_.end()) return std::nullopt;
    return found->second;
  }

 private:
  using Ids = std::map<std::string, int, std::less<>>;

  bool isIndex(int index) const { return index >= 0 && index < count(); }

  Ids ids_;
  std::vector<Ids::const_iterator> byIndex_;
};

}  // namespace velmora
