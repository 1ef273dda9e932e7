#include "parameters/table/catalogue.h"

#include <algorithm>
#include <array>

#include "parameters/table/parameter_rows.h"

namespace velmora {
namespace {

/// A group's title, or a parameter.
struct Line {
  int level;
  const char* title = nullptr;
  int parameter = 0;

  constexpr Line(int l, const char* t) : level(l), title(t) {}
  constexpr Line(int l, VelmoraParameter p) : level(l), parameter(p) {}
};

/// The description of a port in the order in which its nodes are created.
constexpr Line kLines[] = {
    {0, "Camera"},
    {1, FG_GBE_CAMTYPE},
    {0, "ROI"},
    {1, FG_WIDTH},
    {1, FG_HEIGHT},
    {1, FG_XOFFSET},
    {1, FG_YOFFSET},
    {0, "Trigger"},
    {1, "Trigger Input"},
    {2, "External"},
    {3, FG_TRIGGERIN_DEBOUNCE},
    {3, FG_DIGIO_INPUT},
    {3, FG_TRIGGERIN_SRC},
    {3, FG_TRIGGERIN_POLARITY},
    {3, FG_TRIGGERIN_DOWNSCALE},
    {3, FG_TRIGGERIN_DOWNSCALE_PHASE},
    {3, FG_TRIGGERIN_BYPASS_SRC},
    {2, "Software Trigger"},
    {3, FG_SENDSOFTWARETRIGGER},
    {3, FG_SOFTWARETRIGGER_IS_BUSY},
    {3, FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL},
    {2, "Statistics"},
    {3, FG_TRIGGERIN_STATS_PULSECOUNT},
    {3, FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR},
    {3, FG_TRIGGERIN_STATS_FREQUENCY},
    {3, FG_TRIGGERIN_STATS_MINFREQUENCY},
    {3, FG_TRIGGERIN_STATS_MAXFREQUENCY},
    {3, FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR},
    {1, "Sequencer"},
    {2, FG_TRIGGER_MULTIPLY_PULSES},
    {1, "Queue"},
    {2, FG_TRIGGERQUEUE_MODE},
    {2, FG_TRIGGERQUEUE_FILLLEVEL},
    {2, FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD},
    {2, FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD},
    {1, "Pulse Form Generator 0"},
    {2, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE},
    {2, FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE},
    {2, FG_TRIGGER_PULSEFORMGEN0_DELAY},
    {2, FG_TRIGGER_PULSEFORMGEN0_WIDTH},
    {1, "Pulse Form Generator 1"},
    {2, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE},
    {2, FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE},
    {2, FG_TRIGGER_PULSEFORMGEN1_DELAY},
    {2, FG_TRIGGER_PULSEFORMGEN1_WIDTH},
    {1, "Camera Action Command"},
    {2, FG_CAMERA_ACTION_COMMAND_SOURCE},
    {2, FG_CAMERA_ACTION_COMMAND_PENDING_COUNT},
    {1, "Digital Output"},
    {2, "Statistics"},
    {3, FG_TRIGGER_EXCEEDED_PERIOD_LIMITS},
    {3, FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR},
    {3, FG_TRIGGEROUT_STATS_SOURCE},
    {3, FG_TRIGGEROUT_STATS_PULSECOUNT},
    {3, FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR},
    {3, FG_MISSING_CAMERA_FRAME_RESPONSE},
    {3, FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR},
    {2, FG_TRIGGEROUT_SELECT0},
    {2, FG_TRIGGEROUT_SELECT1},
    {2, FG_DIGIO_OUTPUT},
    {1, "Output Event"},
    {2, FG_TRIGGER_OUTPUT_EVENT_SELECT},
    {1, FG_AREATRIGGERMODE},
    {1, FG_TRIGGERSTATE},
    {1, FG_TRIGGER_FRAMESPERSECOND},
    {0, "Bayer Filter"},
    {1, FG_BAYERINIT},
    {1, FG_SCALINGFACTOR_BLUE},
    {1, FG_SCALINGFACTOR_GREEN},
    {1, FG_SCALINGFACTOR_RED},
    {0, "Output Format"},
    {1, FG_FORMAT},
    {1, FG_BITALIGNMENT},
    {1, FG_PIXELDEPTH},
    {0, "Camera Simulator"},
    {1, FG_GEN_ENABLE},
    {1, FG_GEN_START},
    {1, FG_GEN_WIDTH},
    {1, FG_GEN_HEIGHT},
    {1, FG_GEN_LINE_GAP},
    {1, FG_GEN_FREQ},
    {1, FG_GEN_ACCURACY},
    {1, FG_GEN_ROLL},
    {1, FG_GEN_ACTIVE},
    {1, FG_GEN_PASSIVE},
    {1, FG_GEN_LINE_WIDTH},
    {0, "Miscellaneous"},
    {1, FG_TIMEOUT},
    {1, FG_APPLET_VERSION},
    {1, FG_APPLET_REVISION},
    {1, FG_APPLET_ID},
    {1, FG_HAP_FILE},
    {1, FG_DMASTATUS},
    {1, FG_CAMSTATUS},
    {1, FG_CAMSTATUS_EXTENDED},
    {1, FG_FILLLEVEL},
    {1, FG_OVERFLOW},
};

consteval const ParameterRow& rowOf(int id) {
  for (const ParameterRow& row : rows::kParameters)
    if (row.id == id) return row;
  throw "a catalogue line without a row";
}

/// The lines with their rows; does not compile unless the lines are well-formed.
consteval auto checkedLines() {
  std::array<CatalogueLine, std::size(kLines)> lines{};
  int groupsAbove = 0;  // The levels that have a group at this point.
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& line = kLines[i];
    if (line.level < 0 || line.level > groupsAbove) throw "a level that has no parent";
    if (line.level >= kCatalogueLevels) throw "a level below the last one";
    if (line.title) {
      groupsAbove = line.level + 1;
      lines[i] = {line.level, line.title};
      continue;
    }
    if (line.level == 0) throw "a parameter without a group";
    if (!rowOf(line.parameter).display) throw "a parameter without a display text";
    lines[i] = {line.level, nullptr, &rowOf(line.parameter)};
  }
  for (const ParameterRow& row : rows::kParameters)
    if (std::ranges::count(kLines, row.id, &Line::parameter) != (row.display ? 1 : 0))
      throw "a shown parameter has one catalogue line";
  return lines;
}

constexpr auto kCatalogue = checkedLines();

}  // namespace

std::span<const CatalogueLine> catalogue() { return kCatalogue; }

}  // namespace velmora
