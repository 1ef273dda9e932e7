/// A loaded FPGA design: the records of its manifest under the ids that the libraries hand out.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "board/model/manifest.h"
#include "external/dervin.h"
#include "paraminfo/parameter_info.h"

#pragma GCC visibility push(default)

namespace board {

/// KT parameter ids run from here on, clear of the ids of the runtime's own parameters; register
/// ids run from 1 on.
inline constexpr int kFirstParameterId = 100001;
inline constexpr int kFirstRegisterId = 1;

/// Immutable once made, so that any number of handles and threads can share it.
class Design {
 public:
  /// The design in a packed image; null when the image is damaged or something else.
  static std::shared_ptr<const Design> fromImage(std::string_view image);
  /// The design that a manifest file describes; null when there is no such file or its content is
  /// not a manifest.
  static std::shared_ptr<const Design> fromFile(const char* file);

  explicit Design(Manifest manifest, std::uint32_t fingerprint);

  const Manifest& manifest() const { return manifest_; }
  /// Equal for designs of equal content, whose ids therefore mean the same.
  std::uint32_t fingerprint() const { return fingerprint_; }

  /// Id of a name; 0 when there is none.
  int parameterId(std::string_view name) const { return find(parameterIds_, name); }
  int registerId(std::string_view name) const { return find(registerIds_, name); }
  /// Null for an unknown id.
  const ParameterRecord* parameter(int id) const;
  const RegisterRecord* registerWithId(int id) const;
  /// Null past the last event.
  const HapEvent* event(int index) const;

  /// First root group of the description forest of all parameters: their names taken apart at the
  /// underscores, "Device1_Process0" as root group with "Buffer" and so on below.
  RegisterInfo* description() const;

 private:
  using Ids = std::unordered_map<std::string_view, int>;
  static int find(const Ids& ids, std::string_view name);

  Manifest manifest_;
  std::uint32_t fingerprint_;
  Ids parameterIds_;
  Ids registerIds_;
  std::vector<HapEvent> events_;
  velmora::Fg_ParameterInfo description_{1};
};

}  // namespace board

#pragma GCC visibility pop
