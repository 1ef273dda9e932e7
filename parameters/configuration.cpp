/// The port sections of a configuration file.
#include "config/config_file_parser.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "parameters/port/parameter_table.h"

namespace velmora {
namespace {

/// Writes what a get of the parameter returns; a value that cannot be read is left out.
void saveParameter(Fg_ConfigFileParser& parser, Port& port, const ParameterRow& row) {
  try {
    if (row.field.real) {
      double value = 0;
      row.get(port, row, &value, FG_PARAM_TYPE_DOUBLE);
      parser.writeConfigFileDoubleKey(row.name, value);
    } else {
      int value = 0;
      row.get(port, row, &value, FG_PARAM_TYPE_INT32);
      parser.writeConfigFileIntKey(row.name, value);
    }
  } catch (int) {
  }
}

/// Looks a parameter's key up in the port's section and hands its value to `use`; false when the
/// key is missing.
template <class Use>
bool loadParameter(Fg_ConfigFileParser& parser, Port& port, const ParameterRow& row,
                   const Use& use) {
  const int section = static_cast<int>(port.index);
  if (row.field.real) {
    double value = 0;
    if (parser.parseDoubleKeySection(section, row.name, &value) != VELMORA_OK) return false;
    use(port.settings.*row.field.real, value);
  } else {
    int value = 0;
    if (parser.parseIntKeySection(section, row.name, &value) != VELMORA_OK) return false;
    use(port.settings.*row.field.integer, static_cast<std::uint32_t>(value));
  }
  return true;
}

}  // namespace

void FgKtWrapperImpl::saveParameters(Fg_ConfigFileParser& parser) {
  for (Port& port : ports_) {
    parser.writeConfigFileByPort(static_cast<int>(port.index));
    for (const ParameterRow& row : listedParameters())
      if (row.persisted) saveParameter(parser, port, row);
  }
}

bool FgKtWrapperImpl::loadParameters(Fg_ConfigFileParser& parser) {
  for (Port& port : ports_) {
    // First only the settings, so that the checks below see the file's values of related
    // parameters.
    for (const ParameterRow& row : listedParameters()) {
      if (!row.storedBeforeLoad) continue;
      const auto store = [](auto& setting, auto value) { setting = value; };
      if (!loadParameter(parser, port, row, store)) return false;
    }
    for (const ParameterRow& row : listedParameters()) {
      if (!row.loaded) continue;
      const auto apply = [&](auto&, auto value) { setQuietly(port, row, value); };
      if (!loadParameter(parser, port, row, apply)) return false;
    }
  }
  return true;
}

}  // namespace velmora
