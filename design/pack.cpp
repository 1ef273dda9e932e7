/// Build tool: packs a design manifest into the image that is linked into the applet.
/// Usage: pack MANIFEST IMAGE. A manifest that is malformed, or has another number of camera ports
/// than the applet, stops the build.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "board/model/image.h"
#include "board/model/manifest.h"
#include "design/design_image.h"
#include "velmora/handles.h"

namespace {

void checkPorts(const board::Manifest& manifest) {
  const auto ports = std::ranges::count_if(manifest.parameters, [](const auto& parameter) {
    return parameter.name.ends_with("_Buffer_XLength");
  });
  if (ports == VELMORA_PORTS) return;
  throw std::runtime_error(std::to_string(ports) + " camera ports; the applet has " +
                           std::to_string(VELMORA_PORTS));
}

void pack(const char* manifestFile, const char* imageFile) {
  std::ifstream in(manifestFile, std::ios::binary);
  const std::string manifest{std::istreambuf_iterator<char>(in), {}};
  if (!in.is_open() || in.bad()) throw std::runtime_error("cannot be read");
  checkPorts(board::parseManifest(manifest));

  const std::string image = board::packImage(manifest, velmora::kDesignImageSize);
  std::ofstream out(imageFile, std::ios::binary);
  out.write(image.data(), static_cast<std::streamsize>(image.size()));
  out.close();
  if (!out) throw std::runtime_error(std::string("cannot write ") + imageFile);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: pack MANIFEST IMAGE\n");
    return 1;
  }
  try {
    pack(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
    return 1;
  }
}
