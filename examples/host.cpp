/// A host in C++. It does what host.c does: a region of interest, three pictures triggered by
/// software, picture.ppm, settings.mcf. The first step that fails ends the program with 1.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/velmora.h"
#include "velmora/virtual_board.h"

/// All that the applet asks of a host's handle.
struct Fg_Struct {
  void* applet;
};

namespace {

constexpr unsigned kPort = 0;
constexpr std::uint32_t kWidth = 640, kHeight = 480;
constexpr int kPictures = 3;

/// Prints a step with its code. Throws if it failed.
void check(const std::string& step, std::int64_t code) {
  std::cout << step << ": " << code << '\n';
  if (code != VELMORA_OK) throw std::runtime_error(step + " failed: " + std::to_string(code));
}

/// For what is given back on the way out: prints a step that failed.
void warn(const char* step, std::int64_t code) {
  if (code != VELMORA_OK) std::cerr << step << " failed: " << code << '\n';
}

/// The applet on a device of its own.
class Grabber {
 public:
  Grabber() : device_(VirtualBoard_createDevice(), VirtualBoard_destroyDevice) {
    int error = 0;
    fg_.applet = Std_entry(device_.get(), &error, 0);
    check("Std_entry", error);
  }
  Grabber(const Grabber&) = delete;
  Grabber& operator=(const Grabber&) = delete;
  ~Grabber() { warn("Fg_FreeGrabber", Fg_FreeGrabber(&fg_)); }

  Fg_Struct* fg() { return &fg_; }
  void set(const std::string& name, std::uint32_t value) { set(name, &value, FG_PARAM_TYPE_INT32); }
  void set(const std::string& name, double value) { set(name, &value, FG_PARAM_TYPE_DOUBLE); }

 private:
  void set(const std::string& name, const void* value, int type) {
    const int id = Fg_getParameterIdByName(&fg_, name.c_str());
    check(name, Fg_setParameterWithType(&fg_, id, value, kPort, type));
  }

  std::unique_ptr<KTdevice, decltype(&VirtualBoard_destroyDevice)> device_;
  Fg_Struct fg_{};
};

void destroy(VirtualBoardMemory* memory) {
  warn("VirtualBoard_destroyMemory", VirtualBoard_destroyMemory(memory));
}

/// A channel that runs, and stops on the way out.
class Acquisition {
 public:
  Acquisition(Grabber& grabber, VirtualBoardMemory* memory) : grabber_(grabber) {
    check("Fg_AcquireEx", Fg_AcquireEx(grabber.fg(), kPort, kPictures, 0, memory));
  }
  Acquisition(const Acquisition&) = delete;
  Acquisition& operator=(const Acquisition&) = delete;
  ~Acquisition() { warn("Fg_stopAcquireEx", Fg_stopAcquireEx(grabber_.fg(), kPort, 0, 0)); }

 private:
  Grabber& grabber_;
};

/// Binary PPM, whose pixels are red, green, blue.
void writePicture(const VirtualBoardPicture& picture, const std::string& name) {
  std::ofstream file(name, std::ios::binary);
  file << "P6\n" << picture.width << ' ' << picture.height << "\n255\n";
  for (std::size_t i = 0; i + 2 < picture.bytes; i += 3)
    for (const std::size_t colour : {2, 1, 0})
      file.put(static_cast<char>(picture.pixels[i + colour]));
  check(name, file.flush() ? 0 : -1);
}

void run() {
  Grabber grabber;
  // The order matters: FG_WIDTH moves the range of FG_XOFFSET, and the queue is switched in the
  // mode that uses it.
  grabber.set("FG_WIDTH", kWidth);
  grabber.set("FG_HEIGHT", kHeight);
  grabber.set("FG_XOFFSET", 192u);
  grabber.set("FG_YOFFSET", 272u);
  grabber.set("FG_AREATRIGGERMODE", std::uint32_t{ATM_SOFTWARE});
  grabber.set("FG_TRIGGERSTATE", std::uint32_t{TS_ACTIVE});
  grabber.set("FG_TRIGGERQUEUE_MODE", std::uint32_t{FG_ON});
  grabber.set("FG_TRIGGER_FRAMESPERSECOND", 50.0);  // The pulses of a queue leave at this rate.

  const std::unique_ptr<VirtualBoardMemory, decltype(&destroy)> memory(
      VirtualBoard_createMemory(4, std::size_t{kWidth} * kHeight * 3, nullptr), destroy);
  if (!memory) throw std::bad_alloc();
  {
    const Acquisition acquisition(grabber, memory.get());
    grabber.set("FG_SENDSOFTWARETRIGGER", std::uint32_t{kPictures});
    for (int i = 1; i <= kPictures; ++i) {
      VirtualBoardPicture picture;
      check("VirtualBoard_takePicture", VirtualBoard_takePicture(memory.get(), 5, &picture));
      std::cout << "picture " << picture.number << ", complete: " << picture.complete << '\n';
      if (!picture.complete) throw std::runtime_error("The camera sent too little.");
      if (i == kPictures) writePicture(picture, "picture.ppm");
      check("VirtualBoard_returnBuffer", VirtualBoard_returnBuffer(memory.get(), picture.buffer));
    }
  }
  check("Fg_saveConfig", Fg_saveConfig(grabber.fg(), "settings.mcf"));
}

}  // namespace

int main() try {
  run();
  return EXIT_SUCCESS;
} catch (const std::exception& failure) {
  std::cerr << failure.what() << '\n';
  return EXIT_FAILURE;
}
