#include "tool/png_file.h"

#include <fmt/format.h>
#include <png.h>
#include <zlib.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

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

// Errors of the library jump back to where it was called, and it says nothing by itself.
void jumpBack(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void keepQuiet(png_structp, png_const_charp) {}

class Reader {
 public:
  Reader()
      : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, jumpBack, keepQuiet)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {
    if (!info_) throw std::bad_alloc();
    png_set_user_limits(png_, kWidest, kHighest);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }

  /// There is nothing that errors jump over.
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

class Writer {
 public:
  Writer()
      : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, jumpBack, keepQuiet)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {
    if (!info_) throw std::bad_alloc();
  }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  ~Writer() { png_destroy_write_struct(&png_, &info_); }

  /// There is nothing that errors jump over.
  bool write(std::FILE* file, const VirtualBoardPicture& picture) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_init_io(png_, file);
    png_set_IHDR(png_, info_, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    // As quick as can be: in the noise of a camera there is nothing longer than runs to be found.
    png_set_compression_level(png_, 1);
    png_set_compression_strategy(png_, Z_RLE);
    png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_set_bgr(png_);
    png_write_info(png_, info_);
    for (png_uint_32 y = 0; y < picture.height; ++y)
      png_write_row(png_, picture.pixels + std::size_t{y} * picture.width * 3);
    png_write_end(png_, info_);
    return true;
  }

 private:
  png_structp png_;
  png_infop info_;
};

}  // namespace

void writePng(const std::string& file, const VirtualBoardPicture& picture) {
  const std::string beside = file + ".part";
  File stream(std::fopen(beside.c_str(), "wb"));
  if (!stream) failWith(file, std::strerror(errno));
  const bool complete = Writer().write(stream.get(), picture);
  const bool closed = std::fclose(stream.release()) == 0;
  if (complete && closed && std::rename(beside.c_str(), file.c_str()) == 0) return;
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
