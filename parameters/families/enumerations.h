#pragma once

#include <iterator>

#include "paraminfo/limits.h"
#include "velmora/values.h"

namespace velmora {

// Entries are in the order in which tools see them and on which tools rely.

inline constexpr EnumEntry kCameraPixelFormats[] = {
    {"Mono 8bit", MONO8, "MONO8"},    {"Mono 8bit signed", MONO8_SIGNED, "MONO8_SIGNED"},
    {"Mono 10bit", MONO10, "MONO10"}, {"Mono 10bit packed", MONO10_PACKED, "MONO10_PACKED"},
    {"Mono 12bit", MONO12, "MONO12"}, {"Mono 12bit packed", MONO12_PACKED, "MONO12_PACKED"},
    {"Mono 14bit", MONO14, "MONO14"}, {"Mono 16bit", MONO16, "MONO16"},
};

inline constexpr EnumEntry kOutputPixelFormats[] = {
    {"Color 24bit", FG_COL24, "FG_COL24"},
};

inline constexpr EnumEntry kBitAlignments[] = {
    {"Left Aligned", FG_LEFT_ALIGNED, "FG_LEFT_ALIGNED"},
    {"Right Aligned", FG_RIGHT_ALIGNED, "FG_RIGHT_ALIGNED"},
};

inline constexpr EnumEntry kBayerOrders[] = {
    {"Green Followed By Red", GreenFollowedByRed, "GreenFollowedByRed"},
    {"Green Followed By Blue", GreenFollowedByBlue, "GreenFollowedByBlue"},
    {"Red Followed By Green", RedFollowedByGreen, "RedFollowedByGreen"},
    {"Blue Followed By Green", BlueFollowedByGreen, "BlueFollowedByGreen"},
};

inline constexpr EnumEntry kImageSources[] = {
    {"Camera", FG_CAMPORT, "FG_CAMPORT"},
    {"Generator", FG_GENERATOR, "FG_GENERATOR"},
};

inline constexpr EnumEntry kOnOff[] = {
    {"On", FG_ON, "FG_ON"},
    {"Off", FG_OFF, "FG_OFF"},
};

inline constexpr EnumEntry kYesNo[] = {
    {"Yes", FG_YES, "FG_YES"},
    {"No", FG_NO, "FG_NO"},
};

inline constexpr EnumEntry kApply[] = {
    {"Apply", FG_APPLY, "FG_APPLY"},
};

/// The last one needs a slave-mode select, which the trigger path of port 0 lacks.
inline constexpr EnumEntry kAreaTriggerModes[] = {
    {"Generator", ATM_GENERATOR, "ATM_GENERATOR"},
    {"External", ATM_EXTERNAL, "ATM_EXTERNAL"},
    {"Software", ATM_SOFTWARE, "ATM_SOFTWARE"},
    {"Synchronized", ATM_SYNCHRONIZED, "ATM_SYNCHRONIZED"},
};

static_assert(kAreaTriggerModes[std::size(kAreaTriggerModes) - 1].value == ATM_SYNCHRONIZED);

inline constexpr EnumEntry kTriggerStates[] = {
    {"Active", TS_ACTIVE, "TS_ACTIVE"},
    {"Async Stop", TS_ASYNC_STOP, "TS_ASYNC_STOP"},
    {"Sync Stop", TS_SYNC_STOP, "TS_SYNC_STOP"},
};

inline constexpr EnumEntry kTriggerInputSources[] = {
    {"Trigger Source 0", TRGINSRC_0, "TRGINSRC_0"}, {"Trigger Source 1", TRGINSRC_1, "TRGINSRC_1"},
    {"Trigger Source 2", TRGINSRC_2, "TRGINSRC_2"}, {"Trigger Source 3", TRGINSRC_3, "TRGINSRC_3"},
    {"Trigger Source 4", TRGINSRC_4, "TRGINSRC_4"}, {"Trigger Source 5", TRGINSRC_5, "TRGINSRC_5"},
    {"Trigger Source 6", TRGINSRC_6, "TRGINSRC_6"}, {"Trigger Source 7", TRGINSRC_7, "TRGINSRC_7"},
};

inline constexpr EnumEntry kPolarities[] = {
    {"Low Active", LOW_ACTIVE, "LOW_ACTIVE"},
    {"High Active", HIGH_ACTIVE, "HIGH_ACTIVE"},
};

inline constexpr EnumEntry kBusyFlags[] = {
    {"Busy Flag is set", IS_BUSY, "IS_BUSY"},
    {"Busy Flag is not set", IS_NOT_BUSY, "IS_NOT_BUSY"},
};

inline constexpr EnumEntry kOutputSources[] = {
    {"Pulse Generator 0", PULSEGEN0, "PULSEGEN0"},
    {"Pulse Generator 1", PULSEGEN1, "PULSEGEN1"},
    {"Gnd", GND, "GND"},
    {"Vcc", VCC, "VCC"},
    {"Not Pulse Generator 0", NOT_PULSEGEN0, "NOT_PULSEGEN0"},
    {"Not Pulse Generator 1", NOT_PULSEGEN1, "NOT_PULSEGEN1"},
    {"Input Bypass", INPUT_BYPASS, "INPUT_BYPASS"},
    {"Not Input Bypass", NOT_INPUT_BYPASS, "NOT_INPUT_BYPASS"},
};

/// Only the pulse form generators, for statistics and events.
inline constexpr Enumeration kPulseFormGenerators = Enumeration(kOutputSources).first(2);

/// Every enumeration: together they hold each value name of the applet once.
inline constexpr Enumeration kEnumerations[] = {kCameraPixelFormats,
                                                kOutputPixelFormats,
                                                kBitAlignments,
                                                kBayerOrders,
                                                kImageSources,
                                                kOnOff,
                                                kYesNo,
                                                kApply,
                                                kAreaTriggerModes,
                                                kTriggerStates,
                                                kPolarities,
                                                kBusyFlags,
                                                kOutputSources,
                                                kTriggerInputSources};

}  // namespace velmora
