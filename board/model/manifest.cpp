#include "board/model/manifest.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <unordered_set>

#include "board/model/scalar.h"

namespace board {
namespace {

using Tokens = std::vector<std::string_view>;

constexpr std::size_t kMaxRecords = 65536;  ///< Limits what a mistaken pattern can cost.
constexpr int kMaxRegisterBits = 64;
constexpr std::ptrdiff_t kFixedColumns = 4;  ///< Kind, name, access and store of a parameter.
constexpr std::size_t kMaxNameLength = 255;
constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kNameCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_";

struct KindName {
  std::string_view keyword;
  RegisterInfoKind kind;
};
constexpr KindName kKinds[] = {
    {"uint", REGISTER_INFO_UINT},           {"int", REGISTER_INFO_INT},
    {"uint64", REGISTER_INFO_UINT64},       {"int64", REGISTER_INFO_INT64},
    {"double", REGISTER_INFO_DOUBLE},       {"enum", REGISTER_INFO_ENUM},
    {"string", REGISTER_INFO_STRING},       {"uint_field", REGISTER_INFO_UINT_FIELD},
    {"int_field", REGISTER_INFO_INT_FIELD}, {"double_field", REGISTER_INFO_DOUBLE_FIELD},
};

Tokens split(std::string_view line) {
  Tokens tokens;
  while (true) {
    const auto start = line.find_first_not_of(kBlanks);
    if (start == std::string_view::npos) return tokens;
    line.remove_prefix(start);
    const auto length = std::min(line.find_first_of(kBlanks), line.size());
    tokens.push_back(line.substr(0, length));
    line.remove_prefix(length);
  }
}

[[noreturn]] void fail(std::string_view what, std::string_view token) {
  throw ManifestError(fmt::format("{} '{}'", what, token));
}

std::uint64_t number(RegisterInfoKind kind, std::string_view token) {
  const auto bits = parseScalar(kind, token);
  if (!bits) fail("not a number of this kind:", token);
  return *bits;
}

int integer(std::string_view token, int min, int max) {
  const auto value = static_cast<std::int64_t>(number(REGISTER_INFO_INT, token));
  if (value < min || value > max) fail("number out of range:", token);
  return static_cast<int>(value);
}

/// Whether the token is `yes`; it must be one of the two.
bool choose(std::string_view token, std::string_view yes, std::string_view no) {
  if (token != yes && token != no) fail("unknown word", token);
  return token == yes;
}

/// Appends the names that a pattern stands for to `names`; the first range changes slowest.
void expand(const std::string& pattern, std::vector<std::string>& names) {
  const auto open = pattern.find('{');
  if (open == std::string::npos) {
    if (pattern.find_first_not_of(kNameCharacters) != std::string::npos) {
      fail("bad character in name", pattern);
    }
    if (names.size() == kMaxRecords) fail("too many names in", pattern);
    names.push_back(pattern);
    return;
  }
  const auto close = pattern.find('}', open);
  const auto dash = pattern.find('-', open);
  if (close == std::string::npos || dash > close) fail("bad range in", pattern);
  const std::string_view view = pattern;
  const int first = integer(view.substr(open + 1, dash - open - 1), 0, 9999);
  const int last = integer(view.substr(dash + 1, close - dash - 1), first, 9999);
  for (int i = first; i <= last; ++i) {
    expand(fmt::format("{}{}{}", view.substr(0, open), i, view.substr(close + 1)), names);
  }
}

/// The value of a token "key=value"; `nullopt` for another form or key.
std::optional<std::string_view> option(std::string_view token, std::string_view key) {
  if (token.substr(0, key.size()) != key || token.substr(key.size(), 1) != "=") return std::nullopt;
  return token.substr(key.size() + 1);
}

std::pair<std::string, std::int32_t> parseEntry(std::string_view token) {
  const auto equals = std::min(token.find('='), token.size() - 1);
  if (equals == 0) fail("entry without label:", token);
  constexpr int kMin = std::numeric_limits<std::int32_t>::min();
  constexpr int kMax = std::numeric_limits<std::int32_t>::max();
  return {std::string(token.substr(0, equals)), integer(token.substr(equals + 1), kMin, kMax)};
}

/// Parses the arguments after the fixed columns, which depend on the kind.
void parseArguments(ParameterRecord& record, const Tokens& arguments) {
  const auto expect = [&](std::size_t count) {
    if (arguments.size() != count) fail("wrong number of arguments for", record.name);
  };
  switch (record.kind) {
    case REGISTER_INFO_ENUM:
      for (const auto token : arguments) record.entries.push_back(parseEntry(token));
      break;
    case REGISTER_INFO_STRING:
      expect(1);
      record.text = arguments[0];
      break;
    case REGISTER_INFO_UINT_FIELD:
    case REGISTER_INFO_INT_FIELD:
    case REGISTER_INFO_DOUBLE_FIELD:
      expect(3);
      record.count = static_cast<std::uint32_t>(integer(arguments[0], 0, 1 << 20));
      record.initial = number(record.kind, arguments[1]);
      record.max = number(record.kind, arguments[2]);
      break;
    default:
      expect(3);
      record.min = number(record.kind, arguments[0]);
      record.max = number(record.kind, arguments[1]);
      record.step = number(record.kind, arguments[2]);
  }
}

class Parser {
 public:
  Manifest parse(std::string_view text) {
    while (!text.empty()) {
      const auto end = std::min(text.find('\n'), text.size());
      ++line_;
      try {
        parseLine(split(text.substr(0, end)));
      } catch (const ManifestError& error) {
        throw ManifestError(fmt::format("line {}: {}", line_, error.what()));
      }
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!ended_) throw ManifestError("the end is missing");
    if (!boardGiven_) throw ManifestError("the board type is missing");
    return std::move(manifest_);
  }

 private:
  void parseLine(Tokens tokens) {
    if (tokens.empty() || tokens[0].front() == '#') return;
    if (ended_) fail("record after the end:", tokens[0]);
    if (!started_) {
      if (tokens != Tokens{"velmora-design", "1"}) fail("not a design manifest:", tokens[0]);
      started_ = true;
    } else if (tokens == Tokens{"end"}) {
      ended_ = true;
    } else if (tokens[0] == "board" && tokens.size() == 2) {
      integer(tokens[1], kBoardType, kBoardType);
      boardGiven_ = true;
    } else if (tokens[0] == "register" && tokens.size() == 4) {
      const RegisterRecord record{{}, integer(tokens[2], 1, kMaxRegisterBits), writable(tokens[3])};
      add(manifest_.registers, registerNames_, tokens[1], record);
    } else if (tokens[0] == "event" && tokens.size() == 3) {
      add(manifest_.events, eventNames_, tokens[1], EventRecord{{}, integer(tokens[2], 0, 65535)});
    } else {
      parseParameter(std::move(tokens));
    }
  }

  void parseParameter(Tokens tokens) {
    const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds),
                                   [&](const KindName& k) { return k.keyword == tokens[0]; });
    if (row == std::end(kKinds)) fail("unknown record", tokens[0]);
    if (std::ssize(tokens) < kFixedColumns) fail("incomplete record", tokens[0]);
    ParameterRecord record;
    record.name = tokens[1];
    record.kind = row->kind;
    record.writable = writable(tokens[2]);
    record.shared = choose(tokens[3], "shared", "channel");
    while (std::ssize(tokens) > kFixedColumns && takeOption(record, tokens.back()))
      tokens.pop_back();
    parseArguments(record, {tokens.begin() + kFixedColumns, tokens.end()});
    add(manifest_.parameters, parameterNames_, tokens[1], record);
  }

  static bool takeOption(ParameterRecord& record, std::string_view token) {
    if (const auto unit = option(token, "unit")) {
      record.unit = *unit;
      return true;
    }
    const auto initial = option(token, "initial");
    if (initial && !isScalar(record.kind)) fail("no initial number for", record.name);
    if (initial) record.initial = number(record.kind, *initial);
    return initial.has_value();
  }

  static bool writable(std::string_view token) { return choose(token, "rw", "ro"); }

  /// Appends a copy of `record` for every name that the pattern stands for.
  template <class Record>
  void add(std::vector<Record>& records, std::unordered_set<std::string>& known,
           std::string_view pattern, Record record) {
    if (pattern.size() > kMaxNameLength) fail("name too long:", pattern);
    std::vector<std::string> names;
    expand(std::string(pattern), names);
    if (records.size() + names.size() > kMaxRecords) fail("too many records:", pattern);
    for (auto& name : names) {
      if (!known.insert(name).second) fail("name used twice:", name);
      record.name = std::move(name);
      records.push_back(record);
    }
  }

  Manifest manifest_;
  std::unordered_set<std::string> parameterNames_, registerNames_, eventNames_;
  int line_ = 0;
  bool started_ = false;
  bool boardGiven_ = false;
  bool ended_ = false;
};

}  // namespace

Manifest parseManifest(std::string_view text) { return Parser().parse(text); }

}  // namespace board
