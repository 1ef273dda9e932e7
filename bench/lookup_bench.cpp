/// Lookup of a parameter by id, compared with a map and with binary search in a sorted list.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <vector>

#include "parameters/port/parameter_table.h"

namespace {

std::vector<int> ids() {
  std::vector<int> all;
  for (const auto& row : velmora::listedParameters()) all.push_back(row.id);
  return all;
}

template <class Find>
void lookUpAll(benchmark::State& state, const Find& find) {
  const std::vector<int> all = ids();
  for (auto _ : state)
    for (const int id : all) benchmark::DoNotOptimize(find(id));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(all.size()));
}

void table(benchmark::State& state) {
  lookUpAll(state, [](int id) { return velmora::findParameter(id); });
}
BENCHMARK(table);

void tableForUnknownIds(benchmark::State& state) {
  int id = 0;
  for (auto _ : state) benchmark::DoNotOptimize(velmora::findParameter(++id));
}
BENCHMARK(tableForUnknownIds);

void orderedMap(benchmark::State& state) {
  std::map<int, const velmora::ParameterRow*> map;
  for (const auto& row : velmora::listedParameters()) map[row.id] = &row;
  lookUpAll(state, [&map](int id) { return map.find(id)->second; });
}
BENCHMARK(orderedMap);

void sortedList(benchmark::State& state) {
  std::vector<int> sorted = ids();
  std::ranges::sort(sorted);
  lookUpAll(state, [&sorted](int id) { return std::ranges::lower_bound(sorted, id); });
}
BENCHMARK(sortedList);

}  // namespace
