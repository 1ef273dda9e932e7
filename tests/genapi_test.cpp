// The GenApi documents of the ports, byte for byte, and the way they are handed over.
#include <gtest/gtest.h>
#include <stdio.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>
#include <variant>

#include "tests/applet_fixture.h"
#include "tests/external_design.h"
#include "tests/genapi_document.h"

namespace {

using fixture::Applet;
using fixture::document;
using fixture::EnvironmentVariable;
using fixture::kNoDefaults;
using fixture::kPorts;

/// Replaces text in the block of a parameter, where it must exist.
void replaceIn(std::string& document, const std::string& parameter, const std::string& from,
               const std::string& to) {
  SCOPED_TRACE(parameter);
  const auto block = document.find("Reg Name=\"" + parameter + "_Reg\">");
  ASSERT_NE(block, std::string::npos);
  const auto at = document.find(from, block);
  ASSERT_LT(at, document.find("\n\r", block)) << from;
  document.replace(at, from.size(), to);
}

/// The document of a port as registered: the ports differ by one entry of one enumeration.
std::string expected(unsigned port) {
  std::ifstream file(TEST_DATA "/genapi_port0.xml", std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  if (port != 0)
    text.insert(text.find("<EnumEntry Name=\"ATM_SOFTWARE\">"),
                "<EnumEntry Name=\"ATM_SYNCHRONIZED\">\n<Value>3</Value>\n</EnumEntry>\n");
  return text;
}

TEST(GenApi, DocumentsOfAllPortsByteForByte) {
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port) {
    SCOPED_TRACE(port);
    EXPECT_EQ(document(applet, port), expected(port));
  }
}

void moveToDefaults(std::string& document) {
  replaceIn(document, "FG_XOFFSET", "<Max>8184<", "<Max>7160<");
  replaceIn(document, "FG_YOFFSET", "<Max>65534<", "<Max>64509<");
  replaceIn(document, "FG_GEN_ACCURACY", "<Min>1<", "<Min>2<");
  replaceIn(document, "FG_TRIGGERIN_DOWNSCALE_PHASE", "<Max>4294967294<", "<Max>0<");
  replaceIn(document, "FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE", "<Max>6<", "<Max>0<");
  replaceIn(document, "FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE", "<Max>6<", "<Max>0<");
}

TEST(GenApi, LimitsThatAValueMovesAppearInTheNextDocumentOfItsPort) {
  const struct {
    int id;
    std::variant<int, double> value;
    const char* moved;  // Null when the value is refused.
    const char* from;
    const char* to;
  } rows[] = {
      {FG_WIDTH, 1000, "FG_XOFFSET", "<Max>7160<", "<Max>7184<"},
      {FG_XOFFSET, 200, "FG_WIDTH", "<Max>8192<", "<Max>7992<"},
      {FG_WIDTH, 7996, nullptr, "", ""},
      {FG_XOFFSET, 0, "FG_WIDTH", "<Max>7992<", "<Max>8192<"},
      {FG_WIDTH, 8188, "FG_XOFFSET", "<Max>7184<", "<Max>0<"},
      {FG_HEIGHT, 1000, "FG_YOFFSET", "<Max>64509<", "<Max>64533<"},
      {FG_YOFFSET, 500, "FG_HEIGHT", "<Max>65535<", "<Max>65035<"},
      {FG_YOFFSET, 0, "FG_HEIGHT", "<Max>65035<", "<Max>65535<"},
      {FG_HEIGHT, 65534, "FG_YOFFSET", "<Max>64533<", "<Max>0<"},
      {FG_GEN_FREQ, 20.0, "FG_GEN_ACCURACY", "<Min>2<", "<Min>4<"},
      {FG_GEN_ACCURACY, 10, "FG_GEN_FREQ", "<Min>3<", "<Min>7<"},
      {FG_TRIGGERIN_DOWNSCALE, 4, "FG_TRIGGERIN_DOWNSCALE_PHASE", "<Max>0<", "<Max>3<"},
      {FG_TRIGGERIN_DOWNSCALE_PHASE, 3, "FG_TRIGGERIN_DOWNSCALE", "<Min>1<", "<Min>4<"},
      {FG_TRIGGERIN_DOWNSCALE, 3, nullptr, "", ""},
      {FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE, 3, "FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE", "<Max>0<",
       "<Max>2<"},
      {FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE_PHASE, 2, "FG_TRIGGER_PULSEFORMGEN0_DOWNSCALE", "<Min>1<",
       "<Min>3<"},
      {FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE, 7, "FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE", "<Max>0<",
       "<Max>6<"},
      {FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE_PHASE, 1, "FG_TRIGGER_PULSEFORMGEN1_DOWNSCALE", "<Min>1<",
       "<Min>2<"},
      {FG_TRIGGERQUEUE_MODE, FG_ON, "FG_SENDSOFTWARETRIGGER", "<Max>1<", "<Max>2040<"},
      {FG_AREATRIGGERMODE, ATM_EXTERNAL, "FG_SENDSOFTWARETRIGGER", ">RW<", ">RO<"},
      {FG_AREATRIGGERMODE, ATM_SOFTWARE, "FG_SENDSOFTWARETRIGGER", ">RO<", ">RW<"},
      {FG_TRIGGERQUEUE_MODE, FG_OFF, "FG_SENDSOFTWARETRIGGER", "<Max>2040<", "<Max>1<"},
  };
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    std::string text = expected(port);
    moveToDefaults(text);
    EXPECT_EQ(document(applet, port), text) << "moved with another port than " << port;
    for (const auto& [id, value, moved, from, to] : rows) {
      SCOPED_TRACE(testing::Message() << id << " on port " << port);
      const int code = std::visit([&](auto v) { return applet.set(id, v, port); }, value);
      EXPECT_EQ(code, moved ? VELMORA_OK : VELMORA_OUT_OF_RANGE);
      if (moved) replaceIn(text, moved, from, to);
      EXPECT_EQ(document(applet, port), text);
    }
  }
}

/// Whether an XML parser accepts a text.
bool wellFormed(const std::string& text) {
  FILE* parser = popen(XMLLINT " --noout - 2>/dev/null", "w");
  const bool written = fwrite(text.data(), 1, text.size(), parser) == text.size();
  return pclose(parser) == 0 && written;
}

TEST(GenApi, DocumentsAreWellFormed) {
  const EnvironmentVariable dra("KORV_ENABLE_DRA", "1"), dkta("KORV_ENABLE_DKTA", "1");
  Applet applet;
  for (unsigned port = 0; port < kPorts; ++port) {
    std::string text = document(applet, port);
    EXPECT_TRUE(wellFormed(text)) << port;
    EXPECT_NE(text.find("DKTA_Device1_Process4_Trigger"), std::string::npos);
    text.erase(text.rfind("</Category>"), 1);
    EXPECT_FALSE(wellFormed(text)) << port;
  }
}

TEST(GenApi, BufferIsFilledOrTheRefusalRecorded) {
  Applet applet;
  const std::string text = document(applet, 2);
  const std::size_t exact = text.size() + 1;
  const struct {
    int port;
    bool buffer;
    std::size_t size;
    int code;
  } rows[] = {
      {2, false, 7, VELMORA_OK},
      {2, true, exact, VELMORA_OK},
      {2, true, exact + 100, VELMORA_OK},
      {2, true, 0, VELMORA_BUFFER_TOO_SMALL},
      {2, true, exact - 1, VELMORA_BUFFER_TOO_SMALL},
      {4, false, 7, VELMORA_NOT_REPRESENTABLE},
      {-1, true, exact, VELMORA_NOT_REPRESENTABLE},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.port << ' ' << row.buffer << ' ' << row.size);
    std::string buffer(exact + 200, '#');
    std::size_t size = row.size;
    applet.set(FG_WIDTH, row.code == VELMORA_OK ? 0u : 1024u);  // Another last error.
    char* target = row.buffer ? buffer.data() : nullptr;
    EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), row.port, target, &size), row.code);
    EXPECT_EQ(applet.lastError(), row.code);
    EXPECT_EQ(size, row.code == VELMORA_OK ? exact : row.size);
    std::string after(buffer.size(), '#');
    if (row.buffer && row.code == VELMORA_OK)
      after.replace(0, row.size, text + std::string(row.size - text.size(), '\0'));
    EXPECT_EQ(buffer, after);
  }
  char buffer = '#';
  EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), 0, &buffer, nullptr), VELMORA_BUFFER_TOO_SMALL);
  EXPECT_EQ(buffer, '#');
}

}  // namespace
