/// What of a GenApi document the applet's own parameters do not show.
#include <gtest/gtest.h>

#include <algorithm>
#include <locale>
#include <string>
#include <utility>

#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_info_builder_xml.h"

namespace {

using namespace velmora;

constexpr int kProcess = 1;

/// What a host may have made of the global locale: 6.25 is "6,25", and 1000 is "1,000".
struct GroupedNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\3"; }
};

class GenApiDocument : public testing::Test {
 protected:
  RegisterInfo* group(const char* name, RegisterInfo* parent = nullptr) {
    return registry_.addGroupInfo(kProcess, parent, name);
  }
  /// A parameter whose block is `plain` of the same arguments.
  void add(RegisterInfo* parent, const char* name, const char* paramName, int access = 7) {
    registry_.addInfoUInt(parent, name, paramName, 0, 1000, 0, access, 1, 1, "Hz", 9, kProcess);
  }
  static std::string plain(const std::string& description, const std::string& name,
                           const std::string& access = "RW", const std::string& length = "4") {
    return "<IntReg Name=\"" + name + "_Reg\">|<Address>9</Address>|<Length>" + length +
           "</Length>|" + "<AccessMode>" + access + "</AccessMode>|<pPort>DevicePort</pPort>|" +
           "<Sign>Signed</Sign>|<Endianess>LittleEndian</Endianess>|</IntReg>|" +
           "<Integer Name='" + name + "'>|<Description>" + description + "</Description>|" +
           "<pValue>" + name + "_Reg</pValue>|<Min>0</Min>|<Max>1000</Max>|</Integer>~";
  }
  /// The document after its header, with '|' for a line feed and '~' for the end of a block.
  std::string body() {
    std::string text = ParameterInfoBuilderXML(registry_, "A&B", kProcess).build();
    EXPECT_NE(text.find("ModelName=\"A&amp;B\"\n"), std::string::npos);
    text.erase(0, text.find(".xsd\">\n") + 7);
    for (size_t i; (i = text.find("\n\r")) != std::string::npos;) text.replace(i, 2, 1, '~');
    std::replace(text.begin(), text.end(), '\n', '|');
    return text;
  }
  void expectDocument(const std::string& blocks, const std::string& categories) {
    EXPECT_EQ(body(), blocks + "<Category Name='Root' NameSpace='Standard' >|" + categories +
                          "<Port Name=\"DevicePort\"></Port>|</RegisterDescription>|");
  }

  Fg_ParameterInfo registry_{2};
};

TEST_F(GenApiDocument, GroupsBecomeCategoriesOfTheRootInDocumentOrder) {
  RegisterInfo* older = group("Trigger");
  RegisterInfo* input = group("1 AZaz_09@[`{/:^\xE4", older);
  add(group("Stat-istics", input), "a", "FG_A");
  add(older, "b", "FG_B");
  add(group("", older), "c", "FG_C");
  RegisterInfo* newer = group("Output");
  add(newer, "e", "FG_E");
  add(input, "f", "FG_TRANSFER_LEN");  // Wider than its description tells.
  add(group("Statistics", newer), "g", "1FG_'G");
  expectDocument(
      plain("e", "FG_E") + plain("g", "1FG_&apos;G") + plain("a", "FG_A") +
          plain("f", "FG_TRANSFER_LEN", "RW", "8") + plain("b", "FG_B") + plain("c", "FG_C"),
      "<pFeature>Output</pFeature>|<pFeature>Statistics</pFeature>|<pFeature>AZaz_09</pFeature>|"
      "<pFeature>Trigger</pFeature>|<pFeature>FG_C</pFeature>|</Category>|"
      "<Category Name='Output'  >|<pFeature>FG_E</pFeature>|</Category>|"
      "<Category Name='Statistics'  >|<pFeature>FG_G</pFeature>|<pFeature>FG_A</pFeature>|"
      "</Category>|<Category Name='AZaz_09'  >|<pFeature>FG_TRANSFER_LEN</pFeature>|</Category>|"
      "<Category Name='Trigger'  >|<pFeature>FG_B</pFeature>|</Category>|");
}

TEST_F(GenApiDocument, WhatCannotBeDescribedLeavesNoTrace) {
  add(group("Direct Register Access"), "DRA", "DRA_A");
  RegisterInfo* other = group("Other");
  registry_.addInfoUInt(other, "n", "FG_N", 0, 1, 0, 7, 1, 0, "", 1, kProcess);
  registry_.addInfoUInt64(other, "n", "FG_N", 0, 1, 0, 7, 1, 1, "", 1, kProcess);
  registry_.addInfoUIntField(other, "n", "FG_N", 0, 1, 0, 0, 7, 1, 1, "", 1, kProcess);
  expectDocument("", "</Category>|");
}

TEST_F(GenApiDocument, AccessTextsAndNumbersUnderAnyLocale) {
  std::string blocks, features;
  const char* const access[] = {"", "RO", "WO", "RW"};
  RegisterInfo* parent = group("");
  for (int mode = 0; mode < 8; ++mode) {
    add(parent, "<A&B> \"\xB5\xFF\" 'c'", "F", mode);
    blocks += plain("&lt;A&amp;B&gt; &quot;\xB5\xFF&quot; &apos;c&apos;", "F", access[mode % 4]);
    features += "<pFeature>F</pFeature>|";
  }
  registry_.addInfoDouble(parent, "", "D", 3.9990234375, 62500000, 0, 1, 1, 1, "", 0, kProcess);
  blocks +=
      R"(<FloatReg Name="D_Reg">|<Length>8</Length>|<AccessMode>RO</AccessMode>|)"
      R"(<pPort>DevicePort</pPort>|<Endianess>LittleEndian</Endianess>|</FloatReg>|)"
      R"(<Float Name="D">|<pValue>D_Reg</pValue>|<Min>3.99902</Min>|<Max>6.25e+07</Max>|</Float>~)";
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new GroupedNumbers));
  expectDocument(blocks, features + "<pFeature>D</pFeature>|</Category>|");
  std::locale::global(before);
}

TEST_F(GenApiDocument, EnumerationEntriesAreSortedByValueAndTheLastOfAValueCounts) {
  RegisterInfo* node = registry_.addInfoEnum(group(""), "", "F", 5, 1, 1, 1, "", 0, kProcess);
  const std::pair<int, const char*> entries[] = {
      {10, "TEN"}, {-1, "<"}, {10, "LAST"}, {2, "TWO"}, {3, nullptr}};
  for (int i = 0; i < 5; ++i)
    registry_.addEnumNameValue(node, i, "text", entries[i].first, entries[i].second);
  EXPECT_TRUE(body().starts_with(
      R"(<Enumeration Name='F'>|<EnumEntry Name="&lt;">|<Value>-1</Value>|</EnumEntry>|)"
      R"(<EnumEntry Name="TWO">|<Value>2</Value>|</EnumEntry>|<EnumEntry Name="LAST">|)"
      R"(<Value>10</Value>|</EnumEntry>|<pValue>F_Reg</pValue>|</Enumeration>|)"))
      << body();
}

}  // namespace
