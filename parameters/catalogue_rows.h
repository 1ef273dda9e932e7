#pragma once

#include <cstdint>

#include "velmora/parameters.h"

namespace velmora {

/// One line of the catalogue: a group, or a parameter with what its row in the parameter table does
/// not say. The level is the depth in the tree; a line belongs to the nearest group above it that
/// lies one level higher.
struct CatalogueLine {
  int level;
  const char* text;   ///< Group title or display text.
  int parameter = 0;  ///< SDK id; 0 for a group.
  int accessMode = 0;
  int qualifier = 0;
  const char* unit = nullptr;
};

// Texts are single bytes to the runtime's tools, the micro sign among them.
inline constexpr const char* kMicroseconds = "\xB5s";

/// The description of a port in the order in which its nodes are created.
inline constexpr CatalogueLine kCatalogue[] = {
    {0, "Camera"},
    {1, "Input Format", FG_GBE_CAMTYPE, 7, 1},
    {0, "ROI"},
    {1, "Width", FG_WIDTH, 3, 2, "pixel"},
    {1, "Height", FG_HEIGHT, 3, 2, "pixel"},
    {1, "XOffset", FG_XOFFSET, 3, 2, "pixel"},
    {1, "YOffset", FG_YOFFSET, 3, 2, "pixel"},
    {0, "Trigger"},
    {1, "Trigger Input"},
    {2, "External"},
    {3, "Input Debounce", FG_TRIGGERIN_DEBOUNCE, 7, 1, kMicroseconds},
    {3, "Digital Input", FG_DIGIO_INPUT, 1, 1},
    {3, "Source", FG_TRIGGERIN_SRC, 7, 1},
    {3, "Polarity", FG_TRIGGERIN_POLARITY, 7, 1},
    {3, "Input Downscale", FG_TRIGGERIN_DOWNSCALE, 7, 2},
    {3, "Downscale Phase", FG_TRIGGERIN_DOWNSCALE_PHASE, 7, 2},
    {3, "Bypass Source", FG_TRIGGERIN_BYPASS_SRC, 7, 1},
    {2, "Software Trigger"},
    {3, "Send Pulses", FG_SENDSOFTWARETRIGGER, 7, 2, "pulses"},
    {3, "Software Trigger Busy", FG_SOFTWARETRIGGER_IS_BUSY, 1, 1},
    {3, "Software Trigger Queue Filllevel", FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL, 1, 2, "pulses"},
    {2, "Statistics"},
    {3, "Input Pulses", FG_TRIGGERIN_STATS_PULSECOUNT, 1, 1, "pulses"},
    {3, "Clear Pulse Count", FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR, 7, 1},
    {3, "Current Frequency", FG_TRIGGERIN_STATS_FREQUENCY, 1, 1, "Hz"},
    {3, "Minimum Frequency", FG_TRIGGERIN_STATS_MINFREQUENCY, 1, 1, "Hz"},
    {3, "Maximum Frequency", FG_TRIGGERIN_STATS_MAXFREQUENCY, 1, 1, "Hz"},
    {3, "Clear MinMax Frequency", FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR, 7, 1},
    {1, "Sequencer"},
    {2, "Upscale Trigger Pulses", FG_TRIGGER_MULTIPLY_PULSES, 7, 1},
    {1, "Queue"},
    {2, "Queue Mode", FG_TRIGGERQUEUE_MODE, 7, 1},
    {2, "Filllevel", FG_TRIGGERQUEUE_FILLLEVEL, 1, 1, "pulses"},
    {2, "Queue Fill Level Event On Threshold", FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD, 7, 1,
     "pulses"},
    {2, "Queue Fill Level Event Off Threshold", FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD, 7,
     1, "pulses"},
    {1, "Pulse Form Generator 0"},
    {2, "Downscale", FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, 7, 2},
    {2, "Phase", FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE, 7, 2},
    {2, "Delay", FG_TRIGGER_PULSEFORMGEN0_DELAY, 7, 1, kMicroseconds},
    {2, "Signal Width", FG_TRIGGER_PULSEFORMGEN0_WIDTH, 7, 1, kMicroseconds},
    {1, "Pulse Form Generator 1"},
    {2, "Downscale", FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, 7, 2},
    {2, "Phase", FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE, 7, 2},
    {2, "Delay", FG_TRIGGER_PULSEFORMGEN1_DELAY, 7, 1, kMicroseconds},
    {2, "Signal Width", FG_TRIGGER_PULSEFORMGEN1_WIDTH, 7, 1, kMicroseconds},
    {1, "Camera Action Command"},
    {2, "Camera Action Command Source", FG_CAMERA_ACTION_COMMAND_SOURCE, 7, 1},
    {2, "Pending Camera Action Command", FG_CAMERA_ACTION_COMMAND_PENDING_COUNT, 1, 1, "pulses"},
    {1, "Digital Output"},
    {2, "Statistics"},
    {3, "Trigger Exceeded Period Limits", FG_TRIGGER_EXCEEDED_PERIOD_LIMITS, 1, 1},
    {3, "Clear Exceeded Period Limits Register", FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR, 7, 1},
    {3, "Source", FG_TRIGGEROUT_STATS_SOURCE, 7, 1},
    {3, "Pulse Count", FG_TRIGGEROUT_STATS_PULSECOUNT, 1, 1, "pulses"},
    {3, "Clear pulse counter", FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR, 7, 1},
    {3, "Missing Camera Frame Response", FG_MISSING_CAMERA_FRAME_RESPONSE, 1, 1},
    {3, "Clear Frame Response Register", FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR, 7, 1},
    {2, "Output 0", FG_TRIGGEROUT_SELECT0, 7, 1},
    {2, "Output 1", FG_TRIGGEROUT_SELECT1, 7, 1},
    {2, "FG_DIGIO_OUTPUT", FG_DIGIO_OUTPUT, 7, 1},
    {1, "Output Event"},
    {2, "Output Event Select", FG_TRIGGER_OUTPUT_EVENT_SELECT, 7, 1},
    {1, "Area Trigger Mode", FG_AREATRIGGERMODE, 7, 1},
    {1, "Trigger State", FG_TRIGGERSTATE, 7, 1},
    {1, "Frames/Sec", FG_TRIGGER_FRAMESPERSECOND, 7, 2, "Hz"},
    {0, "Bayer Filter"},
    {1, "Bayer Init Value", FG_BAYERINIT, 3, 1},
    {1, "Blue Gain", FG_SCALINGFACTOR_BLUE, 7, 1},
    {1, "Green Gain", FG_SCALINGFACTOR_GREEN, 7, 1},
    {1, "Red Gain", FG_SCALINGFACTOR_RED, 7, 1},
    {0, "Output Format"},
    {1, "Output Format", FG_FORMAT, 3, 1},
    {1, "Alignment", FG_BITALIGNMENT, 7, 1},
    {1, "Pixel Depth", FG_PIXELDEPTH, 1, 1, "bit"},
    {0, "Camera Simulator"},
    {1, "Image Source", FG_GEN_ENABLE, 7, 1},
    {1, "Image Start", FG_GEN_START, 7, 1},
    {1, "Width", FG_GEN_WIDTH, 7, 1, "pixel"},
    {1, "Height", FG_GEN_HEIGHT, 7, 1, "pixel"},
    {1, "Line Gap", FG_GEN_LINE_GAP, 7, 1, "pixel"},
    {1, "Frequency", FG_GEN_FREQ, 7, 2, "MHz"},
    {1, "Accuracy", FG_GEN_ACCURACY, 7, 2},
    {1, "Roll", FG_GEN_ROLL, 7, 1},
    {1, "Active", FG_GEN_ACTIVE, 1, 1},
    {1, "Passive", FG_GEN_PASSIVE, 1, 1},
    {1, "Line Width", FG_GEN_LINE_WIDTH, 1, 1, "pixel"},
    {0, "Miscellaneous"},
    {1, "Timeout", FG_TIMEOUT, 7, 1, "seconds"},
    {1, "Applet version", FG_APPLET_VERSION, 1, 1},
    {1, "Applet revision", FG_APPLET_REVISION, 1, 1},
    {1, "Applet Id", FG_APPLET_ID, 1, 1},
    {1, "HAP file", FG_HAP_FILE, 1, 1},
    {1, "DMA Status", FG_DMASTATUS, 1, 1},
    {1, "Camera Status", FG_CAMSTATUS, 1, 1},
    {1, "Camera Status Extended", FG_CAMSTATUS_EXTENDED, 1, 1},
    {1, "Buffer fill level", FG_FILLLEVEL, 1, 1},
    {1, "Buffer overflow", FG_OVERFLOW, 1, 1},
};

}  // namespace velmora
