// The GenApi documents of the ports, byte for byte, and the way they are handed over.
#include "tests/applet_test.h"

namespace {

using namespace fixture;

/// The document of a port as registered: the ports differ by one entry of one enumeration.
std::string expected(unsigned port) {
  std::string text = contentOf(TEST_DATA "/genapi_port0.xml");
  if (port != 0)
    text.insert(text.find("<EnumEntry Name=\"ATM_SOFTWARE\">"),
                "<EnumEntry Name=\"ATM_SYNCHRONIZED\">\n<Value>3</Value>\n</EnumEntry>\n");
  return text;
}

TEST(GenApi, DocumentsOfAllPortsByteForByte) {
  Applet applet(kNoDefaults);
  for (unsigned port = 0; port < kPorts; ++port)
    EXPECT_EQ(document(applet, port), expected(port)) << port;
  // Limits and access that a set moves appear in the next document of the port, and in no other.
  ASSERT_EQ(applet.set(FG_WIDTH, 1000, 2), VELMORA_OK);
  ASSERT_EQ(applet.set(FG_AREATRIGGERMODE, ATM_EXTERNAL, 2), VELMORA_OK);
  std::string moved = expected(2);
  for (const auto& [parameter, from, to] : {std::tuple{"FG_XOFFSET", "<Max>8184<", "<Max>7184<"},
                                            {"FG_SENDSOFTWARETRIGGER", ">RW<", ">RO<"}})
    moved.replace(moved.find(from, moved.find(fmt::format("Reg Name=\"{}_Reg\">", parameter))),
                  std::strlen(from), to);
  EXPECT_EQ(document(applet, 2), moved);
  EXPECT_EQ(document(applet, 3), expected(3));
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
