#include "tool/load_check.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "board/control.h"
#include "tool/configuration_file.h"
#include "tool/parameter_access.h"
#include "tool/text.h"
#include "velmora/parameters.h"

namespace velmora::tool {
namespace {

/// Writable parameters that a load does not look for: commands, which are not saved, and the
/// digital outputs, which are saved for information only.
constexpr int kNotLoaded[] = {
    FG_TRIGGER_EXCEEDED_PERIOD_LIMITS_CLEAR,
    FG_SENDSOFTWARETRIGGER,
    FG_TRIGGERIN_STATS_PULSECOUNT_CLEAR,
    FG_TRIGGERIN_STATS_MINMAXFREQUENCY_CLEAR,
    FG_TRIGGEROUT_STATS_PULSECOUNT_CLEAR,
    FG_MISSING_CAMERA_FRAME_RESPONSE_CLEAR,
    FG_DIGIO_OUTPUT,
};

constexpr std::string_view kHeaderKeys[] = {"ConfigFileVersion", "Hersteller",   "Typ",
                                            "Version",           "LoadAppletId", "AktivePort"};

/// Whether a load looks for a parameter. Direct-access parameters are not kept in files.
bool isLoaded(Session& session, const std::string& name, int id) {
  if (!name.starts_with("FG_") || std::ranges::find(kNotLoaded, id) != std::end(kNotLoaded))
    return false;
  const RegisterInfo* const node = findNode(session, 0, id);
  return node && (node->accessMode & REGISTER_INFO_WRITABLE) != 0;
}

/// Keeps standard error silent while it lives: the log of a trial is nobody's concern.
class Silence {
 public:
  Silence() : stream_(dup(STDERR_FILENO)), nowhere_(open("/dev/null", O_WRONLY | O_CLOEXEC)) {
    dup2(nowhere_, STDERR_FILENO);
  }
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() {
    dup2(stream_, STDERR_FILENO);
    close(stream_);
    close(nowhere_);
  }

 private:
  int stream_;
  int nowhere_;
};

/// Whether two values of a parameter are one: doubles as far as a file keeps them.
bool sameValue(const Value& one, const Value& other) {
  constexpr double kPrecision = 1e-11;
  const auto* const a = std::get_if<double>(&one);
  const auto* const b = std::get_if<double>(&other);
  return a && b ? std::abs(*a - *b) <= kPrecision * std::abs(*a) : one == other;
}

std::string inForce(Session& session, const Parameter& parameter) {
  try {
    return showValue(parameter.node, readParameter(session, parameter));
  } catch (const Failure&) {
    return {};
  }
}

/// A second board on which the values of a file are tried out.
class Trial {
 public:
  Trial(Session& real, const std::string& file, const DesignWrites& written)
      : real_(real), written_(written), session_(real.library(), real.options()) {
    session_.library().loadConfig(session_.grabber(), file.c_str());
  }

  /// Why a text of the file is not what is in force; empty if it is.
  std::string objection(const Parameter& parameter, const std::string& text) {
    if (!isPlainNumber(parameter, text)) return fmt::format("'{}' is no usable number", text);
    const DesignWrites tried;
    try {
      const Parameter own = findParameter(session_, parameter.name, parameter.port);
      writeParameter(session_, own, text);
      if (!sameValue(readParameter(real_, parameter), readParameter(session_, own)))
        return "not taken over";
    } catch (const Failure& failure) {
      return std::string(failure.what()).substr(parameter.label().size() + 2);
    }
    const auto missing = tried.missingIn(written_);
    return missing.empty()
               ? ""
               : fmt::format("kept, but not written to the design: {}", fmt::join(missing, ", "));
  }

 private:
  /// As a load reads it: in decimals, without a name.
  static bool isPlainNumber(const Parameter& parameter, const std::string& text) {
    return valueKind(parameter.node, parameter.id).form == ValueKind::Form::kReal
               ? parseWhole<double>(text).has_value()
               : parseWhole<std::int64_t>(text).has_value();
  }

  Session& real_;
  const DesignWrites& written_;
  Session session_;
};

/// What a file says about the parameters of the ports, and what a load made of it.
class Comparison {
 public:
  Comparison(Session& session, const std::string& file, const DesignWrites& written)
      : session_(session), entries_(readConfiguration(file)), trial_(session, file, written) {
    for (const std::string& key : loadedKeys(session)) loaded_.insert(key);
  }

  std::vector<LoadDifference> run() {
    for (const ConfigurationEntry& entry : entries_) {
      if (entry.port)
        check(entry);
      else if (std::ranges::find(kHeaderKeys, entry.key) == std::end(kHeaderKeys))
        differences_.push_back({entry.line, entry.key, std::nullopt, entry.text,
                                "in no port's section, never loaded", ""});
    }
    for (unsigned port = 0; port < kPorts; ++port)
      for (const std::string& key : loaded_)
        if (!seen_.contains({key, port})) checkMissing(key, port);
    return std::move(differences_);
  }

 private:
  void check(const ConfigurationEntry& entry) {
    const auto parameter = find(entry.key, *entry.port);
    const bool first = entry.usual && !seen_.contains({entry.key, *entry.port});
    std::string reason;
    if (!parameter || !loaded_.contains(entry.key) || !first) {
      if (parameter && says(*parameter, entry.text)) return;
      reason = seen_.contains({entry.key, *entry.port})   ? "repeated; the first one counts"
               : parameter && loaded_.contains(entry.key) ? "not at the start of its line; left out"
                                                          : "never loaded";
    } else {
      seen_.emplace(entry.key, *entry.port);
      reason = trial_.objection(*parameter, entry.text);
    }
    if (!reason.empty()) add(entry, parameter, *entry.port, reason);
  }

  /// A key that its section lacks is taken from a later one.
  void checkMissing(const std::string& key, unsigned port) {
    const auto own = std::find_if(entries_.rbegin(), entries_.rend(),
                                  [port](const auto& entry) { return entry.port == port; });
    const auto later = std::find_if(own.base(), entries_.end(), [&key](const auto& entry) {
      return entry.usual && entry.key == key;
    });
    if (later != entries_.end()) add(*later, find(key, port), port, "taken from a later section");
  }

  void add(const ConfigurationEntry& entry, const std::optional<Parameter>& parameter,
           unsigned port, const std::string& reason) {
    differences_.push_back({entry.line, entry.key, port, entry.text, reason,
                            parameter ? inForce(session_, *parameter) : ""});
  }

  std::optional<Parameter> find(const std::string& name, unsigned port) {
    try {
      const Parameter parameter = findParameter(session_, name, port);
      if (parameter.name == name) return parameter;
    } catch (const Failure&) {  // A key of nobody's.
    }
    return std::nullopt;
  }

  /// Whether a text is the value in force.
  bool says(const Parameter& parameter, const std::string& text) {
    const std::string value = inForce(session_, parameter);
    return value.substr(0, value.find(' ')) == text;
  }

  Session& session_;
  std::vector<ConfigurationEntry> entries_;
  Trial trial_;
  std::set<std::string> loaded_;
  std::set<std::pair<std::string, unsigned>> seen_;
  std::vector<LoadDifference> differences_;
};

}  // namespace

std::string LoadDifference::message() const {
  return fmt::format("{}{}={} (line {}): {}{}", name, port ? fmt::format("@{}", *port) : "", text,
                     line, reason, value.empty() ? "" : "; the setting is " + value);
}

std::vector<std::string> loadedKeys(Session& session) {
  std::vector<std::string> keys;
  const AppletLibrary& library = session.library();
  for (int i = 0; i < library.parameterCount(session.grabber()); ++i) {
    const std::string name = utf8(library.parameterName(session.grabber(), i));
    if (isLoaded(session, name, library.parameterId(session.grabber(), i))) keys.push_back(name);
  }
  return keys;
}

DesignWrites::DesignWrites()
    : observation_([this](const board::Access& access) { note(access); }) {}

void DesignWrites::note(const board::Access& access) {
  using enum board::AccessKind;
  if ((access.kind == kSet || access.kind == kRegisterWrite) && !access.failed)
    written_.emplace(access.name, access.dma);
}

std::vector<std::string> DesignWrites::missingIn(const DesignWrites& other) const {
  std::vector<std::string> names;
  for (const auto& place : written_)
    if (!other.written_.contains(place)) names.push_back(place.first);
  return names;
}

std::vector<LoadDifference> differencesAfterLoad(Session& session, const std::string& file,
                                                 const DesignWrites& written) {
  const Observation unseen([](const board::Access&) {}, Observation::Others::kPause);
  const Silence silence;
  return Comparison(session, file, written).run();
}

}  // namespace velmora::tool
