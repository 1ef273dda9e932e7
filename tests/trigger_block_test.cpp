/// The virtual board's trigger block, told what to do by the applet on one port and by the outside
/// of its inputs. Time goes on only when a test says so.
#include <chrono>
#include <cmath>
#include <map>
#include <memory>
#include <random>

#include "tests/applet_test.h"
#include "tests/test_clock.h"

namespace {

using namespace fixture;
using namespace std::chrono_literals;
using std::chrono::nanoseconds;

const std::string kPrefix = "Device1_Process4_Trigger_";

class TriggerBlock : public TestClock, public testing::TestWithParam<unsigned> {
 protected:
  TriggerBlock() { open(); }

  void open() {
    applet.reset();
    applet = std::make_unique<Applet>();
    board::stopJournal();
    device = applet->device();
    listened = 0;
    for (unsigned p = 0; p < kPorts; ++p)
      EXPECT_EQ(Fg_AcquireEx(applet->fg(), p, -1, 0, nullptr), VELMORA_OK);
  }
  int id(const std::string& name) { return Fg_getParameterIdByName(applet->fg(), name.c_str()); }
  bool isReal(const std::string& name) {
    return applet->node(id(name))->kind == REGISTER_INFO_DOUBLE;
  }
  std::int64_t pictures(unsigned p) { return Fg_getLastPicNumberEx(applet->fg(), p, 0); }

  /// The events since the first `listen` or the last call, as "NANOSECONDS NAME, ...".
  std::string events() {
    Lines lines;
    for (VirtualBoardEvent event; VirtualBoard_takeEvent(device, 0, &event) == VELMORA_OK;)
      lines.push_back(fmt::format("{} {}", event.time - start.count(),
                                  Fg_getEventName(applet->fg(), event.mask)));
    return fmt::format("{}", fmt::join(lines, ", "));
  }
  int listen(const std::string& event) {
    listened |= Fg_getEventMask(applet->fg(), event.c_str());
    start = time;
    return VirtualBoard_enableEvents(device, listened);
  }
  int train(double pulses) {
    return VirtualBoard_trainInput(device, input, rate, static_cast<std::int64_t>(pulses));
  }
  int wait(double microseconds) {
    time += nanoseconds(std::llround(microseconds * 1000));
    return VELMORA_OK;
  }
  int set(const std::string& name, double value) {
    if (name.starts_with("FG_"))
      return isReal(name) ? applet->set(id(name), value, port)
                          : applet->set(id(name), static_cast<std::uint32_t>(value), port);
    board::setValue(device, kPrefix + name, 0, value);
    return VELMORA_OK;
  }
  /// Does what "NAME=VALUE" says; the code.
  int act(const std::string& name, const std::string& value) {
    if (name == "listen") return listen(value);
    const double number = std::stod(value);
    if (name == "input") return input = static_cast<unsigned>(number), VELMORA_OK;
    if (name == "rate") return rate = number, VELMORA_OK;
    if (name == "level") return VirtualBoard_setInput(device, input, number != 0);
    if (name == "pulse") return VirtualBoard_pulseInput(device, input, std::llround(number));
    if (name == "train") return train(number);
    if (name == "pulses") return train(number) + wait(number * 1e6 / rate);
    return name == "wait" ? wait(number) : set(name, number);
  }
  /// What a word without a value asks for.
  std::string see(const std::string& name) {
    if (name == "events") return events();
    const double value =
        name == "pictures"        ? static_cast<double>(pictures(port))
        : name == "next-pictures" ? static_cast<double>(pictures((port + 1) % kPorts))
        : name == "status"        ? (bits("Monitoring_ReadQueueStatus_Status") >> 3 * port) & 7
        : name == "outputs"       ? VirtualBoard_outputs(device) >> 2 * port & 3
        : isReal(name)            ? applet->real(id(name), port).value
                                  : applet->word(id(name), port).value;
    return fmt::format("{:.0f}", value);
  }
  unsigned bits(const std::string& name) {
    return static_cast<unsigned>(board::value(device, kPrefix + name, 0));
  }
  std::string play(const std::string& script) {
    static const std::map<std::string, std::string> kShort{
        {"external", "FG_AREATRIGGERMODE=2 FG_TRIGGERSTATE=0"},
        {"software", "FG_AREATRIGGERMODE=4 FG_TRIGGERSTATE=0"},
        {"unlimited", "external FG_TRIGGERQUEUE_MODE=1 FG_TRIGGERQUEUE_MODE=0"}};
    Lines answers;
    std::istringstream words(script);
    for (std::string word; words >> word;) {
      const auto equals = word.find('=');
      if (word == "fresh") {
        open();
        input = 0;
        rate = 10e3;
      } else if (kShort.contains(word)) {
        EXPECT_EQ(play(kShort.at(word)), "");
      } else if (equals == word.npos) {
        answers.push_back(see(word));
      } else if (const int code = act(word.substr(0, equals), word.substr(equals + 1))) {
        answers.push_back(fmt::format("{}={}", word.substr(0, equals), code));
      }
    }
    return fmt::format("{}", fmt::join(answers, " "));
  }

  const unsigned port = GetParam();
  nanoseconds start{};
  std::unique_ptr<Applet> applet;
  KTdevice* device = nullptr;
  std::uint64_t listened = 0;
  unsigned input = 0;
  double rate = 10e3;
};
INSTANTIATE_TEST_SUITE_P(Ports, TriggerBlock, testing::Range(0U, kPorts));

TEST_P(TriggerBlock, DoesWhatTheTranscriptTells) {
  const std::string told = replaced(forPort(contentOf(TEST_DATA "/trigger_block.txt"), port), "{l}",
                                    std::string(1, static_cast<char>('A' + port)));
  std::string done;
  for (const std::string& line : linesOf(told)) {
    if (line.empty() || line.starts_with('#')) done += line + '\n';
    if (!line.starts_with("$ ")) continue;
    done += line + '\n';
    if (const std::string answer = play(line.substr(2)); !answer.empty()) done += answer + '\n';
  }
  EXPECT_EQ(done, told);
}

TEST_P(TriggerBlock, SlavesFollowTheFirstCamera) {
  if (port > 0) play("FG_AREATRIGGERMODE=3 FG_TRIGGERSTATE=0 FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE=3");
  EXPECT_EQ(play("wait=1000000 pictures"), port == 0 ? "30" : "0");
  EXPECT_EQ(applet->set(FG_TRIGGER_FRAMESPERSECOND, 62.5), VELMORA_OK);
  EXPECT_EQ(applet->set(FG_TRIGGERSTATE, TS_ACTIVE), VELMORA_OK);
  EXPECT_EQ(play("wait=96000000 pictures"), port == 0 ? "6030" : "2000");
}

/// The newest ones, in their order, however long nobody asked.
TEST_P(TriggerBlock, KeepsTheLatestEvents) {
  play("FG_TRIGGER_FRAMESPERSECOND=1000 FG_TRIGGERSTATE=0");  // 62499 ticks.
  const std::string output = fmt::format("FG_TRIGGER_OUTPUT_CAM{}", port);
  play("listen=FG_TRIGGER_INPUT0_RISING listen=" + output + " rate=2 train=-1 wait=100000001.008");
  const std::string all = events(), between = " " + output + ", ";
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
