/// All parameters, one row each. Only the lookup and the catalogue include this.
#pragma once

#include <cstddef>
#include <limits>

#include "parameters/families/camera_simulator.h"
#include "parameters/families/enumerations.h"
#include "parameters/families/image_path.h"
#include "parameters/families/port_status.h"
#include "parameters/families/pulse_form_generators.h"
#include "parameters/families/software_trigger.h"
#include "parameters/families/texts.h"
#include "parameters/families/trigger_input.h"
#include "parameters/families/trigger_mode.h"
#include "parameters/families/trigger_monitor.h"
#include "parameters/families/trigger_outputs.h"
#include "parameters/families/trigger_queue.h"
#include "parameters/families/trigger_rate.h"
#include "parameters/port/applet_identity.h"
#include "parameters/port/parameter_row.h"
#include "velmora/parameters.h"

namespace velmora::rows {

using S = ProcessSettings;
using D = DesignId;
namespace pulse_form = pulse_form_generators;

inline constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
/// The rate of the longest period that the generator's 32-bit counter holds, one step below exact.
inline constexpr double kSmallestFrameRate = 0.01455191522836685;
// Texts are single bytes to the runtime's tools, the micro sign among them.
inline constexpr const char* kMicroseconds = "\xB5s";

/// In index order; the last one is served but not listed. Texts are spelled as hosts know them,
/// mistakes included.
inline constexpr ParameterRow kParameters[] = {
    setting(SDK(FG_TIMEOUT), range(2u, 2147483646u, 1u), &S::timeout)
        .setBy(image_path::setTimeout)
        .shown("Timeout", kSwitched, 1, "seconds")
        .help("Internal framegrabber image timeout. This is independend of the runtime timeout "
              "value."),
    reading(SDK(FG_APPLET_VERSION), range(0u, 0u, 0u))
        .always<kAppletVersion>()
        .shown("Applet version", kReadOnly, 1)
        .help("Returns the applet version."),
    reading(SDK(FG_APPLET_REVISION), range(0u, 0u, 0u))
        .always<kAppletRevision>()
        .shown("Applet revision", kReadOnly, 1)
        .help("Returns the applet revision."),
    reading(SDK(FG_APPLET_ID), range(0u, 0u, 0u))
        .always<kAppletId>()
        .shown("Applet Id", kReadOnly, 1)
        .help("Returns the applet id."),
    reading(SDK(FG_HAP_FILE), text("*.hap"))
        .getBy(texts::getHapFile)
        .shown("HAP file", kReadOnly, 1)
        .help("The name of the Hardware-Applet (HAP) file on which this Imagelets is based."),
    reading(SDK(FG_DMASTATUS), range(0u, 0u, 0u))
        .readBy<port_status::dmaStatus>()
        .shown("DMA Status", kReadOnly, 1)
        .help("Returns the status of the DMA transmission."),
    reading(SDK(FG_CAMSTATUS), range(0u, 1u, 1u))
        .readBy<port_status::cameraStatus>()
        .shown("Camera Status", kReadOnly, 1)
        .help("Returns the status of a connected CameraLink camera. For CoaXPress this is "
              "not of interest."),
    reading(SDK(FG_CAMSTATUS_EXTENDED), range(0u, 255u, 1u))
        .readBy<port_status::cameraStatusExtended>()
        .shown("Camera Status Extended", kReadOnly, 1)
        .help("Returns the extended status of the camera. Bit = meaning: 0 = CameraPixelClk, "
              "1 = CameraLval, 2 = CameraFval, 3 = Camera CC1 Signal, 4 = ExTrg / external "
              "trigger, 5 = BufferOverflow, 6 = BufferStatus-LSB, 7 = BufferStatus-MSB"),
    forwarded(SDK(FG_TRANSFER_LEN)),
    reading(SDK(FG_NR_OF_PROCESSES)).always<kPorts>().stringsOfRuntime(),
    forwarded(SDK(FG_NR_OF_DMAS)),
    forwarded(SDK(FG_NR_OF_CAMS)),
    forwarded(SDK(FG_DMA_PORT)),
    forwarded(SDK(FG_CAM_PORT)),
    forwarded(SDK(FG_APC_STOP_TIMEOUT)),
    setting(SDK(FG_GBE_CAMTYPE), oneOf(kCameraPixelFormats), &S::cameraPixelFormat)
        .drives(D::kPixelFormat)
        .shown("Input Format", kSwitched, 1)
        .help("Select the Camera's Pixel Format."),
    setting(SDK(FG_WIDTH), range(8u, 8192u, 4u), &S::width)
        .setBy(image_path::setWidth)
        .shown("Width", kReadWrite, 2, "pixel")
        .help("Image width of the acquisition ROI."),
    setting(SDK(FG_HEIGHT), range(2u, 65535u, 1u), &S::height)
        .setBy(image_path::setHeight)
        .shown("Height", kReadWrite, 2, "pixel")
        .help("Image height of the acquisition ROI."),
    setting(SDK(FG_XOFFSET), range(0u, 8184u, 4u), &S::xOffset)
        .setBy(image_path::setXOffset)
        .shown("XOffset", kReadWrite, 2, "pixel")
        .help("X-offset of the acquisition ROI."),
    setting(SDK(FG_YOFFSET), range(0u, 65534u, 1u), &S::yOffset)
        .setBy(image_path::setYOffset)
        .shown("YOffset", kReadWrite, 2, "pixel")
        .help("Y-offset of the acquisition ROI."),
    reading(SDK(FG_FILLLEVEL), range(0u, 0u, 0u))
        .reads(D::kFillLevel)
        .shown("Buffer fill level", kReadOnly, 1)
        .help("Fill level of the buffers."),
    reading(SDK(FG_OVERFLOW), range(0u, 0u, 0u))
        .reads(D::kOverflow)
        .shown("Buffer overflow", kReadOnly, 1)
        .help("Fill level of the buffers."),
    setting(SDK(FG_FORMAT), oneOf(kOutputPixelFormats), &S::outputFormat)
        .storedOnly()
        .shown("Output Format", kReadWrite, 1)
        .help("Pixel format of the output image."),
    setting(SDK(FG_BITALIGNMENT), oneOf(kBitAlignments), &S::bitAlignment)
        .storedOnly()
        .shown("Alignment", kSwitched, 1)
        .help("Defines if the output data are right aligned or left aligned."),
    reading(SDK(FG_PIXELDEPTH), range(0u, 128u, 1u))
        .always<8>()
        .shown("Pixel Depth", kReadOnly, 1, "bit")
        .help("Internal processing bit depth of the applet."),
    setting(SDK(FG_GEN_ENABLE), oneOf(kImageSources), &S::generatorEnable)
        .drives(D::kGeneratorEnable)
        .shown("Image Source", kSwitched, 1)
        .help("Use internal frame generator or CameraLink input."),
    setting(SDK(FG_GEN_START), oneOf(kOnOff), &S::generatorStart)
        .drives(D::kGeneratorStart)
        .shown("Image Start", kSwitched, 1),
    setting(SDK(FG_GEN_WIDTH), range(0u, 65535u, 1u), &S::generatorWidth)
        .setBy(camera_simulator::setWidthOrGap)
        .shown("Width", kSwitched, 1, "pixel"),
    setting(SDK(FG_GEN_HEIGHT), range(0u, 65535u, 1u), &S::generatorHeight)
        .setBy(camera_simulator::setHeight)
        .shown("Height", kSwitched, 1, "pixel"),
    setting(SDK(FG_GEN_LINE_GAP), range(0u, 65535u, 1u), &S::generatorLineGap)
        .setBy(camera_simulator::setWidthOrGap)
        .shown("Line Gap", kSwitched, 1, "pixel"),
    setting(SDK(FG_GEN_FREQ), range(3.0, 125.0, 1.0), &S::generatorFrequency)
        .setBy(camera_simulator::setFrequency)
        .shown("Frequency", kSwitched, 2, "MHz"),
    setting(SDK(FG_GEN_ACCURACY), range(1u, 65535u, 1u), &S::generatorAccuracy)
        .setBy(camera_simulator::setAccuracy)
        .shown("Accuracy", kSwitched, 2),
    setting(SDK(FG_GEN_ROLL), range(0u, 255u, 1u), &S::generatorRoll)
        .drives(D::kGeneratorRoll)
        .shown("Roll", kSwitched, 1),
    reading(SDK(FG_GEN_ACTIVE), range(0u, 65535u, 1u))
        .readBy<camera_simulator::active>()
        .shown("Active", kReadOnly, 1),
    reading(SDK(FG_GEN_PASSIVE), range(0u, 65535u, 1u))
        .readBy<camera_simulator::passive>()
        .shown("Passive", kReadOnly, 1),
    reading(SDK(FG_GEN_LINE_WIDTH), range(0u, 65535u, 1u))
        .readBy<camera_simulator::lineWidth>()
        .shown("Line Width", kReadOnly, 1, "pixel"),
    setting(SDK(FG_BAYERINIT), oneOf(kBayerOrders), &S::bayerInit)
        .setBy(image_path::setBayerInit)
        .shown("Bayer Init Value", kReadWrite, 1)
        .help("Select the Bayer pattern starting at the top left corner."),
    setting(SDK(FG_SCALINGFACTOR_BLUE), range(0.0, 3.9990234375, kEpsilon), &S::blueGain)
        .drives(D::kBlueCoefficient)
        .shown("Blue Gain", kSwitched, 1)
        .help("Blue gain of the Bayer white balancing."),
    setting(SDK(FG_SCALINGFACTOR_GREEN), range(0.0, 3.9990234375, kEpsilon), &S::greenGain)
        .drives(D::kGreenCoefficient)
        .shown("Green Gain", kSwitched, 1)
        .help("Green gain of the Bayer white balancing."),
    setting(SDK(FG_SCALINGFACTOR_RED), range(0.0, 3.9990234375, kEpsilon), &S::redGain)
        .drives(D::kRedCoefficient)
        .shown("Red Gain", kSwitched, 1)
        .help("Red gain of the Bayer white balancing."),
    setting(SDK(FG_AREATRIGGERMODE), oneOfLastNotOnPort0(kAreaTriggerModes), &S::triggerMode)
        .setBy(trigger_mode::setMode)
        .stepped()
        .shown("Area Trigger Mode", kSwitched, 1)
        .reopened()
        .help("Trigger mode for the area trigger signal generation."),
    setting(SDK(FG_TRIGGERSTATE), oneOf(kTriggerStates), &S::triggerState)
        .setBy(trigger_mode::setState)
        .stepped()
        .shown("Trigger State", kSwitched, 1)
        .reopened()
        .help("State of the trigger system."),
    setting(SDK(FG_TRIGGER_FRAMESPERSECOND), range(kSmallestFrameRate, 6250000.0, kEpsilon),
            &S::frameRate)
        .setBy(trigger_rate::setFrameRate)
        .readBy<trigger_rate::frameRate>()
        .shown("Frames/Sec", kSwitched, 2, "Hz")
        .reopened()
        .help("Base frequency (=frame rate) of the trigger output."),
    reading(SDK(FG_TRIGGER_EXCEEDED_PERIOD_LIMITS), oneOf(kYesNo))
        .readBy<trigger_monitor::exceededPeriodLimits>()
        .shown("Trigger Exceeded Period Limits", kReadOnly, 1)
        .help("The trigger input signal frequency exceeds the allowed output frequency."),
    command(SDK(FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR), oneOf(kApply),
            &S::exceededPeriodLimitsClear)
        .triggers(D::kOverrideClear)
        .shown("Clear Exceeded Period Limits Register", kSwitched, 1)
        .reopened()
        .help("Clear the exceeded period limits register."),
    setting(SDK(FG_TRIGGERIN_DEBOUNCE), range(0.096, 3.024, 0.048), &S::debounce)
        .setBy(trigger_input::setDebounce)
        .readBy<trigger_input::debounce>()
        .shown("Input Debounce", kSwitched, 1, kMicroseconds)
        .reopened()
        .help("Set the debounce time for trigger input signals."),
    reading(SDK(FG_DIGIO_INPUT), range(0u, 255u, 1u))
        .reads(D::kInputStatus)
        .shown("Digital Input", kReadOnly, 1)
        .help("Current input signal levels of all inputs (Bitmask)."),
    setting(SDK(FG_TRIGGERIN_SRC), oneOf(kTriggerInputSources), &S::inputSource)
        .drives(D::kInputSelect)
        .shown("Source", kSwitched, 1)
        .reopened()
        .help("Select the trigger input source for external trigger mode."),
    setting(SDK(FG_TRIGGERIN_POLARITY), oneOf(kPolarities), &S::inputPolarity)
        .drives(D::kInputInvert)
        .shown("Polarity", kSwitched, 1)
        .reopened()
        .help("Polarity of the trigger input signal."),
    setting(SDK(FG_TRIGGERIN_DOWNSCALE), range(1u, 2147483647u, 1u), &S::inputDownscale)
        .setBy(trigger_input::setDownscale)
        .shown("Input Downscale", kSwitched, 2)
        .reopened()
        .help("Downscale of the trigger input signals."),
    setting(SDK(FG_TRIGGERIN_DOWNSCALE_PHASE), range(0u, 4294967294u, 1u), &S::inputDownscalePhase)
        .setBy(trigger_input::setDownscalePhase)
        .shown("Downscale Phase", kSwitched, 2)
        .reopened()
        .help("Select the pulse index for each downscale series."),
    setting(SDK(FG_TRIGGERIN_BYPASS_SRC), oneOf(kTriggerInputSources), &S::bypassSource)
        .drives(D::kBypassSelect)
        .shown("Bypass Source", kSwitched, 1)
        .help("Select the trigger input source for external trigger mode."),
    command(SDK(FG_SENDSOFTWARETRIGGER), range(1u, 1u, 1u), &S::softwareTrigger)
        .setBy(software_trigger::send)
        .shown("Send Pulses", kSwitched, 2, "pulses")
        .reopened()
        .help("Add pulses to trigger queue."),
    reading(SDK(FG_SOFTWARETRIGGER_IS_BUSY), oneOf(kBusyFlags))
        .readBy<software_trigger::isBusy>()
        .shown("Software Trigger Busy", kReadOnly, 1)
        .help("Check if the trigger system is still processing software trigger pulses."),
    reading(SDK(FG_SOFTWARETRIGGER_QUEUE_FILLLEVEL), range(0u, 2040u, 1u))
        .readBy<software_trigger::queueFillLevel>()
        .shown("Software Trigger Queue Filllevel", kReadOnly, 2, "pulses")
        .help("Number of pulses in queue which have to be processed."),
    reading(SDK(FG_TRIGGERIN_STATS_PULSECOUNT), range(0u, 65535u, 1u))
        .reads(D::kInputPulses)
        .shown("Input Pulses", kReadOnly, 1, "pulses")
        .help("Pulse count of input."),
    command(SDK(FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR), oneOf(kApply), &S::inputPulseCountClear)
        .triggers(D::kInputPulsesClear)
        .applied()
        .shown("Clear Pulse Count", kSwitched, 1)
        .help("Clear the input signal pulse counter."),
    reading(SDK(FG_TRIGGERIN_STATS_FREQUENCY), range(0.0, 62500000.0, kEpsilon))
        .readBy<trigger_monitor::frequency>()
        .shown("Current Frequency", kReadOnly, 1, "Hz")
        .help("Current Frequency of the input pulses."),
    reading(SDK(FG_TRIGGERIN_STATS_MINFREQUENCY), range(0.0, 62500000.0, kEpsilon))
        .readBy<trigger_monitor::minFrequency>()
        .shown("Minimum Frequency", kReadOnly, 1, "Hz")
        .help("The detected minimum input frequency."),
    reading(SDK(FG_TRIGGERIN_STATS_MAXFREQUENCY), range(0.0, 62500000.0, kEpsilon))
        .readBy<trigger_monitor::maxFrequency>()
        .shown("Maximum Frequency", kReadOnly, 1, "Hz")
        .help("The detected maximum input frequency."),
    command(SDK(FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR), oneOf(kApply),
            &S::inputMinMaxFrequencyClear)
        .setBy(trigger_monitor::clearMinMaxFrequency)
        .shown("Clear MinMax Frequency", kSwitched, 1)
        .help("Clear minimum and maximum frequency measurement."),
    setting(SDK(FG_TRIGGER_MULTIPLY_PULSES), range(1u, 65535u, 1u), &S::multiplyPulses)
        .setBy(trigger_queue::setMultiplyPulses)
        .shown("Upscale Trigger Pulses", kSwitched, 1)
        .reopened()
        .help("Upscale i.e. duplicate each external or software generated trigger pulse with "
              "a period specified by FG_TRIGGER_FRAMESPERSEC."),
    setting(SDK(FG_TRIGGERQUEUE_MODE), oneOf(kOnOff), &S::queueMode)
        .setBy(trigger_queue::setMode)
        .shown("Queue Mode", kSwitched, 1)
        .reopened()
        .help("Enable or disable the trigger queue and output frequency limitation specified "
              "by FG_TRIGGER_FRAMESPERSEC."),
    reading(SDK(FG_TRIGGERQUEUE_FILLLEVEL), range(0u, 2040u, 1u))
        .readBy<trigger_queue::fillLevel>()
        .shown("Filllevel", kReadOnly, 1, "pulses")
        .help("Filllevel of trigger queue."),
    setting(SDK(FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD), range(2u, 2047u, 1u),
            &S::queueOnThreshold)
        .drives(D::kHysteresisOnLevel)
        .shown("Queue Fill Level Event On Threshold", kSwitched, 1, "pulses")
        .reopened()
        .help("Set the threshold for generating a queue fill level ON event."),
    setting(SDK(FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_OFF_THRESHOLD), range(2u, 2047u, 1u),
            &S::queueOffThreshold)
        .drives(D::kHysteresisOffLevel)
        .shown("Queue Fill Level Event Off Threshold", kSwitched, 1, "pulses")
        .reopened()
        .help("Set the threshold for generating a queue fill level OFF event."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE), range(1u, 7u, 1u), &S::pulseForm0Downscale)
        .setBy(pulse_form::setDownscale<pulse_form::kGenerator0>)
        .shown("Downscale", kSwitched, 2)
        .reopened()
        .help("Downscale factor of the pulse form generator input."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE), range(0u, 6u, 1u), &S::pulseForm0Phase)
        .setBy(pulse_form::setPhase<pulse_form::kGenerator0>)
        .shown("Phase", kSwitched, 2)
        .reopened()
        .help("Select the pulse index for each downscale series."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN0_DELAY), range(0.0, 34000000.0, 0.016), &S::pulseForm0Delay)
        .setBy(pulse_form::setDelay<pulse_form::kGenerator0>)
        .readBy<pulse_form::delay<pulse_form::kGenerator0>>()
        .shown("Delay", kSwitched, 1, kMicroseconds)
        .reopened()
        .help("Delay between the input and the output."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN0_WIDTH), range(1.0, 68000000.0, 0.016), &S::pulseForm0Width)
        .setBy(pulse_form::setWidth<pulse_form::kGenerator0>)
        .readBy<pulse_form::width<pulse_form::kGenerator0>>()
        .shown("Signal Width", kSwitched, 1, kMicroseconds)
        .reopened()
        .help("Signal Output Width."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE), range(1u, 7u, 1u), &S::pulseForm1Downscale)
        .setBy(pulse_form::setDownscale<pulse_form::kGenerator1>)
        .shown("Downscale", kSwitched, 2)
        .reopened()
        .help("Downscale factor of the pulse form generator input."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE), range(0u, 6u, 1u), &S::pulseForm1Phase)
        .setBy(pulse_form::setPhase<pulse_form::kGenerator1>)
        .shown("Phase", kSwitched, 2)
        .reopened()
        .help("Select the pulse index for each downscale series."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN1_DELAY), range(0.0, 34000000.0, 0.016), &S::pulseForm1Delay)
        .setBy(pulse_form::setDelay<pulse_form::kGenerator1>)
        .readBy<pulse_form::delay<pulse_form::kGenerator1>>()
        .shown("Delay", kSwitched, 1, kMicroseconds)
        .reopened()
        .help("Delay between the input and the output."),
    setting(SDK(FG_TRIGGER_PULSEFORMGEN1_WIDTH), range(1.0, 68000000.0, 0.016), &S::pulseForm1Width)
        .setBy(pulse_form::setWidth<pulse_form::kGenerator1>)
        .readBy<pulse_form::width<pulse_form::kGenerator1>>()
        .shown("Signal Width", kSwitched, 1, kMicroseconds)
        .reopened()
        .help("Signal Output Width."),
    setting(SDK(FG_CAMERA_ACTION_COMMAND_SOURCE), oneOf(kOutputSources), &S::actionCommandSource)
        .setBy(trigger_outputs::setSource<trigger_outputs::kActionCommand>)
        .shown("Camera Action Command Source", kSwitched, 1)
        .reopened()
        .help("Select the source of the signal send to the camera using the action commands."),
    reading(SDK(FG_CAMERA_ACTION_COMMAND_PENDING_COUNT), range(0u, 65535u, 1u))
        .reads(D::kActionCommandPendingCount)
        .shown("Pending Camera Action Command", kReadOnly, 1, "pulses")
        .help("Number of pending camera action commands."),
    setting(SDK(FG_TRIGGEROUT_SELECT0), oneOf(kOutputSources), &S::outputSelect0)
        .setBy(trigger_outputs::setSource<trigger_outputs::kOutput0>)
        .shown("Output 0", kSwitched, 1)
        .reopened()
        .help("Select the output source. Note the differing pin allocation for each camera."),
    setting(SDK(FG_TRIGGEROUT_SELECT1), oneOf(kOutputSources), &S::outputSelect1)
        .setBy(trigger_outputs::setSource<trigger_outputs::kOutput1>)
        .shown("Output 1", kSwitched, 1)
        .reopened()
        .help("Select the output source. Note the differing pin allocation for each camera."),
    setting(SDK(FG_TRIGGEROUT_STATS_SOURCE), oneOf(kPulseFormGenerators),
            &S::outputStatisticsSource)
        .drives(D::kOutputStatisticsSelect)
        .shown("Source", kSwitched, 1)
        .help("Select the pulse form generator which has to be analyzed."),
    reading(SDK(FG_TRIGGEROUT_STATS_PULSECOUNT), range(0u, 65535u, 1u))
        .reads(D::kOutputPulses)
        .shown("Pulse Count", kReadOnly, 1, "pulses")
        .help("Pulse count."),
    command(SDK(FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR), oneOf(kApply), &S::outputPulseCountClear)
        .triggers(D::kOutputPulsesClear)
        .shown("Clear pulse counter", kSwitched, 1)
        .help("Clear pulse counter."),
    reading(SDK(FG_MISSING_CAMERA_FRAME_RESPONSE), oneOf(kYesNo))
        .readBy<trigger_monitor::missingFrame>()
        .shown("Missing Camera Frame Response", kReadOnly, 1)
        .help("Frame grabber received no frame for trigger pulse."),
    command(SDK(FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR), oneOf(kApply), &S::missingFrameClear)
        .triggers(D::kMissingFrameClear)
        .shown("Clear Frame Response Register", kSwitched, 1)
        .reopened()
        .help("Clear Missing Camera Frame Response Register."),
    setting(SDK(FG_TRIGGER_OUTPUT_EVENT_SELECT), oneOf(kPulseFormGenerators), &S::outputEventSelect)
        .drives(D::kOutputEventSelect)
        .shown("Output Event Select", kSwitched, 1)
        .reopened()
        .help("Select the pulse form generator for event monitoring."),
    setting(SDK(FG_DIGIO_OUTPUT), range(0u, 3u, 1u), &S::digitalOutput)
        .setBy(trigger_outputs::setDigitalOutput)
        .savedOnly()
        .shown("FG_DIGIO_OUTPUT", kSwitched, 1)
        .help("Warning Legacy Parameter! Set outputs 3 and 7. Can be overwritten by other "
              "processes and output parameters."),
    reading(SDK(FG_PARAM_DESCR)).getBy(texts::getParameterDescription),
};

inline constexpr std::size_t kParameterCount = std::size(kParameters);
inline constexpr std::size_t kListedParameters = kParameterCount - 1;
static_assert(kParameters[kListedParameters].id == FG_PARAM_DESCR);

static_assert([]() consteval {
  for (const ParameterRow& row : kParameters) {
    row.check();
    for (const ParameterRow* other = kParameters; other != &row; ++other) row.check(*other);
  }
  return true;
}());

}  // namespace velmora::rows
