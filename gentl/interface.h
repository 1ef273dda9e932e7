#pragma once

#include <array>

#include "gentl/device.h"

namespace gentl {

class System;

inline constexpr const char* kInterfaceId = "velmora-board";

void interfaceInfo(INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   std::size_t* size);

/// The board, which lives as long as its interface is open.
class Interface : public Module {
 public:
  explicit Interface(std::shared_ptr<System> above);

  const std::shared_ptr<System> parent;
  const std::shared_ptr<Grabber> grabber = std::make_shared<Grabber>();

  std::shared_ptr<Device> openDevice(std::string_view wanted, DEVICE_ACCESS_FLAGS access);
  DeviceFacts device(std::string_view wanted);
  void deviceClosed(unsigned port);
  void close() override;

 private:
  DeviceFacts facts(unsigned port);

  std::mutex lock_;
  std::array<std::shared_ptr<Device>, VELMORA_PORTS> devices_;
  std::uint64_t selected_ = 0;
};

}  // namespace gentl
