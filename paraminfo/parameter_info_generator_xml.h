/// GenApi elements of single parameters.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "velmora/register_info.h"

namespace velmora {

/// `text` with the five characters that XML reserves replaced by their entities. All other bytes
/// pass unchanged: display texts are Latin-1 and the readers of these documents expect them so.
std::string xmlStringFilter(std::string_view text);

/// The characters of `text` that a GenApi node name may contain: ASCII letters and, except in first
/// place, digits and '_'.
std::string xmlNameFilter(std::string_view text);

/// Appends the register and the feature of a parameter to a document. Each overload ends without a
/// line feed, except for the common register lines. Numbers are decimal, with six digits where they
/// are real, whatever the locale of the process. The current `value` is ignored: a description does
/// not contain it.
class ParameterInfoGeneratorXML {
 public:
  /// `out` must outlive the generator.
  explicit ParameterInfoGeneratorXML(std::string& out) : out_(out) {}

  /// The lines that all registers share: the parameter's id as address, `length` in bytes, access
  /// and port.
  void infoGenerate(const RegisterInfo& node, int length);
  /// Integer register and feature. The numbers of a signed node are written as signed; an increment
  /// of 0 is left out.
  void infoGenerate(const RegisterInfo& node, std::uint64_t value, std::uint64_t min,
                    std::uint64_t max, std::uint64_t inc);
  /// Float register and feature. GenApi floats have no increment.
  void infoGenerate(const RegisterInfo& node, double value, double min, double max, double inc);
  /// String register, which is its own feature.
  void infoGenerate(const RegisterInfo& node);
  /// Enumeration and its register. `entries` are identifiers by value.
  void infoGenerate(const RegisterInfo& node, int value,
                    const std::map<int, std::string_view>& entries);

 private:
  void startRegister(std::string_view type, const RegisterInfo& node, std::string_view suffix);
  void description(const RegisterInfo& node);
  void registerReference(const RegisterInfo& node);
  template <class Value>
  void element(std::string_view tag, const Value& value);
  template <class... Pieces>
  void write(const Pieces&... pieces);

  std::string& out_;
};

}  // namespace velmora
