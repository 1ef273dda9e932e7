#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>

#include "config/config_file_parser.h"
#include "tests/temporary_directory.h"
#include "velmora/errors.h"

namespace {

using namespace velmora;

class ConfigParser : public testing::Test {
 protected:
  /// The name of a configuration file with this content.
  const char* file(const std::string& content) {
    std::ofstream(name_, std::ios::binary) << content;
    return name_.c_str();
  }

  TemporaryDirectory directory_;
  const std::string name_ = directory_ / "cam.mcf.bak";
};

TEST_F(ConfigParser, WritesEveryKindOfLine) {
  Fg_ConfigFileParser parser(nullptr, nullptr, false);
  ASSERT_TRUE(parser.setSaveFile(file("what was there before")));
  parser.writeConfigFileHeader();
  parser.writeConfigFile("Typ", "Velmora");
  parser.writeConfigFileValue("Text", "a b");
  parser.writeConfigFile("Nothing", nullptr);
  parser.writeConfigFileByPort(0);
  parser.writeConfigFileIntKey("I", INT32_MIN);
  parser.writeConfigFileUInt64Key("U", UINT64_MAX);
  parser.writeConfigFileInt64Key("L", INT64_MIN);
  for (const double value : {0.096, 1.0 / 3, 1e20, -1.23456789012345e-300})
    parser.writeConfigFileDoubleKey("D", value);
  EXPECT_EQ(contentOf(name_),
            "[Kamerasektion]\n\nConfigFileVersion=2.0;\nTyp='Velmora';\nText=a b;\n"
            "\n[Port A]\nI=-2147483648;\nU=18446744073709551615;\nL=-9223372036854775808;\n"
            "D=0.096;\nD=0.333333333333;\nD=1e+20;\nD=-1.23456789012e-300;\n");
  EXPECT_TRUE(parser.close());
}

TEST_F(ConfigParser, FindsTexts) {
  using namespace std::string_literals;
  const std::string filler(255, 'x');
  const struct {
    const char* marker;  // Null: the loose search.
    const char* key;
    std::string content;
    std::string value;  // "Error": not found.
  } rows[] = {
      {"[Port A]", "K", "[Port A]\nX=1;\n[Port B]\nK=2;\n", "2"},
      {"[Port B]", "K", "[Port A]\nK=1;\n[Port B]\n", "Error"},
      {"[Port A]", "K", "a [Port A] b\r\nK=1;\r\n", "1"},
      {"[Port A]", "K", "[Port A]\nKX=1;\n K=2;\nk=3;\nXK=4;\nK =5;\nX=K;\n", "Error"},
      {"[Port A]", "K", "[Port A]\nK='';\r\n", ""},
      {"[Port B]", "K", "K=1;\n[Port B]\nL=2;\nK=3;\nK=4;\n", "3"},
      {"[Port B]", "K", "[Port B] K=\nK=1;\n[Port B]\nK=2;\n", "1"},
      {"", "A=B", "A=B=1;\nA=2;\nA=B=3;\n", "3"},
      {"[Port A]", "K", "\0[Port A]\nK=1;\n[Port A]\n\0K=2;\nK=3\0;\n"s, "3"},
      {"A]\nK", "K", "[Port A]\nK=1;\nK=2;\n", "Error"},
      {"[Port A]", "K", filler.substr(1) + "[Port A]\nK=1;\n", "Error"},
      {"[Port A]", "K", "[Port A]\n" + filler + "K=5;\n", "5"},
      {"[Port A]", "K", "[Port A]\nK=" + filler + ";\n", filler.substr(2)},
      {nullptr, "Typ", "a\nTyp='Velmora';\n", "Velmora"},
      {nullptr, "", "", "Error"},
      {nullptr, "", "\0\na='1';\n"s, ""},
      {nullptr, "Version", "ConfigFileVersion=2.0;\nVersion='2.3';\n", "2.0;\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.content);
    Fg_ConfigFileParser parser(nullptr, file(row.content), true);
    char value[256];
    EXPECT_EQ(row.marker != nullptr ? parser.parseKey(row.marker, row.key, value)
                                    : parser.parseKeyFromLine(row.key, value),
              row.value == "Error" ? VELMORA_KEY_NOT_FOUND : VELMORA_OK);
    EXPECT_EQ(value, row.value);
  }
}

TEST_F(ConfigParser, ConvertsNumbers) {
  using Numbers = std::tuple<int, uint64_t, int64_t, double>;
  constexpr Numbers kKept = {77, 77, 77, 77};
  const struct {
    const char* text;
    Numbers numbers;
  } rows[] = {
      {" -12ab;", {-12, static_cast<uint64_t>(-12), -12, -12}},
      {"0x1F;", {0, 0, 31, 31}},
      {"010", {10, 10, 8, 10}},
      {"1e3\n", {1, 1, 1, 1000}},
      {"18446744073709551615", {-1, UINT64_MAX, INT64_MAX, 18446744073709551615.0}},
      {"junk;", {0, 77, 77, 0}},
      {"5 Errors;", kKept},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.text);
    Fg_ConfigFileParser parser(nullptr, file(std::string("[Port B]\nN=") + row.text), true);
    Numbers numbers = kKept;
    auto& [asInt, asUInt64, asInt64, asDouble] = numbers;
    const int result = row.numbers == kKept ? VELMORA_NOTHING_FOUND : VELMORA_OK;
    EXPECT_EQ(parser.parseIntKeySection(1, "N", &asInt), result);
    EXPECT_EQ(parser.parseUInt64KeySection(1, "N", &asUInt64), result);
    EXPECT_EQ(parser.parseInt64KeySection(1, "N", &asInt64), result);
    EXPECT_EQ(parser.parseDoubleKeySection(1, "N", &asDouble), result);
    EXPECT_EQ(numbers, row.numbers);
  }
}

TEST_F(ConfigParser, ReadsAFileOnceUnlessItIsUpdated) {
  int value = 0;
  Fg_ConfigFileParser reader(nullptr, file("[Port A]\nK=1;\nL=2;\nM=3;\n"), true);
  Fg_ConfigFileParser updater(nullptr, name_.c_str(), false);
  EXPECT_EQ(updater.parseIntKeySection(2, "M", &value), VELMORA_NOTHING_FOUND);
  updater.writeConfigFileByPort(2);  // At the end, up to which it has read.
  updater.writeConfigFileIntKey("M", 5);
  EXPECT_EQ(updater.parseIntKeySection(2, "M", &value), VELMORA_OK);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(updater.parseIntKeySection(0, "K", &value), VELMORA_OK);
  updater.writeConfigFileIntKey("M", 4);  // After the line that follows the key.
  EXPECT_EQ(contentOf(name_), "[Port A]\nK=1;\nL=2;\nM=4;\n\n[Port C]\nM=5;\n");

  EXPECT_EQ(reader.parseIntKeySection(2, "M", &value), VELMORA_NOTHING_FOUND);
  EXPECT_EQ(reader.parseIntKeySection(0, "M", &value), VELMORA_OK);
  EXPECT_EQ(value, 3);
  EXPECT_TRUE(reader.close());
  EXPECT_EQ(reader.parseIntKeySection(0, "M", &value), VELMORA_NOTHING_FOUND);
}

TEST_F(ConfigParser, ReportsWritesThatDoNotReachTheFile) {
  Fg_ConfigFileParser parser(nullptr, file("[Port A]\nK=1;\n"), true);
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_FALSE(parser.close()) << "read only";
  EXPECT_EQ(contentOf(name_), "[Port A]\nK=1;\n");
  ASSERT_TRUE(parser.setSaveFile(name_.c_str()));
  parser.writeConfigFileIntKey("K", 2);
  EXPECT_FALSE(parser.setSaveFile("cam.txt")) << "and the open file stays";
  EXPECT_TRUE(parser.close()) << "nothing is left of the failure before";
  EXPECT_EQ(contentOf(name_), "K=2;\n");
}

}  // namespace
