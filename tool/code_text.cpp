#include "tool/code_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "board/control.h"
#include "velmora/errors.h"

namespace velmora::tool {
namespace {

struct Meaning {
  int code;
  const char* text;
};

/// What the applet's codes mean. The codes of the board's libraries are the board's to explain.
constexpr Meaning kMeanings[] = {
    {VELMORA_OK, "success"},
    {VELMORA_NOTHING_FOUND, "nothing found"},
    {VELMORA_NOT_AVAILABLE, "read-only parameter, or a function that the runtime lacks"},
    {VELMORA_TRIGGER_BUSY, "the trigger generator is busy and the trigger queue is off"},
    {VELMORA_NO_DESIGN, "the design cannot be loaded or opened"},
    {VELMORA_BUFFER_TOO_SMALL, "buffer missing or too small"},
    {VELMORA_OUT_OF_MEMORY, "out of memory"},
    {VELMORA_NO_INSTANCE, "no applet instance"},
    {VELMORA_NO_RUNTIME, "acquisition runtime libvorn5.so is missing or has no init function"},
    {VELMORA_INVALID_ARGUMENT, "no such parameter, port, name, index or string"},
    {VELMORA_NOT_REPRESENTABLE,
     "no description of the port, or a value that its register cannot "
     "hold"},
    {VELMORA_NO_CONFIG_FILE, "no such file, or not a configuration file"},
    {VELMORA_DOWNSCALE_PERIOD, "downscale does not fit the trigger period"},
    {VELMORA_TRIGGER_PERIOD, "frame rate, delay or width does not fit the trigger period"},
    {VELMORA_NOT_SUPPORTED, "not supported"},
    {VELMORA_NOT_SOFTWARE_MODE, "the area trigger mode is not ATM_SOFTWARE"},
    {VELMORA_TRIGGER_NOT_ACTIVE, "the trigger state is not TS_ACTIVE"},
    {VELMORA_CONFIG_NOT_LOADED, "configuration not loaded"},
    {VELMORA_CONFIG_NOT_SAVED, "configuration file cannot be written"},
    {VELMORA_OUT_OF_RANGE, "value out of range or not one of the allowed values"},
    {VELMORA_STEP_VIOLATION, "value breaks a step rule"},
    {VELMORA_KEY_NOT_FOUND, "section or key not found"},
};

std::string_view meaning(std::int64_t code) {
  const auto* row = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                 [code](const Meaning& known) { return known.code == code; });
  if (row != std::end(kMeanings)) return row->text;
  const std::string_view text = board::errorText(static_cast<int>(code));
  return text.empty() ? "a code that this tool does not know" : text;
}

}  // namespace

std::string codeText(std::int64_t code) { return fmt::format("{}, {}", code, meaning(code)); }

}  // namespace velmora::tool
