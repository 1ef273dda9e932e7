/// info
#include <fmt/format.h>

#include <array>
#include <cstdint>

#include "tool/commands.h"
#include "tool/error_text.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

/// An answer of `Info` and all that it wrote.
struct Answer {
  int result = 0;
  std::uint64_t number = 0;
  void* pointer = nullptr;
};

using Show = std::string (*)(const Answer&);

std::string text(const Answer& answer) {
  return answer.pointer != nullptr ? utf8(static_cast<const char*>(answer.pointer)) : "none";
}
std::string block(const Answer& answer) { return fmt::format("{} bytes", answer.number); }
std::string result(const Answer& answer) { return fmt::format("{}", answer.result); }
std::string number(const Answer& answer) { return fmt::format("{}", answer.number); }
std::string handle(const Answer& answer) {
  return answer.number != 0 ? fmt::format("{:#x}", answer.number) : "none";
}

struct Property {
  int number;
  const char* name;  ///< Empty where only the runtime knows what the answer means.
  Show show;
};

constexpr int kIcon = 0x411;
constexpr int kValueOfName = 0x1100;

constexpr Property kProperties[] = {
    {0x1050, "name", text},        {0x1060, "version", text},
    {0x1070, "build", text},       {0x1000, "description", text},
    {0x1010, "category", text},    {0x1020, "tags", text},
    {0x413, "unique id", text},    {0x414, "", text},
    {kIcon, "icon", block},        {0x412, "design image", block},
    {0x880, "board type", result}, {0x1200, "ports", result},
    {0x1030, "device", handle},    {0x1040, "design", handle},
    {0x350, "", result},           {0x410, "", result},
    {0x415, "", result},           {0x700, "", result},
    {0x750, "", result},           {0x760, "", result},
    {0x800, "", result},           {0x870, "", result},
    {0x890, "", result},           {0x900, "", number},
    {0xa00, "", result},           {0xb00, "", result},
    {0xc00, "", result},           {0xd00, "", result},
};

/// What the applet is asked for, since it does not list its value names.
constexpr const char* kValueNames[] = {"MONO8",
                                       "MONO8_SIGNED",
                                       "MONO10",
                                       "MONO10_PACKED",
                                       "MONO12",
                                       "MONO12_PACKED",
                                       "MONO14",
                                       "MONO16",
                                       "FG_COL24",
                                       "FG_LEFT_ALIGNED",
                                       "FG_RIGHT_ALIGNED",
                                       "GreenFollowedByRed",
                                       "GreenFollowedByBlue",
                                       "RedFollowedByGreen",
                                       "BlueFollowedByGreen",
                                       "FG_CAMPORT",
                                       "FG_GENERATOR",
                                       "FG_ON",
                                       "FG_OFF",
                                       "FG_YES",
                                       "FG_NO",
                                       "FG_APPLY",
                                       "ATM_GENERATOR",
                                       "ATM_EXTERNAL",
                                       "ATM_SOFTWARE",
                                       "ATM_SYNCHRONIZED",
                                       "TS_ACTIVE",
                                       "TS_ASYNC_STOP",
                                       "TS_SYNC_STOP",
                                       "LOW_ACTIVE",
                                       "HIGH_ACTIVE",
                                       "IS_BUSY",
                                       "IS_NOT_BUSY",
                                       "PULSEGEN0",
                                       "PULSEGEN1",
                                       "GND",
                                       "VCC",
                                       "NOT_PULSEGEN0",
                                       "NOT_PULSEGEN1",
                                       "INPUT_BYPASS",
                                       "NOT_INPUT_BYPASS",
                                       "TRGINSRC_0",
                                       "TRGINSRC_1",
                                       "TRGINSRC_2",
                                       "TRGINSRC_3",
                                       "TRGINSRC_4",
                                       "TRGINSRC_5",
                                       "TRGINSRC_6",
                                       "TRGINSRC_7"};

constexpr int kPortMapping[] = {0x1210, 0x1220, 0x1230, 0x1240, 0x1250, 0x1260};

Answer ask(const AppletLibrary& library, int property, int index = 0) {
  Answer answer;
  answer.result = library.info(property, index, 0, &answer.number, &answer.pointer);
  return answer;
}

std::string shown(const Answer& answer, Show show) {
  return answer.result < 0 ? codeText(answer.result) : show(answer);
}

void printProperties(const AppletLibrary& library) {
  Table table;
  for (const Property& property : kProperties)
    table.add({fmt::format("{:#06x}", property.number), property.name,
               shown(ask(library, property.number), property.show)});
  table.print();
}

void printPortMapping(const AppletLibrary& library) {
  Table table;
  std::vector<std::string> head{"mapping"};
  for (unsigned port = 0; port < kPorts; ++port) head.push_back(fmt::format("port {}", port));
  table.add(head);
  for (const int property : kPortMapping) {
    std::vector<std::string> row{fmt::format("{:#06x}", property)};
    for (unsigned port = 0; port < kPorts; ++port)
      row.push_back(shown(ask(library, property, static_cast<int>(port)), result));
    table.add(row);
  }
  table.print();
}

void printValueNames(const AppletLibrary& library) {
  Table table;
  table.add({"value name", "number"});
  for (const char* name : kValueNames) {
    const int value = library.info(kValueOfName, 0, 0, const_cast<char*>(name), nullptr);
    table.add({name, value < 0 ? codeText(value) : fmt::format("{}", value)});
  }
  table.print();
}

}  // namespace

void showInfo(const AppletLibrary& library, const std::string& iconFile) {
  printProperties(library);
  fmt::print("\n");
  printPortMapping(library);
  fmt::print("\n");
  printValueNames(library);
  if (iconFile.empty()) return;
  const Answer icon = ask(library, kIcon);
  if (icon.result < 0 || icon.pointer == nullptr) {
    throw Failure(fmt::format("no icon: {}", codeText(icon.result)));
  }
  writeFile(iconFile, {static_cast<const char*>(icon.pointer), icon.number});
}

}  // namespace velmora::tool
