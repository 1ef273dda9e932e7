/// A host in C. It opens the applet on the virtual board, cuts a region out of the camera's
/// pictures, triggers three of them by software, writes the last one to picture.ppm and the
/// settings to settings.mcf. Each step is printed with its code; the first that fails ends the
/// program with 1.
#include <stdio.h>

#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/velmora.h"
#include "velmora/virtual_board.h"

/// All that the applet asks of a host's handle.
struct Fg_Struct {
  void* applet;
};

enum { PORT = 0, WIDTH = 640, HEIGHT = 480, PICTURES = 3 };

/// What is set before the start. The order matters: FG_WIDTH moves the range of FG_XOFFSET, and the
/// queue is switched in the mode that uses it.
static const struct {
  const char* name;
  int id;
  uint32_t value;
} kSettings[] = {
    {"FG_WIDTH", FG_WIDTH, WIDTH},
    {"FG_HEIGHT", FG_HEIGHT, HEIGHT},
    {"FG_XOFFSET", FG_XOFFSET, 192},
    {"FG_YOFFSET", FG_YOFFSET, 272},
    {"FG_AREATRIGGERMODE", FG_AREATRIGGERMODE, ATM_SOFTWARE},
    {"FG_TRIGGERSTATE", FG_TRIGGERSTATE, TS_ACTIVE},
    {"FG_TRIGGERQUEUE_MODE", FG_TRIGGERQUEUE_MODE, FG_ON},
};

/// Prints a step with its code; whether it went well.
static int done(const char* step, int64_t code) {
  printf("%s: %lld\n", step, (long long)code);
  return code == VELMORA_OK;
}

static int setWord(Fg_Struct* fg, const char* name, int id, uint32_t value) {
  return done(name, Fg_setParameterWithType(fg, id, &value, PORT, FG_PARAM_TYPE_INT32));
}

static int configure(Fg_Struct* fg) {
  for (size_t i = 0; i < sizeof kSettings / sizeof *kSettings; ++i)
    if (!setWord(fg, kSettings[i].name, kSettings[i].id, kSettings[i].value)) return 0;
  const double rate = 50;  // Hz; the pulses of a queue leave at this rate.
  return done(
      "FG_TRIGGER_FRAMESPERSECOND",
      Fg_setParameterWithType(fg, FG_TRIGGER_FRAMESPERSECOND, &rate, PORT, FG_PARAM_TYPE_DOUBLE));
}

/// Binary PPM, whose pixels are red, green, blue.
static int writePicture(const struct VirtualBoardPicture* picture, const char* name) {
  FILE* file = fopen(name, "wb");
  if (!file) return done(name, -1);
  fprintf(file, "P6\n%u %u\n255\n", (unsigned)picture->width, (unsigned)picture->height);
  for (size_t i = 0; i + 2 < picture->bytes; i += 3)
    for (size_t colour = 3; colour-- > 0;) putc(picture->pixels[i + colour], file);
  const int failed = ferror(file);
  return done(name, fclose(file) || failed ? -1 : 0);
}

static int takePictures(VirtualBoardMemory* memory) {
  for (int i = 1; i <= PICTURES; ++i) {
    struct VirtualBoardPicture picture;
    if (!done("VirtualBoard_takePicture", VirtualBoard_takePicture(memory, 5, &picture))) return 0;
    printf("picture %lld, complete: %d\n", (long long)picture.number, (int)picture.complete);
    if (!picture.complete || (i == PICTURES && !writePicture(&picture, "picture.ppm"))) return 0;
    if (!done("VirtualBoard_returnBuffer", VirtualBoard_returnBuffer(memory, picture.buffer)))
      return 0;
  }
  return 1;
}

/// What was started is stopped, also after a failure.
static int acquire(Fg_Struct* fg, VirtualBoardMemory* memory) {
  if (!done("Fg_AcquireEx", Fg_AcquireEx(fg, PORT, PICTURES, 0, memory))) return 0;
  const int taken = setWord(fg, "FG_SENDSOFTWARETRIGGER", FG_SENDSOFTWARETRIGGER, PICTURES) &&
                    takePictures(memory);
  return done("Fg_stopAcquireEx", Fg_stopAcquireEx(fg, PORT, (intptr_t)memory, 0)) && taken;
}

static int run(Fg_Struct* fg) {
  VirtualBoardMemory* memory = VirtualBoard_createMemory(4, WIDTH * HEIGHT * 3, NULL);
  if (!memory) return done("VirtualBoard_createMemory", -1);
  const int acquired = configure(fg) && acquire(fg, memory);
  return done("VirtualBoard_destroyMemory", VirtualBoard_destroyMemory(memory)) && acquired &&
         done("Fg_saveConfig", Fg_saveConfig(fg, "settings.mcf"));
}

int main(void) {
  KTdevice* device = VirtualBoard_createDevice();
  int error = 0;
  Fg_Struct fg = {Std_entry(device, &error, 0)};
  int good = done("Std_entry", error);
  if (good) {
    good = run(&fg);
    good = done("Fg_FreeGrabber", Fg_FreeGrabber(&fg)) && good;
  }
  VirtualBoard_destroyDevice(device);
  return good ? 0 : 1;
}
