#pragma once

#include "gentl/device.h"

namespace gentl {

inline constexpr char kInterfaceId[] = "velmora-board";

/// The board, which lives as long as its interface is open.
class Interface : public Module {
 public:
  explicit Interface(std::shared_ptr<Module> system);

  Grabber grabber;

  /// Needs no board.
  static void boardInfo(INTERFACE_INFO_CMD command, Answer to);
  void info(INTERFACE_INFO_CMD command, Answer to) { boardInfo(command, to); }
  void deviceInfo(const char* wanted, DEVICE_INFO_CMD command, Answer to);
  void openDevice(const char* wanted, DEVICE_ACCESS_FLAGS access, DEV_HANDLE* handle);

 private:
  DeviceFacts facts(std::size_t port) const;
};

}  // namespace gentl
