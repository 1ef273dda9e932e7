/// The folder bench/ measures time and instructions, which tests never assert. This is an applet
/// among libraries that do nothing (`idle_libraries.cpp`).
#pragma once

#include <cstdint>

#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/velmora.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace bench {

class IdleApplet {
 public:
  IdleApplet() : grabber_{Std_entry(nullptr, nullptr, 0)} {}
  IdleApplet(const IdleApplet&) = delete;
  IdleApplet& operator=(const IdleApplet&) = delete;
  ~IdleApplet() { Fg_FreeGrabber(&grabber_); }

  Fg_Struct* fg() { return &grabber_; }

  int get(int id) {
    std::uint32_t value = 0;
    return Fg_getParameterWithType(&grabber_, id, &value, 0, FG_PARAM_TYPE_INT32);
  }
  int set(int id, std::uint32_t value) {
    return Fg_setParameterWithType(&grabber_, id, &value, 0, FG_PARAM_TYPE_INT32);
  }
  int set(int id, double value) {
    return Fg_setParameterWithType(&grabber_, id, &value, 0, FG_PARAM_TYPE_DOUBLE);
  }

 private:
  Fg_Struct grabber_;
};

/// A width below the smallest one.
inline constexpr std::uint32_t kRefusedWidth = 4;

}  // namespace bench
