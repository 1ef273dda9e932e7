/// Saves and loads configuration files; the applet contributes its own settings.
#include <clocale>
#include <cstring>

#include "config/config_file_parser.h"
#include "wrapper/fg_kt_wrapper.h"
#include "wrapper/file_replacement.h"

namespace velmora {
namespace {

constexpr std::size_t kValueSize = 256;

/// Whether the file's header is that of this applet. The keys are the file format's.
bool isConfigurationOf(const char* appletName, Fg_ConfigFileParser& parser) {
  char text[kValueSize];
  int activePort = 0;
  return parser.parseKeyFromLine("Hersteller", text) == VELMORA_OK &&
         parser.parseKeyFromLine("Typ", text) == VELMORA_OK && std::strcmp(text, appletName) == 0 &&
         parser.parseIntKeyFromHeader("AktivePort", &activePort) == VELMORA_OK;
}

}  // namespace

bool FgKtWrapper::writeConfiguration(const char* file) {
  Fg_ConfigFileParser parser(nullptr, nullptr, false);
  if (!parser.setSaveFile(file)) return false;
  parser.writeConfigFileHeader();
  parser.writeConfigFile("Hersteller", getVendorName());
  parser.writeConfigFile("Typ", getAppletName());
  parser.writeConfigFile("Version", getAppletVersion());
  parser.writeConfigFileIntKey("LoadAppletId", getLoadAppletId());
  parser.writeConfigFileIntKey("AktivePort", 0);
  saveParameters(parser);
  // A full disk shows only here; a truncated file must not count as saved.
  return parser.close();
}

int FgKtWrapper::Fg_saveConfig(Fg_Struct*, const char* file) {
  std::setlocale(LC_ALL, "English");  // A locale of this name need not exist.
  const bool saved =
      Fg_ConfigFileParser(nullptr, nullptr, false).checkFileType(file) &&
      replaceFile(file, [this](const char* written) { return writeConfiguration(written); });
  return fgError().setErr(saved ? VELMORA_OK : VELMORA_CONFIG_NOT_SAVED);
}

int FgKtWrapper::Fg_loadConfig(Fg_Struct*, const char* file) {
  std::setlocale(LC_ALL, "English");  // A locale of this name need not exist.
  Fg_ConfigFileParser parser(nullptr, file, true);
  if (!parser.checkFileExist(file) || !parser.checkFileType(file)) {
    setError(VELMORA_CONFIG_NOT_LOADED);
    return VELMORA_NO_CONFIG_FILE;
  }
  const bool loaded = isConfigurationOf(getAppletName(), parser) && loadParameters(parser);
  return fgError().setErr(loaded ? VELMORA_OK : VELMORA_CONFIG_NOT_LOADED);
}

}  // namespace velmora
