#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

#include "config/config_file_parser.h"
#include "support/fg_log.h"
#include "tests/temporary_directory.h"
#include "velmora/errors.h"

namespace velmora {
namespace {

std::string logged;

}  // namespace

// Stands in for the library's log, which is dormant: what the parser tells it can be seen only
// here.
Fg_Log::Fg_Log(const char*) { logged.clear(); }
Fg_Log::~Fg_Log() = default;
void Fg_Log::Func(const char* name) { logged += std::string(name) + "|"; }
void Fg_Log::Info(const char* text) { logged += std::string("info ") + text + "|"; }
void Fg_Log::Error(const char* text) { logged += std::string("error ") + text + "|"; }

namespace {

class ConfigParser : public testing::Test {
 protected:
  /// The name of a configuration file with this content.
  const char* file(const std::string& content) {
    std::ofstream(name_, std::ios::binary) << content;
    return name_.c_str();
  }

  std::string content() const {
    std::ostringstream text;
    text << std::ifstream(name_, std::ios::binary).rdbuf();
    return text.str();
  }

  TemporaryDirectory directory_;
  const std::string name_ = directory_ / "cam.mcf.bak";
};

TEST_F(ConfigParser, WritesEveryKindOfLine) {
  Fg_ConfigFileParser parser(nullptr, nullptr, false);
  ASSERT_TRUE(parser.setSaveFile(file("longer than what replaces it? no, but gone")));
  parser.writeConfigFileHeader();
  parser.writeConfigFile("Typ", "Velmora");
  parser.writeConfigFileValue("Text", "a b");
  parser.writeConfigFile("Nothing", nullptr);
  parser.writeConfigFileValue(nullptr, "1");
  parser.writeConfigFilePortA();
  parser.writeConfigFileIntKey("I", INT32_MIN);
  parser.writeConfigFileUInt64Key("U", UINT64_MAX);
  parser.writeConfigFilePortB();
  parser.writeConfigFileInt64Key("L", INT64_MIN);
  parser.writeConfigFileByPort(2);
  for (const double value : {0.096, 1.0 / 3, 1e20, -1.23456789012345e-300}) {
    parser.writeConfigFileDoubleKey("D", value);
  }
  const std::string expected =
      "[Kamerasektion]\n\nConfigFileVersion=2.0;\nTyp='Velmora';\nText=a b;\n"
      "\n[Port A]\nI=-2147483648;\nU=18446744073709551615;\n"
      "\n[Port B]\nL=-9223372036854775808;\n"
      "\n[Port C]\nD=0.096;\nD=0.333333333333;\nD=1e+20;\nD=-1.23456789012e-300;\n";
  EXPECT_EQ(content(), expected) << "flushed before the file is closed";
  EXPECT_TRUE(parser.close());
  EXPECT_EQ(content(), expected);
}

TEST_F(ConfigParser, FindsTexts) {
  const std::string filler(255, 'x');
  const struct {
    const char* marker;  // Null: the loose search.
    std::string key;
    std::string content;
    std::string value;  // "Error": not found.
  } rows[] = {
      {"[Port A]", "K", "[Port A]\nK=1;\n[Port B]\nK=2;\n", "1"},
      {"[Port B]", "K", "K=0;\n[Port A]\nK=1;\n[Port B]\nK=2;\n", "2"},
      {"[Port A]", "K", "[Port A]\nX=1;\n[Port B]\nK=2;\n", "2"},
      {"[Port B]", "K", "[Port A]\nK=1;\n[Port B]\n", "Error"},
      {"[Port C]", "K", "[Port A]\nK=1;\n", "Error"},
      {"[Port A]", "K", "", "Error"},
      {"[Port A]", "K", "K=0;[Port A]\nK=1;\n", "1"},
      {"[Port A]", "K", "a [Port A] b\r\nK=1;\r\n", "1"},
      {"[Port A]", "K", "[Port A]\nKX=1;\n K=2;\nk=3;\nXK=4;\nK =5;\nX=K;\n", "Error"},
      {"[Port A]", "K", "[Port A]\nK='a b';\n", "a b"},
      {"[Port A]", "K", "[Port A]\nK=a=b;\n", "a"},
      {"[Port A]", "K", "[Port A]\nK=5\n", "5\n"},
      {"[Port A]", "K", "[Port A]\nK=5", "5"},
      {"[Port A]", "K", "[Port A]\nK=;\n", ""},
      {"[Port A]", "K", "[Port A]\nK='';\r\n", ""},
      {"[Port A]", "K", "[Port A]\nK=", ""},
      {"[Port A]", "K", "[Port A]\n" + filler + "K=5;\n", "5"},
      {"[Port A]", "K", "[Port A]\nK=" + filler + ";\n", filler.substr(2)},
      {nullptr, "Typ", "a\nTyp='Velmora';\n", "Velmora"},
      {nullptr, "Version", "ConfigFileVersion=2.0;\nVersion='2.3';\n", "2.0;\n"},
      {nullptr, "Typ", "x Typ y=1'2", "1"},
      {nullptr, "Typ", "Typ\n", ""},
      {nullptr, "Typ", "Version='2.3';\n", "Error"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content);
    Fg_ConfigFileParser parser(nullptr, file(row.content), true);
    const bool missing = row.value == "Error";
    const char* key = row.key.c_str();
    for (int pass = 0; pass < 2; ++pass) {  // Reads come in any order.
      char value[256];
      EXPECT_EQ(row.marker != nullptr ? parser.parseKey(row.marker, key, value)
                                      : parser.parseKeyFromLine(key, value),
                missing ? VELMORA_KEY_NOT_FOUND : VELMORA_OK);
      EXPECT_EQ(value, row.value);
    }
    const std::string section = row.marker != nullptr ? std::string(row.marker) + " " : "";
  }
}

TEST_F(ConfigParser, ConvertsNumbers) {
  using Numbers = std::tuple<int, uint64_t, int64_t, double>;
  constexpr Numbers kKept = {77, 77, 77, 77};
  const struct {
    const char* text;
    Numbers numbers;
  } rows[] = {
      {"1024;", {1024, 1024, 1024, 1024}},
      {" -12ab;", {-12, static_cast<uint64_t>(-12), -12, -12}},
      {"0x1F;", {0, 0, 31, 31}},
      {"010", {10, 10, 8, 10}},
      {"0.25;", {0, 0, 0, 0.25}},
      {"1e3\n", {1, 1, 1, 1000}},
      {"18446744073709551615;", {-1, UINT64_MAX, INT64_MAX, 18446744073709551615.0}},
      {"junk;", {0, 77, 77, 0}},
      {";", {0, 77, 77, 0}},
      {"5 Errors;", kKept},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    const std::string content = std::string("[Kamerasektion]\r\nH=3;\n[Port B]\nN=") + row.text;
    Fg_ConfigFileParser parser(nullptr, file(content), true);
    Numbers numbers = kKept;
    auto& [asInt, asUInt64, asInt64, asDouble] = numbers;
    const int result = row.numbers == kKept ? -1 : 0;
    EXPECT_EQ(parser.parseIntKeySection(1, "N", &asInt), result);
    EXPECT_EQ(parser.parseUInt64KeySection(1, "N", &asUInt64), result);
    EXPECT_EQ(parser.parseInt64KeySection(1, "N", &asInt64), result);
    EXPECT_EQ(parser.parseDoubleKeySection(1, "N", &asDouble), result);
    // Neither a null key nor a header line with a carriage return is found.
    EXPECT_EQ(parser.parseIntKeySection(1, nullptr, &asInt), -1);
    EXPECT_EQ(parser.parseIntKeyFromHeader("H", &asInt), -1);
    EXPECT_EQ(numbers, row.numbers);
  }
}

TEST_F(ConfigParser, ReadsHeaderNumbers) {
  Fg_ConfigFileParser parser(nullptr, file("H=1;\n[Kamerasektion]\n\nH=3;\n"), true);
  int number = 0;
  EXPECT_EQ(parser.parseIntKeyFromHeader("H", &number), 0);
  EXPECT_EQ(number, 3);
}

TEST_F(ConfigParser, WithoutReadableFileNothingIsFoundOrWritten) {
  std::filesystem::create_directory(directory_ / "directory.mcf");
  std::filesystem::copy(file("[Port A]\nK=1;\n"), directory_ / "cam.MCF");
  const struct {
    const char* name;
    bool rightType, exists;
  } rows[] = {{"cam.MCF", false, true}, {"none.mcf", true, false}, {"directory.mcf", true, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string name = directory_ / row.name;
    for (const bool readOnly : {true, false}) {
      Fg_ConfigFileParser parser(nullptr, name.c_str(), readOnly);
      EXPECT_EQ(parser.checkFileType(name.c_str()), row.rightType);
      EXPECT_EQ(parser.checkFileExist(name.c_str()), row.exists);
      char text[256];
      EXPECT_EQ(parser.parseKeySection(0, "K", text), VELMORA_KEY_NOT_FOUND);
      EXPECT_STREQ(text, "Error");
      EXPECT_EQ(parser.parseKeyFromLine("K", text), VELMORA_KEY_NOT_FOUND);
      if (!row.exists) parser.writeConfigFileHeader();
    }
  }
  EXPECT_FALSE(std::filesystem::exists(directory_ / "none.mcf"));
  EXPECT_FALSE(Fg_ConfigFileParser(nullptr, nullptr, true).checkFileExist(nullptr));
}

TEST_F(ConfigParser, ReportsWritesThatDoNotReachTheFile) {
  std::filesystem::create_symlink("/dev/full", directory_ / "full.mcf");
  Fg_ConfigFileParser parser(nullptr, file("[Port A]\nK=1;\n"), true);
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_FALSE(parser.close()) << "read only";
  EXPECT_EQ(content(), "[Port A]\nK=1;\n");
  ASSERT_TRUE(parser.setSaveFile((directory_ / "full.mcf").c_str()));
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_FALSE(parser.close()) << "disk full";
  ASSERT_TRUE(parser.setSaveFile((directory_ / "full.mcf").c_str()));
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_FALSE(parser.setSaveFile((directory_ / "none/cam.mcf").c_str()));
  EXPECT_FALSE(parser.setSaveFile((directory_ / "cam.txt").c_str()));
  EXPECT_FALSE(parser.setSaveFile(nullptr));
  ASSERT_TRUE(parser.setSaveFile(name_.c_str()));
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_TRUE(parser.close());
  EXPECT_EQ(content(), "K=2;\n");
}

TEST_F(ConfigParser, UpdateContinuesBehindTheLineAfterTheKey) {
  Fg_ConfigFileParser parser(nullptr, file("[Port A]\nK=1;\nL=2;\nM=3;\nN=4;\n"), false);
  char text[256];
  ASSERT_EQ(parser.parseKeySection(0, "K", text), VELMORA_OK);
  parser.writeConfigFileIntKey("X", 9);
  EXPECT_TRUE(parser.close());
  EXPECT_EQ(content(), "[Port A]\nK=1;\nL=2;\nX=9;\nN=4;\n");
}

TEST_F(ConfigParser, LogsEveryOperation) {
  const std::string name = file("[Port A]\nK=1;\n");
  Fg_Log log("test");
  std::optional<Fg_ConfigFileParser> parser(std::in_place, &log, name.c_str(), true);
  char text[256];
  int number = 0;
  uint64_t natural = 0;
  int64_t integer = 0;
  double real = 0;
  parser->checkFileType(nullptr);
  parser->checkFileExist("/none");
  parser->parseKeySection(0, "K", text);
  parser->parseKeyFromLine("K", text);
  parser->parseIntKeySection(0, "K", &number);
  parser->parseUInt64KeySection(0, "K", &natural);
  parser->parseInt64KeySection(0, "K", &integer);
  parser->parseDoubleKeySection(0, "K", &real);
  parser->parseIntKeyFromHeader("K", &number);
  parser->setSaveFile("a");
  parser->setSaveFile("/none/a.mcf");
  parser->setSaveFile(name.c_str());
  parser->writeConfigFileHeader();
  parser->writeConfigFileByPort(0);
  parser->writeConfigFile("K", "");
  parser->writeConfigFileIntKey("K", 1);
  parser->writeConfigFileUInt64Key("K", 1);
  parser->writeConfigFileInt64Key("K", 1);
  parser->writeConfigFileDoubleKey("K", 1);
  parser.reset();
  EXPECT_EQ(std::regex_replace(logged, std::regex("Fg_ConfigFileParser::"), "~"),
            "~Fg_ConfigFileParser(char * filename)|~checkFileType|File type ok|"
            "~checkFileExist|info Config File exist|~checkFileType|"
            "~checkFileExist|info Config File don't exist|~parseKey|~parseKeyFromLine|"
            "~parseIntKey|~parseKey|~getIntValue|~parseIntKey|~parseKey|~getIntValue|"
            "~parseIntKey|~parseKey|~getIntValue|~parseDoubleKey|~parseKey|~getDoubleValue|"
            "~parseIntKeyFromHeader|~parseIntKey|~parseKey|"
            "~setSaveFile|~checkFileType|File type not ok|error Config File is Invalid|"
            "~setSaveFile|~checkFileType|File type ok|error Config File: fopen failed|"
            "~setSaveFile|~checkFileType|File type ok|info Config File is valid|"
            "~writeConfigFileHeader|~writeConfigFile|~writeConfigFileIntKey|~writeConfigFileValue|"
            "~writeConfigFileUInt64Key|~writeConfigFileValue|"
            "~writeConfigFileUInt64Key|~writeConfigFileValue|"
            "~wrtiteConfigFileDoubleKey|~writeConfigFileValue|~~Fg_ConfigFileParser()|");
}

}  // namespace
}  // namespace velmora
