/// The table of parameters by itself: that ids and names lead to its rows, and nothing else does.
#include "parameters/table/parameter_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>

#include "velmora/parameters.h"

namespace velmora {
namespace {

TEST(ParameterTable, LeadsFromIdsAndNamesToRows) {
  std::set<std::int64_t> ids = {FG_PARAM_DESCR};  // Served without being listed.
  for (const auto& row : listedParameters()) {
    EXPECT_TRUE(ids.insert(row.id).second) << row.name;
    EXPECT_EQ(findParameter(row.id), &row);
    EXPECT_EQ(findParameter(std::string_view(row.name)), &row);
  }
  ASSERT_EQ(ids.size(), 86u);
  EXPECT_NE(findParameter(FG_PARAM_DESCR), nullptr);
  EXPECT_EQ(findParameter(std::string_view("FG_PARAM_DESCR")), nullptr);
  int found = 0;
  for (std::int64_t id = -100000; id < 400000; ++id) found += !!findParameter(static_cast<int>(id));
  EXPECT_EQ(found, 86);
  for (std::int64_t id = INT_MIN; id <= INT_MAX; id += 65521)
    EXPECT_EQ(findParameter(static_cast<int>(id)) != nullptr, ids.contains(id)) << id;
}

}  // namespace
}  // namespace velmora
