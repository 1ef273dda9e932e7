#pragma once

#include <cstring>
#include <type_traits>

#include "parameters/parameter_table.h"
#include "parameters/transaction.h"
#include "velmora/errors.h"

/// Turns rows of the parameter table and methods of the parameter families into set and get
/// handlers.
namespace velmora::handlers {

/// Stores a value where the caller wants it; the caller's pointer need not be aligned.
template <class T>
void store(void* value, T result) {
  std::memcpy(value, &result, sizeof result);
}

inline std::uint32_t& settingOf(Port& port, const ParameterRow& row, std::uint32_t) {
  return port.settings.*row.field.word;
}
inline double& settingOf(Port& port, const ParameterRow& row, double) {
  return port.settings.*row.field.real;
}

/// Throws -6000 unless the row's limits accept the value.
template <class T>
void requireAccepted(const Port& port, const ParameterRow& row, T value) {
  if (!row.limits.accepts(value, port.index)) throw int{VELMORA_OUT_OF_RANGE};
}

/// The way of most setters: checks the value against the row's limits, stores it, and keeps it when
/// `write` brings it to the design.
template <class T, class Write>
void setThrough(Port& port, const ParameterRow& row, T value, const Write& write) {
  requireAccepted(port, row, value);
  Transaction<T> change(settingOf(port, row, value), value);
  write();
  change.keep();
}

/// A parameter that goes to the design as it is, if it goes there at all.
template <class T>
void setPlain(Port& port, const ParameterRow& row, T value) {
  setThrough(port, row, value, [&] {
    if (row.design != DesignId::kNone) port.design.write(row.design, value);
  });
}

/// A one-shot parameter: the design acts on the value 2 whatever the command is called.
inline void setOneShot(Port& port, const ParameterRow& row, std::uint32_t value) {
  constexpr std::uint32_t kOneShot = 2;
  setThrough(port, row, value, [&] { port.design.write(row.design, kOneShot); });
}

inline constexpr Setter kPlainWord{.word = setPlain<std::uint32_t>};
inline constexpr Setter kPlainReal{.real = setPlain<double>};
inline constexpr Setter kOneShot{.word = setOneShot};

/// The value last accepted.
inline void getSetting(Port& port, const ParameterRow& row, void* value, int) {
  if (row.field.real)
    store(value, port.settings.*row.field.real);
  else
    store(value, port.settings.*row.field.word);
}

/// What the design holds.
inline void getDesign(Port& port, const ParameterRow& row, void* value, int) {
  store(value, port.design.read(row.design));
}

template <std::uint32_t Constant>
void getConstant(Port&, const ParameterRow&, void* value, int) {
  store(value, Constant);
}

namespace detail {

template <class Family, class T>
struct Method {
  using Class = Family;
  using Value = T;
};

template <class Family, class T>
Method<Family, T> methodOf(void (Family::*)(T));
template <class Family, class T>
Method<Family, T> methodOf(void (Family::*)(const ParameterRow&, T));
template <class Family, class T>
Method<Family, T> methodOf(T (Family::*)() const);

template <auto Pointer>
using MethodOf = decltype(methodOf(Pointer));

}  // namespace detail

/// Setter that calls a family's method with the value, or with the row and the value. The family is
/// made from the port; it is the method's own class unless another one is named.
template <auto Method, class Family = typename detail::MethodOf<Method>::Class>
constexpr Setter setter() {
  using T = typename detail::MethodOf<Method>::Value;
  constexpr auto call = [](Port& port, const ParameterRow& row, T value) {
    Family family(port);
    if constexpr (std::is_invocable_v<decltype(Method), Family&, const ParameterRow&, T>)
      (family.*Method)(row, value);
    else
      (family.*Method)(value);
  };
  if constexpr (std::is_same_v<T, double>)
    return {.real = call};
  else
    return {.word = call};
}

/// Getter that stores the result of a family's method.
template <auto Method, class Family = typename detail::MethodOf<Method>::Class>
void getter(Port& port, const ParameterRow&, void* value, int) {
  const Family family(port);
  store(value, (family.*Method)());
}

}  // namespace velmora::handlers
