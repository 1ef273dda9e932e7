#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <utility>

#include "support/fg_log.h"
#include "tests/temporary_directory.h"
#include "wrapper/field_cache.h"
#include "wrapper/temporary_file.h"

namespace {

using namespace velmora;

TEST(UniqueFile, ProcessesWithTheSameCounterNeverShareAFile) {
  const TemporaryDirectory directory;
  std::string name = directory / "u-XXXXXX.dat";
  for (int i = 0; i < 5; ++i) {
    int status = -1;
    const pid_t child = fork();
    if (child == 0) _exit(makeUniqueFile(name.data(), 4) < 0);
    EXPECT_TRUE(waitpid(child, &status, 0) == child && status == 0);
  }
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(directory / "")) {
    EXPECT_EQ(entry.status().permissions(), std::filesystem::perms(0600));
    ++files;
  }
  EXPECT_EQ(files, 5);
}

TEST(UniqueFile, InvalidTemplatesAreRefusedUntouched) {
  const std::pair<std::string, int> rows[] = {{"XXXXX.dat", 4}, {"XXXXXX.dat", 3},   {"XXXXXX", -1},
                                              {"XXXXX", 0},     {"XXXXXX", INT_MAX}, {"", 0}};
  for (const auto& [kept, suffixLength] : rows) {
    std::string name = kept;
    EXPECT_EQ(makeUniqueFile(name.data(), suffixLength), -1) << kept << ' ' << suffixLength;
    EXPECT_EQ(name, kept);
  }
  std::string unreachable = "/nowhere/XXXXXX";
  EXPECT_EQ(makeUniqueFile(unreachable.data(), 0), -1);
  EXPECT_EQ(makeUniqueFile(nullptr, 0), -1);
  EXPECT_EQ(unreachable[0], '\0');
}

TEST(TempFile, IsRemovedAndKeepsNoDescriptor) {
  const int input = dup(STDIN_FILENO);
  close(STDIN_FILENO);  // The file opens as this descriptor.
  char* const name = createTempFile();
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(close(STDIN_FILENO), -1);
  dup2(input, STDIN_FILENO);
  const std::string kept = name;
  EXPECT_TRUE(kept.starts_with("/tmp/coef-") && kept.ends_with(".tiff") && kept.size() == 21);
  EXPECT_TRUE(std::filesystem::exists(kept));
  deleteTempFile(name);
  EXPECT_FALSE(std::filesystem::exists(kept));
}

/// Caches begin at odd addresses: they need not be aligned.
TEST(FieldCache, CopiesByTheWidthOfTheValues) {
  std::string cache(33, '.');
  FieldParameterInt_s whole = {0x64636261, 3};
  FieldParameterDouble_s real = {0.5, 2};
  setFieldCache(cache.data() + 1, &whole);
  setFieldCache(cache.data() + 1, &real);
  EXPECT_EQ(cache, std::string(13, '.') + "abcd" + std::string("\0\0\0\0\0\0\xe0\x3f", 8) +
                       std::string(8, '.'));
  whole.value = 0, real.value = 0;
  getFieldCache(cache.data() + 1, &whole);
  getFieldCache(cache.data() + 1, &real);
  EXPECT_EQ(whole.value, 0x64636261U);
  EXPECT_EQ(real.value, 0.5);

  const std::size_t widths[] = {0, 4, 4, 8, 8, 8, 0};
  for (int type = 0; type < 7; ++type) {
    std::string values = "abcdefghijklmnop", back(16, '-');
    const std::string copied = values.substr(0, 2 * widths[type]);
    cache.assign(33, '.');
    FieldParameterAccess record = {type, 1, 2, values.data()};
    setFieldCache(cache.data() + 1, &record);
    EXPECT_EQ(cache, std::string(33, '.').replace(1 + widths[type], copied.size(), copied)) << type;
    record.values = back.data();
    getFieldCache(cache.data() + 1, &record);
    EXPECT_EQ(back, std::string(16, '-').replace(0, copied.size(), copied)) << type;
  }
}

/// Only a derived class opens the stream.
TEST(Log, WritesToAnOpenStreamAndNothingOtherwise) {
  struct OpenLog : Fg_Log {
    OpenLog() : Fg_Log("test") {}
    void open() { stream_ = open_memstream(&text, &size); }
    char* text = nullptr;
    std::size_t size = 0;
  } log;
  const auto write = [&log] {
    log.WriteWelcome();
    log.Func("f");
    log.Info("i");
    log.Info("i", -1);
    log.UsrDbg("%d%s", 2, "u\n");
    log.Error("e");
    log.ErrorInt("e", "d", 3);
    log.ErrorDouble("e", "d", 1 / 3.0);
  };
  write();
  log.open();
  write();
  log.CloseLogFile();
  const std::string dashes(73, '-'), text = log.text;
  EXPECT_TRUE(text.starts_with(dashes + "\nCopyright "));
  EXPECT_NE(text.find("\nContents: Log details for Strandline Dll\n"), std::string::npos);
  EXPECT_EQ(
      text.substr(text.rfind(dashes) + 73),
      "\nStrandlineIV::Info >> i >> -1;\n2u\nStrandlineIV::Error >> e;\n"
      "StrandlineIV::Error >> e >> d >> 3;\nStrandlineIV::Error >> e >> d >> 0.333333333333;\n");
  write();
  std::free(log.text);
}

}  // namespace
