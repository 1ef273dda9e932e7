/// The input is a design: an image as it is, and a manifest. Whatever is accepted starts an applet
/// whose parameters, with direct access, can be found, read, written and described.
#include <filesystem>

#include "board/model/image.h"
#include "external/dervin.h"
#include "fuzz/fuzzing.h"
#include "tests/applet_fixture.h"

using namespace fuzzing;
using fixture::Applet;

namespace {

constexpr std::size_t kValueRoom = 4096;
constexpr std::size_t kTrailer = 16;

bool accepted(std::string_view image) {
  fpga_design* const design =
      HapLoadDesignFromBuffer(image.data(), static_cast<unsigned>(image.size()), 1);
  HapUnloadHapFile(design);
  return design != nullptr;
}

/// Every name leads to its parameter, which can be set to what it is.
void useParameters(Applet& applet) {
  for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const char* const name = Fg_getParameterName(applet.fg(), i);
    const int id = Fg_getParameterId(applet.fg(), i);
    require(name && Fg_getParameterIdByName(applet.fg(), name) == id, "a name leads to its id");
    const RegisterInfo* const node = applet.node(id);
    if (!std::string_view(name).starts_with("D")) continue;
    require(node, "direct access is described");
    char value[kValueRoom] = {};
    const bool text = node->kind == REGISTER_INFO_STRING;
    const int type = text ? int{FG_PARAM_TYPE_STRING} : 0;
    require(Fg_getParameterWithType(applet.fg(), id, value, 0, type) == VELMORA_OK,
            "direct access reads");
    const bool writable = (node->accessMode & REGISTER_INFO_WRITABLE) != 0;
    char* const string = *reinterpret_cast<char**>(value);
    const int result = Fg_setParameterWithType(applet.fg(), id, text ? string : value, 0, type);
    require((result == VELMORA_OK) == writable, "direct access writes what can be written");
    if (text) Fg_freeParameterStringWithType(applet.fg(), id, string, 0, type);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  keepOpen("libvorn5.so");
  setenv("__KORV_FORCE_EXTERNAL_HAP", "1", 1);
  setenv("KORV_ENABLE_DKTA", "1", 1);
  setenv("KORV_ENABLE_DRA", "1", 1);
  std::filesystem::current_path(directory() / "");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = textOf(data, size);
  accepted(text);
  const bool good = accepted(board::packImage(text, size + kTrailer));
  writeFile("Velmora.hap", text);
  {
    Applet applet;
    board::stopJournal();
    require(applet.opened() == good, "an image and a file of one manifest fare alike");
    if (!good) return 0;
    useParameters(applet);
    for (int port = 0; port < int{VELMORA_PORTS}; ++port) {
      std::size_t room = 0;
      require(Fg_getParameterInfoXML(applet.fg(), port, nullptr, &room) == VELMORA_OK,
              "every port has a document");
    }
  }
  requireNothingOutstanding();
  return 0;
}
