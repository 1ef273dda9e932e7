/// The folder config/ is the file format of applet configurations.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora {

class Fg_Log;

/// Writes and reads an applet configuration: a text file with ".mcf" in its name, a header section
/// and one section per camera port.
///
///     [Kamerasektion]
///
///     ConfigFileVersion=2.0;
///     Typ='Velmora';
///
///     [Port A]
///     FG_WIDTH=1024;
///
/// A parser serves one save (constructed without a name, then `setSaveFile` and the writers in the
/// file's order, then `close`) or one load (constructed with the name, then the readers in any
/// order). It is used by one thread. Nothing throws but `std::bad_alloc`.
///
/// Reading is as lenient as files in the field require: a key that its section lacks is taken
/// from a later section, numbers are not validated, and a line of more than 255 characters counts
/// as several lines. The keys and markers of the readers and the keys and values of the writers
/// may be null: then nothing is found, or nothing written.
class Fg_ConfigFileParser {
 public:
  /// Opens an existing configuration file. No file is open afterwards if the name is not that of a
  /// configuration file, or the file is a pipe or device or cannot be opened. A file opened for
  /// reading only is read here, once: the readers do not see later changes. One opened for update
  /// is read again by every reader.
  /// @param log receives a trace of every operation; not owned, may be null.
  /// @param fileName file to open; null opens none.
  /// @param readOnly whether the file is opened for reading only, or for update.
  Fg_ConfigFileParser(Fg_Log* log, const char* fileName, bool readOnly);
  /// Flushes and closes the file.
  ~Fg_ConfigFileParser();

  /// Whether the name is that of a configuration file: not null, with ".mcf" anywhere.
  bool checkFileType(const char* name) const;
  /// Whether the file can be opened for reading; false for a null name.
  bool checkFileExist(const char* name) const;
  /// Creates or empties a file to write to, and closes the one that was open.
  /// @return false if the name is not that of a configuration file (the file that was open stays
  /// open), or the file is a pipe or device or cannot be opened.
  bool setSaveFile(const char* name);
  /// Closes the file, as the destructor does otherwise.
  /// @return whether everything written since it was opened has reached the file; true if none is
  /// open.
  bool close();

  /// @name Writers
  /// Each flushes what it wrote. Without an open file they do nothing.
  /// @{
  void writeConfigFileHeader();
  /// Begins the section of a port, from 0.
  void writeConfigFileByPort(int port);
  void writeConfigFilePortA() { writeConfigFileByPort(0); }
  void writeConfigFilePortB() { writeConfigFileByPort(1); }
  /// Writes `key='value';`.
  void writeConfigFile(const char* key, const char* value);
  /// Writes `key=value;`, as do the writers of numbers. Doubles have 12 significant digits and the
  /// decimal separator of the process's locale.
  void writeConfigFileValue(const char* key, const char* value);
  void writeConfigFileIntKey(const char* key, int value);
  void writeConfigFileUInt64Key(const char* key, std::uint64_t value);
  void writeConfigFileInt64Key(const char* key, std::int64_t value);
  void writeConfigFileDoubleKey(const char* key, double value);
  /// @}

  /// Marker of a port's section: "[Port A]" for port 0.
  static std::string getPortString(int port);

  /// @name Readers of texts
  /// @param value receives the text, or "Error"; at least 256 bytes.
  /// @return 0; -8000 when there is no such section or key, or no open file.
  /// @{

  /// Value of the first line at or after the section that starts with the key and '='.
  /// @param sectionMarker text that the section's first line contains.
  int parseKey(const char* sectionMarker, const char* key, char* value);
  /// What follows the first '=' or quote in the first line of the file that contains the key
  /// anywhere. For the quoted values of the header; others keep their ';' and line feed.
  int parseKeyFromLine(const char* key, char* value);
  /// @}

  /// @name Readers of numbers
  /// `parseKey`, then the conversion of the same type below.
  /// @return 0; -1 when nothing is found or the text contains "Error", with the value unchanged.
  /// @{
  int parseIntKey(const char* sectionMarker, const char* key, int* value);
  int parseUInt64Key(const char* sectionMarker, const char* key, std::uint64_t* value);
  int parseInt64Key(const char* sectionMarker, const char* key, std::int64_t* value);
  int parseDoubleKey(const char* sectionMarker, const char* key, double* value);
  /// Looks from the header on. A header line with a carriage return is not recognised.
  int parseIntKeyFromHeader(const char* key, int* value);
  /// @}

  /// @name Readers in the section of a port, from 0
  /// @return as the reader of the same type above; -1 when the key is null.
  /// @{
  int parseIntKeySection(int port, const char* key, int* value);
  int parseUInt64KeySection(int port, const char* key, std::uint64_t* value);
  int parseInt64KeySection(int port, const char* key, std::int64_t* value);
  int parseDoubleKeySection(int port, const char* key, double* value);
  int parseKeySection(int port, const char* key, char* value);
  /// @}

  /// @name Conversions
  /// They stop at the first character that is not part of a number and do not detect errors:
  /// without a number the `int` and the `double` become 0 and the 64-bit integers stay unchanged.
  /// Signed 64-bit integers may be hexadecimal (0x) or octal (leading 0); the decimal separator of
  /// a double is that of the process's locale. The result is always 0.
  /// @{
  int getIntValue(const char* text, int* value) const;
  int getUInt64Value(const char* text, std::uint64_t* value) const;
  int getInt64Value(const char* text, std::int64_t* value) const;
  int getDoubleValue(const char* text, double* value) const;
  /// @}

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  using File = std::unique_ptr<std::FILE, CloseFile>;
  template <class Value>
  using Conversion = int (Fg_ConfigFileParser::*)(const char* text, Value*) const;
  template <class Value>
  using Reader = int (Fg_ConfigFileParser::*)(const char* sectionMarker, const char* key, Value*);

  void trace(const char* text) const;
  /// Reads the lines of the file, unless they are fixed.
  void readLines();
  /// Where the first line with the marker ends in `lines_`; `npos` when no line follows.
  std::size_t endOfSectionLine(const char* marker);
  /// Where the next line begins that starts with the key and '='; `npos` when there is none.
  std::size_t findKey(std::string_view key, std::size_t from) const;
  /// In a file open for update, continues after the line at `position` in `lines_` and `linesMore`
  /// further lines.
  void goOnAfter(std::size_t position, int linesMore);
  void write(std::initializer_list<std::string_view> pieces);
  void writeLine(const char* key, const char* opening, const char* value, const char* closing);
  static int notFound(char* value);
  template <class Value>
  int parseNumber(const char* sectionMarker, const char* key, Value* value,
                  Conversion<Value> convert);
  template <class Value>
  int parseInSection(int port, const char* key, Value* value, Reader<Value> read);

  File file_;
  Fg_Log* log_;
  /// Lines of the file as last read, each preceded by a zero; a line contains none.
  std::string lines_;
  /// Whether the lines stay as they were read.
  bool linesFixed_ = false;
  /// Lines with a '=', sorted: hash of the text before it, position in `lines_`.
  std::vector<std::pair<std::size_t, std::size_t>> keyLines_;
  /// Section last looked for and, until the lines are read again, where its line ends.
  std::string marker_;
  std::optional<std::size_t> sectionLineEnd_;
  bool writeFailed_ = false;
};

}  // namespace velmora
