/// SDK parameter ids, stable across designs, in the order of the applet's parameter list.
///
/// The comments give the kind of the value, its unit and range, and the access. The kinds, each
/// with the `type` to pass to `Fg_setParameterWithType` and `Fg_getParameterWithType`:
/// - uint32, or an enumeration of `velmora/values.h`: 32 bits, `FG_PARAM_TYPE_INT32`;
/// - double: 64 bits, `FG_PARAM_TYPE_DOUBLE`;
/// - text: a `char*` that `Fg_freeParameterStringWithType` takes back, `FG_PARAM_TYPE_STRING`;
/// - runtime's own: answered by the acquisition runtime, in a `type` that it accepts.
///
/// A limit that names another parameter moves with that parameter's value on the same port. A
/// double may have any value in its range; the design may round it. us stands for microseconds.
#pragma once

enum VelmoraParameter {
  FG_TIMEOUT = 600,              ///< uint32, seconds, 2 to 2147483646, read/write.
  FG_APPLET_VERSION = 24020,     ///< uint32, read only.
  FG_APPLET_REVISION = 24030,    ///< uint32, read only.
  FG_APPLET_ID = 24010,          ///< uint32, read only.
  FG_HAP_FILE = 24108,           ///< text, read only.
  FG_DMASTATUS = 24092,          ///< uint32, 0 or 1 (transfer runs), read only.
  FG_CAMSTATUS = 2000,           ///< uint32, 0 or 1, read only.
  FG_CAMSTATUS_EXTENDED = 2050,  ///< uint32, bit mask, 0 to 255, read only.

  FG_TRANSFER_LEN = 5210,     ///< runtime's own, read only.
  FG_NR_OF_PROCESSES = 3070,  ///< uint32, 4, read only.
  FG_NR_OF_DMAS = 3050,       ///< runtime's own, read only.
  FG_NR_OF_CAMS = 3060,       ///< runtime's own, read only.
  FG_DMA_PORT = 3080,         ///< runtime's own, read only.
  FG_CAM_PORT = 3090,         ///< runtime's own, read only.
  FG_APC_STOP_TIMEOUT = 601,  ///< runtime's own, read only.

  FG_GBE_CAMTYPE = 11011,  ///< `CameraPixelFormat`, read/write.
  FG_WIDTH = 100,          ///< uint32, pixels, 8 to 8192 - FG_XOFFSET in steps of 4, read/write.
  FG_HEIGHT = 200,         ///< uint32, pixels, 2 to 65535 - FG_YOFFSET, read/write.
  FG_XOFFSET = 300,        ///< uint32, pixels, 0 to 8184 - FG_WIDTH in steps of 4, read/write.
  FG_YOFFSET = 400,        ///< uint32, pixels, 0 to 65533 - FG_HEIGHT, read/write.

  FG_FILLLEVEL = 110086,   ///< uint32, percent, 0 to 100, read only.
  FG_OVERFLOW = 110087,    ///< uint32, 0 or 1 (pictures were lost), read only.
  FG_FORMAT = 700,         ///< `OutputPixelFormat`, read/write.
  FG_BITALIGNMENT = 4010,  ///< `BitAlignment`, read/write.
  FG_PIXELDEPTH = 4000,    ///< uint32, bits, 8, read only.

  FG_GEN_ENABLE = 30099,      ///< `ImageSource`, read/write.
  FG_GEN_START = 30113,       ///< `Switch` (FG_OFF, FG_ON), read/write.
  FG_GEN_WIDTH = 30102,       ///< uint32, pixels, 0 to 65535, read/write.
  FG_GEN_HEIGHT = 30104,      ///< uint32, pixels, 0 to 65535, read/write.
  FG_GEN_LINE_GAP = 30105,    ///< uint32, pixels, 0 to 65535, read/write.
  FG_GEN_FREQ = 30106,        ///< double, MHz, ceil(62.5 / FG_GEN_ACCURACY) to 125, read/write.
  FG_GEN_ACCURACY = 30107,    ///< uint32, cycles, ceil(62.5 / FG_GEN_FREQ) to 65535, read/write.
  FG_GEN_ROLL = 30112,        ///< uint32, 0 to 255, read/write.
  FG_GEN_ACTIVE = 30101,      ///< uint32, cycles, 0 to 65535, read only.
  FG_GEN_PASSIVE = 30100,     ///< uint32, cycles, 0 to 65535, read only.
  FG_GEN_LINE_WIDTH = 30103,  ///< uint32, pixels, FG_GEN_WIDTH + FG_GEN_LINE_GAP, read only.

  FG_BAYERINIT = 13020,            ///< `BayerOrder`, read/write.
  FG_SCALINGFACTOR_BLUE = 13010,   ///< double, 0 to 3.9990234375, read/write.
  FG_SCALINGFACTOR_GREEN = 13030,  ///< double, 0 to 3.9990234375, read/write.
  FG_SCALINGFACTOR_RED = 13000,    ///< double, 0 to 3.9990234375, read/write.

  FG_AREATRIGGERMODE = 300200,                       ///< `AreaTriggerMode`, read/write.
  FG_TRIGGERSTATE = 300201,                          ///< `TriggerState`, read/write.
  FG_TRIGGER_FRAMESPERSECOND = 90,                   ///< double, Hz, 0.01455191522836685 to
                                                     ///< 6250000, read/write.
  FG_TRIGGER_EXCEEDED_PERIOD_LIMITS = 300202,        ///< `Switch` (FG_NO, FG_YES), read only.
  FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR = 300203,  ///< `Switch` (FG_APPLY), read/write.

  FG_TRIGGERIN_DEBOUNCE = 300204,         ///< double, us, 0.096 to 3.024 in steps of 0.048,
                                          ///< read/write.
  FG_DIGIO_INPUT = 14010,                 ///< uint32, bit mask, 0 to 255, read only.
  FG_TRIGGERIN_SRC = 8110,                ///< `TriggerInputSource`, read/write.
  FG_TRIGGERIN_POLARITY = 8116,           ///< `Polarity`, read/write.
  FG_TRIGGERIN_DOWNSCALE = 300205,        ///< uint32, FG_TRIGGERIN_DOWNSCALE_PHASE + 1 to
                                          ///< 2147483647, read/write.
  FG_TRIGGERIN_DOWNSCALE_PHASE = 300206,  ///< uint32, 0 to FG_TRIGGERIN_DOWNSCALE - 1, read/write.
  FG_TRIGGERIN_BYPASS_SRC = 300243,       ///< `TriggerInputSource`, read/write.

  FG_SENDSOFTWARETRIGGER = 8800,              ///< uint32, pulses, 1, or 1 to 2040 with
                                              ///< FG_TRIGGERQUEUE_MODE on, read/write.
  FG_SOFTWARETRIGGER_IS_BUSY = 110075,        ///< `BusyFlag`, read only.
  FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL = 8802,  ///< uint32, pulses, 0 to 2040 *
                                              ///< FG_TRIGGER_MULTIPLY_PULSES, read only.

  FG_TRIGGERIN_STATS_PULSECOUNT = 300207,             ///< uint32, pulses, 0 to 65535, read only.
  FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR = 300208,       ///< `Switch` (FG_APPLY), read/write.
  FG_TRIGGERIN_STATS_FREQUENCY = 300209,              ///< double, Hz, 0 to 62500000, read only.
  FG_TRIGGERIN_STATS_MINFREQUENCY = 300210,           ///< double, Hz, 0 to 62500000, read only.
  FG_TRIGGERIN_STATS_MAXFREQUENCY = 300211,           ///< double, Hz, 0 to 62500000, read only.
  FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR = 300212,  ///< `Switch` (FG_APPLY), read/write.

  FG_TRIGGER_MULTIPLY_PULSES = 300213,  ///< uint32, 1 to 65535, read/write.
  FG_TRIGGERQUEUE_MODE = 300214,        ///< `Switch` (FG_OFF, FG_ON), read/write. In
                                        ///< `ATM_GENERATOR` it is stored and does nothing, also
                                        ///< later: choose the mode first.
  FG_TRIGGERQUEUE_FILLLEVEL = 300215,   ///< uint32, pulses, 0 to 2040, read only.

  FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD = 300240,   ///< uint32, pulses, 2 to 2047,
                                                            ///< read/write.
  FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD = 300241,  ///< uint32, pulses, 2 to 2047,
                                                            ///< read/write.

  // Delay and width must be shorter than the downscale times the period of the frame rate.
  FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE = 300216,        ///< uint32, phase + 1 to 7, read/write.
  FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE = 300217,  ///< uint32, 0 to downscale - 1, read/write.
  FG_TRIGGER_PULSEFORMGEN0_DELAY = 300218,            ///< double, us, 0 to 34000000, read/write.
  FG_TRIGGER_PULSEFORMGEN0_WIDTH = 300219,            ///< double, us, 1 to 68000000, read/write.

  FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE = 300220,        ///< uint32, phase + 1 to 7, read/write.
  FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE = 300221,  ///< uint32, 0 to downscale - 1, read/write.
  FG_TRIGGER_PULSEFORMGEN1_DELAY = 300222,            ///< double, us, 0 to 34000000, read/write.
  FG_TRIGGER_PULSEFORMGEN1_WIDTH = 300223,            ///< double, us, 1 to 68000000, read/write.

  FG_CAMERA_ACTION_COMMAND_SOURCE = 200394,         ///< `OutputSource`, read/write.
  FG_CAMERA_ACTION_COMMAND_PENDING_COUNT = 200395,  ///< uint32, pulses, 0 to 65535, read only.
  FG_TRIGGEROUT_SELECT0 = 300232,                   ///< `OutputSource`, read/write.
  FG_TRIGGEROUT_SELECT1 = 300233,                   ///< `OutputSource`, read/write.
  FG_TRIGGEROUT_STATS_SOURCE = 300236,              ///< `OutputSource` (PULSEGEN0, PULSEGEN1),
                                                    ///< read/write.
  FG_TRIGGEROUT_STATS_PULSECOUNT = 300237,          ///< uint32, pulses, 0 to 65535, read only.
  FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR = 300238,    ///< `Switch` (FG_APPLY), read/write.
  FG_MISSING_CAMERA_FRAME_RESPONSE = 300248,        ///< `Switch` (FG_NO, FG_YES), read only.
  FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR = 300249,  ///< `Switch` (FG_APPLY), read/write.
  FG_TRIGGER_OUTPUT_EVENT_SELECT = 300242,          ///< `OutputSource` (PULSEGEN0, PULSEGEN1),
                                                    ///< read/write.
  FG_DIGIO_OUTPUT = 14020,                          ///< uint32, bit mask, 0 to 3, read/write.

  // A get takes a parameter's name from the value and returns that parameter's description.
  FG_PARAM_DESCR = 24114  ///< text, read only. Has no index; not found by name.
};

/// Bytes that are enough for any text of a parameter, terminating zero included.
enum { VELMORA_TEXT_ROOM = 256 };
