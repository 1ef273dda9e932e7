#pragma once

#include "gentl/interface.h"

namespace gentl {

void systemInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size);

/// The producer. A process has one at a time.
class System : public Module {
 public:
  System();

  /// The one that is open, or none. For holders of the registry's structure lock.
  static std::shared_ptr<System>& open();

  std::shared_ptr<Interface> openInterface(std::string_view wanted);
  void interfaceClosed() { interface_.reset(); }
  void close() override;

 private:
  std::shared_ptr<Interface> interface_;
  std::uint64_t selected_ = 0;
};

}  // namespace gentl
