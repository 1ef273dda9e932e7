/// The table of parameters by itself: that it is whole, and that ids and names lead to its rows.
#include "parameters/parameter_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <set>
#include <string>

namespace velmora {
namespace {

TEST(ParameterTable, LeadsFromIdsAndNamesToRows) {
  const auto rows = listedParameters();
  ASSERT_EQ(rows.size(), 85u);
  std::map<int, std::size_t> indexes;
  std::set<std::string> names;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_TRUE(indexes.emplace(rows[i].id, i).second) << rows[i].name;
    EXPECT_TRUE(names.insert(rows[i].name).second) << rows[i].name;
    EXPECT_EQ(parameterIndex(rows[i].id), i);
    EXPECT_EQ(findParameter(rows[i].id), &rows[i]);
    EXPECT_EQ(findParameter(std::string_view(rows[i].name)), &rows[i]);
  }
  // One more is served without being listed.
  ASSERT_NE(findParameter(FG_PARAM_DESCR), nullptr);
  EXPECT_EQ(findParameter(FG_PARAM_DESCR)->id, FG_PARAM_DESCR);
  EXPECT_GE(parameterIndex(FG_PARAM_DESCR), rows.size());
  EXPECT_EQ(findParameter(std::string_view("FG_PARAM_DESCR")), nullptr);

  int wronglyFound = 0;
  const auto tryOther = [&](std::int64_t number) {
    const int id = static_cast<int>(number);
    if (indexes.contains(id) || id == FG_PARAM_DESCR) return;
    wronglyFound += parameterIndex(id) < rows.size() || findParameter(id);
  };
  for (std::int64_t id = -100000; id < 400000; ++id) tryOther(id);
  for (std::int64_t id = INT_MIN; id <= INT_MAX; id += 65521) tryOther(id);
  tryOther(INT_MAX);
  EXPECT_EQ(wronglyFound, 0);
}

}  // namespace
}  // namespace velmora
