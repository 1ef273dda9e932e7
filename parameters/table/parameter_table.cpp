#include "parameters/port/parameter_table.h"

#include <algorithm>

#include "parameters/table/id_index.h"
#include "parameters/table/parameter_rows.h"

namespace velmora {
namespace {

using rows::kParameters;

constexpr IdIndex kIndex(kParameters);

}  // namespace

std::span<const ParameterRow> listedParameters() {
  return std::span(kParameters).first<rows::kListedParameters>();
}

std::size_t parameterIndex(int id) { return kIndex(id); }

const ParameterRow* findParameter(int id) {
  const std::size_t index = kIndex(id);
  return index != kIndex.kNone ? &kParameters[index] : nullptr;
}

const ParameterRow* findParameter(std::string_view name) {
  const auto listed = listedParameters();
  const auto found = std::ranges::find(
      listed, name, [](const ParameterRow& row) { return std::string_view(row.name); });
  return found != listed.end() ? &*found : nullptr;
}

}  // namespace velmora
