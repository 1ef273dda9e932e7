/// save, load
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string_view>

#include "config/config_file_parser.h"
#include "tool/code_text.h"
#include "tool/commands.h"
#include "tool/parameter_description.h"
#include "tool/text.h"
#include "velmora/info.h"
#include "velmora/parameters.h"

namespace velmora::tool {
namespace {

constexpr std::size_t kTextSize = 256;
using Text = std::array<char, kTextSize>;

/// Writable parameters that a load does not look for: commands, which are not saved, and the
/// digital outputs, which are saved for information only.
constexpr int kNotLoaded[] = {
    FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR,
    FG_SENDSOFTWARETRIGGER,
    FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR,
    FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR,
    FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR,
    FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR,
    FG_DIGIO_OUTPUT,
};

/// Whether a load looks for a parameter. Direct-access parameters are not kept in files.
bool isLoaded(Session& session, const std::string& name, int id) {
  if (!name.starts_with("FG_") || std::ranges::find(kNotLoaded, id) != std::end(kNotLoaded))
    return false;
  const RegisterInfo* const node = findNode(session, 0, id);
  return node && (node->accessMode & REGISTER_INFO_WRITABLE) != 0;
}

/// The keys of a port's section in the order of a file.
std::vector<std::string> loadedKeys(Session& session) {
  std::vector<std::string> keys;
  const AppletLibrary& library = session.library();
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const std::string name = library.parameterName(session.grabber(), i);
    if (isLoaded(session, name, library.parameterId(session.grabber(), i))) keys.push_back(name);
  }
  return keys;
}

/// The first thing that a load looks for in the header and does not find; empty when nothing is
/// missing.
std::string missingInHeader(const AppletLibrary& library, Fg_ConfigFileParser& parser) {
  Text text;
  for (const char* key : {"Hersteller", "Typ"})
    if (parser.parseKeyFromLine(key, text.data()) != 0) return fmt::format("no key {}", key);
  void* name = nullptr;
  library.info(VELMORA_INFO_NAME, 0, 0, nullptr, &name);
  if (std::string_view(text.data()) != static_cast<const char*>(name))
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
  Fg_ConfigFileParser parser(nullptr, file.c_str(), true);
  if (!parser.checkFileType(file.c_str())) return "its name has to contain .mcf";
  if (std::filesystem::is_directory(file)) return "it is a directory";
  if (!parser.checkFileExist(file.c_str())) return {};
  const std::string missing = missingInHeader(session.library(), parser);
  return missing.empty() ? missingInPorts(session, parser) : missing;
}

/// The keys that a load looks for and a port's section of a saved file does not have.
Failures missingInSaved(Session& session, const std::string& file) {
  std::set<std::string> present;
  std::ifstream stream(file);
  std::string section;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with('[')) section = line;
    present.insert(section + line.substr(0, line.find('=')));
  }
  Failures missing;
  const std::vector<std::string> keys = loadedKeys(session);
  for (unsigned port = 0; port < kPorts; ++port)
    for (const std::string& key : keys)
      if (!present.contains(Fg_ConfigFileParser::getPortString(static_cast<int>(port)) + key))
        missing.add(
            Failure(fmt::format("{}: without {}@{}, which cannot be read", file, key, port)));
  return missing;
}

}  // namespace

void saveConfiguration(Session& session, const std::string& file) {
  const int code = session.library().saveConfig(session.grabber(), file.c_str());
  if (code != 0) {
    const bool named = Fg_ConfigFileParser(nullptr, nullptr, true).checkFileType(file.c_str());
    throw Failure(fmt::format("{}: not saved: {}{}", file, codeText(code),
                              named ? "" : "; its name has to contain .mcf"));
  }
  printLine(fmt::format("{}: settings of {} ports saved", file, kPorts));
  missingInSaved(session, file).throwIfAny();
}

void loadConfiguration(Session& session, const std::string& file) {
  const int code = session.library().loadConfig(session.grabber(), file.c_str());
  if (code == 0) {
    printLine(fmt::format("{}: settings of {} ports loaded", file, kPorts));
    return;
  }
  const std::string why = reason(session, file);
  throw Failure(
      fmt::format("{}: not loaded: {}{}{}", file, codeText(code), why.empty() ? "" : "; ", why));
}

}  // namespace velmora::tool
