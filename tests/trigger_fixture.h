/// What the trigger suites share: journal lines in short, and sets that are tried with every write
/// failing before they succeed.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <type_traits>

#include "tests/applet_fixture.h"

namespace fixture {

/// A code that neither the applet nor the board uses.
inline constexpr int kInjected = -4711;

/// Index of FG_AREATRIGGERMODE; all that follow belong to the trigger path too.
inline constexpr std::size_t kFirstTriggerParameter = 40;

/// A value of a 32-bit or of a double parameter.
struct Value {
  template <class T>
  Value(T value) : number(static_cast<double>(value)), isReal(std::is_floating_point_v<T>) {}
  std::uint32_t word() const { return static_cast<std::uint32_t>(number); }

  double number;
  bool isReal;
};

inline const std::string kTriggerPrefix = "Device1_Process4_Trigger_";

/// The pulse form generators' times, which the period of the frame rate has to exceed.
inline const Lines kTimesOfBothForms = {"PulseFormGenerators_PulseFormGenerator0_Delay_Delay",
                                        "PulseFormGenerators_PulseFormGenerator0_Width_Width",
                                        "PulseFormGenerators_PulseFormGenerator1_Delay_Delay",
                                        "PulseFormGenerators_PulseFormGenerator1_Width_Width"};

/// Name of a trigger parameter without the prefix: "Name" is the camera's own, "/Name" lies beside
/// the cameras, {c} stands for the camera.
inline std::string designName(unsigned camera, std::string name) {
  const std::string number = std::to_string(camera);
  if (const auto at = name.find("{c}"); at != std::string::npos) name.replace(at, 3, number);
  return name[0] == '/' ? name.substr(1) : "TriggerCam" + number + "_" + name;
}

/// Journal lines of writes on a port, given as "Name = 3" with a name as in `designName`.
inline Lines writesOf(unsigned port, Lines writes) {
  for (std::string& line : writes) {
    line = "set " + designName(port, line);
    line.insert(line.find(" = "), "[" + std::to_string(port) + "]");
  }
  return writes;
}

/// A design with the defaults applied, and what a trigger test does to it.
class TriggerTest : public ::testing::Test {
 public:
  /// A port's parameters as an application sees them: code and value of a get, and the description.
  using Sight = std::vector<std::array<char, sizeof(int) + 32 + sizeof(RegisterInfo)>>;

  TriggerTest() {
    for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i) {
      ids.push_back(Fg_getParameterId(applet.fg(), i));
      for (unsigned port = 0; port < kPorts; ++port)
        nodes[port].push_back(applet.node(ids.back(), port));
      if (ids.size() > kFirstTriggerParameter &&
          (nodes[0].back()->accessMode & REGISTER_INFO_WRITABLE) != 0)
        writable.push_back(ids.size() - 1);
    }
    // Follows from what a failing transition has written until then, so it is kept still.
    for (unsigned port = 0; port < kPorts; ++port)
      board::setValue(applet.device(), "FG_CAMSTATUS_EXTENDED", port, 1);
    takeAccesses();
  }

  int set(unsigned port, int id, Value value) {
    return value.isReal ? applet.set(id, value.number, port) : applet.set(id, value.word(), port);
  }
  void bringTo(unsigned port, std::uint32_t mode, std::uint32_t state) {
    ASSERT_EQ(set(port, FG_AREATRIGGERMODE, mode), VELMORA_OK);
    ASSERT_EQ(set(port, FG_TRIGGERSTATE, state), VELMORA_OK);
  }
  std::uint32_t word(unsigned port, int id) { return applet.word(id, port).value; }
  double real(unsigned port, int id) { return applet.real(id, port).value; }

  /// Plays the hardware.
  void give(unsigned camera, const std::string& name, double value) {
    board::setValue(applet.device(), kTriggerPrefix + designName(camera, name), camera, value);
  }

  /// All that can be read of a port, but for the pulses, which the design counts as it likes.
  Sight sight(unsigned port) {
    Sight sight(ids.size());
    for (std::size_t i = 0; i < ids.size(); ++i) {
      char* seen = sight[i].data();
      if (const RegisterInfo* node = nodes[port][i])
        std::memcpy(seen + sizeof(int) + 32, node, sizeof *node);
      if (ids[i] == FG_TRIGGEROUT_STATS_PULSECOUNT) continue;
      const int code = Fg_getParameterWithType(applet.fg(), ids[i], seen + sizeof(int), port,
                                               FG_PARAM_TYPE_INT32);
      std::memcpy(seen, &code, sizeof code);
    }
    return sight;
  }
  /// The parameters in which two sights of a port differ.
  Lines differences(const Sight& before, const Sight& after) {
    Lines names;
    for (std::size_t i = 0; i < ids.size(); ++i)
      if (before[i] != after[i])
        names.emplace_back(Fg_getParameterName(applet.fg(), static_cast<int>(i)));
    return names;
  }

  /// Sets with a fault that `arm` prepares: the code is returned and recorded, the lines are the
  /// writes in order, and a failure changes nothing that can be read.
  void attempt(
      unsigned port, int id, Value value, int code, const Lines& lines,
      const std::function<void()>& arm = [] {}) {
    SCOPED_TRACE(testing::Message() << "parameter " << id << " on port " << port);
    const Sight before = sight(port);
    takeWrites();
    arm();
    EXPECT_EQ(set(port, id, value), code);
    board::clearFaults();
    EXPECT_EQ(applet.lastError(), code);
    EXPECT_EQ(takeWrites(), lines);
    if (code == VELMORA_OK) {
      EXPECT_TRUE(value.isReal || word(port, id) == value.word());
    } else {
      EXPECT_EQ(differences(before, sight(port)), Lines{});
    }
  }

  /// Each of the sets fails after these writes.
  void fails(unsigned port, int id, const std::vector<Value>& values, int code,
             const Lines& writes = {}) {
    for (const Value& value : values) attempt(port, id, value, code, writesOf(port, writes));
  }

  /// The set makes these writes. Each of them can fail, which ends the set.
  void accepts(unsigned port, int id, Value value, const Lines& writes) {
    const Lines all = writesOf(port, writes);
    for (std::size_t k = 1; k <= all.size(); ++k) {
      Lines done(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(k));
      done.back() += " failed: " + std::to_string(kInjected);
      attempt(port, id, value, kInjected, done,
              [k] { board::failAtWrite(static_cast<unsigned>(k), kInjected); });
    }
    attempt(port, id, value, VELMORA_OK, all);
  }

  /// The set reads these design parameters and no others, and ends at any that cannot be read. The
  /// writes are those that come before.
  void reads(unsigned port, int id, Value value, const Lines& names, const Lines& writes = {}) {
    for (const std::string& name : names)
      attempt(port, id, value, kInjected, writesOf(port, writes),
              [&] { board::failNamed(kTriggerPrefix + designName(port, name), kInjected, 1); });
    takeAccesses();
    EXPECT_EQ(set(port, id, value), VELMORA_OK);
    EXPECT_EQ(std::ranges::count_if(takeAccesses(), [](auto& l) { return l.starts_with("get "); }),
              std::ssize(names));
  }

  Applet applet;
  std::vector<int> ids;                                  ///< By index.
  std::array<std::vector<RegisterInfo*>, kPorts> nodes;  ///< Descriptions by index.
  std::vector<std::size_t> writable;  ///< Indices of the trigger parameters that can be set.
};

}  // namespace fixture
