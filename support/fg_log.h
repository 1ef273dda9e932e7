/// Log of the configuration file parser.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>

namespace velmora {

/// Writes to a C stream. The log is dormant: `OpenLogFile` opens nothing, so the output
/// functions write nothing unless a derived class provides a stream. Not for use by several threads
/// at a time.
class Fg_Log {
 public:
  /// `name` labels the log in the source; it is not written.
  explicit Fg_Log(const char* name);
  Fg_Log(const Fg_Log&) = delete;
  Fg_Log& operator=(const Fg_Log&) = delete;
  /// Closes the stream.
  virtual ~Fg_Log();

  void OpenLogFile(const char* file);
  /// Flushes and closes an open stream; nothing is written afterwards.
  void CloseLogFile();

  /// Writes the head of a log: whose it is, what it contains and when it began.
  void WriteWelcome();
  /// Current local time in the form "Thu Jan  1 00:00:00 1970\n".
  std::string GetTimestamp();

  /// Entry of a function; not written.
  void Func(const char* name);
  /// Not written; see the form with a value.
  void Info(const char* text);
  void Info(const char* text, int value);
  /// Writes what `printf` would, without flushing.
  void UsrDbg(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void Error(const char* text);
  void ErrorInt(const char* text, const char* detail, int value);
  /// `value` is written with 12 significant digits.
  void ErrorDouble(const char* text, const char* detail, double value);

 protected:
  /// Output stream, closed by this class; null for none.
  std::FILE* stream_ = nullptr;

 private:
  /// Writes the parts with " >> " between them and flushes.
  void writeLine(std::initializer_list<const char*> parts);
};

}  // namespace velmora
