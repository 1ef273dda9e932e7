#pragma once

#include "gentl/module.h"

namespace gentl {

/// The producer. A process has one at a time.
class System : public Module {
 public:
  System();

  /// The one that is open, or none. For holders of the registry's structure lock.
  static std::shared_ptr<System>& current();

  /// Needs no system.
  static void producerInfo(TL_INFO_CMD command, Answer to);
  void info(TL_INFO_CMD command, Answer to) { producerInfo(command, to); }
  void interfaceInfo(const char* wanted, INTERFACE_INFO_CMD command, Answer to);
  void openInterface(const char* wanted, IF_HANDLE* handle);
  void close() override;
};

}  // namespace gentl
