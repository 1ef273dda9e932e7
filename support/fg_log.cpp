#include "support/fg_log.h"

#include <array>
#include <cstdarg>
#include <ctime>

namespace velmora {

Fg_Log::Fg_Log(const char* /*name*/) {}

Fg_Log::~Fg_Log() { CloseLogFile(); }

void Fg_Log::OpenLogFile(const char* /*file*/) {}

void Fg_Log::CloseLogFile() {
  if (stream_) {
    std::fclose(stream_);
    stream_ = nullptr;
  }
}

void Fg_Log::WriteWelcome() {
  if (!stream_) return;
  const std::string dashes = std::string(73, '-') + '\n';
  const std::string text = dashes + "Copyright Brightfold. All rights reserved.\n" +
                           "Contents: Log details for Strandline Dll\n" + GetTimestamp() + dashes;
  std::fputs(text.c_str(), stream_);
}

std::string Fg_Log::GetTimestamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  std::array<char, 64> text{};
  localtime_r(&now, &local);
  asctime_r(&local, text.data());
  return text.data();
}

void Fg_Log::Func(const char* /*name*/) {}

void Fg_Log::Info(const char* /*text*/) {}

void Fg_Log::Info(const char* text, int value) {
  writeLine({"StrandlineIV::Info", text, std::to_string(value).c_str()});
}

void Fg_Log::UsrDbg(const char* format, ...) {
  if (!stream_) return;
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stream_, format, arguments);  // NOLINT(clang-analyzer-valist.Uninitialized)
  va_end(arguments);
}

void Fg_Log::Error(const char* text) { writeLine({"StrandlineIV::Error", text}); }

void Fg_Log::ErrorInt(const char* text, const char* detail, int value) {
  writeLine({"StrandlineIV::Error", text, detail, std::to_string(value).c_str()});
}

void Fg_Log::ErrorDouble(const char* text, const char* detail, double value) {
  std::array<char, 32> number{};
  std::snprintf(number.data(), number.size(), "%.*g", 12, value);
  writeLine({"StrandlineIV::Error", text, detail, number.data()});
}

void Fg_Log::writeLine(std::initializer_list<const char*> parts) {
  if (!stream_) return;
  const char* separator = "";
  for (const char* part : parts) {
    std::fprintf(stream_, "%s%s", separator, part);
    separator = " >> ";
  }
  std::fputs(";\n", stream_);
  std::fflush(stream_);
}

}  // namespace velmora
