/// Values that the applet's enumeration parameters accept, under the names that `Info` resolves.
#pragma once

/// Camera pixel formats: `FG_GBE_CAMTYPE`.
enum CameraPixelFormat {
  MONO8 = 0,
  MONO8_SIGNED = 1,
  MONO10 = 2,
  MONO10_PACKED = 3,
  MONO12 = 4,
  MONO12_PACKED = 5,
  MONO16 = 6,
  MONO14 = 7
};

/// Output pixel formats: `FG_FORMAT`.
enum OutputPixelFormat { FG_COL24 = 2 };

/// `FG_BITALIGNMENT`.
enum BitAlignment { FG_RIGHT_ALIGNED = 0, FG_LEFT_ALIGNED = 1 };

/// `FG_GEN_ENABLE`.
enum ImageSource { FG_CAMPORT = 0, FG_GENERATOR = 1 };

/// Switches, flags and one-shot commands.
enum Switch { FG_OFF = 0, FG_ON = 1, FG_NO = 0, FG_YES = 1, FG_APPLY = 1 };

/// `FG_BAYERINIT`: the colour order of the top-left pixel pair.
enum BayerOrder {
  GreenFollowedByBlue = 0,
  BlueFollowedByGreen = 1,
  RedFollowedByGreen = 2,
  GreenFollowedByRed = 3
};

/// `FG_AREATRIGGERMODE`; `ATM_SYNCHRONIZED` exists on ports 1 to 3 only.
enum AreaTriggerMode {
  ATM_GENERATOR = 1,
  ATM_EXTERNAL = 2,
  ATM_SYNCHRONIZED = 3,
  ATM_SOFTWARE = 4
};

/// `FG_TRIGGERSTATE`.
enum TriggerState { TS_ACTIVE = 0, TS_ASYNC_STOP = 1, TS_SYNC_STOP = 2 };

/// `FG_TRIGGERIN_SRC`, `FG_TRIGGERIN_BYPASS_SRC`.
enum TriggerInputSource {
  TRGINSRC_0 = 0,
  TRGINSRC_1 = 1,
  TRGINSRC_2 = 2,
  TRGINSRC_3 = 3,
  TRGINSRC_4 = 4,
  TRGINSRC_5 = 5,
  TRGINSRC_6 = 6,
  TRGINSRC_7 = 7
};

/// `FG_TRIGGERIN_POLARITY`.
enum Polarity { HIGH_ACTIVE = 0, LOW_ACTIVE = 1 };

/// `FG_SOFTWARETRIGGER_IS_BUSY`.
enum BusyFlag { IS_NOT_BUSY = 0, IS_BUSY = 1 };

/// Trigger output sources: `FG_TRIGGEROUT_SELECT0`, `FG_TRIGGEROUT_SELECT1`,
/// `FG_CAMERA_ACTION_COMMAND_SOURCE`; the first two also `FG_TRIGGEROUT_STATS_SOURCE` and
/// `FG_TRIGGER_OUTPUT_EVENT_SELECT`.
enum OutputSource {
  PULSEGEN0 = 0,
  PULSEGEN1 = 1,
  GND = 4,
  VCC = 5,
  NOT_PULSEGEN0 = 6,
  NOT_PULSEGEN1 = 7,
  INPUT_BYPASS = 10,
  NOT_INPUT_BYPASS = 11
};

/// Value types of the parameter functions (the runtime's `FgParamTypes`) that the applet
/// interprets.
enum FgParamTypes {
  FG_PARAM_TYPE_INT32 = 2,
  FG_PARAM_TYPE_INT64 = 3,
  FG_PARAM_TYPE_UINT64 = 4,
  FG_PARAM_TYPE_DOUBLE = 5,
  FG_PARAM_TYPE_STRING = 22  ///< The value receives a `char*` that the caller gives back.
};
