/// Configuration files through the exports: what a load writes and stores, what a save writes,
/// what is refused. How files edited by hand fare, links and full disks, is told in the tool's
/// transcripts.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <iterator>

#include "tests/applet_test.h"

namespace {

using namespace fixture;
namespace fs = std::filesystem;

constexpr const char* kSettings = TEST_DATA "/settings.mcf";

class Configuration : public testing::Test {
 protected:
  int load(const std::string& name) { return Fg_loadConfig(applet.fg(), name.c_str()); }
  int save(const std::string& name) { return Fg_saveConfig(applet.fg(), name.c_str()); }
  /// Loads the settings with a text replaced; in the last section, where it has to exist.
  int loadWith(const std::string& from, const std::string& to) {
    std::string text = contentOf(kSettings);
    std::ofstream(file) << text.replace(text.rfind(from), from.size(), to);
    return load(file);
  }

  const TemporaryDirectory directory;
  const std::string file = directory / "a.mcf";
  Applet applet;
};

TEST_F(Configuration, ALoadAppliesEveryValueInOrder) {
  takeAccesses();
  int descriptors = 0;
  board::observe([&](const board::Access&) {
    // A protected file can be loaded: it is open for reading only.
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
      std::error_code gone;
      if (fs::read_symlink(entry.path(), gone) != kSettings) continue;
      ++descriptors;
      EXPECT_EQ(fcntl(std::stoi(entry.path().filename()), F_GETFL) & O_ACCMODE, O_RDONLY);
    }
  });
  ASSERT_EQ(load(kSettings), VELMORA_OK);
  board::observe({});
  EXPECT_GT(descriptors, 0);
  EXPECT_EQ(applet.lastError(), VELMORA_OK);
  Lines writes = takeAccesses();
  std::erase_if(writes, [](const std::string& line) { return line.starts_with("get "); });
  Lines expected = linesOf(contentOf(TEST_DATA "/settings_writes.txt"));
  expected.erase(expected.begin());  // A comment.
  EXPECT_EQ(writes, expected);
}

/// Every value was taken: what is saved again is what the file says.
TEST_F(Configuration, ASaveWritesBackWhatWasLoaded) {
  std::vector<fs::path> files = {kSettings};
  for (const auto& entry : fs::directory_iterator(VELMORA_EXAMPLES))
    if (entry.path().extension() == ".mcf") files.push_back(entry.path());
  EXPECT_GT(files.size(), 5u);
  for (const auto& each : files) {
    Applet fresh;
    ASSERT_EQ(Fg_loadConfig(fresh.fg(), each.c_str()), VELMORA_OK) << each;
    takeAccesses();
    ASSERT_EQ(Fg_saveConfig(fresh.fg(), file.c_str()), VELMORA_OK);
    EXPECT_EQ(contentOf(file), contentOf(each)) << each;
    for (const std::string& access : takeAccesses())
      EXPECT_TRUE(access.starts_with("get ")) << access;
  }
}

TEST_F(Configuration, AMissingKeyLeavesWhatWasAppliedBefore) {
  takeAccesses();
  EXPECT_EQ(loadWith("FG_GEN_ROLL=7;\n", ""), VELMORA_CONFIG_NOT_LOADED);
  for (const std::string& line : takeAccesses())
    EXPECT_EQ(line.find("[3]"), std::string::npos) << line;
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 2).value, 7u);
  // Of the port without the key, the values up to it are stored, and none is written.
  EXPECT_EQ(applet.word(FG_GEN_ACCURACY, 3).value, 100u);
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 3).value, 0u);
  EXPECT_EQ(applet.word(FG_BAYERINIT, 3).value, 2u);
}

/// The rate is checked against the width that the design still has.
TEST_F(Configuration, LoadingAGoodFileAgainSettlesWhatWasBeforeIt) {
  const char* const kPeriod =
      "Device1_Process4_Trigger_TriggerCam0_Generators_Generator_MinimumPeriod_Number";
  ASSERT_EQ(applet.set(FG_TRIGGER_FRAMESPERSECOND, 1000.0), VELMORA_OK);
  ASSERT_EQ(save(file), VELMORA_OK);
  ASSERT_EQ(applet.set(FG_TRIGGER_FRAMESPERSECOND, 8.0), VELMORA_OK);
  ASSERT_EQ(applet.set(FG_TRIGGER_PULSEFORMGEN0_WIDTH, 50000.0), VELMORA_OK);
  for (const double period : {7812490.0, 62490.0}) {
    EXPECT_EQ(load(file), VELMORA_OK);
    EXPECT_NEAR(applet.real(FG_TRIGGER_FRAMESPERSECOND).value, 1000.0, 1e-9);
    EXPECT_NEAR(board::value(applet.device(), kPeriod, 0), period, 2);
  }
}

TEST_F(Configuration, WhatCannotBeReadOrWrittenIsRecorded) {
  EXPECT_EQ(Fg_loadConfig(applet.fg(), nullptr), VELMORA_NO_CONFIG_FILE);
  EXPECT_EQ(applet.lastError(), VELMORA_CONFIG_NOT_LOADED);
  EXPECT_EQ(Fg_saveConfig(applet.fg(), nullptr), VELMORA_CONFIG_NOT_SAVED);
  EXPECT_EQ(applet.lastError(), VELMORA_CONFIG_NOT_SAVED);
  EXPECT_EQ(save(file), VELMORA_OK);
  EXPECT_EQ(applet.lastError(), VELMORA_OK);
}

TEST_F(Configuration, ASaveKeepsToPermissions) {
  const bool privileged = geteuid() == 0;
  const auto become = [&](uid_t user) { return !privileged || seteuid(user) == 0; };
  const auto old = [&](const std::string& name, int mode) {
    std::ofstream(name) << "old";
    fs::permissions(name, fs::perms(mode));
  };
  const auto whole = [&] { return fs::file_size(file) > 5000; };
  const std::string all = directory / "", readOnly = directory / "b.mcf";
  constexpr uid_t kNobody = 65534;
  const int unused = dup(STDERR_FILENO);
  close(unused);
  old(file, 0666);
  old(readOnly, 0444);
  fs::permissions(all, fs::perms(0777));
  ASSERT_TRUE(become(kNobody));
  EXPECT_EQ(save(readOnly), -5001);
  EXPECT_EQ(save(file), 0);  // Another's file, if privileged: a new one would be nobody's.
  EXPECT_TRUE(contentOf(readOnly) == "old" && whole());
  ASSERT_TRUE(become(0));
  old(file, 0666);
  fs::permissions(all, fs::perms(0555));
  ASSERT_TRUE(become(kNobody));
  EXPECT_EQ(save(directory / "newer.mcf"), -5001);
  EXPECT_EQ(save(file), 0);  // Overwritten: the directory takes no new file.
  ASSERT_TRUE(become(0));
  EXPECT_TRUE(whole());
  EXPECT_EQ(std::distance(fs::directory_iterator(all), {}), 2);
  EXPECT_EQ(close(unused), -1) << "left open";
  struct stat status = {};
  EXPECT_TRUE(stat(file.c_str(), &status) == 0 && status.st_uid == getuid());
  fs::permissions(all, fs::perms(0755));
}

TEST_F(Configuration, NumbersFollowTheLocaleOfTheProcess) {
  const EnvironmentVariable path("LOCPATH", VELMORA_LOCALES);
  ASSERT_EQ(applet.set(FG_GEN_FREQ, 62.5, 3), VELMORA_OK);
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
  EXPECT_EQ(save(file), VELMORA_OK);
  EXPECT_NE(contentOf(file).find("FG_GEN_FREQ=62,5;"), std::string::npos);
  EXPECT_EQ(applet.set(FG_GEN_FREQ, 40.0, 3), VELMORA_OK);
  EXPECT_EQ(load(file), VELMORA_OK);
  EXPECT_EQ(applet.real(FG_GEN_FREQ, 3).value, 62.5);
  // A locale called English comes first, if there is one.
  fs::create_directory_symlink(VELMORA_LOCALES "/de_DE.UTF-8", directory / "English");
  setenv("LOCPATH", (directory / "").c_str(), 1);
  for (const bool saves : {true, false}) {
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(saves ? save(file) : load(file), VELMORA_OK);
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "English");
  }
  // The document never does.
  EXPECT_NE(document(applet, 3).find("<Max>3.024</Max>"), std::string::npos);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
