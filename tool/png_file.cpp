#include "tool/png_file.h"

#include <fmt/format.h>
#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tool/code_text.h"

namespace velmora::tool {
namespace {

constexpr png_uint_32 kWidest = 8192;
constexpr png_uint_32 kHighest = 65535;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void failWith(const std::string& file, const char* what) {
  throw Failure(fmt::format("{}: {}", file, what));
}

/// The library's reader; says nothing by itself.
class Reader {
 public:
  Reader()
      : png_(png_create_read_struct(
            PNG_LIBPNG_VER_STRING, nullptr,
            [](png_structp png, png_const_charp) { png_longjmp(png, 1); },
            [](png_structp, png_const_charp) {})),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {
    if (!info_) throw std::bad_alloc();
    png_set_user_limits(png_, kWidest, kHighest);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }

  /// Errors of the library jump back here; there is nothing that they jump over.
  bool read(std::FILE* file) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_init_io(png_, file);
    constexpr int kPlainSamples =
        PNG_TRANSFORM_EXPAND | PNG_TRANSFORM_STRIP_ALPHA | PNG_TRANSFORM_SWAP_ENDIAN;
    png_read_png(png_, info_, kPlainSamples, nullptr);
    return true;
  }

  png_uint_32 width() const { return png_get_image_width(png_, info_); }
  png_uint_32 height() const { return png_get_image_height(png_, info_); }
  unsigned bits() const { return png_get_bit_depth(png_, info_); }
  unsigned channels() const { return png_get_channels(png_, info_); }
  png_const_bytep line(png_uint_32 index) const { return png_get_rows(png_, info_)[index]; }

 private:
  png_structp png_;
  png_infop info_;
};

}  // namespace

void writePng(const std::string& file, const VirtualBoardPicture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = picture.width;
  image.height = picture.height;
  image.format = PNG_FORMAT_BGR;
  image.flags = PNG_IMAGE_FLAG_FAST;
  const std::string beside = file + ".part";
  const File stream(std::fopen(beside.c_str(), "wb"));
  if (!stream) failWith(file, std::strerror(errno));
  const bool written =
      png_image_write_to_stdio(&image, stream.get(), 0, picture.pixels, 0, nullptr) != 0 &&
      std::fflush(stream.get()) == 0 && std::rename(beside.c_str(), file.c_str()) == 0;
  if (written) return;
  const int error = errno;
  std::remove(beside.c_str());
  failWith(file, std::strerror(error));
}

RawPicture readRawPng(const std::string& file) {
  const File stream(std::fopen(file.c_str(), "rb"));
  if (!stream) failWith(file, std::strerror(errno));
  Reader png;
  if (!png.read(stream.get()))
    failWith(file, "is no PNG picture of at most 8192 × 65535 pixels, or is damaged");
  RawPicture raw{png.width(), png.height(), png.bits(), {}};
  const std::size_t sample = raw.bits / 8;
  const unsigned channels = png.channels();
  raw.pixels.reserve(raw.width * sample * raw.height);
  for (png_uint_32 y = 0; y < raw.height; ++y)
    for (png_uint_32 x = 0; x < raw.width; ++x) {
      const unsigned component = channels == 1 ? 0 : (x & 1) + (y & 1);
      const auto* first = png.line(y) + (std::size_t{x} * channels + component) * sample;
      raw.pixels.insert(raw.pixels.end(), first, first + sample);
    }
  return raw;
}

}  // namespace velmora::tool
