/// Copies a port's GenApi document into the caller's buffer.
#include <algorithm>
#include <new>
#include <string>

#include "paraminfo/parameter_info.h"
#include "paraminfo/parameter_info_builder_xml.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {

int FgKtWrapper::Fg_getParameterInfoXML(Fg_Struct*, int port, char* buffer, std::size_t* size) {
  if (!size || (buffer && *size == 0)) return fgError().setErr(VELMORA_BUFFER_TOO_SMALL);
  if (!Fg_getParameterInfo(port)) return fgError().setErr(VELMORA_NO_DESCRIPTION);

  std::string text;
  try {
    text = ParameterInfoBuilderXML(*parameterInfo(), getAppletName(), port).build();
  } catch (const std::bad_alloc&) {
    return fgError().setErr(VELMORA_OUT_OF_MEMORY);
  }
  if (buffer) {
    if (*size <= text.size()) return fgError().setErr(VELMORA_BUFFER_TOO_SMALL);
    std::fill(std::copy(text.begin(), text.end(), buffer), buffer + *size, '\0');
  }
  *size = text.size() + 1;
  return fgError().setErr(VELMORA_OK);
}

}  // namespace velmora
