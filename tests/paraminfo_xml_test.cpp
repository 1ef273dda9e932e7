#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <locale>
#include <string>
#include <utility>

#include "paraminfo/category.h"
#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_info_builder_xml.h"
#include "paraminfo/parameter_info_generator_xml.h"
#include "tests/fakes/wrapper_double.h"

namespace velmora {
namespace {

constexpr int kProcess = 1;

/// What a host may have made of the global locale.
struct GroupedNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

/// Expected text is written with '|' for a line feed and '~' for the end of a block.
std::string lines(std::string text) {
  std::replace(text.begin(), text.end(), '|', '\n');
  for (size_t i; (i = text.find('~')) != std::string::npos;) text.replace(i, 1, "\n\r");
  return text;
}

class GenApiDocument : public testing::Test {
 protected:
  RegisterInfo* group(const char* name, RegisterInfo* parent = nullptr) {
    return registry_.addGroupInfo(kProcess, parent, name);
  }
  /// A parameter whose block is `plain` of the same arguments.
  void add(RegisterInfo* parent, const char* name, const char* paramName, int access = 7) {
    registry_.addInfoUInt(parent, name, paramName, 0, 1, 0, access, 1, 1, "Hz", 9, kProcess);
  }
  static std::string plain(const std::string& description, const std::string& name,
                           const std::string& access = "RW") {
    return "<IntReg Name=\"" + name + "_Reg\">|<Address>9</Address>|<Length>4</Length>|" +
           "<AccessMode>" + access + "</AccessMode>|<pPort>DevicePort</pPort>|" +
           "<Sign>Signed</Sign>|<Endianess>LittleEndian</Endianess>|</IntReg>|" +
           "<Integer Name='" + name + "'>|<Description>" + description + "</Description>|" +
           "<pValue>" + name + "_Reg</pValue>|<Min>0</Min>|<Max>1</Max>|</Integer>~";
  }
  void expectDocument(const std::string& blocks, const std::string& categories,
                      const std::string& modelName = "Velmora", const char* model = "Velmora") {
    const std::string header =
        R"(<?xml version="1.0" encoding="utf-8"?>||<RegisterDescription|ModelName=")" + modelName +
        R"("|VendorName="Brightfold"|StandardNameSpace="None"|SchemaMajorVersion="1"|)"
        R"(SchemaMinorVersion="0"|SchemaSubMinorVersion="1"|MajorVersion="1"|MinorVersion="0"|)"
        R"(SubMinorVersion="0"|ProductGuid="0"|VersionGuid="0"|)"
        R"(xmlns="http://www.genicam.org/GenApi/Version_1_0"|)"
        R"(xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"|)"
        R"(xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_0 )"
        R"(GenApiSchema_Version_1_0.xsd">|)";
    WrapperDouble wrapper(model);
    EXPECT_EQ(ParameterInfoBuilderXML(registry_, wrapper, kProcess).build(),
              lines(header + blocks + "<Category Name='Root' NameSpace='Standard' >|" + categories +
                    R"(<Port Name="DevicePort"></Port>|</RegisterDescription>|)"));
  }

  Fg_ParameterInfo registry_{2};
};

TEST_F(GenApiDocument, EveryKindUnderAnyLocale) {
  RegisterInfo* roi = group("ROI");
  registry_.addInfoUInt(roi, "Width", "FG_WIDTH", 8, 8192, 4, 3, 2, 1, "pixel", 100, kProcess);
  registry_.addInfoDouble(roi, "Input Debounce", "FG_TRIGGERIN_DEBOUNCE", 0.096, 3.024, 0.048, 7, 1,
                          1, "\xB5s", 300204, kProcess);
  registry_.addInfoString(roi, "HAP file", "FG_HAP_FILE", "*.hap", 1, 1, 1, "", 24108, kProcess);
  RegisterInfo* alignment =
      registry_.addInfoEnum(roi, "Alignment", "FG_BITALIGNMENT", 2, 7, 1, 1, "", 4010, kProcess);
  registry_.addEnumNameValue(alignment, 0, "Left Aligned", 1, "FG_LEFT_ALIGNED");
  registry_.addEnumNameValue(alignment, 1, "Right Aligned", 0, "FG_RIGHT_ALIGNED");
  registry_.addInfoInt(roi, nullptr, "FG_TRANSFER_LEN", INT32_MIN, -1000, -2, 2, 1, 1, "", -5210,
                       kProcess);
  registry_.addInfoDouble(roi, "", "F", 3.9990234375, 62500000, 0, 4, 1, 1, "", 0, kProcess);
  registry_.addInfoUInt(roi, "", nullptr, 1000, 4294967295, 0, 1, 1, 1, "", 7, kProcess);

  const std::string blocks =
      R"(<IntReg Name="FG_WIDTH_Reg">|<Address>100</Address>|<Length>4</Length>|)"
      R"(<AccessMode>RW</AccessMode>|<pPort>DevicePort</pPort>|<Sign>Signed</Sign>|)"
      R"(<Endianess>LittleEndian</Endianess>|</IntReg>|<Integer Name='FG_WIDTH'>|)"
      R"(<Description>Width</Description>|<pValue>FG_WIDTH_Reg</pValue>|<Min>8</Min>|)"
      R"(<Max>8192</Max>|<Inc>4</Inc>|</Integer>~)"

      R"(<FloatReg Name="FG_TRIGGERIN_DEBOUNCE_Reg">|<Address>300204</Address>|)"
      R"(<Length>8</Length>|<AccessMode>RW</AccessMode>|<pPort>DevicePort</pPort>|)"
      R"(<Endianess>LittleEndian</Endianess>|</FloatReg>|<Float Name="FG_TRIGGERIN_DEBOUNCE">|)"
      R"(<Description>Input Debounce</Description>|<pValue>FG_TRIGGERIN_DEBOUNCE_Reg</pValue>|)"
      R"(<Min>0.096</Min>|<Max>3.024</Max>|</Float>~)"

      R"(<StringReg Name="FG_HAP_FILE">|<Description>HAP file</Description>|)"
      R"(<Address>24108</Address>|<Length>4096</Length>|<AccessMode>RO</AccessMode>|)"
      R"(<pPort>DevicePort</pPort>|</StringReg>~)"

      R"(<Enumeration Name='FG_BITALIGNMENT'>|<Description>Alignment</Description>|)"
      R"(<EnumEntry Name="FG_RIGHT_ALIGNED">|<Value>0</Value>|</EnumEntry>|)"
      R"(<EnumEntry Name="FG_LEFT_ALIGNED">|<Value>1</Value>|</EnumEntry>|)"
      R"(<pValue>FG_BITALIGNMENT_Reg</pValue>|</Enumeration>||)"
      R"(<IntReg Name="FG_BITALIGNMENT_Reg">|<Address>4010</Address>|<Length>4</Length>|)"
      R"(<AccessMode>RW</AccessMode>|<pPort>DevicePort</pPort>|<Sign>Unsigned</Sign>|)"
      R"(<Endianess>LittleEndian</Endianess>|</IntReg>~)"

      R"(<IntReg Name="FG_TRANSFER_LEN_Reg">|<Address>-5210</Address>|<Length>8</Length>|)"
      R"(<AccessMode>WO</AccessMode>|<pPort>DevicePort</pPort>|<Sign>Signed</Sign>|)"
      R"(<Endianess>LittleEndian</Endianess>|</IntReg>|<Integer Name='FG_TRANSFER_LEN'>|)"
      R"(<pValue>FG_TRANSFER_LEN_Reg</pValue>|<Min>-2147483648</Min>|<Max>-1000</Max>|)"
      R"(<Inc>-2</Inc>|</Integer>~)"

      R"(<FloatReg Name="F_Reg">|<Length>8</Length>|<AccessMode></AccessMode>|)"
      R"(<pPort>DevicePort</pPort>|<Endianess>LittleEndian</Endianess>|</FloatReg>|)"
      R"(<Float Name="F">|<pValue>F_Reg</pValue>|<Min>3.99902</Min>|<Max>6.25e+07</Max>|</Float>~)"

      R"(<IntReg<Address>7</Address>|<Length>4</Length>|<AccessMode>RO</AccessMode>|)"
      R"(<pPort>DevicePort</pPort>|<Sign>Signed</Sign>|<Endianess>LittleEndian</Endianess>|)"
      R"(</IntReg>|<Integer Name=''>|<pValue>_Reg</pValue>|<Min>1000</Min>|)"
      R"(<Max>4294967295</Max>|</Integer>~)";
  const std::string categories =
      "<pFeature>ROI</pFeature>|</Category>|<Category Name='ROI'  >|<pFeature>FG_WIDTH</pFeature>|"
      "<pFeature>FG_TRIGGERIN_DEBOUNCE</pFeature>|<pFeature>FG_HAP_FILE</pFeature>|"
      "<pFeature>FG_BITALIGNMENT</pFeature>|<pFeature>FG_TRANSFER_LEN</pFeature>|"
      "<pFeature>F</pFeature>|<pFeature></pFeature>|</Category>|";

  expectDocument(blocks, categories);
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new GroupedNumbers));
  expectDocument(blocks, categories);
  std::locale::global(before);
}

TEST_F(GenApiDocument, GroupsBecomeCategoriesOfTheRootInDocumentOrder) {
  RegisterInfo* older = group("Trigger");
  RegisterInfo* input = group("1 In_put", older);
  add(group("Stat-istics", input), "a", "FG_A");
  add(older, "b", "FG_B");
  add(group("", older), "c", "FG_C");
  add(group(nullptr), "d", "FG_D");
  RegisterInfo* newer = group("Output");
  add(newer, "e", "FG_E");
  add(input, "f", "FG_F");
  add(group("Statistics", newer), "g", "1FG_'G");
  add(newer, "e", "FG_E");
  registry_.addGroupInfo(0, nullptr, "Another process");

  expectDocument(
      plain("e", "FG_E") + plain("g", "1FG_&apos;G") + plain("e", "FG_E") + plain("d", "FG_D") +
          plain("a", "FG_A") + plain("f", "FG_F") + plain("b", "FG_B") + plain("c", "FG_C"),
      "<pFeature>Output</pFeature>|<pFeature>Statistics</pFeature>|<pFeature>In_put</pFeature>|"
      "<pFeature>Trigger</pFeature>|<pFeature>FG_D</pFeature>|<pFeature>FG_C</pFeature>|"
      "</Category>|<Category Name='Output'  >|<pFeature>FG_E</pFeature>|<pFeature>FG_E</pFeature>|"
      "</Category>|<Category Name='Statistics'  >|<pFeature>FG_G</pFeature>|"
      "<pFeature>FG_A</pFeature>|</Category>|<Category Name='In_put'  >|<pFeature>FG_F</pFeature>|"
      "</Category>|<Category Name='Trigger'  >|<pFeature>FG_B</pFeature>|</Category>|");
}

TEST_F(GenApiDocument, WhatCannotBeDescribedLeavesNoTrace) {
  expectDocument("", "</Category>|", "A&amp;B", "A&B");
  RegisterInfo* direct = group("Direct Register Access");
  add(direct, "DRA", "DRA_A");
  RegisterInfo* other = group("Other");
  registry_.addInfoUInt(other, "n", "FG_N", 0, 1, 0, 7, 1, 0, "", 1, kProcess);
  registry_.addInfoUInt64(other, "n", "FG_N", 0, 1, 0, 7, 1, 1, "", 1, kProcess);
  registry_.addInfoInt64(other, "n", "FG_N", 0, 1, 0, 7, 1, 1, "", 1, kProcess);
  registry_.addInfoUIntField(other, "n", "FG_N", 0, 1, 0, 0, 7, 1, 1, "", 1, kProcess);
  registry_.addInfoIntField(other, "n", "FG_N", 0, 1, 0, 0, 7, 1, 1, "", 1, kProcess);
  registry_.addInfoDoubleField(other, "n", "FG_N", 0, 1, 0, 0, 7, 1, 1, "", 1, kProcess);
  expectDocument("", "</Category>|");

  // Only the group that holds a parameter decides; a title may leave nothing for a name.
  add(group("\xB5", direct), "b", "FG_B");
  expectDocument(plain("b", "FG_B"),
                 "<pFeature></pFeature>|</Category>|<Category Name=''  >|"
                 "<pFeature>FG_B</pFeature>|</Category>|");
}

TEST_F(GenApiDocument, AccessIsReadFromTwoBitsAndTextsAreEscaped) {
  std::string blocks;
  std::string features;
  const char* const access[] = {"", "RO", "WO", "RW"};
  RegisterInfo* parent = group("");
  for (int mode = 0; mode < 8; ++mode) {
    add(parent, "<A&B> \"\xB5\xFF\" 'c'", "F", mode);
    blocks += plain("&lt;A&amp;B&gt; &quot;\xB5\xFF&quot; &apos;c&apos;", "F", access[mode % 4]);
    features += "<pFeature>F</pFeature>|";
  }
  expectDocument(blocks, features + "</Category>|");
}

TEST_F(GenApiDocument, EnumerationEntriesAreSortedByValueAndTheLastOfAValueCounts) {
  RegisterInfo* node = registry_.addInfoEnum(group(""), "", "F", 6, 1, 1, 1, "", 0, kProcess);
  const std::pair<int, const char*> entries[] = {
      {10, "TEN"}, {-1, "<"}, {10, "LAST"}, {2, "TWO"}, {3, nullptr}};
  for (int i = 0; i < 5; ++i)
    registry_.addEnumNameValue(node, i, "text", entries[i].first, entries[i].second);
  expectDocument(
      R"(<Enumeration Name='F'>|<EnumEntry Name="&lt;">|<Value>-1</Value>|</EnumEntry>|)"
      R"(<EnumEntry Name="TWO">|<Value>2</Value>|</EnumEntry>|<EnumEntry Name="LAST">|)"
      R"(<Value>10</Value>|</EnumEntry>|<pValue>F_Reg</pValue>|</Enumeration>||)"
      R"(<IntReg Name="F_Reg">|<Length>4</Length>|<AccessMode>RO</AccessMode>|)"
      R"(<pPort>DevicePort</pPort>|<Sign>Unsigned</Sign>|<Endianess>LittleEndian</Endianess>|)"
      R"(</IntReg>~)",
      "<pFeature>F</pFeature>|</Category>|");
}

TEST(GenApiNames, KeepLettersAndBehindTheFirstByteDigitsAndUnderscores) {
  const std::pair<const char*, const char*> rows[] = {
      {"Pulse Form Generator 0", "PulseFormGenerator0"},
      {"_x1", "x1"},
      {"1a", "a"},
      {" 1_a", "1_a"},
      {"azAZ09@[`{/:\xB5\xE4", "azAZ09"},
      {"", ""}};
  for (const auto& [text, name] : rows) EXPECT_EQ(xmlNameFilter(text), name);
}

TEST(GenApiCategory, ListsItsChildrenAndFeaturesInOrder) {
  Category root("Root");
  Category& first = root.addChild("Twin");
  root.addChild("Twin").addFeature("F");
  EXPECT_EQ(root.getName(), "Root");
  EXPECT_EQ(root.getChildCount(), 2U);
  EXPECT_EQ(root.getChild("Twin"), &first);
  EXPECT_EQ(root.getChild(size_t{0}), &first);
  EXPECT_TRUE(root.getChild(1)->hasFeature("F"));
  EXPECT_EQ(root.getChild(2), nullptr);
  EXPECT_TRUE(root.hasChild("Twin"));
  EXPECT_FALSE(root.hasChild("twin"));

  for (const char* feature : {"B", "A", "B"}) first.addFeature(feature);
  EXPECT_EQ(first.getFeatureCount(), 3U);
  EXPECT_EQ(first.getFeature(0) + first.getFeature(1) + first.getFeature(2), "BAB");
  EXPECT_EQ(first.getFeature(3), "");
  EXPECT_FALSE(first.hasFeature("b"));
}

}  // namespace
}  // namespace velmora
