#pragma once

#include <string>
#include <utility>

#include "parameters/fg_kt_wrapper_impl.h"

namespace velmora {

/// The applet, not started, under another name.
class WrapperDouble : public FgKtWrapperImpl {
 public:
  explicit WrapperDouble(std::string name) : name_(std::move(name)) {}
  const char* getAppletName() override { return name_.c_str(); }

 private:
  std::string name_;
};

}  // namespace velmora
