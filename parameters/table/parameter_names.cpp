#include "parameters/table/parameter_names.h"

#include <cstddef>
#include <utility>

namespace velmora {

void ParameterNames::add(std::string name, int id) {
  byIndex_.push_back(ids_.insert_or_assign(std::move(name), id).first);
}

const char* ParameterNames::nameAt(int index) const {
  return isIndex(index) ? byIndex_[static_cast<std::size_t>(index)]->first.c_str() : nullptr;
}

std::optional<int> ParameterNames::idAt(int index) const {
  if (!isIndex(index)) return std::nullopt;
  return byIndex_[static_cast<std::size_t>(index)]->second;
}

std::optional<int> ParameterNames::idOf(std::string_view name) const {
  const auto found = ids_.find(name);
  if (found == ids_.end()) return std::nullopt;
  return found->second;
}

}  // namespace velmora
