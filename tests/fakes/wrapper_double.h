#pragma once

#include <string>
#include <utility>

#include "wrapper/fg_kt_wrapper.h"

namespace velmora {

/// Wrapper without an applet: it has a name, and whatever else is asked of it fails the way an
/// applet without parameters would.
class WrapperDouble : public FgKtWrapper {
 public:
  explicit WrapperDouble(std::string appletName, int processes = 1)
      : FgKtWrapper(processes), appletName_(std::move(appletName)) {}

  bool loadParameters(Fg_ConfigFileParser&) override { return false; }
  void saveParameters(Fg_ConfigFileParser&) override {}
  int processChannelToDma(int, int) override { return VELMORA_NOT_SUPPORTED; }
  int mapDmaToFormat(int) override { return VELMORA_NOT_SUPPORTED; }
  int setDmaAlignment(int, int) override { return VELMORA_NOT_SUPPORTED; }
  int getDmaAlignment(int) override { return VELMORA_NOT_SUPPORTED; }
  void initParameterInfo() override {}
  int Fg_setParameterWithType(int, const void*, unsigned, int) override {
    return VELMORA_INVALID_ARGUMENT;
  }
  int Fg_getParameterWithType(int, void*, unsigned, int) override {
    return VELMORA_INVALID_ARGUMENT;
  }
  int Fg_freeParameterStringWithType(int, void*, unsigned, int) override {
    return VELMORA_INVALID_ARGUMENT;
  }
  int Fg_getParameterIdByName(const char*) override { return VELMORA_INVALID_ARGUMENT; }
  const char* Fg_getParameterName(int) override { return nullptr; }
  int Fg_getParameterId(int) override { return VELMORA_INVALID_ARGUMENT; }
  int Fg_getNrOfParameter() override { return 0; }
  const char* getVendorName() override { return "Vendor"; }
  const char* getAppletName() override { return appletName_.c_str(); }
  const char* getAppletVersion() override { return "0.0.0"; }
  int getLoadAppletId() override { return 0; }

 private:
  std::string appletName_;
};

}  // namespace velmora
