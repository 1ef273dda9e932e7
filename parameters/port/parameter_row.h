/// One row of the parameter table: everything there is to say about one SDK parameter, written as a
/// sentence:
///
///     setting(SDK(FG_TRIGGERIN_SRC), oneOf(kTriggerInputSources), &S::inputSource)
///         .drives(D::kInputSelect)
///         .shown("Source", kSwitched, 1)
///         .reopened()
///         .help("Select the trigger input source for external trigger mode.")
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <utility>

#include "parameters/design/design_ids.h"
#include "parameters/port/process_settings.h"
#include "paraminfo/catalogue_builder.h"
#include "velmora/register_info.h"

namespace velmora {

struct Port;
class ParameterRow;

/// Sets a parameter of a port: checks the value, stores it, writes the design. On failure the
/// setting is unchanged.
template <class T>
using Setter = void (*)(Port&, const ParameterRow&, T);

/// Stores the value of a port's parameter at `value`, in the parameter's own width. Only text and
/// forwarded parameters use the caller's type.
using Getter = void (*)(Port&, const ParameterRow&, void* value, int type);

/// Name and id of an SDK parameter.
struct SdkParameter {
  const char* name;
  int id;
};
#define SDK(parameter) (::velmora::SdkParameter{#parameter, parameter})

/// @name Access modes of the catalogue
/// @{
inline constexpr int kReadOnly = REGISTER_INFO_READABLE;
inline constexpr int kReadWrite = REGISTER_INFO_READABLE | REGISTER_INFO_WRITABLE;
/// Writable unless the runtime's tools lock it.
inline constexpr int kSwitched = kReadWrite | REGISTER_INFO_RUNTIME_FLAG;
/// @}

class ParameterRow : public ValueDescription {
 public:
  Field field{};
  Setter<std::uint32_t> setInteger = nullptr;  ///< Setter of a 32-bit setting, else null.
  Setter<double> setReal = nullptr;            ///< Setter of a double setting, else null.
  Getter get = nullptr;
  bool appliedAtStart = false;      ///< The default is written at start-up.
  bool persisted = false;           ///< Kept in configuration files.
  bool loaded = false;              ///< Read back from them.
  bool storedBeforeLoad = false;    ///< Stored by a load before it calls any setter.
  bool reopens = false;             ///< Can be set again once a trigger transition is complete.
  bool runtimeOwnsStrings = false;  ///< Strings of this id go back to the runtime.
  const char* description = "";

  constexpr bool writable() const { return setInteger || setReal; }

  /// @name Parts of the sentence
  /// @{

  /// A get returns the value that was set last, unless the sentence says otherwise.
  constexpr ParameterRow& keeps(Field setting) {
    field = setting;
    answersReal_ = setting.real != nullptr;
    return *this;
  }
  /// A set writes the value as it is, to a design parameter or a simulator register.
  constexpr ParameterRow& drives(DesignId id) {
    nameDesign(id);
    if (field.real) return setBy(writePlain<double>);
    drivesRegister_ = isRegister(id);
    return setBy(drivesRegister_ ? writeRegister : writePlain<std::uint32_t>);
  }
  /// A set sends the design its command value, 2, whatever the caller's value is.
  constexpr ParameterRow& triggers(DesignId id) {
    nameDesign(id);
    return setBy(writeOneShot);
  }
  /// A set does not write the design.
  constexpr ParameterRow& storedOnly() { return setBy(writeNothing); }
  constexpr ParameterRow& setBy(Setter<std::uint32_t> setter) {
    setInteger = setter;
    setsInteger_ = true;
    return *this;
  }
  constexpr ParameterRow& setBy(Setter<double> setter) {
    setReal = setter;
    setsReal_ = true;
    return *this;
  }

  /// A get reads it from the design.
  constexpr ParameterRow& reads(DesignId id) {
    nameDesign(id);
    answersReal_ = false;
    return getBy(readDesign);
  }
  /// A get returns what a function of the port does.
  template <auto Read>
  constexpr ParameterRow& readBy() {
    answersReal_ = std::is_same_v<decltype(Read(std::declval<const Port&>())), double>;
    return getBy(storeResult<Read>);
  }
  template <std::uint32_t Constant>
  constexpr ParameterRow& always() {
    return getBy(storeConstant<Constant>);
  }
  constexpr ParameterRow& getBy(Getter getter) {
    get = getter;
    isRead_ = true;
    return *this;
  }

  /// A load does not store it first: its setter makes a transition from the current value.
  constexpr ParameterRow& stepped() {
    storedBeforeLoad = false;
    return *this;
  }
  constexpr ParameterRow& savedOnly() {
    appliedAtStart = loaded = storedBeforeLoad = false;
    return *this;
  }
  constexpr ParameterRow& applied() {
    appliedAtStart = true;
    return *this;
  }
  constexpr ParameterRow& reopened() {
    reopens = true;
    return *this;
  }
  constexpr ParameterRow& stringsOfRuntime() {
    runtimeOwnsStrings = true;
    return *this;
  }

  /// How the catalogue shows it.
  constexpr ParameterRow& shown(const char* displayText, int access, int shownQualifier,
                                const char* unitText = nullptr) {
    display = displayText;
    accessMode = access;
    qualifier = shownQualifier;
    unit = unitText;
    return *this;
  }
  /// The text of `FG_PARAM_DESCR`.
  constexpr ParameterRow& help(const char* text) {
    description = text;
    return *this;
  }
  /// @}

  /// An inconsistent row does not compile; the error shows what is wrong.
  consteval void check() const {
    const bool set = setsInteger_ || setsReal_;
    if (!name || id <= 0) throw "a row needs a name and an id";
    if (design_ >= DesignId::kCount) throw "a design name that there is not";
    if (!isRead_) throw "a parameter that nothing reads";
    if ((field.integer || field.real) != set) throw "a setting needs a way to be set";
    if (setsInteger_ && !field.integer) throw "an integer setter stores into an integer field";
    if (setsReal_ && !field.real) throw "a real setter stores into a real field";
    if (setsInteger_ && setsReal_) throw "a setting is an integer or real";
    if (set && !limits.sensible()) throw "the limits leave nothing to set";
    if (set && !acceptsDefault()) throw "a default lies within its limits";
    if (setsReal_ && limits.kind != Limits::Kind::kReal) throw "a real setting has a real range";
    if (setsInteger_ && limits.kind != Limits::Kind::kInteger &&
        limits.kind != Limits::Kind::kEnumeration)
      throw "an integer setting has an integer range or an enumeration";
    if (limits.kind != Limits::Kind::kNone && limits.kind != Limits::Kind::kText &&
        answersReal_ != (limits.kind == Limits::Kind::kReal))
      throw "a get answers in the width of its limits";
    if (display && limits.kind == Limits::Kind::kNone) throw "what is shown has limits";
    if (display && ((accessMode & REGISTER_INFO_WRITABLE) != 0) != set)
      throw "what is shown as writable has a setter, and nothing else";
    if (reopens && (!set || accessMode != kSwitched)) throw "only switched settings reopen";
    if ((appliedAtStart || persisted) && !set) throw "only settings are applied and persisted";
    if (isRegister(design_) != drivesRegister_) throw "registers are only driven";
  }

  /// Nor do two rows that stand for one thing.
  consteval void check(const ParameterRow& other) const {
    if (id == other.id || std::string_view(name) == other.name) throw "one id and name per row";
    if (field.integer && field.integer == other.field.integer) throw "one field per row";
    if (field.real && field.real == other.field.real) throw "one field per row";
    if (namesDesign_ && other.namesDesign_ && design_ == other.design_)
      throw "one row per part of the design";
  }

 private:
  constexpr bool acceptsDefault() const {
    constexpr ProcessSettings kDefaults;
    return setsReal_ ? limits.accepts(kDefaults.*field.real, 0)
                     : limits.accepts(kDefaults.*field.integer, 0);
  }
  constexpr void nameDesign(DesignId id) {
    if (namesDesign_) throw "a row names one part of the design";
    design_ = id;
    namesDesign_ = true;
  }

  template <class T>
  static void writePlain(Port& port, const ParameterRow& row, T value);
  static void writeNothing(Port& port, const ParameterRow& row, std::uint32_t value);
  static void writeRegister(Port& port, const ParameterRow& row, std::uint32_t value);
  static void writeOneShot(Port& port, const ParameterRow& row, std::uint32_t value);
  static void readDesign(Port& port, const ParameterRow& row, void* value, int type);
  template <auto Read>
  static void storeResult(Port& port, const ParameterRow&, void* value, int) {
    const auto result = Read(port);
    std::memcpy(value, &result, sizeof result);  // The caller's pointer need not be aligned.
  }
  template <std::uint32_t Constant>
  static void storeConstant(Port&, const ParameterRow&, void* value, int) {
    constexpr std::uint32_t kConstant = Constant;
    std::memcpy(value, &kConstant, sizeof kConstant);
  }

  /// Used by the functions above only.
  DesignId design_{};

  // What the sentence has said; compilers do not compare functions with null in constants.
  bool isRead_ = false;
  bool setsInteger_ = false;
  bool setsReal_ = false;
  bool drivesRegister_ = false;
  bool namesDesign_ = false;
  bool answersReal_ = false;
};

/// The value last accepted.
void getSetting(Port& port, const ParameterRow& row, void* value, int type);
/// The runtime's answer for the same id and type.
void getForwarded(Port& port, const ParameterRow& row, void* value, int type);

/// @name How a sentence begins
/// @{

constexpr ParameterRow reading(SdkParameter parameter, const Limits& limits = {}) {
  ParameterRow row;
  row.name = parameter.name;
  row.id = parameter.id;
  row.limits = limits;
  return row;
}

/// Answered by the runtime, which owns its strings too.
constexpr ParameterRow forwarded(SdkParameter parameter) {
  ParameterRow row = reading(parameter);
  return row.getBy(getForwarded).stringsOfRuntime();
}

/// A value that triggers something: neither written at start-up nor saved.
constexpr ParameterRow command(SdkParameter parameter, const Limits& limits, Field field) {
  ParameterRow row = reading(parameter, limits);
  return row.keeps(field).getBy(getSetting);
}

/// A value that is kept: written at start-up, saved in configuration files and read back.
constexpr ParameterRow setting(SdkParameter parameter, const Limits& limits, Field field) {
  ParameterRow row = command(parameter, limits, field);
  row.appliedAtStart = row.persisted = row.loaded = row.storedBeforeLoad = true;
  return row;
}
/// @}

}  // namespace velmora
