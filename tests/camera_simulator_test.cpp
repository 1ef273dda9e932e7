/// Camera simulator on all four ports: registers, the coupling of frequency and accuracy, failures.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/applet_fixture.h"

namespace {

using fixture::Applet;
using fixture::kPorts;
using fixture::Lines;
using fixture::takeAccesses;

constexpr int kRegisterFailure = -888;

std::string write(unsigned port, const std::string& field, std::uint64_t value) {
  return "write CamGen" + field + std::to_string(port) + " = " + std::to_string(value);
}

TEST(CameraSimulator, PlainParametersWriteOneRegister) {
  struct Row {
    int id;
    unsigned value;
    int result;
    const char* field;
    std::uint64_t written;
  };
  const Row rows[] = {
      {FG_GEN_ENABLE, FG_GENERATOR, 0, "Enable", 1},
      {FG_GEN_ENABLE, FG_CAMPORT, 0, "Enable", 0},
      {FG_GEN_ENABLE, 2, -6000, "", 0},
      {FG_GEN_ENABLE, ~0u, -6000, "", 0},
      {FG_GEN_START, FG_OFF, 0, "Start", 0},
      {FG_GEN_START, FG_ON, 0, "Start", 1},
      {FG_GEN_START, 2, -6000, "", 0},
      {FG_GEN_HEIGHT, 1, 0, "Height", 0},
      {FG_GEN_HEIGHT, 65535, 0, "Height", 65534},
      {FG_GEN_HEIGHT, 0, 0, "Height", 4294967295},
      {FG_GEN_HEIGHT, 65536, -6000, "", 0},
      {FG_GEN_ROLL, 255, 0, "Roll", 255},
      {FG_GEN_ROLL, 256, -6000, "", 0},
  };
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::to_string(row.id) + " = " + std::to_string(row.value));
      const auto previous = applet.word(row.id, port);
      takeAccesses();
      if (row.result == 0) {
        board::failAtWrite(1, kRegisterFailure);
        EXPECT_EQ(applet.set(row.id, row.value, port), kRegisterFailure);
        EXPECT_EQ(applet.word(row.id, port), previous);
        takeAccesses();
      }
      EXPECT_EQ(applet.set(row.id, row.value, port), row.result);
      EXPECT_EQ(takeAccesses(),
                row.result == 0 ? Lines{write(port, row.field, row.written)} : Lines{});
      EXPECT_EQ(applet.word(row.id, port).value, row.result == 0 ? row.value : previous.value);
    }
  }
}

TEST(CameraSimulator, LineRegistersFollowTheCameraFormat) {
  struct Row {
    unsigned format, width, gap;
    std::uint64_t widthUnits, lineUnits;
  };
  const Row rows[] = {
      {MONO8, 1001, 4, 1001, 1005},           {MONO8_SIGNED, 65535, 65535, 65535, 131070},
      {MONO10, 1001, 4, 2002, 2010},          {MONO12, 7, 0, 14, 14},
      {MONO16, 65535, 65535, 131070, 262140}, {MONO14, 10, 3, 20, 26},
      {MONO10_PACKED, 1001, 4, 1501, 1507},   {MONO12_PACKED, 1000, 4, 1500, 1506},
  };
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const Row& row : rows) {
      SCOPED_TRACE("format " + std::to_string(row.format));
      ASSERT_EQ(applet.set(FG_GBE_CAMTYPE, row.format, port), 0);
      ASSERT_EQ(applet.set(FG_GEN_WIDTH, row.width, port), 0);
      takeAccesses();
      EXPECT_EQ(applet.set(FG_GEN_LINE_GAP, row.gap, port), 0);
      const Lines pair{write(port, "Width", row.widthUnits),
                       write(port, "LineWidth", row.lineUnits)};
      EXPECT_EQ(takeAccesses(), pair);
      EXPECT_EQ(applet.set(FG_GEN_WIDTH, row.width, port), 0);
      EXPECT_EQ(takeAccesses(), pair);
      EXPECT_EQ(applet.word(FG_GEN_LINE_WIDTH, port).value, row.width + row.gap);
    }
    for (const int id : {FG_GEN_WIDTH, FG_GEN_LINE_GAP})
      EXPECT_EQ(applet.set(id, 65536, port), -6000);
  }
}

TEST(CameraSimulator, AFailingLineRegisterRestoresTheSetting) {
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const int id : {FG_GEN_WIDTH, FG_GEN_LINE_GAP}) {
      for (unsigned failing = 1; failing <= 2; ++failing) {
        const auto previous = applet.word(id, port);
        takeAccesses();
        board::failAtWrite(failing, kRegisterFailure);
        EXPECT_EQ(applet.set(id, 50, port), kRegisterFailure);
        EXPECT_EQ(takeAccesses().size(), failing);
        EXPECT_EQ(applet.word(id, port), previous);
      }
    }
  }
}

/// What a frequency and an accuracy come to, worked out in whole numbers of a thousandth of a MHz.
struct Period {
  int result;
  std::int64_t active, passive;
};

Period expectedPeriod(std::int64_t kilohertz, std::int64_t cycles) {
  const auto leastMegahertz = (62500 + 1000 * cycles - 1) / (1000 * cycles);
  if (kilohertz < 1000 * leastMegahertz || kilohertz > 125000) return {-6000, 0, 0};
  const std::int64_t active = (2 * cycles * kilohertz + 125000) / 250000;  // Rounded half up.
  const std::int64_t passive = cycles - active;
  if (active < 1 || active > 65535 || passive < 0 || passive > 65535) return {-2075, 0, 0};
  return {0, active, passive};
}

TEST(CameraSimulator, FrequencyAndAccuracyAreCoupled) {
  constexpr int kAccuracies[] = {1, 2, 3, 7, 25, 62, 63, 100, 1000, 65535};
  constexpr int kKilohertz[] = {1,     500,   1000,  2900,  3000,   8000,   20000,
                                31300, 40000, 62500, 99900, 124000, 125000, 125001};
  Applet applet;
  unsigned port = 0;
  for (const int cycles : kAccuracies) {
    for (const int kilohertz : kKilohertz) {
      SCOPED_TRACE(std::to_string(kilohertz) + " kHz, " + std::to_string(cycles) + " cycles");
      port = (port + 1) % kPorts;
      ASSERT_EQ(applet.set(FG_GEN_FREQ, 125.0, port), 0);
      ASSERT_EQ(applet.set(FG_GEN_ACCURACY, cycles, port), 0);
      const auto active = applet.word(FG_GEN_ACTIVE, port);
      takeAccesses();

      const double megahertz = kilohertz / 1000.0;
      const Period period = expectedPeriod(kilohertz, cycles);
      ASSERT_EQ(applet.set(FG_GEN_FREQ, megahertz, port), period.result);
      if (period.result != 0) {
        EXPECT_EQ(takeAccesses(), Lines{});
        EXPECT_EQ(applet.real(FG_GEN_FREQ, port).value, 125.0);
        EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port), active);
        continue;
      }
      const Lines pair{write(port, "Active", static_cast<std::uint64_t>(period.active - 1)),
                       write(port, "Passive", static_cast<std::uint64_t>(period.passive - 1))};
      EXPECT_EQ(takeAccesses(), pair);
      EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, period.active);
      EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, period.passive);
      const auto leastCycles = static_cast<unsigned>((62500 + kilohertz - 1) / kilohertz);
      EXPECT_EQ(applet.node(FG_GEN_ACCURACY, port)->value.uint32.min, leastCycles);
      EXPECT_EQ(applet.node(FG_GEN_FREQ, port)->value.real.min, (124 + 2 * cycles) / (2 * cycles));

      EXPECT_EQ(applet.set(FG_GEN_ACCURACY, leastCycles - 1, port), -6000);
      EXPECT_EQ(takeAccesses(), Lines{});
      EXPECT_EQ(applet.set(FG_GEN_ACCURACY, cycles, port), 0);
      EXPECT_EQ(takeAccesses(), pair);
    }
  }
}

TEST(CameraSimulator, FrequencyAndAccuracyRestoreOnFailure) {
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(applet.set(FG_GEN_ACCURACY, 65536, port), -6000);
    EXPECT_EQ(applet.set(FG_GEN_FREQ, std::nan(""), port), -6000);
    for (unsigned failing = 1; failing <= 2; ++failing) {
      takeAccesses();
      board::failAtWrite(failing, kRegisterFailure);
      EXPECT_EQ(applet.set(FG_GEN_FREQ, 80.0, port), kRegisterFailure);
      board::failAtWrite(failing, kRegisterFailure);
      EXPECT_EQ(applet.set(FG_GEN_ACCURACY, 50, port), kRegisterFailure);
      EXPECT_EQ(takeAccesses().size(), 2 * failing);
      EXPECT_EQ(applet.real(FG_GEN_FREQ, port).value, 40.0);
      EXPECT_EQ(applet.word(FG_GEN_ACCURACY, port).value, 25u);
      EXPECT_EQ(applet.node(FG_GEN_ACCURACY, port)->value.uint32.min, 2u);
      EXPECT_EQ(applet.node(FG_GEN_FREQ, port)->value.real.min, 3.0);
    }
    // A write that was accepted stays, in the register and in what is reported of it: 25 cycles at
    // 40 MHz hold 8 active ones, 50 cycles hold 16.
    EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, 16u);
    EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, 17u);
  }
}

TEST(CameraSimulator, WithoutDefaultsTheCacheStandsForAnUntouchedDesign) {
  Applet applet(fixture::kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(applet.word(FG_GEN_ACTIVE, port).value, 4u);
    EXPECT_EQ(applet.word(FG_GEN_PASSIVE, port).value, 30u);
    EXPECT_EQ(applet.word(FG_GEN_LINE_WIDTH, port).value, 1028u);
  }
}

}  // namespace
