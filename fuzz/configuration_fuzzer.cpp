/// The input is a configuration file. When it loads, every parameter can be read, and saving and
/// loading again change nothing any more.
#include "fuzz/fuzzing.h"
#include "tests/applet_fixture.h"

using namespace fuzzing;

namespace {

constexpr std::size_t kLongestText = 4096;

/// Loads a file and returns what a save makes of it.
std::string savedAgain(fixture::Applet& applet, const std::string& file) {
  require(Fg_loadConfig(applet.fg(), file.c_str()) == VELMORA_OK, "a good file loads");
  const std::string saved = directory() / "saved.mcf";
  require(Fg_saveConfig(applet.fg(), saved.c_str()) == VELMORA_OK, "a save succeeds");
  return readFile(saved);
}

void readEverything(fixture::Applet& applet) {
  for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const int id = Fg_getParameterId(applet.fg(), i);
    for (unsigned port = 0; port < fixture::kPorts; ++port) {
      char value[kLongestText] = {};
      require(
          Fg_getParameterWithType(applet.fg(), id, value, port, FG_PARAM_TYPE_INT32) == VELMORA_OK,
          "every parameter can be read");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  keepOpen("libvorn5.so");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fixture::Applet applet;
  board::stopJournal();
  const std::string file = directory() / "input.mcf";
  writeFile(file, textOf(data, size));
  const int result = Fg_loadConfig(applet.fg(), file.c_str());
  require(result == VELMORA_OK || result == VELMORA_CONFIG_NOT_LOADED, "a load answers 0 or -5000");
  readEverything(applet);
  if (result != VELMORA_OK) return 0;

  writeFile(file, savedAgain(applet, file));
  const std::string second = savedAgain(applet, file);
  require(second == readFile(file), "what was saved loads unchanged");
  return 0;
}
