/// save, load
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <string_view>

#include "config/config_file_parser.h"
#include "tool/commands.h"
#include "tool/description.h"
#include "tool/error_text.h"
#include "velmora/parameters.h"

namespace velmora::tool {
namespace {

constexpr int kAppletName = 0x1050;        // Property of `Info`.
constexpr int kFirstDirectId = 1'000'000;  // Direct-access parameters are not kept in files.
constexpr std::size_t kTextSize = 256;
using Text = std::array<char, kTextSize>;

/// Writable parameters that a load does not look for: commands, which are not kept at all, and the
/// digital outputs, which are kept for people to see.
constexpr int kNotLoaded[] = {
    FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR,
    FG_SENDSOFTWARETRIGGER,
    FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR,
    FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR,
    FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR,
    FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR,
    FG_DIGIO_OUTPUT,
};

/// The keys of a port's section in the order of a file.
std::vector<std::string> loadedKeys(Session& session, unsigned port) {
  std::vector<std::string> keys;
  const AppletLibrary& library = session.library();
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const int id = library.parameterId(session.grabber(), i);
    const RegisterInfo* const node = id < kFirstDirectId ? findNode(session, port, id) : nullptr;
    const bool writable = node != nullptr && (node->accessMode & REGISTER_INFO_WRITABLE) != 0;
    if (writable &&
        std::find(std::begin(kNotLoaded), std::end(kNotLoaded), id) == std::end(kNotLoaded)) {
      keys.emplace_back(library.parameterName(session.grabber(), i));
    }
  }
  return keys;
}

std::string missingInHeader(const AppletLibrary& library, Fg_ConfigFileParser& parser) {
  Text text;
  int number = 0;
  if (parser.parseKeyFromLine("Hersteller", text.data()) != 0) return "no key Hersteller";
  if (parser.parseKeyFromLine("Typ", text.data()) != 0) return "no key Typ";
  void* name = nullptr;
  library.info(kAppletName, 0, 0, nullptr, &name);
  if (std::string_view(text.data()) != static_cast<const char*>(name)) {
    return fmt::format("made for another applet, '{}'", text.data());
  }
  if (parser.parseIntKeyFromHeader("AktivePort", &number) == 0) return {};
  const bool section = parser.parseKeyFromLine("[Kamerasektion]", text.data()) == 0;
  const bool key = parser.parseKeyFromLine("AktivePort=", text.data()) == 0;
  return !section ? "no section [Kamerasektion]"
         : !key   ? "no key AktivePort"
                  : "AktivePort does not follow a line that is [Kamerasektion] and ends in a "
                    "single line feed";
}

/// The first thing that a load looks for and does not find; empty when nothing is missing.
std::string firstMissing(Session& session, const std::string& file) {
  Fg_ConfigFileParser parser(nullptr, file.c_str(), true);
  if (std::string missing = missingInHeader(session.library(), parser); !missing.empty())
    return missing;
  for (unsigned port = 0; port < kPorts; ++port) {
    const std::string section = Fg_ConfigFileParser::getPortString(static_cast<int>(port));
    Text text;
    if (parser.parseKeyFromLine(section.c_str(), text.data()) != 0) return "no section " + section;
    for (const std::string& key : loadedKeys(session, port)) {
      int number = 0;
      if (parser.parseIntKeySection(static_cast<int>(port), key.c_str(), &number) != 0)
        return fmt::format("no usable key {} in section {} or a later one", key, section);
    }
  }
  return {};
}

}  // namespace

void saveConfiguration(Session& session, const std::string& file) {
  const int code = session.library().saveConfig(session.grabber(), file.c_str());
  if (code != 0) {
    const bool named = Fg_ConfigFileParser(nullptr, nullptr, true).checkFileType(file.c_str());
    throw Failure(fmt::format("{}: not saved: {}{}", file, codeText(code),
                              named ? "" : "; its name has to contain .mcf"));
  }
  fmt::print("{}: settings of {} ports saved\n", file, kPorts);
}

void loadConfiguration(Session& session, const std::string& file) {
  const int code = session.library().loadConfig(session.grabber(), file.c_str());
  if (code == 0) {
    fmt::print("{}: settings of {} ports loaded\n", file, kPorts);
    return;
  }
  std::string why;
  const Fg_ConfigFileParser parser(nullptr, nullptr, true);
  if (!parser.checkFileType(file.c_str())) {
    why = "; its name has to contain .mcf";
  } else if (std::filesystem::is_directory(file)) {
    why = "; it is a directory";
  } else if (parser.checkFileExist(file.c_str())) {
    if (const std::string missing = firstMissing(session, file); !missing.empty())
      why = "; " + missing;
  }
  throw Failure(fmt::format("{}: not loaded: {}{}", file, codeText(code), why));
}

}  // namespace velmora::tool
