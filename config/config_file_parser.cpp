#include "config/config_file_parser.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string_view>
#include <utility>

#include "support/fg_log.h"
#include "velmora/errors.h"

namespace velmora {
namespace {

constexpr char kFileType[] = ".mcf";
constexpr char kHeaderLine[] = "[Kamerasektion]\n";
constexpr char kError[] = "Error";
constexpr std::size_t kTextSize = 256;
constexpr std::size_t kLineSize = kTextSize - 1;  ///< Longer lines count as several.

/// A line or a value with its terminating zero.
using Text = std::array<char, kTextSize>;

/// Opens a file; null for pipes and devices, which may block, never end or not rewind.
std::FILE* openFile(const char* name, const char* mode) {
  const auto usable = [](const struct stat& status) {
    return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode);
  };
  struct stat status = {};
  if (stat(name, &status) == 0 && !usable(status)) return nullptr;
  // Another process may have put a pipe there since: it must not block, and is looked at again.
  const bool writes = *mode == 'w';
  const int access = writes ? O_WRONLY | O_CREAT | O_TRUNC : mode[1] == '+' ? O_RDWR : O_RDONLY;
  const int file = open(name, access | O_NONBLOCK | O_CLOEXEC, DEFFILEMODE);
  if (file < 0) return nullptr;
  std::FILE* stream = fstat(file, &status) == 0 && usable(status) ? fdopen(file, mode) : nullptr;
  if (!stream) close(file);
  return stream;
}

/// The whole file; after a read error, the complete lines before it.
std::string contentOf(std::FILE* file) {
  std::rewind(file);
  std::string content;
  std::array<char, 1 << 14> part;
  while (const std::size_t size = std::fread(part.data(), 1, part.size(), file))
    content.append(part.data(), size);
  if (std::ferror(file) != 0) {
    const std::size_t lastLine = content.size() - (content.rfind('\n') + 1);
    content.erase(content.size() - lastLine % kLineSize);
  }
  return content;
}

/// Removes the next line, as `std::fgets` sees it, from `rest` and returns it.
std::string_view takeLine(std::string_view& rest) {
  const auto lineFeed = rest.substr(0, kLineSize).find('\n');
  const std::string_view line = rest.substr(0, std::min(lineFeed, kLineSize - 1) + 1);
  rest.remove_prefix(line.size());
  return line;
}

/// Hash of the text before the first '=': the same for a key and all its lines.
std::size_t hashOfKey(std::string_view line) {
  return std::hash<std::string_view>()(line.substr(0, line.find('=')));
}

bool contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

/// Removes the next piece from `rest` and returns it; runs of separators count as one.
std::string_view takePiece(std::string_view& rest, std::string_view separators) {
  const auto begin = rest.find_first_not_of(separators);
  rest.remove_prefix(begin == std::string_view::npos ? rest.size() : begin);
  const std::string_view piece = rest.substr(0, rest.find_first_of(separators));
  rest.remove_prefix(piece.size());
  return piece;
}

/// The value in the rest of a line after its key, without quotes and ';'. A line feed is kept
/// unless there is nothing else.
std::string_view valueOf(std::string_view rest) {
  const std::string_view value = takePiece(rest, "=;'");
  return value.starts_with('\r') || value.starts_with('\n') ? std::string_view() : value;
}

void copyText(std::string_view text, char* value) { value[text.copy(value, kTextSize - 1)] = '\0'; }

/// A number as it is written to a file, cut at 31 characters.
[[gnu::format(printf, 1, 2)]] std::array<char, 32> numberText(const char* format, ...) {
  std::array<char, 32> text;
  va_list arguments;
  va_start(arguments, format);
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
  return text;
}

}  // namespace

// Traces and messages are as hosts know them, with their misspellings and wrong function names.

Fg_ConfigFileParser::Fg_ConfigFileParser(Fg_Log* log, const char* fileName, bool readOnly)
    : log_(log) {
  trace("Fg_ConfigFileParser::Fg_ConfigFileParser(char * filename)");
  if (checkFileType(fileName) && checkFileExist(fileName)) {
    file_.reset(openFile(fileName, readOnly ? "r" : "r+"));
  }
  if (readOnly) readLines();
  linesFixed_ = readOnly;
}

Fg_ConfigFileParser::~Fg_ConfigFileParser() {
  trace("Fg_ConfigFileParser::~Fg_ConfigFileParser()");
}

bool Fg_ConfigFileParser::checkFileType(const char* name) const {
  trace("Fg_ConfigFileParser::checkFileType");
  if (!name) return false;
  const bool accepted = contains(name, kFileType);
  trace(accepted ? "File type ok" : "File type not ok");
  return accepted;
}

bool Fg_ConfigFileParser::checkFileExist(const char* name) const {
  trace("Fg_ConfigFileParser::checkFileExist");
  const bool exists = name && File(openFile(name, "r"));
  if (log_) log_->Info(exists ? "Config File exist" : "Config File don't exist");
  return exists;
}

bool Fg_ConfigFileParser::setSaveFile(const char* name) {
  trace("Fg_ConfigFileParser::setSaveFile");
  if (!checkFileType(name)) {
    if (log_) log_->Error("Config File is Invalid");
    return false;
  }
  file_.reset(openFile(name, "w"));
  linesFixed_ = false;
  writeFailed_ = false;
  if (!file_) {
    if (log_) log_->Error("Config File: fopen failed");
    return false;
  }
  if (log_) log_->Info("Config File is valid");
  return true;
}

bool Fg_ConfigFileParser::close() {
  linesFixed_ = false;
  const bool written = !std::exchange(writeFailed_, false);
  return (!file_ || std::fclose(file_.release()) == 0) && written;
}

void Fg_ConfigFileParser::writeConfigFileHeader() {
  trace("Fg_ConfigFileParser::writeConfigFileHeader");
  write({kHeaderLine});
  write({"\nConfigFileVersion=2.0;\n"});
}

void Fg_ConfigFileParser::writeConfigFileByPort(int port) {
  write({"\n", getPortString(port), "\n"});
}

void Fg_ConfigFileParser::writeConfigFile(const char* key, const char* value) {
  trace("Fg_ConfigFileParser::writeConfigFile");
  writeLine(key, "='", value, "';\n");
}

void Fg_ConfigFileParser::writeConfigFileValue(const char* key, const char* value) {
  trace("Fg_ConfigFileParser::writeConfigFileValue");
  writeLine(key, "=", value, ";\n");
}

void Fg_ConfigFileParser::writeConfigFileIntKey(const char* key, int value) {
  trace("Fg_ConfigFileParser::writeConfigFileIntKey");
  writeConfigFileValue(key, numberText("%d", value).data());
}

void Fg_ConfigFileParser::writeConfigFileUInt64Key(const char* key, std::uint64_t value) {
  trace("Fg_ConfigFileParser::writeConfigFileUInt64Key");
  writeConfigFileValue(key, numberText("%" PRIu64, value).data());
}

void Fg_ConfigFileParser::writeConfigFileInt64Key(const char* key, std::int64_t value) {
  trace("Fg_ConfigFileParser::writeConfigFileUInt64Key");
  writeConfigFileValue(key, numberText("%" PRIi64, value).data());
}

void Fg_ConfigFileParser::writeConfigFileDoubleKey(const char* key, double value) {
  trace("Fg_ConfigFileParser::wrtiteConfigFileDoubleKey");
  writeConfigFileValue(key, numberText("%.12g", value).data());
}

std::string Fg_ConfigFileParser::getPortString(int port) {
  std::string text = "[Port A]";
  text[6] = static_cast<char>('A' + port);
  return text;
}

int Fg_ConfigFileParser::parseKey(const char* sectionMarker, const char* key, char* value) {
  trace("Fg_ConfigFileParser::parseKey");
  if (!sectionMarker || !key) return notFound(value);
  readLines();
  const std::size_t found = findKey(key, endOfSectionLine(sectionMarker));
  if (found == std::string::npos) return notFound(value);
  copyText(valueOf(lines_.data() + found + std::strlen(key)), value);
  goOnAfter(found, 1);
  return VELMORA_OK;
}

int Fg_ConfigFileParser::parseKeyFromLine(const char* key, char* value) {
  trace("Fg_ConfigFileParser::parseKeyFromLine");
  if (!key) return notFound(value);
  readLines();
  const std::size_t found = lines_.find(key, 1);
  if (found == std::string::npos) return notFound(value);
  std::string_view rest = lines_.data() + lines_.rfind('\0', found - 1) + 1;
  takePiece(rest, "='");
  copyText(takePiece(rest, "='"), value);
  goOnAfter(found, 0);
  return VELMORA_OK;
}

int Fg_ConfigFileParser::parseIntKey(const char* sectionMarker, const char* key, int* value) {
  trace("Fg_ConfigFileParser::parseIntKey");
  return parseNumber(sectionMarker, key, value, &Fg_ConfigFileParser::getIntValue);
}

int Fg_ConfigFileParser::parseUInt64Key(const char* sectionMarker, const char* key,
                                        std::uint64_t* value) {
  trace("Fg_ConfigFileParser::parseIntKey");  // Named as hosts know it.
  return parseNumber(sectionMarker, key, value, &Fg_ConfigFileParser::getUInt64Value);
}

int Fg_ConfigFileParser::parseInt64Key(const char* sectionMarker, const char* key,
                                       std::int64_t* value) {
  trace("Fg_ConfigFileParser::parseIntKey");  // Named as hosts know it.
  return parseNumber(sectionMarker, key, value, &Fg_ConfigFileParser::getInt64Value);
}

int Fg_ConfigFileParser::parseDoubleKey(const char* sectionMarker, const char* key, double* value) {
  trace("Fg_ConfigFileParser::parseDoubleKey");
  return parseNumber(sectionMarker, key, value, &Fg_ConfigFileParser::getDoubleValue);
}

int Fg_ConfigFileParser::parseIntKeyFromHeader(const char* key, int* value) {
  trace("Fg_ConfigFileParser::parseIntKeyFromHeader");
  return parseIntKey(kHeaderLine, key, value);
}

int Fg_ConfigFileParser::parseIntKeySection(int port, const char* key, int* value) {
  return parseInSection(port, key, value, &Fg_ConfigFileParser::parseIntKey);
}

int Fg_ConfigFileParser::parseUInt64KeySection(int port, const char* key, std::uint64_t* value) {
  return parseInSection(port, key, value, &Fg_ConfigFileParser::parseUInt64Key);
}

int Fg_ConfigFileParser::parseInt64KeySection(int port, const char* key, std::int64_t* value) {
  return parseInSection(port, key, value, &Fg_ConfigFileParser::parseInt64Key);
}

int Fg_ConfigFileParser::parseDoubleKeySection(int port, const char* key, double* value) {
  return parseInSection(port, key, value, &Fg_ConfigFileParser::parseDoubleKey);
}

int Fg_ConfigFileParser::parseKeySection(int port, const char* key, char* value) {
  return parseInSection(port, key, value, &Fg_ConfigFileParser::parseKey);
}

int Fg_ConfigFileParser::getIntValue(const char* text, int* value) const {
  trace("Fg_ConfigFileParser::getIntValue");
  *value = static_cast<int>(std::strtol(text, nullptr, 10));
  return VELMORA_OK;
}

int Fg_ConfigFileParser::getUInt64Value(const char* text, std::uint64_t* value) const {
  trace("Fg_ConfigFileParser::getIntValue");  // Named as hosts know it.
  std::sscanf(text, "%" SCNu64, value);
  return VELMORA_OK;
}

int Fg_ConfigFileParser::getInt64Value(const char* text, std::int64_t* value) const {
  trace("Fg_ConfigFileParser::getIntValue");  // Named as hosts know it.
  std::sscanf(text, "%" SCNi64, value);
  return VELMORA_OK;
}

int Fg_ConfigFileParser::getDoubleValue(const char* text, double* value) const {
  trace("Fg_ConfigFileParser::getDoubleValue");
  *value = std::strtod(text, nullptr);
  return VELMORA_OK;
}

void Fg_ConfigFileParser::trace(const char* text) const {
  if (log_) log_->Func(text);
}

void Fg_ConfigFileParser::write(std::initializer_list<std::string_view> pieces) {
  if (!file_) return;
  for (const std::string_view piece : pieces) {
    if (std::fwrite(piece.data(), 1, piece.size(), file_.get()) != piece.size()) {
      writeFailed_ = true;
    }
  }
  if (std::fflush(file_.get()) != 0) writeFailed_ = true;
}

void Fg_ConfigFileParser::writeLine(const char* key, const char* opening, const char* value,
                                    const char* closing) {
  if (key && value) write({key, opening, value, closing});
}

void Fg_ConfigFileParser::readLines() {
  if (linesFixed_) return;
  lines_.clear();
  keyLines_.clear();
  sectionLineEnd_.reset();
  if (!file_) return;
  const std::string content = contentOf(file_.get());
  for (std::string_view rest = content; !rest.empty();) {
    std::string_view line = takeLine(rest);
    line = line.substr(0, line.find('\0'));
    lines_ += '\0';
    if (contains(line, "=")) keyLines_.emplace_back(hashOfKey(line), lines_.size());
    lines_ += line;
  }
  std::sort(keyLines_.begin(), keyLines_.end());
}

std::size_t Fg_ConfigFileParser::endOfSectionLine(const char* marker) {
  if (!sectionLineEnd_.has_value() || marker_ != marker) {
    marker_ = marker;
    sectionLineEnd_ = lines_.find('\0', lines_.find(marker_, 1));
  }
  return *sectionLineEnd_;
}

std::size_t Fg_ConfigFileParser::findKey(std::string_view key, std::size_t from) const {
  const std::size_t hash = hashOfKey(key);
  auto line = std::lower_bound(keyLines_.begin(), keyLines_.end(), std::pair(hash, from));
  for (; line != keyLines_.end() && line->first == hash; ++line) {
    const std::string_view text = lines_.data() + line->second;
    if (text.starts_with(key) && text.substr(key.size()).starts_with('=')) return line->second;
  }
  return std::string::npos;
}

void Fg_ConfigFileParser::goOnAfter(std::size_t position, int linesMore) {
  if (linesFixed_) return;
  const auto begin = lines_.begin();
  auto count = std::count(begin, begin + static_cast<std::ptrdiff_t>(position), '\0') + linesMore;
  std::rewind(file_.get());
  for (Text line; count > 0 && std::fgets(line.data(), kTextSize, file_.get());) --count;
  std::fseek(file_.get(), 0, SEEK_CUR);  // C requires it between a read and a write.
}

int Fg_ConfigFileParser::notFound(char* value) {
  copyText(kError, value);
  return VELMORA_KEY_NOT_FOUND;
}

template <class Value>
int Fg_ConfigFileParser::parseNumber(const char* sectionMarker, const char* key, Value* value,
                                     Conversion<Value> convert) {
  Text text;
  parseKey(sectionMarker, key, text.data());
  if (contains(text.data(), kError)) return VELMORA_NOTHING_FOUND;
  return (this->*convert)(text.data(), value);
}

template <class Value>
int Fg_ConfigFileParser::parseInSection(int port, const char* key, Value* value,
                                        Reader<Value> read) {
  if (!key) return VELMORA_NOTHING_FOUND;
  return (this->*read)(getPortString(port).c_str(), key, value);
}

}  // namespace velmora
