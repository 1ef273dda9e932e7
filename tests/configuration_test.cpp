/// Configuration files through the exports: what a load writes and stores, what a save writes,
/// files edited by hand, files that cannot be read or written.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>

#include "tests/applet_fixture.h"
#include "tests/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using fixture::Applet;
using fixture::kPorts;
using fixture::Lines;
using fixture::takeWrites;

/// A key, its text, and the design writes of loading it, in the order of a file. {p} stands for the
/// port, {w} for a width that differs from port to port.
struct Row {
  const char* key;
  const char* text;
  Lines writes;
  bool read = true;
};

const Row kRows[] = {
    {"FG_TIMEOUT", "500", {"set FG_TIMEOUT[{p}] = 500"}},
    {"FG_GBE_CAMTYPE", "5", {"set Device1_Process{p}_Cam_PixelFormat[{p}] = 5"}},
    {"FG_WIDTH", "{w}", {"set Device1_Process{p}_Buffer_XLength[{p}] = {w}"}},
    {"FG_HEIGHT", "480", {"set Device1_Process{p}_Buffer_YLength[{p}] = 480"}},
    {"FG_XOFFSET", "16", {"set Device1_Process{p}_Buffer_XOffset[{p}] = 16"}},
    {"FG_YOFFSET", "3", {"set Device1_Process{p}_Buffer_YOffset[{p}] = 3"}},
    {"FG_FORMAT", "2", {}},
    {"FG_BITALIGNMENT", "0", {}},
    {"FG_GEN_ENABLE", "1", {"write CamGenEnable{p} = 1"}},
    {"FG_GEN_START", "0", {"write CamGenStart{p} = 0"}},
    {"FG_GEN_WIDTH", "1000", {"write CamGenWidth{p} = 1500", "write CamGenLineWidth{p} = 1515"}},
    {"FG_GEN_HEIGHT", "100", {"write CamGenHeight{p} = 99"}},
    {"FG_GEN_LINE_GAP", "10", {"write CamGenWidth{p} = 1500", "write CamGenLineWidth{p} = 1515"}},
    {"FG_GEN_FREQ", "62.5", {"write CamGenActive{p} = 49", "write CamGenPassive{p} = 49"}},
    {"FG_GEN_ACCURACY", "100", {"write CamGenActive{p} = 49", "write CamGenPassive{p} = 49"}},
    {"FG_GEN_ROLL", "7", {"write CamGenRoll{p} = 7"}},
    {"FG_BAYERINIT",
     "1",
     {"set Device1_Process{p}_Bayerfilter_BayerInit[{p}] = 1",
      "set Device1_Process{p}_White_BayerInit[{p}] = 1"}},
    {"FG_SCALINGFACTOR_BLUE", "0.5", {"set Device1_Process{p}_White_BlueCoefficient[{p}] = 0.5"}},
    {"FG_SCALINGFACTOR_GREEN",
     "1.25",
     {"set Device1_Process{p}_White_GreenCoefficient[{p}] = 1.25"}},
    {"FG_SCALINGFACTOR_RED", "2", {"set Device1_Process{p}_White_RedCoefficient[{p}] = 2"}},
    {"FG_AREATRIGGERMODE", "4", {}},
    {"FG_TRIGGERSTATE",
     "0",
     {"set TriggerCam{p}_TriggerOutput_Select0_Select_Select[{p}] = 3",
      "set TriggerCam{p}_TriggerOutput_Select1_Select_Select[{p}] = 3",
      "set TriggerCam{p}_Downscale_Clear_Mode[{p}] = 2",
      "set TriggerCam{p}_Generators_ClearQueuePulse_Mode[{p}] = 1",
      "set TriggerCam{p}_Generators_EnableQueue_Select[{p}] = 1",
      "set TriggerCam{p}_Generators_Generator_MinimumPeriod_Number[{p}] = 3124991",
      "set TriggerCam{p}_PulseFormGenerators_Enable_Select[{p}] = 1",
      "set TriggerCam{p}_Generators_ClearQueuePulse_Mode[{p}] = 0",
      "set TriggerCam{p}_Generators_ClearDownscale_Mode[{p}] = 2",
      "set Monitoring_CheckForMissingFrame_Cam{p}_ResetMissing_Mode[{p}] = 2",
      "set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator0_ClearDownscale_Mode[{p}] = 2",
      "set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator1_ClearDownscale_Mode[{p}] = 2",
      "set TriggerCam{p}_TriggerCamera_SelectTriggerCamera_Select_Select[{p}] = 1",
      "set TriggerCam{p}_TriggerCamera_SelectTriggerCamera_Polarity_Invert[{p}] = 0",
      "set TriggerCam{p}_TriggerOutput_Select0_Select_Select[{p}] = 3",
      "set TriggerCam{p}_TriggerOutput_Select0_Polarity_Invert[{p}] = 1",
      "set TriggerCam{p}_TriggerOutput_Select1_Select_Select[{p}] = 2",
      "set TriggerCam{p}_TriggerOutput_Select1_Polarity_Invert[{p}] = 0"}},
    {"FG_TRIGGER_FRAMESPERSECOND",
     "20",
     {"set TriggerCam{p}_Generators_Generator_MinimumPeriod_Number[{p}] = 3124991"}},
    {"FG_TRIGGERIN_DEBOUNCE", "0.96", {"set TriggerInput_Debounce8_Prescale_Period[{p}] = 20"}},
    {"FG_TRIGGERIN_SRC", "3", {"set TriggerCam{p}_InputSelect_Select_Select[{p}] = 3"}},
    {"FG_TRIGGERIN_POLARITY", "1", {"set TriggerCam{p}_InputSelect_Polarity_Invert[{p}] = 1"}},
    {"FG_TRIGGERIN_DOWNSCALE", "4", {"set TriggerCam{p}_Downscale_Downscale_Downscale[{p}] = 4"}},
    {"FG_TRIGGERIN_DOWNSCALE_PHASE",
     "2",
     {"set TriggerCam{p}_Downscale_Downscale_SelectedPulse[{p}] = 3"}},
    {"FG_TRIGGERIN_BYPASS_SRC",
     "6",
     {"set TriggerCam{p}_InputSelect_BypassSelect_Select[{p}] = 6"}},
    {"FG_TRIGGER_MULTIPLY_PULSES",
     "3",
     {"set TriggerCam{p}_Generators_Sequence_SelectedPulse[{p}] = 3",
      "set TriggerCam{p}_Generators_Sequence_Downscale[{p}] = 3",
      "set TriggerCam{p}_Generators_ClearDownscale_Mode[{p}] = 2"}},
    {"FG_TRIGGERQUEUE_MODE",
     "1",
     {"set TriggerCam{p}_Generators_Generator_MinimumPeriod_Number[{p}] = 3124991",
      "set TriggerCam{p}_Generators_Queue_QueueFullValue_Number[{p}] = 2040",
      "set TriggerCam{p}_Generators_Queue_QueueEnabled_Select[{p}] = 1"}},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD",
     "100",
     {"set TriggerCam{p}_Hysteresis_OnLevel_Number[{p}] = 100"}},
    {"FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD",
     "50",
     {"set TriggerCam{p}_Hysteresis_OffLevel_Number[{p}] = 50"}},
    {"FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE",
     "3",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator0_Downscale_Downscale[{p}] = 3"}},
    {"FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE",
     "1",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator0_Downscale_SelectedPulse[{p}] = "
      "2"}},
    {"FG_TRIGGER_PULSEFORMGEN0_DELAY",
     "1000",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator0_Delay_Delay[{p}] = 62500"}},
    {"FG_TRIGGER_PULSEFORMGEN0_WIDTH",
     "2000",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator0_Width_Width[{p}] = 125000"}},
    {"FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE",
     "2",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator1_Downscale_Downscale[{p}] = 2"}},
    {"FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE",
     "0",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator1_Downscale_SelectedPulse[{p}] = "
      "1"}},
    {"FG_TRIGGER_PULSEFORMGEN1_DELAY",
     "16",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator1_Delay_Delay[{p}] = 1000"}},
    {"FG_TRIGGER_PULSEFORMGEN1_WIDTH",
     "8",
     {"set TriggerCam{p}_PulseFormGenerators_PulseFormGenerator1_Width_Width[{p}] = 500"}},
    {"FG_CAMERA_ACTION_COMMAND_SOURCE",
     "1",
     {"set TriggerCam{p}_TriggerCamera_SelectTriggerCamera_Select_Select[{p}] = 1",
      "set TriggerCam{p}_TriggerCamera_SelectTriggerCamera_Polarity_Invert[{p}] = 0"}},
    {"FG_TRIGGEROUT_SELECT0",
     "5",
     {"set TriggerCam{p}_TriggerOutput_Select0_Select_Select[{p}] = 3",
      "set TriggerCam{p}_TriggerOutput_Select0_Polarity_Invert[{p}] = 1"}},
    {"FG_TRIGGEROUT_SELECT1",
     "10",
     {"set TriggerCam{p}_TriggerOutput_Select1_Select_Select[{p}] = 2",
      "set TriggerCam{p}_TriggerOutput_Select1_Polarity_Invert[{p}] = 0"}},
    {"FG_TRIGGEROUT_STATS_SOURCE",
     "1",
     {"set TriggerCam{p}_OutputStatistics_Select_Select[{p}] = 1"}},
    {"FG_TRIGGER_OUTPUT_EVENT_SELECT",
     "1",
     {"set TriggerCam{p}_OutputEvent_Select_Select[{p}] = 1"}},
    {"FG_DIGIO_OUTPUT", "3", {}, false},
};

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
}

std::string forPort(std::string text, unsigned port) {
  replaceAll(text, "{p}", std::to_string(port));
  replaceAll(text, "{w}", std::to_string(640 + 8 * port));
  return text;
}

/// The whole file that the rows describe.
std::string fileText() {
  std::string text =
      "[Kamerasektion]\n\nConfigFileVersion=2.0;\nHersteller='Brightfold';\nTyp='Velmora';\n"
      "Version='2.3';\nLoadAppletId=0;\nAktivePort=0;\n";
  for (unsigned port = 0; port < kPorts; ++port) {
    text += std::string("\n[Port ") + static_cast<char>('A' + port) + "]\n";
    for (const Row& row : kRows)
      text += std::string(row.key) + "=" + forPort(row.text, port) + ";\n";
  }
  return text;
}

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return (std::ostringstream() << file.rdbuf()).str();
}

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// Values of all rows on a port, as a get sees them.
std::vector<double> valuesOf(Applet& applet, unsigned port) {
  std::vector<double> values;
  for (const Row& row : kRows) {
    const int id = Fg_getParameterIdByName(applet.fg(), row.key);
    const RegisterInfo* node = applet.node(id, port);
    values.push_back(node->kind == REGISTER_INFO_DOUBLE ? applet.real(id, port).value
                                                        : applet.word(id, port).value);
  }
  return values;
}

TEST(Configuration, ALoadAppliesEveryValueInOrderAndASaveWritesItBack) {
  const TemporaryDirectory directory;
  writeFile(directory / "in.mcf", fileText());
  Applet applet;
  takeWrites();
  ASSERT_EQ(Fg_loadConfig(applet.fg(), (directory / "in.mcf").c_str()), 0);
  EXPECT_EQ(applet.lastError(), 0);
  Lines expected;
  for (unsigned port = 0; port < kPorts; ++port)
    for (const Row& row : kRows)
      for (const std::string& line : row.writes) expected.push_back(forPort(line, port));
  EXPECT_EQ(takeWrites(), expected);
  for (unsigned port = 0; port < kPorts; ++port) {
    std::vector<double> values;
    for (const Row& row : kRows) values.push_back(std::stod(forPort(row.text, port)));
    EXPECT_EQ(valuesOf(applet, port), values) << "port " << port;
  }

  ASSERT_EQ(Fg_saveConfig(applet.fg(), (directory / "out.mcf").c_str()), 0);
  EXPECT_EQ(contentOf(directory / "out.mcf"), fileText());
  EXPECT_EQ(takeWrites(), Lines{});
}

/// Replaces the first occurrence after the start of a section, which has to exist.
std::function<std::string(std::string)> edit(const std::string& section, const std::string& from,
                                             const std::string& to) {
  return [=](std::string text) {
    const auto at = text.find(from, text.find(section));
    return at == std::string::npos ? throw std::logic_error(from)
                                   : text.replace(at, from.size(), to);
  };
}

std::string withCarriageReturns(std::string text) {
  replaceAll(text, "\n", "\r\n");
  return text;
}

/// What a load of an edited file yields: its result, how many ports were reached, and the width
/// that the port C then has.
struct Edited {
  const char* what;
  std::function<std::string(std::string)> edit;
  int result;
  unsigned widthOfC;
};

const Edited kEdited[] = {
    {"no semicolons", [](std::string t) { return replaceAll(t, ";", ""), t; }, 0, 656},
    {"comments", edit("[Port C]", "FG_WIDTH", "# wider: FG_WIDTH=1;\n// FG_WIDTH\nFG_WIDTH"), 0,
     656},
    {"doubled key", edit("[Port C]", "FG_WIDTH=656;", "FG_WIDTH=660;\nFG_WIDTH=700;"), 0, 660},
    {"quoted value", edit("[Port C]", "656", "'660'"), 0, 660},
    {"blanks before the value", edit("[Port C]", "656", "   660 "), 0, 660},
    {"key in a later section", edit("[Port C]", "FG_WIDTH=656;\n", ""), 0, 664},
    {"indented key, found later", edit("[Port C]", "FG_WIDTH", " FG_WIDTH"), 0, 664},
    {"longer key", edit("[Port C]", "FG_WIDTH", "FG_WIDTHX"), 0, 664},
    {"another order",
     edit("[Port C]", "FG_WIDTH=656;\nFG_HEIGHT=480;", "FG_HEIGHT=480;\nFG_WIDTH=656;"), 0, 656},
    {"long line", edit("[Port C]", "FG_WIDTH", std::string(600, 'x') + "\nFG_WIDTH"), 0, 656},
    {"carriage returns in a port", edit("[Port C]", "FG_WIDTH=656;\n", "FG_WIDTH=656;\r\n"), 0,
     656},
    {"refused value, kept by the first pass", edit("[Port C]", "656", "657"), 0, 657},
    {"no number", edit("[Port C]", "656", "wide"), 0, 0},
    {"number and text", edit("[Port C]", "656", "660px"), 0, 660},
    {"value Error", edit("[Port C]", "656", "Error"), -5000, 1024},
    {"last section lacks a key", edit("[Port D]", "FG_WIDTH=664;\n", ""), -5000, 656},
    {"no section for D", edit("[Port D]", "[Port D]", "[Port E]"), -5000, 656},
    {"no section for C", edit("[Port C]", "[Port C]", "[Port E]"), -5000, 1024},
    {"carriage returns everywhere", withCarriageReturns, -5000, 1024},
    {"another applet", edit("", "Typ='Velmora'", "Typ='Velmora2'"), -5000, 1024},
    {"no vendor", edit("", "Hersteller", "Maker"), -5000, 1024},
    {"another vendor", edit("", "Brightfold", "Somebody"), 0, 656},
    {"no active port", edit("", "AktivePort=0;\n", ""), -5000, 1024},
    {"empty", [](const std::string&) { return std::string(); }, -5000, 1024},
    {"binary", [](std::string t) { return std::string(70000, '\0') + t.substr(0, 0) + "\xFF\xFE"; },
     -5000, 1024},
    {"cut in the middle", [](std::string t) { return t.substr(0, t.size() / 2); }, -5000, 1024},
};

TEST(Configuration, TakesOrRefusesFilesEditedByHand) {
  const TemporaryDirectory directory;
  const std::string file = directory / "edited.mcf";
  for (const Edited& edited : kEdited) {
    SCOPED_TRACE(edited.what);
    writeFile(file, edited.edit(fileText()));
    Applet applet;
    EXPECT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), edited.result);
    EXPECT_EQ(applet.lastError(), edited.result);
    EXPECT_EQ(applet.word(FG_WIDTH, 2).value, edited.widthOfC);
  }
}

TEST(Configuration, AMissingKeyLeavesWhatWasAppliedBefore) {
  const TemporaryDirectory directory;
  const std::string file = directory / "missing.mcf";
  writeFile(file, edit("[Port D]", "FG_GEN_ROLL=7;\n", "")(fileText()));
  Applet applet;
  takeWrites();
  EXPECT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), -5000);
  for (const std::string& line : takeWrites())
    EXPECT_EQ(line.find("[3]"), std::string::npos) << line;
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 2).value, 7u);
  // Of the port without the key, the values up to it are stored, and none is written.
  EXPECT_EQ(applet.word(FG_GEN_ACCURACY, 3).value, 100u);
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 3).value, 0u);
  EXPECT_EQ(applet.word(FG_BAYERINIT, 3).value, 2u);
}

TEST(Configuration, RefusedAndFailingValuesDoNotEndALoad) {
  const TemporaryDirectory directory;
  const std::string file = directory / "refused.mcf";
  writeFile(file, edit("[Port B]", "FG_GEN_ROLL=7", "FG_GEN_ROLL=700")(fileText()));
  Applet applet;
  board::failNamed("CamGenHeight1", -9);
  EXPECT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), 0);
  board::clearFaults();
  EXPECT_EQ(applet.word(FG_GEN_ROLL, 1).value, 700u);
  EXPECT_EQ(board::value(applet.device(), "CamGenRoll1", 0), 0);
  EXPECT_EQ(board::value(applet.device(), "CamGenHeight1", 0), 1023);
  EXPECT_EQ(board::value(applet.device(), "CamGenRoll2", 0), 7);
}

TEST(Configuration, TellsFilesThatCannotBeReadOrWritten) {
  const TemporaryDirectory directory;
  fs::create_directory(directory / "directory.mcf");
  fs::create_symlink("/dev/null", directory / "null.mcf");
  ASSERT_EQ(mkfifo((directory / "pipe.mcf").c_str(), 0600), 0);
  writeFile(directory / "settings.txt", fileText());
  const std::string none = directory / "none.mcf";
  const std::string unreachable = directory / "nowhere/a.mcf";
  struct Case {
    std::string name;
    int load, loadError, save;
  };
  const Case cases[] = {
      {none, -2076, -5000, 0},
      {unreachable, -2076, -5000, -5001},
      {directory / "settings.txt", -2076, -5000, -5001},
      {directory / "directory.mcf", -5000, -5000, -5001},
      {directory / "null.mcf", -2076, -5000, -5001},
      {directory / "pipe.mcf", -2076, -5000, -5001},
  };
  Applet applet;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Fg_loadConfig(applet.fg(), c.name.c_str()), c.load);
    EXPECT_EQ(applet.lastError(), c.loadError);
    EXPECT_EQ(Fg_saveConfig(applet.fg(), c.name.c_str()), c.save);
    EXPECT_EQ(applet.lastError(), c.save);
  }
  EXPECT_EQ(Fg_loadConfig(applet.fg(), nullptr), -2076);
  EXPECT_EQ(applet.lastError(), -5000);
  EXPECT_EQ(Fg_saveConfig(applet.fg(), nullptr), -5001);
  EXPECT_EQ(contentOf(directory / "settings.txt"), fileText());
}

/// A save beside what a directory holds already.
class Saved : public testing::Test {
 protected:
  Saved() {
    setUpFile("a.mcf", 0640);
    setUpFile("read only.mcf", 0444);
    fs::create_symlink("a.mcf", directory_ / "link.mcf");
    fs::create_symlink("new.mcf", directory_ / "to nothing.mcf");
    fs::permissions(directory_ / "", fs::perms(0755));
  }
  void setUpFile(const std::string& name, int mode) const {
    writeFile(directory_ / name, "old");
    fs::permissions(directory_ / name, fs::perms(mode));
  }
  int save(const std::string& name) {
    return Fg_saveConfig(applet_.fg(), (directory_ / name).c_str());
  }
  /// Whether it has the size of a whole configuration.
  bool whole(const std::string& name) const { return fs::file_size(directory_ / name) > 5000; }
  bool old(const std::string& name) const { return contentOf(directory_ / name) == "old"; }
  fs::perms mode(const std::string& name) const {
    return fs::status(directory_ / name).permissions();
  }
  /// Names in the directory.
  std::ptrdiff_t names() const {
    return std::distance(fs::directory_iterator(directory_ / ""), {});
  }

  TemporaryDirectory directory_;
  Applet applet_;
};

TEST_F(Saved, TakesThePlaceOfTheFileBehindALink) {
  fs::create_hard_link(directory_ / "a.mcf", directory_ / "backup.mcf");
  EXPECT_EQ(save("link.mcf"), 0);
  EXPECT_TRUE(whole("a.mcf") && old("backup.mcf"));
  EXPECT_TRUE(fs::is_symlink(directory_ / "link.mcf"));
  EXPECT_EQ(mode("a.mcf"), fs::perms(0640));
  EXPECT_EQ(Fg_loadConfig(applet_.fg(), (directory_ / "a.mcf").c_str()), 0);

  EXPECT_EQ(save("to nothing.mcf"), 0);
  EXPECT_TRUE(whole("new.mcf") && fs::is_symlink(directory_ / "to nothing.mcf"));
  const mode_t mask = umask(027);
  EXPECT_EQ(save("newer.mcf"), 0);
  umask(mask);
  EXPECT_EQ(mode("newer.mcf"), fs::perms(0640));
  EXPECT_EQ(names(), 7);
}

TEST_F(Saved, LeavesTheOldFileWhenTheDiskIsFull) {
  signal(SIGXFSZ, SIG_IGN);  // Lets a write beyond the limit fail.
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit small = {1000, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  for (const char* name : {"a.mcf", "link.mcf", "newer.mcf"}) {
    EXPECT_EQ(save(name), -5001);
    EXPECT_EQ(applet_.lastError(), -5001);
  }
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_TRUE(old("a.mcf"));
  EXPECT_EQ(names(), 4);
}

TEST_F(Saved, KeepsToPermissions) {
  constexpr uid_t kNobody = 65534;
  const bool privileged = geteuid() == 0;
  fs::permissions(directory_ / "a.mcf", fs::perms(0666));
  fs::permissions(directory_ / "", fs::perms(0777));
  ASSERT_TRUE(!privileged || seteuid(kNobody) == 0);
  EXPECT_EQ(save("read only.mcf"), -5001);
  EXPECT_EQ(save("a.mcf"), 0);  // Another's file, if privileged: a new one would be nobody's.
  EXPECT_TRUE(old("read only.mcf") && whole("a.mcf"));
  ASSERT_TRUE(!privileged || seteuid(0) == 0);
  writeFile(directory_ / "a.mcf", "old");
  fs::permissions(directory_ / "", fs::perms(0555));
  ASSERT_TRUE(!privileged || seteuid(kNobody) == 0);
  EXPECT_EQ(save("newer.mcf"), -5001);
  EXPECT_EQ(save("a.mcf"), 0);  // Overwritten: the directory takes no new file.
  ASSERT_TRUE(!privileged || seteuid(0) == 0);
  EXPECT_TRUE(whole("a.mcf"));
  EXPECT_EQ(names(), 4);
  struct stat status = {};
  EXPECT_TRUE(stat((directory_ / "a.mcf").c_str(), &status) == 0 && status.st_uid == getuid());
  fs::permissions(directory_ / "", fs::perms(0755));
}

TEST(Configuration, NumbersFollowTheLocaleOfTheProcess) {
  setenv("LOCPATH", VELMORA_LOCALES, 1);
  const TemporaryDirectory directory;
  const std::string file = directory / "comma.mcf";
  Applet applet;
  ASSERT_EQ(applet.set(FG_GEN_FREQ, 62.5, 3), 0);
  ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
  ASSERT_EQ(Fg_saveConfig(applet.fg(), file.c_str()), 0);
  EXPECT_NE(contentOf(file).find("FG_GEN_FREQ=62,5;"), std::string::npos);
  ASSERT_EQ(applet.set(FG_GEN_FREQ, 40.0, 3), 0);
  ASSERT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), 0);
  EXPECT_EQ(applet.real(FG_GEN_FREQ, 3).value, 62.5);
  // The document never does.
  std::size_t size = 0;
  Fg_getParameterInfoXML(applet.fg(), 3, nullptr, &size);
  std::string document(size, '\0');
  ASSERT_EQ(Fg_getParameterInfoXML(applet.fg(), 3, document.data(), &size), 0);
  EXPECT_NE(document.find("<Max>3.024</Max>"), std::string::npos);
}

TEST(Configuration, ASaveLeavesOutWhatCannotBeRead) {
  const TemporaryDirectory directory;
  const std::string file = directory / "partial.mcf";
  Applet applet;
  board::failNamed("Device1_Process4_Trigger_TriggerInput_Debounce8_Prescale_Period", -9);
  EXPECT_EQ(Fg_saveConfig(applet.fg(), file.c_str()), 0);
  board::clearFaults();
  EXPECT_EQ(contentOf(file).find("FG_TRIGGERIN_DEBOUNCE"), std::string::npos);
  EXPECT_NE(contentOf(file).find("FG_TRIGGERIN_SRC=0;"), std::string::npos);
  EXPECT_EQ(Fg_loadConfig(applet.fg(), file.c_str()), -5000);
}

TEST(Configuration, EveryExampleLoads) {
  int examples = 0;
  for (const auto& entry : fs::directory_iterator(VELMORA_EXAMPLES)) {
    if (entry.path().extension() != ".mcf") continue;
    SCOPED_TRACE(entry.path());
    ++examples;
    Applet applet;
    ASSERT_EQ(Fg_loadConfig(applet.fg(), entry.path().c_str()), 0);
    // Every value was taken: what is saved again is what the example says.
    const TemporaryDirectory directory;
    ASSERT_EQ(Fg_saveConfig(applet.fg(), (directory / "again.mcf").c_str()), 0);
    EXPECT_EQ(contentOf(directory / "again.mcf"), contentOf(entry.path()));
  }
  EXPECT_GE(examples, 5);
}

}  // namespace
