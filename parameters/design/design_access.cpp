#include "parameters/design/design_access.h"

#include "external/korv_hw.h"
#include "parameters/design/failure.h"
#include "velmora/values.h"
#include "wrapper/fg_kt_wrapper.h"

namespace velmora {
namespace {

void requireOk(int result) {
  if (result != 0) fail(result);
}

}  // namespace

void DesignAccess::write(DesignId id, double value) const {
  requireOk(
      wrapper_.setUnwrappedParameterWithType(ids_(port_, id), &value, port_, FG_PARAM_TYPE_DOUBLE));
}

void DesignAccess::writeOfPort(unsigned port, DesignId id, std::uint32_t value) const {
  requireOk(
      wrapper_.setUnwrappedParameterWithType(ids_(port, id), &value, port_, FG_PARAM_TYPE_INT32));
}

std::uint32_t DesignAccess::read(DesignId id) const { return getRuntime(ids_(port_, id)); }

void DesignAccess::writeRegister(DesignId id, std::uint64_t value) const {
  requireOk(KorvRegisterWrite(wrapper_.boardHandle(), ids_(port_, id), value));
}

void DesignAccess::setRuntime(int id, std::uint32_t value) const {
  requireOk(wrapper_.setUnwrappedParameterWithType(id, &value, port_, FG_PARAM_TYPE_INT32));
}

std::uint32_t DesignAccess::getRuntime(int id) const {
  std::uint32_t value = 0;
  getRuntime(id, &value, FG_PARAM_TYPE_INT32);
  return value;
}

void DesignAccess::getRuntime(int id, void* value, int type) const {
  requireOk(wrapper_.getUnwrappedParameterWithType(id, value, port_, type));
}

}  // namespace velmora
