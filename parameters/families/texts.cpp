#include "parameters/families/texts.h"

#include <string_view>

#include "parameters/port/applet_identity.h"
#include "parameters/port/parameter_table.h"
#include "parameters/port/setting.h"

namespace velmora::texts {
namespace {

void storeText(Port& port, std::string_view text, void* value, int type) {
  if (type == FG_PARAM_TYPE_STRING) {
    store(value, port.strings.handOut(text));
  } else {
    auto* const out = static_cast<char*>(value);
    out[text.copy(out, text.size())] = '\0';
  }
}

}  // namespace

void getHapFile(Port& port, const ParameterRow&, void* value, int type) {
  storeText(port, kHapFileName, value, type);
}

void getParameterDescription(Port& port, const ParameterRow&, void* value, int type) {
  const ParameterRow* described = findParameter(std::string_view(static_cast<const char*>(value)));
  storeText(port, described ? described->description : "-", value, type);
}

}  // namespace velmora::texts
