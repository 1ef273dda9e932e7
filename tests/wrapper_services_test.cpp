#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/temporary_directory.h"
#include "wrapper/field_cache.h"
#include "wrapper/temporary_file.h"

namespace velmora {
namespace {

constexpr std::size_t kNames = 62UL * 62 * 62 * 62 * 62 * 62;
const std::string kDigits = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

std::size_t uptime() {
  struct sysinfo info = {};
  sysinfo(&info);
  return static_cast<std::size_t>(info.uptime);
}

class UniqueFile : public testing::Test {
 protected:
  /// Creates a file and returns the number behind its name.
  std::size_t create() {
    std::string name = directory_ / "u-XXXXXX.dat";
    const int file = makeUniqueFile(name.data(), 4);
    struct stat status = {};
    EXPECT_EQ(stat(name.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(fcntl(file, F_GETFL) & O_ACCMODE, O_RDWR);
    close(file);
    std::size_t number = 0;
    for (std::size_t i = 6; i-- > 0;) {
      number = number * 62 + kDigits.find(name[name.size() - 10 + i]);
    }
    return number;
  }

  /// Takes a name away from `create`.
  void occupy(std::size_t number) const {
    std::string digits;
    for (; digits.size() < 6; number /= 62) digits += kDigits[number % 62];
    close(open((directory_ / ("u-" + digits + ".dat")).c_str(), O_CREAT | O_WRONLY, 0600));
  }

  TemporaryDirectory directory_;
};

TEST_F(UniqueFile, CounterAdvancesByUptimeAndByStepOnCollision) {
  std::size_t number = create();
  for (const std::size_t step : {0U, 7777U}) {
    const std::size_t before = uptime();
    for (std::size_t tick = 0; step != 0 && tick < 30; ++tick) occupy(number + before + tick);
    const std::size_t next = create();
    const std::size_t advance = (next + kNames - number) % kNames;
    EXPECT_GE(advance, before + step);
    EXPECT_LE(advance, uptime() + step);
    number = next;
  }
}

TEST_F(UniqueFile, InvalidTemplatesAreRefusedUntouched) {
  const struct {
    const char* name;
    int suffixLength;
  } rows[] = {{"u-XXXXX.dat", 4}, {"u-XXXXXX.dat", 3}, {"u-XXXXXX.dat", 5}, {"XXXXXX", -1},
              {"XXXXX", 0},       {"XXXXXX", 1},       {"XXXXXX", INT_MAX}, {"", 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " " + std::to_string(row.suffixLength));
    std::string name = row.name;
    EXPECT_EQ(makeUniqueFile(name.data(), row.suffixLength), -1);
    EXPECT_EQ(name, row.name);
  }
  EXPECT_EQ(makeUniqueFile(nullptr, 0), -1);
}

TEST_F(UniqueFile, ErrorThatNoNameCuresEndsTheAttempts) {
  const std::size_t first = create();
  const std::size_t before = uptime();
  std::string name = directory_ / "missing/XXXXXX";
  EXPECT_EQ(makeUniqueFile(name.data(), 0), -1);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_STREQ(name.c_str(), "");
  // Two calls have added the uptime since, none the step of a further attempt.
  const std::size_t advance = (create() + kNames - first) % kNames;
  EXPECT_GE(advance, 2 * before);
  EXPECT_LE(advance, 2 * uptime());
}

TEST_F(UniqueFile, ThreadsNeverShareAFile) {
  std::vector<std::set<std::size_t>> numbers(4);
  std::vector<std::thread> threads;
  for (auto& own : numbers) {
    threads.emplace_back([&] {
      while (own.size() < 50) own.insert(create());
    });
  }
  for (auto& thread : threads) thread.join();
  for (auto& own : numbers) numbers.front().insert(own.begin(), own.end());
  EXPECT_EQ(numbers.front().size(), 200U);
}

TEST(TempFile, IsRemovedAndKeepsNoDescriptor) {
  const int lowest = dup(0);
  close(lowest);
  char* const name = createTempFile();
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(fcntl(lowest, F_GETFD), -1);
  const std::string kept = name;
  EXPECT_TRUE(kept.starts_with("/tmp/coef-") && kept.ends_with(".tiff") && kept.size() == 21);
  EXPECT_EQ(std::filesystem::file_size(kept), 0U);
  deleteTempFile(name);
  EXPECT_FALSE(std::filesystem::exists(kept));
  deleteTempFile(nullptr);
}

/// Caches begin at odd addresses: they need not be aligned.
TEST(FieldCache, SingleValuesGoToTheElementOfTheirWidth) {
  std::string cache(33, '.');
  FieldParameterInt_s whole = {0x64636261, 3};
  FieldParameterDouble_s real = {0.5, 2};
  setFieldCache(cache.data() + 1, &whole);
  setFieldCache(cache.data() + 1, &real);
  EXPECT_EQ(cache.substr(0, 17), std::string(13, '.') + "abcd");
  EXPECT_EQ(cache.substr(17), std::string("\0\0\0\0\0\0\xe0\x3f", 8) + std::string(8, '.'));

  whole.value = 0;
  real.value = 0;
  getFieldCache(cache.data() + 1, &whole);
  getFieldCache(cache.data() + 1, &real);
  EXPECT_EQ(whole.value, 0x64636261U);
  EXPECT_EQ(real.value, 0.5);
}

TEST(FieldCache, ArraysCopyByTheWidthOfTheirType) {
  const std::pair<int32_t, std::size_t> rows[] = {{0, 0}, {1, 4}, {2, 4},  {3, 8}, {4, 8},
                                                  {5, 8}, {6, 0}, {22, 0}, {-1, 0}};
  for (const auto& [type, width] : rows) {
    SCOPED_TRACE(type);
    std::string values = "abcdefghijklmnop";
    std::string cache(33, '.');
    FieldParameterAccess record = {type, 1, 2, values.data()};
    setFieldCache(cache.data() + 1, &record);
    const std::string copied = values.substr(0, 2 * width);
    EXPECT_EQ(cache, std::string(33, '.').replace(1 + width, 2 * width, copied));

    std::string back(16, '-');
    record.values = back.data();
    getFieldCache(cache.data() + 1, &record);
    EXPECT_EQ(back, std::string(16, '-').replace(0, 2 * width, copied));
  }
}

TEST(FieldCache, NullsCopyNothing) {
  std::array<uint64_t, 2> cache{};
  const auto copyBothWays = [](void* target, auto* record) {
    setFieldCache(target, record);
    getFieldCache(target, record);
  };
  const auto tryNulls = [&](auto record) {
    copyBothWays(nullptr, &record);
    copyBothWays(&cache, static_cast<decltype(&record)>(nullptr));
    return record;
  };
  EXPECT_EQ(tryNulls(FieldParameterInt_s{7, 1}).value, 7U);
  EXPECT_EQ(tryNulls(FieldParameterDouble_s{7, 1}).value, 7.0);
  uint64_t value = 7;
  tryNulls(FieldParameterAccess{4, 1, 1, &value});
  EXPECT_EQ(value, 7U);
  FieldParameterAccess withoutValues = {4, 1, 1, nullptr};
  copyBothWays(&cache, &withoutValues);
  EXPECT_EQ(cache, (std::array<uint64_t, 2>{}));
}

}  // namespace
}  // namespace velmora
