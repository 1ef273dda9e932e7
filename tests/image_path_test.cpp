/// Image-path parameters on all four ports: bounds, design writes, failures, moved limits.
#include <gtest/gtest.h>

#include <limits>

#include "tests/applet_fixture.h"

namespace {

using fixture::Applet;
using fixture::kPorts;
using fixture::Lines;
using fixture::takeAccesses;

constexpr int kDesignFailure = -777;

/// "set Device1_Process<port>_<leaf>[<port>] = <value>"
std::string write(unsigned port, const std::string& leaf, const std::string& value) {
  const std::string p = std::to_string(port);
  return "set Device1_Process" + p + "_" + leaf + "[" + p + "] = " + value;
}

/// A set after others, with its result and the design parameter it writes (none on refusal).
struct WordCase {
  const char* what;
  std::vector<std::pair<int, unsigned>> before;
  int id;
  unsigned value;
  int result;
  std::vector<std::string> leaves;
};

const WordCase kWordCases[] = {
    {"camera format: first", {}, FG_GBE_CAMTYPE, MONO8, 0, {"Cam_PixelFormat"}},
    {"camera format: last", {}, FG_GBE_CAMTYPE, MONO14, 0, {"Cam_PixelFormat"}},
    {"camera format: none", {}, FG_GBE_CAMTYPE, 8, -6000, {}},
    {"camera format: negative", {}, FG_GBE_CAMTYPE, ~0u, -6000, {}},
    {"width: least", {}, FG_WIDTH, 8, 0, {"Buffer_XLength"}},
    {"width: below before step", {}, FG_WIDTH, 6, -6000, {}},
    {"width: step", {}, FG_WIDTH, 1026, -7080, {}},
    {"width: most", {}, FG_WIDTH, 8192, 0, {"Buffer_XLength"}},
    {"width: above before step", {}, FG_WIDTH, 8193, -6000, {}},
    {"width: huge", {}, FG_WIDTH, 0xFFFFFFFC, -6000, {}},
    {"width: offset leaves less", {{FG_XOFFSET, 4}}, FG_WIDTH, 8192, -6000, {}},
    {"width: offset leaves this", {{FG_XOFFSET, 4}}, FG_WIDTH, 8188, 0, {"Buffer_XLength"}},
    {"height: least", {}, FG_HEIGHT, 2, 0, {"Buffer_YLength"}},
    {"height: below", {}, FG_HEIGHT, 1, -6000, {}},
    {"height: odd", {}, FG_HEIGHT, 1027, 0, {"Buffer_YLength"}},
    {"height: most", {}, FG_HEIGHT, 65535, 0, {"Buffer_YLength"}},
    {"height: above", {}, FG_HEIGHT, 65536, -6000, {}},
    {"height: offset leaves less", {{FG_YOFFSET, 10}}, FG_HEIGHT, 65526, -6000, {}},
    {"height: offset leaves this", {{FG_YOFFSET, 10}}, FG_HEIGHT, 65525, 0, {"Buffer_YLength"}},
    {"x offset: most", {}, FG_XOFFSET, 7160, 0, {"Buffer_XOffset"}},
    {"x offset: above", {}, FG_XOFFSET, 7164, -6000, {}},
    {"x offset: above before step", {}, FG_XOFFSET, 7161, -6000, {}},
    {"x offset: step", {}, FG_XOFFSET, 6, -7080, {}},
    {"x offset: none left", {{FG_WIDTH, 8188}}, FG_XOFFSET, 4, -6000, {}},
    {"x offset: none needed", {{FG_WIDTH, 8192}}, FG_XOFFSET, 0, 0, {"Buffer_XOffset"}},
    {"y offset: most", {}, FG_YOFFSET, 64509, 0, {"Buffer_YOffset"}},
    {"y offset: above", {}, FG_YOFFSET, 64510, -6000, {}},
    {"y offset: none left", {{FG_HEIGHT, 65534}}, FG_YOFFSET, 1, -6000, {}},
    {"format", {}, FG_FORMAT, FG_COL24, 0, {}},
    {"format: 0", {}, FG_FORMAT, 0, -6000, {}},
    {"format: 1", {}, FG_FORMAT, 1, -6000, {}},
    {"alignment: right", {}, FG_BITALIGNMENT, FG_RIGHT_ALIGNED, 0, {}},
    {"alignment: none", {}, FG_BITALIGNMENT, 2, -6000, {}},
    {"bayer: last",
     {},
     FG_BAYERINIT,
     GreenFollowedByRed,
     0,
     {"Bayerfilter_BayerInit", "White_BayerInit"}},
    {"bayer: none", {}, FG_BAYERINIT, 4, -6000, {}},
};

TEST(ImagePath, AcceptsOrRefusesEachBound) {
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const WordCase& c : kWordCases) {
      SCOPED_TRACE(std::string(c.what) + " on port " + std::to_string(port));
      for (const auto& [id, value] :
           {std::pair{FG_XOFFSET, 0u}, {FG_YOFFSET, 0u}, {FG_WIDTH, 1024u}, {FG_HEIGHT, 1024u}})
        ASSERT_EQ(applet.set(id, value, port), 0);
      for (const auto& [id, value] : c.before) ASSERT_EQ(applet.set(id, value, port), 0);
      const auto previous = applet.word(c.id, port);
      takeAccesses();

      EXPECT_EQ(applet.set(c.id, c.value, port), c.result);
      EXPECT_EQ(applet.lastError(), c.result);
      Lines expected;
      for (const auto& leaf : c.leaves)
        expected.push_back(write(port, leaf, std::to_string(c.value)));
      EXPECT_EQ(takeAccesses(), expected);
      EXPECT_EQ(applet.word(c.id, port).value, c.result == 0 ? c.value : previous.value);
    }
  }
}

TEST(ImagePath, AFailingWriteRestoresTheValueAndMovesNoLimit) {
  struct Row {
    int id;
    unsigned value;
    unsigned writes;
    int partner;
  };
  const Row rows[] = {{FG_TIMEOUT, 5, 1, 0},
                      {FG_GBE_CAMTYPE, MONO10, 1, 0},
                      {FG_WIDTH, 8, 1, FG_XOFFSET},
                      {FG_HEIGHT, 8, 1, FG_YOFFSET},
                      {FG_XOFFSET, 8, 1, FG_WIDTH},
                      {FG_YOFFSET, 8, 1, FG_HEIGHT},
                      {FG_BAYERINIT, GreenFollowedByRed, 2, 0}};
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const Row& row : rows) {
      for (unsigned failing = 1; failing <= row.writes; ++failing) {
        SCOPED_TRACE(row.id);
        const auto previous = applet.word(row.id, port);
        const RegisterInfo* partner = row.partner ? applet.node(row.partner, port) : nullptr;
        const auto limit = partner ? partner->value.uint32.max : 0;
        takeAccesses();
        board::failAtWrite(failing, kDesignFailure);
        EXPECT_EQ(applet.set(row.id, row.value, port), kDesignFailure);
        EXPECT_EQ(applet.lastError(), kDesignFailure);
        EXPECT_EQ(takeAccesses().size(), failing);
        EXPECT_EQ(applet.word(row.id, port), previous);
        EXPECT_EQ(partner ? partner->value.uint32.max : limit, limit);
      }
    }
  }
  EXPECT_EQ(board::value(applet.device(), "Device1_Process3_Bayerfilter_BayerInit", 3), 3);
  EXPECT_EQ(board::value(applet.device(), "Device1_Process3_White_BayerInit", 3), 2);
}

TEST(ImagePath, SizesAndOffsetsBoundEachOtherInTheDescription) {
  struct Row {
    int id;
    unsigned value;
    int partner;
    unsigned min, max, inc;
  };
  const Row rows[] = {
      {FG_WIDTH, 1000, FG_XOFFSET, 0, 7184, 4},   {FG_XOFFSET, 200, FG_WIDTH, 8, 7992, 4},
      {FG_WIDTH, 7992, FG_XOFFSET, 0, 192, 4},    {FG_XOFFSET, 0, FG_WIDTH, 8, 8192, 4},
      {FG_WIDTH, 8188, FG_XOFFSET, 0, 0, 4},      {FG_WIDTH, 8192, FG_XOFFSET, 0, 0, 4},
      {FG_HEIGHT, 1000, FG_YOFFSET, 0, 64533, 1}, {FG_YOFFSET, 35, FG_HEIGHT, 2, 65500, 1},
      {FG_YOFFSET, 0, FG_HEIGHT, 2, 65535, 1},    {FG_HEIGHT, 65535, FG_YOFFSET, 0, 0, 1},
  };
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    const auto others = applet.word(FG_WIDTH, (port + 1) % kPorts);
    for (const Row& row : rows) {
      SCOPED_TRACE(std::to_string(row.id) + " = " + std::to_string(row.value));
      ASSERT_EQ(applet.set(row.id, row.value, port), 0);
      const auto& range = applet.node(row.partner, port)->value.uint32;
      EXPECT_EQ(range.min, row.min);
      EXPECT_EQ(range.max, row.max);
      EXPECT_EQ(range.inc, row.inc);
    }
    EXPECT_EQ(applet.word(FG_WIDTH, (port + 1) % kPorts), others);
  }
}

TEST(ImagePath, GainsTakeTheirRangeAndRestoreOnFailure) {
  const std::pair<int, const char*> gains[] = {{FG_SCALINGFACTOR_BLUE, "White_BlueCoefficient"},
                                               {FG_SCALINGFACTOR_GREEN, "White_GreenCoefficient"},
                                               {FG_SCALINGFACTOR_RED, "White_RedCoefficient"}};
  const double notANumber = std::numeric_limits<double>::quiet_NaN();
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    for (const auto& [id, leaf] : gains) {
      takeAccesses();
      EXPECT_EQ(applet.set(id, 0.0, port), 0);
      EXPECT_EQ(applet.set(id, 3.9990234375, port), 0);
      EXPECT_EQ(takeAccesses(), (Lines{write(port, leaf, "0"), write(port, leaf, "3.9990234375")}));
      for (const double refused : {4.0, -0.001, notANumber})
        EXPECT_EQ(applet.set(id, refused, port), -6000) << refused;
      EXPECT_EQ(takeAccesses(), Lines{});
      board::failAtWrite(1, kDesignFailure);
      EXPECT_EQ(applet.set(id, 1.5, port), kDesignFailure);
      EXPECT_EQ(applet.real(id, port).value, 3.9990234375);
    }
  }
}

TEST(ImagePath, TheTimeoutIsTheRuntimes) {
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    takeAccesses();
    for (const unsigned accepted : {2u, 2147483646u})
      EXPECT_EQ(applet.set(FG_TIMEOUT, accepted, port), 0);
    const std::string target = "set FG_TIMEOUT[" + std::to_string(port) + "] = ";
    EXPECT_EQ(takeAccesses(), (Lines{target + "2", target + "2147483646"}));
    for (const int refused : {1, 0, -5, 2147483647})
      EXPECT_EQ(applet.set(FG_TIMEOUT, refused, port), -6000) << refused;
    EXPECT_EQ(takeAccesses(), Lines{});
    EXPECT_EQ(applet.word(FG_TIMEOUT, port).value, 2147483646u);
  }
}

TEST(ImagePath, ThePixelDepthIsConstant) {
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    EXPECT_EQ(applet.word(FG_PIXELDEPTH, port).value, 8u);
    EXPECT_EQ(applet.set(FG_PIXELDEPTH, 8, port), -12);
  }
}

}  // namespace
