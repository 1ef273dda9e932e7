/// What the applet costs, each benchmark NAME beside NAME/floor, the least that its work takes, and
/// NAME/peer, a like operation of libaravis on its fake camera. `scripts/bench` makes a table.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "bench/idle_applet.h"
#include "external/vorn5.h"
#include "velmora/register_info.h"

#ifdef VELMORA_ARAVIS
#include <arv.h>
#endif

namespace {

constinit thread_local std::size_t allocations = 0;

}  // namespace

// Exceptions and the C library take memory too, hence not `operator new`.
extern "C" {
void* __libc_malloc(std::size_t size);
[[gnu::visibility("default")]] void* malloc(std::size_t size) {
  ++allocations;
  return __libc_malloc(size);
}
}

namespace {

using bench::IdleApplet;

/// Times `work` and counts the allocations of one more.
template <class Work>
void measure(benchmark::State& state, const Work& work) {
  for (auto _ : state) work();
  const std::size_t before = allocations;
  work();
  state.counters["allocations"] = static_cast<double>(allocations - before);
}

/// The mutex that every call locks.
class Lock {
 public:
  Lock() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
  }
  ~Lock() { pthread_mutex_destroy(&mutex_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  template <class Work>
  void around(const Work& work) {
    pthread_mutex_lock(&mutex_);
    work();
    pthread_mutex_unlock(&mutex_);
  }

 private:
  alignas(64) pthread_mutex_t mutex_;  // On a line of its own.
};

template <class Function>
Function* runtimeFunction(void* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(library, name));
}

/// Calls the runtime's set.
class Write {
 public:
  void operator()() const {
    const std::uint32_t value = 1000;
    benchmark::DoNotOptimize(set_(nullptr, 1, &value, 0, FG_PARAM_TYPE_INT32));
  }

 private:
  VornSetParameterWithType* const set_ = runtimeFunction<VornSetParameterWithType>(
      dlopen("libvorn5.so", RTLD_NOW), "Fg_setParameterWithType");
};

void lockFloor(benchmark::State& state) {
  Lock lock;
  measure(state, [&] { lock.around([] { benchmark::ClobberMemory(); }); });
}

void writeFloor(benchmark::State& state) {
  Lock lock;
  const Write write;
  measure(state, [&] { lock.around(write); });
}

void get(benchmark::State& state) {
  IdleApplet applet;
  measure(state, [&] { benchmark::DoNotOptimize(applet.get(FG_WIDTH)); });
}
BENCHMARK(get);
BENCHMARK(lockFloor)->Name("get/floor");

void set(benchmark::State& state) {
  IdleApplet applet;
  measure(state, [&] { benchmark::DoNotOptimize(applet.set(FG_TRIGGERIN_SRC, 1U)); });
}
BENCHMARK(set);
BENCHMARK(writeFloor)->Name("set/floor");

void width(benchmark::State& state) {
  IdleApplet applet;
  measure(state, [&] { benchmark::DoNotOptimize(applet.set(FG_WIDTH, 1000U)); });
}
BENCHMARK(width);
BENCHMARK(writeFloor)->Name("width/floor");

void frameRate(benchmark::State& state) {
  IdleApplet applet;
  measure(state, [&] { benchmark::DoNotOptimize(applet.set(FG_TRIGGER_FRAMESPERSECOND, 10.0)); });
}
BENCHMARK(frameRate);
BENCHMARK(writeFloor)->Name("frameRate/floor");

void refused(benchmark::State& state) {
  IdleApplet applet;
  measure(state, [&] { benchmark::DoNotOptimize(applet.set(FG_WIDTH, bench::kRefusedWidth)); });
}
BENCHMARK(refused);
BENCHMARK(lockFloor)->Name("refused/floor");

std::vector<char> documentOf(IdleApplet& applet) {
  std::size_t size = 0;
  Fg_getParameterInfoXML(applet.fg(), 0, nullptr, &size);
  std::vector<char> document(size);
  Fg_getParameterInfoXML(applet.fg(), 0, document.data(), &size);
  return document;
}

/// The lines of a text with their line feeds.
std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    lines.push_back(text.substr(0, text.find('\n') + 1));
    text.remove_prefix(lines.back().empty() ? text.size() : lines.back().size());
  }
  return lines;
}

void document(benchmark::State& state) {
  IdleApplet applet;
  std::vector<char> text = documentOf(applet);
  std::size_t size = text.size();
  measure(state, [&] {
    benchmark::DoNotOptimize(Fg_getParameterInfoXML(applet.fg(), 0, text.data(), &size));
  });
}
BENCHMARK(document);

void copyByLines(benchmark::State& state) {
  IdleApplet applet;
  const std::vector<char> text = documentOf(applet);
  const auto lines = linesOf({text.data(), text.size()});
  std::vector<char> copy(text.size());
  measure(state, [&] {
    char* end = copy.data();
    for (const std::string_view line : lines) end += line.copy(end, line.size());
    benchmark::ClobberMemory();
  });
}
BENCHMARK(copyByLines)->Name("document/floor");

/// A configuration file, removed at the end.
class Configuration {
 public:
  explicit Configuration(IdleApplet& applet) { Fg_saveConfig(applet.fg(), name()); }
  ~Configuration() { std::filesystem::remove(name_); }
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  const char* name() const { return name_.c_str(); }
  std::string content() const {
    std::string text(std::filesystem::file_size(name_), '\0');
    std::FILE* file = std::fopen(name(), "r");
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
  }

 private:
  const std::string name_ = std::filesystem::temp_directory_path() / "velmora_bench.mcf";
};

void save(benchmark::State& state) {
  IdleApplet applet;
  const Configuration file(applet);
  measure(state, [&] { benchmark::DoNotOptimize(Fg_saveConfig(applet.fg(), file.name())); });
}
BENCHMARK(save);

void writeLines(benchmark::State& state) {
  IdleApplet applet;
  const Configuration file(applet);
  const std::string text = file.content();
  const auto lines = linesOf(text);
  measure(state, [&] {
    std::FILE* stream = std::fopen(file.name(), "w");
    for (const std::string_view line : lines) {
      std::fwrite(line.data(), 1, line.size(), stream);
      std::fflush(stream);  // As the applet does, so that a host sees what was written.
    }
    std::fclose(stream);
  });
}
BENCHMARK(writeLines)->Name("save/floor");

void load(benchmark::State& state) {
  IdleApplet applet;
  const Configuration file(applet);
  measure(state, [&] { benchmark::DoNotOptimize(Fg_loadConfig(applet.fg(), file.name())); });
}
BENCHMARK(load);

void readFile(benchmark::State& state) {
  IdleApplet applet;
  const Configuration file(applet);
  measure(state, [&] { benchmark::DoNotOptimize(file.content().data()); });
}
BENCHMARK(readFile)->Name("load/floor");

/// The bytes of a text in memory.
std::size_t sizeOf(char* text) { return text ? malloc_usable_size(text) : 0; }

/// What a list of nodes takes with all that they own.
std::size_t sizeOf(RegisterInfo* node) {
  std::size_t size = 0;
  for (; node; node = node->next) {
    size += malloc_usable_size(node) + sizeOf(node->name) + sizeOf(node->paramName) +
            sizeOf(node->parentName) + sizeOf(node->unit);
    if (node->kind == REGISTER_INFO_STRING) size += sizeOf(node->value.string.value);
    if (node->kind == REGISTER_INFO_GROUP) {
      const auto& group = node->value.group;
      size += malloc_usable_size(group.children);
      for (std::uint32_t i = 0; i < group.childCount; ++i) size += sizeOf(group.children[i]);
    }
    if (node->kind == REGISTER_INFO_ENUM) {
      const auto& entries = node->value.enumeration;
      size += malloc_usable_size(entries.names) + malloc_usable_size(entries.values) +
              malloc_usable_size(entries.identifiers);
      for (std::uint32_t i = 0; i < entries.entryCount; ++i)
        size += sizeOf(entries.names[i]) + sizeOf(entries.identifiers[i]);
    }
  }
  return size;
}

void open(benchmark::State& state) {
  measure(state, [] { IdleApplet{}; });

  const std::size_t before = mallinfo2().uordblks;
  IdleApplet applet;
  const auto count = [&](const char* name, std::size_t size) {
    state.counters[name] = static_cast<double>(size);
  };
  count("memory", mallinfo2().uordblks - before);
  count("instance", malloc_usable_size(applet.fg()->applet));
  std::size_t descriptions = 0;
  for (int port = 0; port < VELMORA_PORTS; ++port)
    descriptions += sizeOf(Fg_getParameterInfo(applet.fg(), port));
  count("descriptions", descriptions);
}
BENCHMARK(open);

/// The runtime library, its symbols and the ids of the design's names.
void lookUps(benchmark::State& state) {
  constexpr int kSymbols = 31;
  constexpr int kNames = 290;
  measure(state, [] {
    void* library = dlopen("libvorn5.so", RTLD_NOW);
    VornGetParameterIdByName* idOf = nullptr;
    for (int i = 0; i < kSymbols; ++i)
      idOf = runtimeFunction<VornGetParameterIdByName>(library, "Fg_getParameterIdByName");
    for (int i = 0; i < kNames; ++i)
      benchmark::DoNotOptimize(idOf(nullptr, "Device1_Process0_Buffer_XLength"));
    dlclose(library);
  });
}
BENCHMARK(lookUps)->Name("open/floor");

/// Instances of one thread, next to each other in memory, each used by a thread of its own.
void separately(benchmark::State& state) {
  static IdleApplet applets[2];
  IdleApplet& applet = applets[state.thread_index()];
  for (auto _ : state) benchmark::DoNotOptimize(applet.set(FG_WIDTH, 1000U));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(separately)->UseRealTime()->ThreadRange(1, 2);

void separateLocks(benchmark::State& state) {
  static Lock locks[2];
  const Write write;
  for (auto _ : state) locks[state.thread_index()].around(write);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(separateLocks)->Name("separately/floor")->UseRealTime()->ThreadRange(1, 2);

#ifdef VELMORA_ARAVIS
class FakeCamera {
 public:
  FakeCamera() : camera_(arv_camera_new("Fake_1", nullptr)) {}
  ~FakeCamera() { g_object_unref(camera_); }
  FakeCamera(const FakeCamera&) = delete;
  FakeCamera& operator=(const FakeCamera&) = delete;
  ArvDevice* device() const { return arv_camera_get_device(camera_); }

 private:
  ArvCamera* camera_;
};

void peerGet(benchmark::State& state) {
  const FakeCamera camera;
  measure(state, [&] {
    benchmark::DoNotOptimize(
        arv_device_get_integer_feature_value(camera.device(), "Width", nullptr));
  });
}
BENCHMARK(peerGet)->Name("get/peer");

void peerSet(benchmark::State& state) {
  const FakeCamera camera;
  measure(state,
          [&] { arv_device_set_integer_feature_value(camera.device(), "Width", 1000, nullptr); });
}
BENCHMARK(peerSet)->Name("set/peer");

void peerFrameRate(benchmark::State& state) {
  const FakeCamera camera;
  measure(state, [&] {
    arv_device_set_float_feature_value(camera.device(), "AcquisitionFrameRate", 10.0, nullptr);
  });
}
BENCHMARK(peerFrameRate)->Name("frameRate/peer");

void peerOpen(benchmark::State& state) {
  measure(state, [] { FakeCamera{}; });
}
BENCHMARK(peerOpen)->Name("open/peer");
#endif

}  // namespace

int main(int argc, char** argv) {
#ifdef VELMORA_ARAVIS
  arv_enable_interface("Fake");
#endif
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
