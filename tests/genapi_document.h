#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "tests/applet_fixture.h"

namespace fixture {

/// A port's GenApi document, fetched as a host does it: the size first.
inline std::string document(Applet& applet, unsigned port) {
  const int index = static_cast<int>(port);
  std::size_t size = 0;
  EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), index, nullptr, &size), VELMORA_OK);
  std::string text(size, '?');
  EXPECT_EQ(Fg_getParameterInfoXML(applet.fg(), index, text.data(), &size), VELMORA_OK);
  EXPECT_TRUE(text.ends_with('\0'));
  text.pop_back();
  return text;
}

}  // namespace fixture
