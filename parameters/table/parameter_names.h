#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The names that applications can list, each at an index, with their ids. Filled at start-up and
/// only read afterwards; pointers to names stay valid.
class ParameterNames {
 public:
  /// Adds a name at the next index. A name that is added again takes the newer id everywhere.
  void add(std::string name, int id);

  int count() const { return static_cast<int>(byIndex_.size()); }
  /// The name at an index; null when there is none.
  const char* nameAt(int index) const;
  std::optional<int> idAt(int index) const;
  std::optional<int> idOf(std::string_view name) const;

 private:
  using Ids = std::map<std::string, int, std::less<>>;

  bool isIndex(int index) const { return index >= 0 && index < count(); }

  Ids ids_;
  std::vector<Ids::const_iterator> byIndex_;
};

}  // namespace velmora
