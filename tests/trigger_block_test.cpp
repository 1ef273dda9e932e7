/// The virtual board's trigger block, told what to do by the applet on one port and by the outside
/// of its inputs. Time goes on only when a test says so.
#include <chrono>
#include <cmath>
#include <memory>
#include <random>

#include "tests/applet_test.h"

namespace {

using namespace fixture;
using namespace std::chrono_literals;
using std::chrono::nanoseconds;

constexpr nanoseconds kDebounce = 1008ns;  ///< The default, 21 units of 48 ns.
const std::string kPrefix = "Device1_Process4_Trigger_";
const std::string kStatusWord = kPrefix + "Monitoring_ReadQueueStatus_Status";
const std::string kExternal = "FG_AREATRIGGERMODE=2 FG_TRIGGERSTATE=0 ";
const std::string kSoftware = "FG_AREATRIGGERMODE=4 FG_TRIGGERSTATE=0 ";
/// External, and without the limit of the rate.
const std::string kUnlimited = kExternal + "FG_TRIGGERQUEUE_MODE=1 FG_TRIGGERQUEUE_MODE=0 ";

class TriggerBlock : public testing::TestWithParam<unsigned> {
 protected:
  TriggerBlock() {
    board::setClock([this] { return time; }, [this](auto pause) { time += pause; });
    open();
  }
  ~TriggerBlock() override {
    applet.reset();
    board::setClock({}, {});
  }

  void open() {
    applet.reset();
    applet = std::make_unique<Applet>();
    board::stopJournal();
    device = applet->device();
    for (unsigned p = 0; p < kPorts; ++p)
      EXPECT_EQ(Fg_AcquireEx(applet->fg(), p, -1, 0, nullptr), VELMORA_OK);
  }
  int id(const std::string& name) { return Fg_getParameterIdByName(applet->fg(), name.c_str()); }
  /// Does what words such as "NAME=VALUE" say, one after the other: sets parameters of the applet,
  /// or registers by what follows the prefix of their names; lets that many microseconds go by
  /// ("wait") or sends that many pulses of 10 kHz to input 0 ("pulses").
  void run(const std::string& script) {
    std::istringstream words(own(script));
    for (std::string name, value; std::getline(words >> std::ws, name, '=') && words >> value;) {
      const double number = std::stod(value);
      const auto whole = static_cast<std::uint32_t>(number);
      if (name == "pulses") VirtualBoard_trainInput(device, 0, 10e3, whole);
      if (name == "pulses" || name == "wait") {
        time += whole * (name == "wait" ? 1us : 100us);
      } else if (!name.starts_with("FG_")) {
        board::setValue(device, kPrefix + name, 0, number);
      } else {
        const bool real = applet->node(id(name))->kind == REGISTER_INFO_DOUBLE;
        EXPECT_EQ(real ? applet->set(id(name), number, port) : applet->set(id(name), whole, port),
                  VELMORA_OK)
            << name << '=' << value;
      }
    }
  }
  /// The same on a fresh board, and what there is to see then.
  std::string play(const std::string& script, const std::string& sights = "pictures") {
    open();
    run(script);
    return after(0s, sights);
  }
  double value(const std::string& name) {
    if (name == "pictures") return static_cast<double>(pictures(port));
    if (name == "status") return board::value(device, kStatusWord, 0);
    const bool real = applet->node(id(name))->kind == REGISTER_INFO_DOUBLE;
    return real ? applet->real(id(name), port).value : applet->word(id(name), port).value;
  }
  /// Values as "1 2", when time has gone on.
  std::string after(nanoseconds wait, const std::string& names) {
    time += wait;
    Lines values;
    std::istringstream words(names);
    for (std::string name; words >> name;) values.push_back(fmt::format("{:.0f}", value(name)));
    return fmt::format("{}", fmt::join(values, " "));
  }
  std::int64_t pictures(unsigned p) { return Fg_getLastPicNumberEx(applet->fg(), p, 0); }

  /// The port in a text, {p} as a number and {l} as a letter.
  std::string own(const std::string& text) const {
    return replaced(forPort(text, port), "{l}", std::string(1, static_cast<char>('A' + port)));
  }
  void listen(const std::string& names) {
    std::uint64_t mask = 0;
    std::istringstream words(own(names));
    for (std::string name; words >> name;) mask |= Fg_getEventMask(applet->fg(), name.c_str());
    VirtualBoard_enableEvents(device, mask);
    start = time;
  }
  /// The events since `listen` or the last call, as "NANOSECONDS NAME, NANOSECONDS NAME".
  std::string events() {
    Lines lines;
    for (VirtualBoardEvent event; VirtualBoard_takeEvent(device, 0, &event) == VELMORA_OK;)
      lines.push_back(fmt::format("{} {}", event.time - start.count(),
                                  Fg_getEventName(applet->fg(), event.mask)));
    return fmt::format("{}", fmt::join(lines, ", "));
  }

  const unsigned port = GetParam();
  nanoseconds time{1s}, start{};
  std::unique_ptr<Applet> applet;
  KTdevice* device = nullptr;
};
INSTANTIATE_TEST_SUITE_P(Ports, TriggerBlock, testing::Range(0U, kPorts));

TEST_P(TriggerBlock, PicturesFollowTheSettings) {
  const std::string active = "FG_TRIGGERSTATE=0 ", fps = "FG_TRIGGER_FRAMESPERSECOND=";
  const std::string form = "FG_TRIGGER_PULSEFORMGEN0_", second = "FG_TRIGGER_PULSEFORMGEN1_";
  const std::string camera = "FG_CAMERA_ACTION_COMMAND_SOURCE=", all = " pulses=100";
  EXPECT_EQ(play("wait=1000000"), "30");  // The camera alone.
  EXPECT_EQ(play(fps + "1000 " + active + "wait=100000"), "100");
  EXPECT_EQ(pictures((port + 1) % kPorts), 3);
  EXPECT_EQ(play(form + "WIDTH=1 " + second + "WIDTH=1 " + fps + "976562.5 " + active + all),
            "9765");
  EXPECT_EQ(play(active + "FG_TRIGGERSTATE=2" + all), "0");
  // From the input, the first at once.
  EXPECT_EQ(play(kExternal + all), "1");
  EXPECT_EQ(play(kExternal + fps + "1000 FG_TRIGGERQUEUE_MODE=1" + all), "10");
  EXPECT_EQ(play(kUnlimited + all), "100");
  EXPECT_EQ(play(kUnlimited + "FG_TRIGGERSTATE=2" + all), "0");
  EXPECT_EQ(play(kUnlimited + "FG_TRIGGERIN_SRC=7" + all), "0");
  EXPECT_EQ(play(kUnlimited + "FG_TRIGGERIN_POLARITY=1" + all), "101");  // The change is an edge.
  // Series begin anew when the trigger does.
  for (const std::string& series : {std::string("FG_TRIGGERIN_"), form}) {
    EXPECT_EQ(play(kUnlimited + series + "DOWNSCALE=3" + all), "34");
    EXPECT_EQ(play(kUnlimited + series + "DOWNSCALE=3 " + series + "DOWNSCALE_PHASE=1" + all),
              "33");
    EXPECT_EQ(play(kUnlimited + series + "DOWNSCALE=3 pulses=1 FG_TRIGGERSTATE=2 " + active +
                   "FG_TRIGGERQUEUE_MODE=1 FG_TRIGGERQUEUE_MODE=0 pulses=2"),
              "2");
  }
  EXPECT_EQ(play(kUnlimited + "TriggerCam{p}_Downscale_Downscale_SelectedPulse=2" + all), "0");
  // A pulse that comes while another one is delayed or sent is lost.
  EXPECT_EQ(play(kUnlimited + form + "DELAY=450" + all), "20");
  EXPECT_EQ(play(kUnlimited + form + "WIDTH=250" + all), "34");
  // Sources of the camera's command, which it follows when triggered; a new level can be an edge.
  EXPECT_EQ(play(kUnlimited + second + "DOWNSCALE=2 " + camera + "1" + all), "50");
  EXPECT_EQ(play(kUnlimited + camera + "6" + all), "101");
  EXPECT_EQ(play(kUnlimited + camera + "4" + all), "0");
  EXPECT_EQ(play(kUnlimited + camera + "5" + all), "1");
  EXPECT_EQ(play(camera + "10" + all), "0");
  EXPECT_EQ(play(camera + "10 " + kSoftware + all), "100");
  EXPECT_EQ(play(camera + "11 FG_TRIGGERIN_BYPASS_SRC=1 " + kSoftware + all), "0");
  // Pulses of the form that is counted.
  const std::string counter = "FG_TRIGGEROUT_STATS_PULSECOUNT";
  EXPECT_EQ(play(kUnlimited + second + "DOWNSCALE=2 FG_TRIGGEROUT_STATS_SOURCE=1" + all, counter),
            "50");
  EXPECT_EQ(play("TriggerCam{p}_Generators_ClearQueuePulse_Mode=0 wait=1000000", counter), "0");
}

/// A level counts when it has held long enough.
TEST_P(TriggerBlock, Debounces) {
  const std::string inputs = "FG_DIGIO_INPUT";
  listen("FG_TRIGGER_INPUT3_RISING FG_TRIGGER_INPUT3_FALLING");
  VirtualBoard_pulseInput(device, 3, (kDebounce - 1ns).count());
  EXPECT_EQ(after(10us, inputs), "0");
  VirtualBoard_pulseInput(device, 3, kDebounce.count());
  EXPECT_EQ(after(kDebounce, inputs), "8");
  VirtualBoard_setInput(device, 6, 1);
  EXPECT_EQ(after(10us, inputs), "64");
  run("FG_TRIGGERIN_DEBOUNCE=0.096");
  VirtualBoard_setInput(device, 6, 0);
  EXPECT_EQ(after(95ns, inputs), "64");
  EXPECT_EQ(after(1ns, inputs), "0");
  EXPECT_EQ(events(), "11008 FG_TRIGGER_INPUT3_RISING, 12016 FG_TRIGGER_INPUT3_FALLING");
  for (const int code :
       {VirtualBoard_setInput(device, 8, 1), VirtualBoard_pulseInput(device, 0, -1),
        VirtualBoard_trainInput(device, 0, -1, 1), VirtualBoard_trainInput(device, 0, 15.1e6, 1),
        VirtualBoard_trainInput(device, 0, NAN, 1), VirtualBoard_trainInput(device, 0, 1, -2)})
    EXPECT_EQ(code, VELMORA_BOARD_BAD_ARGUMENT);
}

/// Ten pulses; one a millisecond out again, each of them twice.
TEST_P(TriggerBlock, QueuePacesAndTellsItsLevel) {
  const std::string sights = "pictures FG_TRIGGERQUEUE_FILLLEVEL status";
  const std::string threshold = " FG_TRIGGER_QUEUE_FILLLEVEL_THRESHOLD_CAM{p}_";
  listen(threshold + "ON " + threshold + "OFF");
  run(kExternal +
      "FG_TRIGGER_FRAMESPERSECOND=1000 FG_TRIGGERQUEUE_MODE=1 "
      "FG_TRIGGER_MULTIPLY_PULSES=2 FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD=4 "
      "pulses=10");
  EXPECT_EQ(after(-1ns, sights), "1 10 0");
  EXPECT_EQ(after(1ms, sights), "2 9 0");
  EXPECT_EQ(after(18ms, sights), "20 1 0");  // The period goes on.
  EXPECT_EQ(after(1ms, sights), "20 0 0");
  run("pulses=10 TriggerCam{p}_Generators_ClearQueuePulse_Mode=1 pulses=10");
  EXPECT_EQ(after(0s, sights), "21 0 0");
  EXPECT_EQ(events(), own("301008" + threshold + "ON, 15000768" + threshold + "OFF, 21301007" +
                          threshold + "ON, 21999999" + threshold + "OFF"));
  // Registers that the applet has to keep in step.
  const std::string thrice = kExternal +
                             "FG_TRIGGER_FRAMESPERSECOND=1000 FG_TRIGGERQUEUE_MODE=1 "
                             "FG_TRIGGER_MULTIPLY_PULSES=3 ";
  const std::string sequence = "TriggerCam{p}_Generators_";
  EXPECT_EQ(play(thrice + sequence + "Sequence_SelectedPulse=1 pulses=2 wait=9000", sights),
            "6 0 0");
  EXPECT_EQ(play(thrice + sequence + "Sequence_SelectedPulse=1 pulses=2", sights), "1 1 0");
  EXPECT_EQ(play(thrice + "pulses=1 " + sequence + "ClearDownscale_Mode=2 wait=9000"), "4");
}

TEST_P(TriggerBlock, QueueHasAnEnd) {
  const std::string sights = "FG_TRIGGERQUEUE_FILLLEVEL status", one = "FG_SENDSOFTWARETRIGGER=1 ";
  const auto seen = [this](unsigned level, unsigned bits) {
    return fmt::format("{} {}", level, bits << 3 * port);
  };
  // With the queue off, one pulse can wait.
  EXPECT_EQ(play(kExternal + "pulses=2", sights), seen(1, 0));
  EXPECT_EQ(play(kExternal + "pulses=3", sights), seen(1, 1));
  open();
  listen("FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CAM{p}");
  run(kSoftware + one);
  EXPECT_EQ(applet->set(FG_SENDSOFTWARETRIGGER, 1, port), VELMORA_TRIGGER_BUSY);
  run("wait=125000 FG_TRIGGERQUEUE_MODE=1 FG_SENDSOFTWARETRIGGER=2040");
  EXPECT_EQ(after(0s, sights), seen(2039, 0));
  run(one);
  EXPECT_EQ(after(0s, sights), seen(2040, 2));
  run(one);
  EXPECT_EQ(after(0s, sights), seen(2040, 3));
  run("FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR=1");
  EXPECT_EQ(after(0s, sights), seen(2040, 2));
  EXPECT_EQ(after(1h, "pictures FG_TRIGGEROUT_STATS_PULSECOUNT status"), "2042 2042 0");
  EXPECT_EQ(events(), own("125000000 FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CAM{p}"));
}

/// Frequencies come from the distance of the last two pulses, the longest and the shortest.
TEST_P(TriggerBlock, MeasuresItsInput) {
  const auto measured = [this](nanoseconds period, int pulses) {
    VirtualBoard_trainInput(device, 4, 1e9 / static_cast<double>(period.count()), pulses);
    return after(pulses * period,
                 "FG_TRIGGERIN_STATS_PULSECOUNT FG_TRIGGERIN_STATS_FREQUENCY "
                 "FG_TRIGGERIN_STATS_MINFREQUENCY FG_TRIGGERIN_STATS_MAXFREQUENCY");
  };
  run("FG_TRIGGERIN_SRC=4");
  EXPECT_EQ(measured(1ms, 1), "1 0 0 0");
  EXPECT_EQ(measured(40us, 4), "5 25000 1000 25000");
  EXPECT_EQ(measured(100us, 2), "7 10000 1000 25000");
  run("FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR=1 FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR=1");
  EXPECT_EQ(measured(50us, 0), "0 10000 0 0");
  EXPECT_EQ(measured(50us, 2), "2 20000 10000 20000");
  run("FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR=1");
  EXPECT_EQ(measured(50us, 0), "2 20000 0 0");
  VirtualBoard_trainInput(device, 4, 20e3, -1);
  time += 475us;
  VirtualBoard_trainInput(device, 4, 0, -1);
  EXPECT_EQ(after(1h, "FG_TRIGGERIN_STATS_PULSECOUNT"), "12");
  // What the hardware's side has set stays until it is cleared.
  board::setValue(device, own(kPrefix + "TriggerCam{p}_InputStatistics_ReadPulses_Status"), 0, 77);
  EXPECT_EQ(measured(50us, 5), "77 20000 0 20000");
  run("FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR=1");
  EXPECT_EQ(measured(50us, 5), "5 20000 0 20000");
  board::setValue(device, kStatusWord, 0, 4095);
  run("FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR=1");
  EXPECT_EQ(after(0s, "status"), std::to_string(4095 - (4 << 3 * port)));
}

/// Two pulse forms of one pulse, as outputs and events show them.
TEST_P(TriggerBlock, ShapesPulses) {
  run("FG_TRIGGER_PULSEFORMGEN0_DELAY=20 FG_TRIGGER_PULSEFORMGEN0_WIDTH=40 "
      "FG_TRIGGER_PULSEFORMGEN1_DELAY=30 FG_TRIGGER_PULSEFORMGEN1_WIDTH=10 "
      "FG_TRIGGEROUT_SELECT0=0 FG_TRIGGER_OUTPUT_EVENT_SELECT=1");
  run(kSoftware);
  listen("FG_TRIGGER_OUTPUT_CAM{p} FG_START_OF_FRAME_CAM_PORT_{l}");
  run("FG_SENDSOFTWARETRIGGER=1");
  std::vector<unsigned> levels;  // Output 1 is inverted, as are those of other ports.
  for (int i = 0; i < 8; ++i, time += 10us) levels.push_back(VirtualBoard_outputs(device));
  const unsigned others = 255 - (3 << 2 * port);
  for (unsigned& level : levels) level = (level - others) >> 2 * port;
  EXPECT_EQ(levels, (std::vector<unsigned>{2, 2, 3, 1, 3, 3, 2, 2}));
  EXPECT_EQ(events(), own("20000 FG_START_OF_FRAME_CAM_PORT_{l}, 30000 FG_TRIGGER_OUTPUT_CAM{p}"));
  run("FG_DIGIO_OUTPUT=2");
  EXPECT_EQ(VirtualBoard_outputs(device) & 0x88, 0x80);
}

TEST_P(TriggerBlock, SlavesFollowTheFirstCamera) {
  if (port > 0) run("FG_AREATRIGGERMODE=3 FG_TRIGGERSTATE=0 FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE=3");
  EXPECT_EQ(after(1s, "pictures"), port == 0 ? "30" : "0");
  EXPECT_EQ(applet->set(FG_TRIGGER_FRAMESPERSECOND, 62.5), VELMORA_OK);
  EXPECT_EQ(applet->set(FG_TRIGGERSTATE, TS_ACTIVE), VELMORA_OK);
  EXPECT_EQ(after(96s, "pictures"), port == 0 ? "6030" : "2000");
}

/// Commands find no camera while the simulator delivers.
TEST_P(TriggerBlock, MissesFrames) {
  const std::string sights =
      "pictures FG_MISSING_CAMERA_FRAME_RESPONSE FG_CAMERA_ACTION_COMMAND_PENDING_COUNT";
  const std::string missing = " FG_MISSING_CAM{p}_FRAME_RESPONSE";
  const std::string frame = " FG_END_OF_FRAME_CAM_PORT_{l}";
  listen(missing + frame);
  run("FG_GEN_ENABLE=1 FG_GEN_START=0 FG_TRIGGER_FRAMESPERSECOND=1000 FG_TRIGGERSTATE=0");
  EXPECT_EQ(after(2ms, sights), "0 1 2");
  run("FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR=1 FG_GEN_ENABLE=0");
  EXPECT_EQ(after(1ms, sights), "1 0 0");
  run("FG_GEN_ENABLE=1 wait=1000");
  EXPECT_EQ(after(0s, sights), "1 1 1");
  run("FG_TRIGGERSTATE=2 FG_TRIGGERSTATE=0");
  EXPECT_EQ(after(0s, sights), "1 1 0");
  EXPECT_EQ(events(), own("999984" + missing + ", 1999968" + missing + ", 2999952" + frame +
                          ", 3999936" + missing));
}

/// The newest ones, in their order, however long nobody asked.
TEST_P(TriggerBlock, KeepsTheLatestEvents) {
  run("FG_TRIGGER_FRAMESPERSECOND=1000 FG_TRIGGERSTATE=0");  // 62499 ticks.
  listen("FG_TRIGGER_OUTPUT_CAM{p} FG_TRIGGER_INPUT0_RISING");
  VirtualBoard_trainInput(device, 0, 2, -1);
  time += 100s + kDebounce;
  const std::string all = events(), between = own(" FG_TRIGGER_OUTPUT_CAM{p}, ");
  EXPECT_EQ(VirtualBoard_lostEvents(device), 100001 + 201 - 4096);
  EXPECT_EQ(std::ranges::count(all, ','), 4095);
  EXPECT_TRUE(all.starts_with("95913465360" + between + "95914465344"));
  EXPECT_TRUE(all.ends_with("99999399984" + between + "100000001008 FG_TRIGGER_INPUT0_RISING"));
}

/// Whatever the registers hold, it makes no difference how often somebody looks.
TEST_P(TriggerBlock, CatchesUpInOneStepOrInMany) {
  Lines writable, readable;
  for (const std::string& line : linesOf(contentOf(DESIGN_MANIFEST))) {
    if (line.find(kPrefix) == line.npos || line.starts_with("event")) continue;
    for (const auto& [camera, form] : {std::pair("0", "0"), {"1", "0"}, {"2", "1"}, {"3", "1"}}) {
      std::istringstream words(replaced(replaced(line, "{0-3}", camera), "{0-1}", form));
      std::string kind, name, access;
      words >> kind >> name >> access;
      (access == "rw" ? writable : readable).push_back(replaced(name, "{1-3}", "3"));
    }
  }
  std::int64_t taken = 0;
  for (unsigned seed = port; seed < 100; seed += kPorts) {
    Lines seen[2];
    for (const bool often : {false, true}) {
      time = 1s;
      open();
      std::minstd_rand random(seed);
      const auto below = [&](std::size_t end) { return static_cast<unsigned>(random() % end); };
      VirtualBoard_enableEvents(device, seed / kPorts % 2 == 0 ? 0 : ~0ULL);
      for (int round = 0; round < 10; ++round) {
        for (int i = 0; i < 150; ++i) {
          const unsigned values[] = {0, 1, 1, below(4), below(4), below(9), below(3000), ~0U};
          board::setValue(device, writable[below(writable.size())], 0, values[below(8)]);
        }
        for (const auto* leaf :
             {"Generators_ClearQueuePulse_Mode", "Generators_EnableQueue_Select"})
          board::setValue(device, fmt::format("{}TriggerCam{}_{}", kPrefix, below(kPorts), leaf), 0,
                          below(2) * below(2));
        VirtualBoard_trainInput(device, below(8), below(2000000), below(300));
        for (int step = 0; step < 200; ++step, time += 700ns)
          if (often) pictures(0);
        for (const std::string& name : readable)
          seen[often].push_back(fmt::format("{} {}", name, board::value(device, name, 0)));
        for (unsigned p = 0; p < kPorts; ++p)
          seen[often].push_back(fmt::format("pictures {}", pictures(p)));
        seen[often].push_back(events());
      }
      taken += pictures(0) + pictures(3);
    }
    ASSERT_EQ(seen[false], seen[true]) << "seed " << seed;
  }
  EXPECT_GT(taken, 1000) << "hardly anything happened";
}

}  // namespace
