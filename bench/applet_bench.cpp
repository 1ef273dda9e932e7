/// The folder bench/ measures time, which tests never assert. These benchmarks run the applet
/// through its exports on the virtual board. `runtimeSet` and `runtimeGet` are the board's share:
/// what a set or get that reaches the design costs without the applet.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstdio>
#include <string>
#include <vector>

#include "external/vorn5.h"
#include "tests/applet_fixture.h"

namespace {

using fixture::Applet;

/// An applet with the journal off.
struct QuietApplet : Applet {
  QuietApplet() { board::stopJournal(); }
};

/// The runtime, on a handle of its own.
class Runtime {
 public:
  explicit Runtime(KTdevice* device) : library_(dlopen("libvorn5.so", RTLD_NOW)) {
    void* design = nullptr;
    Info(VELMORA_INFO_DESIGN, 0, 0, &design, nullptr);  // The open applet's design.
    handle_ = symbol<VornInitHandle>("Fg_InitHandle")("Velmora.hap", device,
                                                      static_cast<fpga_design*>(design));
    width_ = symbol<VornGetParameterIdByName>("Fg_getParameterIdByName")(
        handle_, "Device1_Process0_Buffer_XLength");
  }
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;
  ~Runtime() {
    symbol<VornFreeGrabber>("Fg_FreeGrabber")(handle_);
    dlclose(library_);
  }

  template <class Function>
  Function* symbol(const char* name) const {
    return reinterpret_cast<Function*>(dlsym(library_, name));
  }
  Fg_Struct* handle() const { return handle_; }
  int width() const { return width_; }

 private:
  void* library_;
  Fg_Struct* handle_;
  int width_;
};

void runtimeSet(benchmark::State& state) {
  QuietApplet applet;
  const Runtime runtime(applet.device());
  auto* const set = runtime.symbol<VornSetParameterWithType>("Fg_setParameterWithType");
  const std::uint32_t value = 1000;
  for (auto _ : state)
    benchmark::DoNotOptimize(set(runtime.handle(), runtime.width(), &value, 0, 2));
}
BENCHMARK(runtimeSet);

void setWidth(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(applet.set(FG_WIDTH, 1000));
}
BENCHMARK(setWidth);

void setWithoutDesign(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(applet.set(FG_BITALIGNMENT, FG_LEFT_ALIGNED));
}
BENCHMARK(setWithoutDesign);

void setRefused(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(applet.set(FG_WIDTH, 4));
}
BENCHMARK(setRefused);

void runtimeGet(benchmark::State& state) {
  QuietApplet applet;
  const Runtime runtime(applet.device());
  auto* const get = runtime.symbol<VornGetParameterWithType>("Fg_getParameterWithType");
  std::uint32_t value = 0;
  for (auto _ : state)
    benchmark::DoNotOptimize(get(runtime.handle(), runtime.width(), &value, 0, 2));
}
BENCHMARK(runtimeGet);

void getWidth(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(applet.word(FG_WIDTH));
}
BENCHMARK(getWidth);

void getFromDesign(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(applet.word(FG_FILLLEVEL));
}
BENCHMARK(getFromDesign);

void openAndClose(benchmark::State& state) {
  for (auto _ : state) {
    QuietApplet applet;
    benchmark::DoNotOptimize(applet.opened());
  }
}
BENCHMARK(openAndClose)->Unit(benchmark::kMillisecond);

void genApiDocument(benchmark::State& state) {
  QuietApplet applet;
  std::size_t size = 0;
  Fg_getParameterInfoXML(applet.fg(), 0, nullptr, &size);
  std::vector<char> document(size);
  for (auto _ : state)
    benchmark::DoNotOptimize(Fg_getParameterInfoXML(applet.fg(), 0, document.data(), &size));
}
BENCHMARK(genApiDocument)->Unit(benchmark::kMicrosecond);

const std::string kFile = "/tmp/velmora_bench.mcf";

void saveConfiguration(benchmark::State& state) {
  QuietApplet applet;
  for (auto _ : state) benchmark::DoNotOptimize(Fg_saveConfig(applet.fg(), kFile.c_str()));
  std::remove(kFile.c_str());
}
BENCHMARK(saveConfiguration)->Unit(benchmark::kMillisecond);

void loadConfiguration(benchmark::State& state) {
  QuietApplet applet;
  Fg_saveConfig(applet.fg(), kFile.c_str());
  for (auto _ : state) benchmark::DoNotOptimize(Fg_loadConfig(applet.fg(), kFile.c_str()));
  std::remove(kFile.c_str());
}
BENCHMARK(loadConfiguration)->Unit(benchmark::kMillisecond);

}  // namespace
