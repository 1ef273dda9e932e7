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

/// KT parameter ids start here, clear of the ids of the runtime's own parameters.
inline constexpr int kFirstParameterId = 100001;
inline constexpr int kFirstRegisterId = 1;

/// Immutable once made, so that any number of handles and threads can share it.
class Design {
 public:
  /// The design in a packed image; null when it is damaged or not an image.
  static std::shared_ptr<const Design> fromImage(std::string_view image);
  /// The design that a manifest file describes; null when there is no such file or it is not a
  /// manifest.
  static std::shared_ptr<const Design> fromFile(const char* file);

  explicit Design(Manifest manifest, std::uint32_t fingerprint);

  const Manifest& manifest() const { return manifest_; }
  /// Equal for designs with equal content, whose ids are then the same.
  std::uint32_t fingerprint() const { return fingerprint_; }

  /// Id of a name; 0 when there is none.
  int parameterId(std::string_view name) const { return find(parameterIds_, name); }
  int registerId(std::string_view name) const { return find(registerIds_, name); }
  /// Null for an unknown id.
  const ParameterRecord* parameter(int id) const;
  const RegisterRecord* registerWithId(int id) const;
  /// Null past the last event.
  const HapEvent* event(int index) const;

  /// First root group of the description forest of all parameters. Their names are split at the
  /// underscores: "Device1_Process0" is a root group, "Buffer" a group below it.
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
