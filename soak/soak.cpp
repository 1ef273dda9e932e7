// Many threads use one applet for SECONDS and check every answer: sets, gets, strings, lookups,
// refusals, and changes of the log threshold. In rounds, since saves, loads and documents must not
// overlap them. Usage: soak SECONDS.
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <thread>

#include "soak/counting_dispatcher.h"
#include "tests/applet_fixture.h"
#include "tests/temporary_directory.h"

namespace {

using fixture::Applet;
using fixture::kPorts;

constexpr int kCallsPerRound = 500;
constexpr int kLogLevels = 8;

/// Settings that depend on no other one. Each is set by a single thread per port, so that it knows
/// what a get has to return.
struct Setting {
  int id;
  std::uint32_t min, max;
};
constexpr std::array kSettings{
    Setting{FG_TIMEOUT, 2, 2147483646},
    Setting{FG_GEN_ROLL, 0, 255},
    Setting{FG_BAYERINIT, 0, 3},
    Setting{FG_TRIGGERIN_SRC, 0, 7},
    Setting{FG_TRIGGERIN_BYPASS_SRC, 0, 7},
    Setting{FG_TRIGGER_QUEUE_FILLLEVEL_EVENT_ON_THRESHOLD, 2, 2047},
};
constexpr unsigned kThreads = kPorts * kSettings.size();

enum Kind { kSets, kGets, kRefusals, kStrings, kLookups, kThresholds, kSaves, kLoads, kDocuments };
constexpr std::array kKindNames{"sets",       "gets",  "refusals", "strings",  "lookups",
                                "thresholds", "saves", "loads",    "documents"};

class Soak {
 public:
  explicit Soak(std::chrono::seconds time)
      : end_(std::chrono::steady_clock::now() + time), document_(document(0)) {
    board::stopJournal();
    for (unsigned owner = 0; owner < kThreads; ++owner) expected_[owner] = read(owner).value();
    refuse(0);  // The first message attaches the dispatcher.
  }

  /// Whether every answer was right.
  bool run() {
    std::barrier round(kThreads, [this]() noexcept { betweenRounds(); });
    std::vector<std::jthread> threads;
    for (unsigned owner = 0; owner < kThreads; ++owner)
      threads.emplace_back([this, owner, &round] {
        std::minstd_rand random(owner + 1);
        while (!over_) {
          for (int call = 0; call < kCallsPerRound; ++call) oneCall(owner, random);
          round.arrive_and_wait();
        }
      });
    threads.clear();
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind)
      std::printf("%s: %llu\n", kKindNames[kind], counts_[kind].load());
    std::printf("messages: %llu\nwrong answers: %llu\n",
                static_cast<unsigned long long>(fakes::loggedMessages()), wrong_.load());
    return wrong_ == 0;
  }

 private:
  static const Setting& settingOf(unsigned owner) { return kSettings[owner / kPorts]; }
  static unsigned portOf(unsigned owner) { return owner % kPorts; }

  void check(Kind kind, bool right) {
    ++counts_[kind];
    if (!right && wrong_++ == 0)
      std::fprintf(stderr, "wrong answer among the %s\n", kKindNames[kind]);
  }

  std::optional<std::uint32_t> read(unsigned owner) {
    const auto reading = applet_.word(settingOf(owner).id, portOf(owner));
    return reading.code == VELMORA_OK ? std::optional(reading.value) : std::nullopt;
  }

  void oneCall(unsigned owner, std::minstd_rand& random) {
    switch (random() % 8) {
      case 0:
        return set(owner, random);
      case 1:
        return check(kGets, read(owner) == expected_[owner]);
      case 2:
        return getOfAnother(static_cast<unsigned>(random() % kThreads));
      case 3:
        return refuse(owner);
      case 4:
        return useString(owner);
      case 5:
        return lookUp(static_cast<int>(random() % 85));
      case 6:
        return lookUpEvent();
      default:
        fakes::setLogThreshold(static_cast<int>(random() % kLogLevels));
        return check(kThresholds, true);
    }
  }

  void set(unsigned owner, std::minstd_rand& random) {
    const auto [id, min, max] = settingOf(owner);
    const std::uint32_t value = std::uniform_int_distribution(min, max)(random);
    check(kSets, applet_.set(id, value, portOf(owner)) == VELMORA_OK);
    expected_[owner] = value;
  }

  void getOfAnother(unsigned owner) {
    const auto value = read(owner);
    check(kGets, value && *value >= settingOf(owner).min && *value <= settingOf(owner).max);
    const auto rate = applet_.real(FG_TRIGGER_FRAMESPERSECOND, portOf(owner));
    check(kGets, rate.code == VELMORA_OK && std::abs(rate.value - 8) < 1e-3);
  }

  void refuse(unsigned owner) {
    const auto [id, min, max] = settingOf(owner);
    check(kRefusals, applet_.set(id, max + 1, portOf(owner)) == VELMORA_OUT_OF_RANGE);
    check(kRefusals, applet_.set(FG_PIXELDEPTH, 8, portOf(owner)) == VELMORA_NOT_AVAILABLE);
    check(kRefusals, applet_.set(id, min, kPorts) == VELMORA_INVALID_ARGUMENT);
    check(kRefusals, applet_.lastError() <= VELMORA_OK);
    check(kGets, read(owner) == expected_[owner]);
  }

  void useString(unsigned owner) {
    char* text = nullptr;
    const unsigned port = portOf(owner);
    const int code =
        Fg_getParameterWithType(applet_.fg(), FG_HAP_FILE, &text, port, FG_PARAM_TYPE_STRING);
    check(kStrings, code == VELMORA_OK && std::strcmp(text, "Velmora.hap") == 0 &&
                        Fg_freeParameterStringWithType(applet_.fg(), FG_HAP_FILE, text, port,
                                                       FG_PARAM_TYPE_STRING) == VELMORA_OK);
  }

  void lookUp(int index) {
    const int id = Fg_getParameterId(applet_.fg(), index);
    const char* const name = Fg_getParameterName(applet_.fg(), index);
    check(kLookups, id > 0 && name && Fg_getParameterIdByName(applet_.fg(), name) == id);
    check(kLookups, Info(VELMORA_INFO_NAME, 0, 0, nullptr, nullptr) == VELMORA_OK);
  }

  void lookUpEvent() {
    constexpr std::uint64_t kFirst = 1;
    const char* const name = Fg_getEventName(applet_.fg(), kFirst);
    check(kLookups, name && Fg_getEventMask(applet_.fg(), name) == kFirst);
  }

  std::string document(int port) {
    std::size_t size = 0;
    Fg_getParameterInfoXML(applet_.fg(), port, nullptr, &size);
    std::string text(size, '\0');
    return Fg_getParameterInfoXML(applet_.fg(), port, text.data(), &size) == VELMORA_OK ? text : "";
  }

  /// What no other call may overlap; leaves everything as it is.
  void betweenRounds() {
    const std::string file = directory_ / "soak.mcf";
    check(kSaves, Fg_saveConfig(applet_.fg(), file.c_str()) == VELMORA_OK);
    check(kLoads, Fg_loadConfig(applet_.fg(), file.c_str()) == VELMORA_OK);
    for (unsigned owner = 0; owner < kThreads; ++owner)
      check(kGets, read(owner) == expected_[owner]);
    check(kDocuments, !document_.empty() && document(0) == document_);
    over_ = wrong_ != 0 || std::chrono::steady_clock::now() >= end_;
  }

  const std::chrono::steady_clock::time_point end_;
  Applet applet_;
  const std::string document_;
  const TemporaryDirectory directory_;
  std::array<std::uint32_t, kThreads> expected_{};  ///< By owner.
  std::array<std::atomic<unsigned long long>, kKindNames.size()> counts_{};
  std::atomic<unsigned long long> wrong_{0};
  std::atomic<bool> over_{false};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: soak SECONDS\n");
    return 1;
  }
  return Soak(std::chrono::seconds(std::atoi(argv[1]))).run() ? 0 : 1;
}
