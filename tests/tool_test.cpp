/// The tool `velmora`, run as a user runs it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/temporary_directory.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Matcher;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

std::string contentOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeText(const std::string& file, const std::string& content) {
  std::ofstream(file, std::ios::binary) << content;
}

/// Without the lines that contain `text`.
std::string without(const std::string& content, const std::string& text) {
  std::istringstream lines(content);
  std::string kept;
  for (std::string line; std::getline(lines, line);)
    if (line.find(text) == std::string::npos) kept += line + '\n';
  return kept;
}

std::string replaced(std::string content, const std::string& from, const std::string& to) {
  const auto at = content.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return at == std::string::npos ? content : content.replace(at, from.size(), to);
}

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

/// The sanitizers open libraries for the tool and do not know where it looks for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kToolFindsLibraries = false;
#else
constexpr bool kToolFindsLibraries = true;
#endif

struct Installation {
  std::string tool = TOOL;
  std::string libraries = LIBRARIES;
  std::string otherLibraries = {};  ///< Directory on the loader's path.
};

class ToolTest : public testing::Test {
 protected:
  /// Runs the tool in a directory of the test's own, with `environment` as in "NAME=value ".
  Outcome run(const std::string& arguments, const std::string& environment = {},
              const Installation& installation = {}) const {
    std::string path = installation.otherLibraries;
    if (!kToolFindsLibraries) path += (path.empty() ? "" : ":") + installation.libraries;
    const std::string command = "cd '" + directory_ / "" + "' && >.out 2>.err </dev/null " +
                                environment + "LD_LIBRARY_PATH='" + path + "' '" +
                                installation.tool + "' " + arguments;
    const int result = std::system(command.c_str());
    return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, contentOf(directory_ / ".out"),
            contentOf(directory_ / ".err")};
  }

  /// Runs the tool for a file that a test needs.
  void prepare(const std::string& arguments) const { ASSERT_EQ(run(arguments).status, 0); }

  TemporaryDirectory directory_;
};

struct Row {
  const char* arguments;
  Matcher<std::string> out;
  Matcher<std::string> err = IsEmpty();
  int status = 0;
};

class ToolRows : public ToolTest {
 protected:
  void check(const std::vector<Row>& rows) const {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.arguments);
      const Outcome outcome = run(row.arguments);
      EXPECT_EQ(outcome.status, row.status);
      EXPECT_THAT(outcome.out, row.out);
      EXPECT_THAT(outcome.err, row.err);
    }
  }
};

TEST_F(ToolRows, ParametersAreReadAndSet) {
  check({
      {"set FG_WIDTH@1=1000 --trace", "FG_WIDTH@1 = 1000\n",
       "set Device1_Process1_Buffer_XLength[1] = 1000\n"},
      {"--trace set FG_WIDTH@1=0x3E8", "FG_WIDTH@1 = 1000\n",
       "set Device1_Process1_Buffer_XLength[1] = 1000\n"},
      {"set FG_GEN_ENABLE@3=FG_GENERATOR FG_GEN_FREQ@3=62.5 FG_SCALINGFACTOR_RED=2",
       "FG_GEN_ENABLE@3 = 1 (FG_GENERATOR)\nFG_GEN_FREQ@3 = 62.5\nFG_SCALINGFACTOR_RED@0 = 2\n"},
      {"get FG_NR_OF_DMAS FG_HAP_FILE@1 FG_CAM_PORT@3 FG_FORMAT",
       "FG_NR_OF_DMAS@0 = 4\nFG_HAP_FILE@1 = Velmora.hap\nFG_CAM_PORT@3 = 3\n"
       "FG_FORMAT@0 = 2 (FG_COL24)\n"},
      {"get FG_WIDTH FG_WIDTH@2 --set FG_WIDTH@2=8 --set FG_WIDTH=12",
       "FG_WIDTH@0 = 12\nFG_WIDTH@2 = 8\n"},
      {"get FG_HEIGHT --trace=all", "FG_HEIGHT@0 = 1024\n",
       AllOf(StartsWith("call HapLoadDesignFromBuffer(2662941 bytes)\n"),
             HasSubstr("\nset Device1_Process3_Buffer_YLength[3] = 1024\n"),
             HasSubstr("\ncall Fg_FreeGrabber()\n"))},
      {"get FG_HEIGHT --trace=all --no-defaults", "FG_HEIGHT@0 = 1024\n",
       AllOf(HasSubstr("flags 1"), Not(HasSubstr("Buffer_YLength[3] =")))},
      {"set FG_CAMSTATUS=1 --log 0", IsEmpty(),
       HasSubstr("trying to set read-only SDK parameter 'FG_CAMSTATUS' on process 0!"), 1},
  });
}

TEST_F(ToolTest, DirectAccessWhenItIsEnabled) {
  const std::string enabled = "KORV_ENABLE_DRA=1 KORV_ENABLE_DKTA=1 ";
  const std::string design = "DKTA_Device1_Process1_";
  const Outcome set = run("set DRA_CamGenWidth1=0x1F " + design + "Cam_PixelFormat@1=MONO12 " +
                              design + "White_RedCoefficient@1=0.5 --trace",
                          enabled);
  EXPECT_EQ(set.out, "DRA_CamGenWidth1@0 = 31\n" + design + "Cam_PixelFormat@1 = 4 (MONO12)\n" +
                         design + "White_RedCoefficient@1 = 0.5\n");
  for (const char* access : {"write CamGenWidth1 = 31\n",
                             "\nset Device1_Process1_Cam_PixelFormat[1] = 4\n"
                             "set Device1_Process1_White_RedCoefficient[1] = 0.5\n"
                             "read CamGenWidth1 -> 31\n"})
    EXPECT_THAT(set.err, HasSubstr(access));
  const Outcome list = run("list --port 0", enabled);
  EXPECT_EQ(list.status, 0) << list.err;
  EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 1 + 85 + 32 + 258);
  EXPECT_EQ(run("get DRA_CamGenWidth1").status, 1);
}

TEST_F(ToolRows, RefusalsNameTheParameterAndTheReason) {
  const std::string range = "value out of range or not one of the allowed values";
  check({
      {"set FG_WIDTH=1000 FG_WIDTH@1=7081 FG_WIDTH@2=1000", "FG_WIDTH@0 = 1000\n",
       "velmora: FG_WIDTH@1: refused: -7080, value breaks a step rule\n", 1},
      {"set FG_HEIGHT@3=65536", IsEmpty(), "velmora: FG_HEIGHT@3: refused: -6000, " + range + "\n",
       1},
      {"set FG_GEN_FREQ=nan", IsEmpty(), "velmora: FG_GEN_FREQ@0: refused: -6000, " + range + "\n",
       1},
      {"set FG_CAMSTATUS=1", IsEmpty(),
       "velmora: FG_CAMSTATUS@0: refused: -12, read-only parameter, or a function that the runtime "
       "lacks\n",
       1},
      {"set FG_WIDTH=4294967296", IsEmpty(),
       "velmora: FG_WIDTH@0: 4294967296 does not fit into 32 bits\n", 1},
      {"set FG_WIDTH=8.5", IsEmpty(),
       "velmora: FG_WIDTH@0: '8.5' is neither a whole number nor a value name\n", 1},
      {"set FG_GEN_ENABLE=fg_on", IsEmpty(), HasSubstr("'fg_on' is neither"), 1},
      {"get FG_WIDHT FG_WIDTH", "FG_WIDTH@0 = 1024\n",
       "velmora: FG_WIDHT: -2070, no such parameter, port, name, index or string\n", 1},
      {"get FG_WIDTH@4", IsEmpty(), "velmora: FG_WIDTH@4: no such port; ports are 0 to 3\n", 1},
      {"set FG_WIDTH@-1=8", IsEmpty(), HasSubstr("no such port"), 1},
      {"set FG_WIDTH", IsEmpty(), HasSubstr("not of the form NAME[@PORT]=VALUE"), 1},
      {"list --set FG_X=1", IsEmpty(), StartsWith("velmora: FG_X: -2070, "), 1},
  });
}

TEST_F(ToolRows, BadCommandLinesAreToldAndEndWithOne) {
  const auto told = [](const std::string& what) {
    return AllOf(StartsWith("velmora: "), HasSubstr(what), HasSubstr("velmora --help"));
  };
  check({
      {"", IsEmpty(), told("a command is required"), 1},
      {"aquire --port 0", IsEmpty(), told("no such command: aquire"), 1},
      {"list events", IsEmpty(), told("events"), 1},
      {"list --prot 1", IsEmpty(), told("--prot"), 1},
      {"list --port 4", IsEmpty(), told("--port: Value 4 not in range 0 to 3"), 1},
      {"get", IsEmpty(), told("required"), 1},
      {"acquire --port 0 --count 0", IsEmpty(), told("--count"), 1},
      {"acquire --port 0 --count ten", IsEmpty(), told("--count"), 1},
      {"list --trace=none", IsEmpty(), told("--trace"), 1},
      {"list --log 8", IsEmpty(), told("--log"), 1},
      {"list --board none.design", IsEmpty(), told("none.design"), 1},
      {"--help", AllOf(HasSubstr("acquire"), HasSubstr("--trace"))},
      {"acquire --help", HasSubstr("--timeout")},
      {"xml >/dev/full", IsEmpty(), "velmora: cannot write the output\n", 1},
  });
}

TEST_F(ToolTest, InfoTellsAllOfTheApplet) {
  const Outcome info = run("info --icon icon.png");
  EXPECT_EQ(info.status, 0) << info.err;
  for (const char* line :
       {"0x1050  name          Velmora\n", "0x1060  version       2.1.2.3\n",
        "0x0412  design image  2662941 bytes\n", "0x0880  board type    3652\n",
        "0x1030  device        none\n", "0x0800                131073\n",
        "0x1230   0       1       2       3\n", "0x1260   8       8       8       8\n",
        "\nMONO14               7\n", "\nNOT_INPUT_BYPASS     11\n"}) {
    EXPECT_THAT(info.out, HasSubstr(line));
  }
  const std::string names = info.out.substr(info.out.find("value name"));
  EXPECT_EQ(std::count(names.begin(), names.end(), '\n'), 1 + 49);
  EXPECT_THAT(contentOf(directory_ / "icon.png"), StartsWith("\x89PNG\r\n"));
  EXPECT_EQ(fs::file_size(directory_ / "icon.png"), 1872u);
}

TEST_F(ToolRows, ListsAndDescriptions) {
  check({
      {"list --port 2", AllOf(HasSubstr("\n9   FG_NR_OF_PROCESSES  "),
                              HasSubstr("  3070    uint       read        4\n"),
                              HasSubstr("  30106   double     read/write  40\n"),
                              HasSubstr("\n84  FG_DIGIO_OUTPUT  "))},
      {"describe FG_XOFFSET@1 --set FG_WIDTH@1=1000",
       AllOf(StartsWith("FG_XOFFSET@1  \"XOffset\"\n"),
             HasSubstr("  range   0 to 7184 pixel, step 4\n"), HasSubstr("  group   ROI\n"),
             HasSubstr("offset of the acquisition ROI"))},
      {"describe FG_TRIGGERIN_DEBOUNCE --port 2",
       AllOf(StartsWith("FG_TRIGGERIN_DEBOUNCE@2"),
             HasSubstr("0.096 to 3.024 \xC2\xB5s, step 0.048\n"),
             HasSubstr("Trigger / Trigger Input / External"))},
      {"describe FG_AREATRIGGERMODE@3", HasSubstr("\n    3  ATM_SYNCHRONIZED  Synchronized\n")},
      {"describe FG_NR_OF_DMAS", HasSubstr("  kind   forwarded\n  value  4\n")},
      {"describe",
       AllOf(StartsWith("port 0\n  Camera\n    FG_GBE_CAMTYPE \"Input Format\": 0 MONO8, "),
             HasSubstr("\n  ROI\n    FG_WIDTH \"Width\": 8 to 8192 pixel, step 4; read/write\n"),
             HasSubstr("\n    Queue\n      FG_TRIGGERQUEUE_MODE "),
             HasSubstr(": 1 ATM_GENERATOR, 2 ATM_EXTERNAL, 4 ATM_SOFTWARE; read/write\n"))},
      {"events", AllOf(HasSubstr("0x0000000000000002  FG_START_OF_FRAME_CAM_PORT_B\n"),
                       MatchesRegex("(.*\n){45}"))},
  });
}

TEST_F(ToolTest, XmlIsWrittenByteForByte) {
  const Outcome printed = run("xml --port 2");
  EXPECT_EQ(run("xml --port 2 -o port2.xml").status, 0);
  const std::string document = contentOf(directory_ / "port2.xml");
  EXPECT_EQ(printed.out, document);
  EXPECT_THAT(document, AllOf(StartsWith("<?xml"), HasSubstr("FG_WIDTH"), Not(HasSubstr("\xC2"))));
  EXPECT_EQ(run("xml -o none/port.xml").err,
            "velmora: none/port.xml: cannot write: No such file or directory\n");
}

TEST_F(ToolRows, AcquiresOnSeveralPortsAtATime) {
  check({
      {"acquire --port 0 1 --port 3 --count 2",
       AllOf(MatchesRegex("port 0: .*/2  port 1: .*/2  port 3: .*/2\n"
                          "(.*\n)*port 0: 2 pictures in [0-9.]+ s, [0-9.]+ pictures/s\n"
                          "port 1: 2 pictures in .*\nport 3: 2 pictures in .*\n"))},
      {"acquire --port 2 --count 1 --trace", HasSubstr("port 2: 1 pictures in "),
       AllOf(StartsWith("call Fg_AcquireEx(dma 2, 1 pictures)\n"),
             HasSubstr("\ncall Fg_stopAcquireEx(dma 2)\n"))},
      {"acquire --port 0 1 --count 1 --timeout 0 --set FG_GEN_ENABLE=1 --set FG_GEN_START=FG_OFF",
       HasSubstr("port 1: 0 pictures in "),
       "velmora: port 0: picture 1: -2120, the picture did not arrive in time\n"
       "velmora: port 1: picture 1: -2120, the picture did not arrive in time\n",
       1},
  });
}

TEST_F(ToolTest, ConfigurationsAreSavedAndLoaded) {
  prepare("save a.mcf --set FG_WIDTH@2=1000 --set FG_GEN_FREQ@3=62.5");
  EXPECT_EQ(run("load a.mcf --trace").status, 0);
  EXPECT_EQ(run("get FG_WIDTH@2 FG_GEN_FREQ@3 --load a.mcf").out,
            "a.mcf: settings of 4 ports loaded\nFG_WIDTH@2 = 1000\nFG_GEN_FREQ@3 = 62.5\n");

  // A file that a person changed, and what the tool says about it; empty when it is loaded.
  const std::string whole = contentOf(directory_ / "a.mcf");
  const std::string beforeD = whole.substr(0, whole.find("[Port D]"));
  const std::string portD = whole.substr(beforeD.size());
  const struct {
    std::string content;
    std::string missing;
  } kFiles[] = {
      {without(whole, "FG_DIGIO_OUTPUT"), ""},
      {replaced(whole, "FG_WIDTH=", "FG_BREADTH="), ""},  // Taken from the next section.
      {beforeD + without(portD, "FG_WIDTH"), "no usable key FG_WIDTH in section [Port D]"},
      {without(whole, "FG_TRIGGERSTATE"), "no usable key FG_TRIGGERSTATE in section [Port A]"},
      {beforeD, "no section [Port D]"},
      {without(whole, "Hersteller"), "no key Hersteller"},
      {replaced(whole, "'Velmora'", "'Other'"), "made for another applet, 'Other'"},
      {without(whole, "AktivePort"), "no key AktivePort"},
      {replaced(whole, "[Kamerasektion]", "[Camera]"), "no section [Kamerasektion]"},
      {replaced(whole, "[Kamerasektion]", "[Kamerasektion]\r"),
       "AktivePort does not follow a line"},
      {"", "no key Hersteller"},
  };
  for (const auto& file : kFiles) {
    SCOPED_TRACE(file.missing);
    writeText(directory_ / "edited.mcf", file.content);
    const Outcome load = run("load edited.mcf");
    EXPECT_EQ(load.status, file.missing.empty() ? 0 : 1);
    EXPECT_THAT(load.err, file.missing.empty()
                              ? Matcher<std::string>(IsEmpty())
                              : AllOf(StartsWith("velmora: edited.mcf: not loaded: -5000, "),
                                      HasSubstr("; " + file.missing)));
  }
}

TEST_F(ToolRows, FilesThatAreNoConfiguration) {
  fs::create_directory(directory_ / "directory.mcf");
  writeText(directory_ / "text.txt", "text");
  check({
      {"load none.mcf", IsEmpty(), HasSubstr("none.mcf: not loaded: -2076, no such file"), 1},
      {"load text.txt", IsEmpty(), HasSubstr("-2076, "), 1},
      {"load directory.mcf", IsEmpty(), HasSubstr("it is a directory"), 1},
      {"save directory.mcf", IsEmpty(), HasSubstr("not saved: -5001, "), 1},
      {"save text.txt", IsEmpty(), HasSubstr("its name has to contain .mcf"), 1},
      {"list --load none.mcf", IsEmpty(), HasSubstr("-2076, no such file"), 1},
  });
}

TEST_F(ToolRows, ExternalDesigns) {
  const std::string manifest = contentOf(DESIGN_MANIFEST);
  fs::create_directory(directory_ / "designs");
  writeText(directory_ / "designs/short.design", without(manifest, "Buffer_YLength"));
  writeText(directory_ / "designs/mute.design", without(manifest, "Debounce8_Prescale_Period"));
  writeText(directory_ / "designs/damaged.design", manifest.substr(0, manifest.size() / 2));
  check({
      {"--board designs/short.design set FG_WIDTH=1000 FG_HEIGHT=8", "FG_WIDTH@0 = 1000\n",
       "velmora: FG_HEIGHT@0: refused: -2080, no such design or runtime parameter\n", 1},
      {"save here.mcf --board designs/short.design", "here.mcf: settings of 4 ports saved\n"},
      {"load here.mcf --board designs/short.design", "here.mcf: settings of 4 ports loaded\n"},
      {"save partial.mcf --board designs/mute.design", "partial.mcf: settings of 4 ports saved\n",
       AllOf(StartsWith("velmora: partial.mcf: without FG_TRIGGERIN_DEBOUNCE@0, which cannot be "
                        "read\n"),
             MatchesRegex("(.*FG_TRIGGERIN_DEBOUNCE@.*\n){4}")),
       1},
      {"list --board designs/damaged.design", IsEmpty(),
       "velmora: the applet does not start with the design designs/damaged.design: -100, the "
       "design cannot be loaded or opened\n",
       1},
  });
  EXPECT_TRUE(fs::exists(directory_ / "here.mcf"));
}

TEST_F(ToolTest, ControlBytesOfDesignsAndFilesAreShownAsText) {
  writeText(directory_ / "evil.design",
            replaced(contentOf(DESIGN_MANIFEST), "\nend",
                     "\nuint Device1_Process1_Evil rw channel 0 9 1 unit=\x1b[31m\x9b\xb5"
                     "\nstring Device1_Process1_Text rw channel \x1b]0;t\x07\nend"));
  writeText(directory_ / "evil.mcf", "Hersteller='x';\nTyp='\x1b[2J\x7f';\n");
  const struct {
    const char* arguments;
    const char* shown;
  } kRows[] = {
      {"describe DKTA_Device1_Process1_Evil@1", "0 to 9 \\x1b[31m\\xc2\\x9b\xC2\xB5, step 1"},
      {"get DKTA_Device1_Process1_Text@1", "@1 = \\x1b]0;t\\x07\n"},
      {"get DKTA_Device1_Process1_Text@1 --trace", "-> \\x1b]0;t\\x07\n"},
      {"load evil.mcf", "made for another applet, '\\x1b[2J\\x7f'\n"},
      {"get \"$(printf 'FG_\\033c')\"", "FG_\\x1bc: -2070"},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.arguments);
    const Outcome outcome =
        run(std::string("--board evil.design ") + row.arguments, "KORV_ENABLE_DKTA=1 ");
    EXPECT_THAT(outcome.out + outcome.err, HasSubstr(row.shown));
    for (const char byte : outcome.out + outcome.err)
      EXPECT_TRUE(byte == '\n' || (byte != 0x7F && static_cast<unsigned char>(byte) >= 0x20));
  }
}

TEST_F(ToolTest, AStartThatASignalEndsLeavesNoDirectory) {
  const std::string temporary = directory_ / "temporary";
  fs::create_directory(temporary);
  rlimit limit = {};
  getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit none = {0, limit.rlim_max};
  setrlimit(RLIMIT_FSIZE, &none);  // The first line of the trace ends the process.
  const Outcome outcome =
      run("list --trace=all --board " DESIGN_MANIFEST, "TMPDIR='" + temporary + "' ");
  setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_THAT(outcome.status, AnyOf(-1, 128 + SIGXFSZ));
  EXPECT_TRUE(fs::is_empty(temporary));
}

/// The tool in installations that lack a library, or have another in its place.
TEST_F(ToolTest, LibrariesAreFoundWhenTheToolRuns) {
  const Installation whole{directory_ / "bin/velmora", directory_ / "lib64"};
  fs::create_directory(directory_ / "bin");
  fs::copy_file(TOOL, whole.tool);
  fs::copy(LIBRARIES, whole.libraries, fs::copy_options::recursive);
  EXPECT_EQ(run("list", {}, whole).status, 0);

  const struct {
    const char* name;
    const char* message;
  } kLibraries[] = {
      {"libvorn5.so",
       "velmora: the applet does not start: -2031, acquisition runtime libvorn5.so is missing or "
       "has no init function\n"},
      {"libVelmora.so", "velmora: cannot load the applet: libVelmora.so: cannot open"},
      {"libdervin.so", "velmora: cannot load the applet: libdervin.so: cannot open"},
      {"libkorv_hw.so", "velmora: cannot load the applet: libkorv_hw.so: cannot open"},
  };
  Installation mended = whole;
  mended.otherLibraries = directory_ / "away";
  fs::create_directory(mended.otherLibraries);
  for (const auto& library : kLibraries) {
    SCOPED_TRACE(library.name);
    const std::string installed = directory_ / "lib64/" + library.name;
    const std::string away = directory_ / "away/" + library.name;
    fs::rename(installed, away);
    const Outcome lacking = run("list", {}, whole);
    EXPECT_EQ(lacking.status, 1);
    EXPECT_THAT(lacking.err, StartsWith(library.message));
    EXPECT_EQ(run("--help", {}, whole).status, 0);
    EXPECT_EQ(run("list", {}, mended).status, 0);
    fs::rename(away, installed);
  }
  // The loader's path comes first: what lies there takes a library's place.
  for (const auto& [name, message] :
       {std::pair{"libvorn5.so", "-2031, "},
        std::pair{"libVelmora.so", "libVelmora.so has no function Std_entry"}}) {
    Installation other = whole;
    other.otherLibraries = directory_ / "instead of " + name;
    fs::create_directory(other.otherLibraries);
    fs::copy_file(whole.libraries + "/libkorv_hw.so", other.otherLibraries + "/" + name);
    const Outcome unusable = run("list", {}, other);
    EXPECT_EQ(unusable.status, 1);
    EXPECT_THAT(unusable.err, HasSubstr(message));
  }
}

}  // namespace
