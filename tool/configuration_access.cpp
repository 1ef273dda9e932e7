#include "tool/configuration_access.h"

#include <fmt/format.h>

#include <array>
#include <set>
#include <utility>

#include "config/config_file_parser.h"
#include "tool/code_text.h"
#include "tool/configuration_file.h"
#include "tool/text.h"
#include "velmora/info.h"

namespace velmora::tool {
namespace {

constexpr std::size_t kTextSize = 256;
using Text = std::array<char, kTextSize>;

/// The first thing that a load looks for in the header and does not find; empty when nothing is
/// missing.
std::string missingInHeader(const AppletLibrary& library, Fg_ConfigFileParser& parser) {
  Text text;
  for (const char* key : {"Hersteller", "Typ"})
    if (parser.parseKeyFromLine(key, text.data()) != 0) return fmt::format("no key {}", key);
  void* name = nullptr;
  library.info(VELMORA_INFO_NAME, 0, 0, nullptr, &name);
  if (text.data() != utf8(static_cast<const char*>(name)))
    return fmt::format("made for another applet, '{}'", text.data());
  int number = 0;
  if (parser.parseIntKeyFromHeader("AktivePort", &number) == 0) return {};
  if (parser.parseKeyFromLine("[Kamerasektion]", text.data()) != 0)
    return "no section [Kamerasektion]";
  if (parser.parseKeyFromLine("AktivePort=", text.data()) != 0) return "no key AktivePort";
  return "AktivePort does not follow a line that is [Kamerasektion] and ends in a single line feed";
}

/// The same for the sections of the ports.
std::string missingInPorts(Session& session, Fg_ConfigFileParser& parser) {
  const std::vector<std::string> keys = loadedKeys(session);
  for (int port = 0; port < static_cast<int>(kPorts); ++port) {
    const std::string section = Fg_ConfigFileParser::getPortString(port);
    Text text;
    if (parser.parseKeyFromLine(section.c_str(), text.data()) != 0) return "no section " + section;
    int number = 0;
    for (const std::string& key : keys)
      if (parser.parseIntKeySection(port, key.c_str(), &number) != 0)
        return fmt::format("no usable key {} in section {} or a later one", key, section);
  }
  return {};
}

/// Why a load failed, as far as its code does not tell; may be empty.
std::string reason(Session& session, const std::string& file) {
  if (std::string why = whyUnreadable(file); !why.empty()) return why;
  Fg_ConfigFileParser parser(nullptr, file.c_str(), true);
  std::string missing = missingInHeader(session.library(), parser);
  if (missing.empty()) missing = missingInPorts(session, parser);
  if (const unsigned line = firstWindowsLine(file); line > 0)
    missing += fmt::format("{}Windows line ends in line {}", missing.empty() ? "" : "; ", line);
  return missing;
}

/// The keys that a load looks for and a port's section of a saved file does not have.
Failures missingInSaved(Session& session, const std::string& file) {
  std::set<std::pair<unsigned, std::string>> present;
  for (const ConfigurationEntry& entry : readConfiguration(file))
    if (entry.port) present.emplace(*entry.port, entry.key);
  Failures missing;
  const std::vector<std::string> keys = loadedKeys(session);
  for (unsigned port = 0; port < kPorts; ++port)
    for (const std::string& key : keys)
      if (!present.contains({port, key}))
        missing.add(
            Failure(fmt::format("{}: without {}@{}, which cannot be read", file, key, port)));
  return missing;
}

}  // namespace

Failures writeConfiguration(Session& session, const std::string& file) {
  const int code = session.library().saveConfig(session.grabber(), file.c_str());
  if (code != 0) {
    const std::string why = whyUnwritable(file);
    throw Failure(
        fmt::format("{}: not saved: {}{}{}", file, codeText(code), why.empty() ? "" : "; ", why));
  }
  return missingInSaved(session, file);
}

std::vector<LoadDifference> applyConfiguration(Session& session, const std::string& file) {
  const DesignWrites written;
  const int code = session.library().loadConfig(session.grabber(), file.c_str());
  if (code != 0) {
    const std::string why = reason(session, file);
    throw Failure(
        fmt::format("{}: not loaded: {}{}{}", file, codeText(code), why.empty() ? "" : "; ", why));
  }
  return differencesAfterLoad(session, file, written);
}

Json differencesJson(const std::string& file, const std::vector<LoadDifference>& differences) {
  Json list = Json::array();
  for (const LoadDifference& difference : differences)
    list.push_back({{"name", difference.name},
                    {"port", difference.port ? Json(*difference.port) : Json()},
                    {"line", difference.line},
                    {"text", difference.text},
                    {"reason", difference.reason},
                    {"value", difference.value}});
  return {{"file", file}, {"ports", kPorts}, {"differences", list}};
}

}  // namespace velmora::tool
