/// info
#include <fmt/format.h>

#include <cstdint>
#include <sstream>

#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_json.h"
#include "tool/text.h"
#include "velmora/info.h"

namespace velmora::tool {
namespace {

/// What `Info` returned and wrote.
struct Answer {
  int result = 0;
  std::uint64_t number = 0;
  void* pointer = nullptr;
};

using Show = Json (*)(const Answer&);

Json text(const Answer& answer) {
  return answer.pointer ? utf8(static_cast<const char*>(answer.pointer)) : "none";
}
Json block(const Answer& answer) { return fmt::format("{} bytes", answer.number); }
Json result(const Answer& answer) { return answer.result; }
Json number(const Answer& answer) { return answer.number; }
Json handle(const Answer& answer) {
  return answer.number != 0 ? fmt::format("{:#x}", answer.number) : "none";
}

struct Property {
  int number;
  const char* name;  ///< Empty where only the runtime knows what the answer means.
  Show show;
};

constexpr Property kProperties[] = {
    {VELMORA_INFO_NAME, "name", text},
    {VELMORA_INFO_VERSION, "version", text},
    {VELMORA_INFO_BUILD_VERSION, "build", text},
    {VELMORA_INFO_DESCRIPTION, "description", text},
    {VELMORA_INFO_CATEGORY, "category", text},
    {VELMORA_INFO_TAGS, "tags", text},
    {VELMORA_INFO_UNIQUE_ID, "unique id", text},
    {VELMORA_INFO_RUNTIME_0414, "", text},
    {VELMORA_INFO_ICON, "icon", block},
    {VELMORA_INFO_DESIGN_IMAGE, "design image", block},
    {VELMORA_INFO_BOARD_TYPE, "board type", result},
    {VELMORA_INFO_PORTS, "ports", result},
    {VELMORA_INFO_DEVICE, "device", handle},
    {VELMORA_INFO_DESIGN, "design", handle},
    {VELMORA_INFO_RUNTIME_0350, "", result},
    {VELMORA_INFO_RUNTIME_0410, "", result},
    {VELMORA_INFO_RUNTIME_0415, "", result},
    {VELMORA_INFO_RUNTIME_0700, "", result},
    {VELMORA_INFO_RUNTIME_0750, "", result},
    {VELMORA_INFO_RUNTIME_0760, "", result},
    {VELMORA_INFO_RUNTIME_0800, "", result},
    {VELMORA_INFO_RUNTIME_0870, "", result},
    {VELMORA_INFO_RUNTIME_0890, "", result},
    {VELMORA_INFO_RUNTIME_0900, "", number},
    {VELMORA_INFO_RUNTIME_0A00, "", result},
    {VELMORA_INFO_RUNTIME_0B00, "", result},
    {VELMORA_INFO_RUNTIME_0C00, "", result},
    {VELMORA_INFO_RUNTIME_0D00, "", result},
};

constexpr int kPortMapping[] = {VELMORA_INFO_PORT_1210, VELMORA_INFO_PORT_1220,
                                VELMORA_INFO_PORT_1230, VELMORA_INFO_PORT_1240,
                                VELMORA_INFO_PORT_1250, VELMORA_INFO_PORT_1260};

/// The value names, which the applet knows but does not list.
constexpr const char* kValueNames =
    "MONO8 MONO8_SIGNED MONO10 MONO10_PACKED MONO12 MONO12_PACKED MONO14 MONO16 FG_COL24 "
    "FG_LEFT_ALIGNED FG_RIGHT_ALIGNED GreenFollowedByRed GreenFollowedByBlue "
    "RedFollowedByGreen BlueFollowedByGreen FG_CAMPORT FG_GENERATOR FG_ON FG_OFF FG_YES "
    "FG_NO FG_APPLY ATM_GENERATOR ATM_EXTERNAL ATM_SOFTWARE ATM_SYNCHRONIZED TS_ACTIVE "
    "TS_ASYNC_STOP TS_SYNC_STOP LOW_ACTIVE HIGH_ACTIVE IS_BUSY IS_NOT_BUSY PULSEGEN0 "
    "PULSEGEN1 GND VCC NOT_PULSEGEN0 NOT_PULSEGEN1 INPUT_BYPASS NOT_INPUT_BYPASS TRGINSRC_0 "
    "TRGINSRC_1 TRGINSRC_2 TRGINSRC_3 TRGINSRC_4 TRGINSRC_5 TRGINSRC_6 TRGINSRC_7";

Answer ask(const AppletLibrary& library, int property, int index = 0) {
  Answer answer;
  answer.result = library.info(property, index, 0, &answer.number, &answer.pointer);
  return answer;
}

Json shown(const Answer& answer, Show show) {
  return answer.result < 0 ? Json(codeText(answer.result)) : show(answer);
}

/// Without the quotes of a text.
std::string plain(const Json& answer) {
  return answer.is_string() ? answer.get<std::string>() : answer.dump();
}

Json propertiesJson(const AppletLibrary& library) {
  Json list = Json::array();
  for (const Property& property : kProperties)
    list.push_back({{"number", fmt::format("{:#06x}", property.number)},
                    {"name", property.name},
                    {"value", shown(ask(library, property.number), property.show)}});
  return list;
}

Json mappingJson(const AppletLibrary& library) {
  Json list = Json::array();
  for (const int property : kPortMapping) {
    list.push_back({{"number", fmt::format("{:#06x}", property)}, {"ports", Json::array()}});
    for (unsigned port = 0; port < kPorts; ++port)
      list.back()["ports"].push_back(shown(ask(library, property, static_cast<int>(port)), result));
  }
  return list;
}

Json valueNamesJson(const AppletLibrary& library) {
  Json values = Json::object();
  std::istringstream names(kValueNames);
  for (std::string name; names >> name;) {
    Answer answer;
    answer.result = library.info(VELMORA_INFO_VALUE_OF_NAME, 0, 0, name.data(), nullptr);
    values[name] = shown(answer, result);
  }
  return values;
}

void print(const Json& info) {
  Table properties;
  for (const Json& property : info["properties"])
    properties.add({property["number"], property["name"], plain(property["value"])});
  properties.print();
  printLine("");

  Table mapping;
  std::vector<std::string> head{"mapping"};
  for (unsigned port = 0; port < kPorts; ++port) head.push_back(fmt::format("port {}", port));
  mapping.add(head);
  for (const Json& property : info["mapping"]) {
    std::vector<std::string> row{property["number"]};
    for (const Json& answer : property["ports"]) row.push_back(plain(answer));
    mapping.add(row);
  }
  mapping.print();
  printLine("");

  Table values;
  values.add({"value name", "number"});
  for (const auto& [name, value] : info["valueNames"].items()) values.add({name, plain(value)});
  values.print();
}

}  // namespace

void showInfo(const AppletLibrary& library, const std::string& iconFile, bool json) {
  const Json info{{"properties", propertiesJson(library)},
                  {"mapping", mappingJson(library)},
                  {"valueNames", valueNamesJson(library)}};
  if (json)
    printJson(info);
  else
    print(info);
  if (iconFile.empty()) return;
  const Answer icon = ask(library, VELMORA_INFO_ICON);
  if (icon.result < 0 || !icon.pointer)
    throw Failure(fmt::format("no icon: {}", codeText(icon.result)));
  writeFile(iconFile, {static_cast<const char*>(icon.pointer), icon.number});
}

}  // namespace velmora::tool
