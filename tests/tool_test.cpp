/// The tool `velmora`, run as a user runs it: transcripts of a shell, `data/tool/*.txt`. Below each
/// command are its output, its messages after "! " and its exit status if that is not 0; "## "
/// begins a comment.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "tests/picture_reference.h"
#include "tests/temporary_directory.h"
#include "tool/code_text.h"
#include "tool/parameter_json.h"

namespace {

/// The sanitizers open libraries for the tool and do not know where it looks for them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr const char* kPath = "${OTHER:+$OTHER:}$LIB";
#else
constexpr const char* kPath = "$OTHER";
#endif

class Tool : public testing::Test {
 protected:
  /// The lines of a file, each after a prefix.
  static std::string lines(const std::string& file, const std::string& prefix) {
    std::string text;
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) text.append(prefix).append(line) += '\n';
    return text;
  }

  /// Runs a command line in a directory of the test's own, with the tool of the build tree; what it
  /// leaves to be read.
  std::string run(const std::string& command) const {
    const std::string script =
        "cd '" + directory_ / "" + "' && exec >.out 2>.err </dev/null; export LC_ALL=C.UTF-8; " +
        "DESIGN='" DESIGN_MANIFEST "' DATA='" TEST_DATA "' TOOL='" TOOL
        "' BIN=$(dirname $TOOL) LIB='" LIBRARIES "' OTHER=; " +
        "velmora() { LD_LIBRARY_PATH=\"" + kPath + "\" \"$BIN/velmora\" \"$@\"; }; " + command;
    std::ofstream(directory_ / ".sh") << script;
    const int result = std::system(("sh '" + directory_ / ".sh" + "'").c_str());
    const int status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    return lines(directory_ / ".out", "") + lines(directory_ / ".err", "! ") +
           (status == 0 ? "" : "exit " + std::to_string(status) + '\n');
  }

  TemporaryDirectory directory_;
};

class Transcripts : public Tool, public testing::WithParamInterface<const char*> {};

TEST_P(Transcripts, AreWhatTheToolSays) {
  const std::string file = std::string(TEST_DATA "/tool/") + GetParam() + ".txt";
  std::string said;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("## ")) said += line + '\n';
    if (line.starts_with("$ ")) said += line + '\n' + run(line.substr(2));
  }
  EXPECT_EQ(said, lines(file, "")) << "What it said lies in " << GetParam() << ".txt";
  if (HasFailure()) std::ofstream(std::string(GetParam()) + ".txt") << said;
}

/// A grey picture of 8 or 16 bits and a coloured one, in the order of their names.
TEST_F(Tool, PlaysFilesAsCamerasAndWritesWhatTheBoardMakesOfThem) {
  constexpr int kWidth = 10, kHeight = 6;
  std::mt19937 random(5);
  const auto write = [&](const char* name, unsigned format, std::size_t bytes) {
    Bytes pixels(kWidth * kHeight * bytes);
    for (auto& byte : pixels) byte = static_cast<std::uint8_t>(random());
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = kWidth;
    image.height = kHeight;
    image.format = format;
    EXPECT_NE(
        png_image_write_to_file(&image, (directory_ / name).c_str(), 0, pixels.data(), 0, nullptr),
        0);
    return pixels;
  };
  const Bytes grey = write("1.png", PNG_FORMAT_GRAY, 1);
  const Bytes fine = write("2.png", PNG_FORMAT_LINEAR_Y, 2);
  const Bytes colour = write("3.png", PNG_FORMAT_RGB, 3);
  Bytes mosaic;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      mosaic.push_back(colour[static_cast<std::size_t>(3 * (y * kWidth + x) + x % 2 + y % 2)]);
  run("velmora acquire --port 1 --count 3 --camera 1=. -o out --set FG_WIDTH=8 --set "
      "FG_HEIGHT=4 --set FG_GBE_CAMTYPE=MONO16");
  const std::pair<const Bytes*, unsigned> raws[] = {{&grey, 8}, {&fine, 16}, {&mosaic, 8}};
  for (int i = 0; i < 3; ++i) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    const std::string file = directory_ / fmt::format("out/port1-{:06}.png", i + 1);
    ASSERT_NE(png_image_begin_read_from_file(&image, file.c_str()), 0) << file;
    image.format = PNG_FORMAT_BGR;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    const auto& [raw, bits] = raws[i];
    EXPECT_EQ(pixels,
              referencePicture({raw->data(), kWidth, kHeight, bits}, {.width = 8, .height = 4}))
        << file;
  }
}

/// What programs read is JSON, and what it tells is what people read.
TEST_F(Tool, AnswersInJson) {
  using Json = nlohmann::json;
  const auto answer = [this](const std::string& command) {
    return Json::parse(run("{ velmora " + command + " --json; } 2>/dev/null || true"));
  };
  EXPECT_EQ(answer("get width FG_GEN_FREQ FG_HAP_FILE@3 FG_GEN_ENABLE --port 2"), Json::parse(R"([
      {"name": "FG_WIDTH", "port": 2, "value": 1024, "unit": "pixel"},
      {"name": "FG_GEN_FREQ", "port": 2, "value": 40.0, "unit": "MHz"},
      {"name": "FG_HAP_FILE", "port": 3, "value": "Velmora.hap"},
      {"name": "FG_GEN_ENABLE", "port": 2, "value": 0, "entry": "FG_CAMPORT"}])"));
  const Json described = answer("describe FG_XOFFSET --port 1 --set FG_WIDTH=1000");
  EXPECT_EQ(described, Json::parse(R"([{"name": "FG_XOFFSET", "port": 1, "value": 0,
      "unit": "pixel", "id": 300, "kind": "uint", "access": "read/write", "title": "XOffset",
      "min": 0, "max": 7184, "step": 4, "group": "ROI",
      "text": "X-offset of the acquisition ROI."}])"));
  EXPECT_EQ(answer("describe --port all").size(), 4u);
  const Json port = answer("describe --port 3")[0];
  EXPECT_EQ(port["children"][1]["title"], "ROI");
  EXPECT_EQ(port["children"][1]["children"][0]["name"], "FG_WIDTH");
  EXPECT_EQ(port["children"][0]["children"][0]["entries"][1],
            Json::parse(R"({"value": 1, "name": "MONO8_SIGNED", "title": "Mono 8bit signed"})"));
  EXPECT_EQ(answer("list --port 0,1").size(), 2u * 85u);
  EXPECT_EQ(answer("events").size(),
            static_cast<std::size_t>(std::stoi(run("velmora events | tail -n +2 | wc -l"))));
  const Json info = answer("info");
  EXPECT_EQ(info["properties"][0]["value"], "Velmora");
  EXPECT_EQ(info["mapping"][2]["ports"], Json({0, 1, 2, 3}));
  EXPECT_EQ(info["valueNames"]["FG_GENERATOR"], 1);
  const Json acquired = answer("acquire --count 2 --port 1,3 --show width");
  EXPECT_EQ(acquired["ports"][1]["port"], 3);
  EXPECT_EQ(acquired["ports"][1]["pictures"], 2);
  EXPECT_EQ(acquired["values"][1]["port"], 3);
  const Json loaded =
      answer("save a.mcf; sed -i s/FG_WIDTH=1024/FG_WIDTH=7/ a.mcf; velmora load a.mcf");
  EXPECT_EQ(loaded["differences"].size(), 4u);
  EXPECT_EQ(loaded["differences"][2]["text"], "7");
}

/// A runtime of others may leave out what this one has.
TEST(Descriptions, MayLackTexts) {
  using namespace velmora::tool;
  int values[] = {1, 2};
  char known[] = "FG_ON";
  char* identifiers[] = {nullptr, known};
  RegisterInfo node{};
  node.kind = REGISTER_INFO_ENUM;
  node.value.enumeration.entryCount = 2;
  node.value.enumeration.values = values;
  EXPECT_EQ(entryList(node), "1 , 2 ");
  node.value.enumeration.identifiers = identifiers;
  EXPECT_EQ(entryList(node), "1 , 2 FG_ON");
  EXPECT_EQ(rangeText(node), "");
  const Parameter parameter = parameterOf({&node, 0, ""}, 3);
  EXPECT_EQ(parameter.label(), "@3");
  EXPECT_EQ(valueJson({parameter, std::int64_t{2}}).dump(),
            R"({"name":"","port":3,"value":2,"entry":"FG_ON"})");
}

TEST(Codes, HaveWords) {
  std::string said = velmora::tool::codeText(-4711) + '\n';
  std::ifstream header(ERROR_CODES);
  for (std::string line; std::getline(header, line);)
    if (const auto at = line.find(" = "); at != std::string::npos)
      said += velmora::tool::codeText(std::stoi(line.substr(at + 3))) + '\n';
  EXPECT_EQ(said, contentOf(TEST_DATA "/codes.txt"));
}

INSTANTIATE_TEST_SUITE_P(Tool, Transcripts,
                         testing::Values("parameters", "refusals", "descriptions", "acquisition",
                                         "configurations", "files", "designs", "hostile",
                                         "libraries", "shell", "help"));

}  // namespace
