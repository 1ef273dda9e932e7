/// The applet's start-up, from the name tables to the defaults in the design.
#include "external/dervin.h"
#include "parameters/design/direct_access.h"
#include "parameters/design/direct_catalogue.h"
#include "parameters/families/trigger_outputs.h"
#include "parameters/families/trigger_transitions.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "parameters/port/parameter_table.h"
#include "parameters/table/catalogue.h"
#include "paraminfo/parameter_nodes.h"
#include "support/cancellation.h"
#include "support/logging.h"

namespace velmora {

using korv::tools::logging::logMessage;

/// Hosts look for these lines under the name of the base class.
void FgKtWrapperImpl::logMissing(const char* what, const std::string& name) {
  logMessage(FgKtWrapper::logger(), kLogComplaint, what, name, "'");
}

void FgKtWrapperImpl::buildTables() {
  for (const ParameterRow& row : listedParameters()) names_.add(row.name, row.id);
  if (directRegisterAccess_)
    for (const DesignRegister& reg : designRegisters(designHandle()))
      names_.add(kRegisterPrefix + reg.name, reg.id + kRegisterIdOffset);
  if (isEnabled("KORV_ENABLE_DKTA")) designParameters_ = designParameters(*this);
  for (const auto& [name, id] : designParameters_)
    names_.add(kDesignParameterPrefix + name, id + kDesignParameterIdOffset);

  for (const std::string& name : events_.read(designHandle()))
    logMissing("cannot retrieve event id for internal event: '", name);
}

void FgKtWrapperImpl::resolveParameterIds() {
  for (const DesignName& name : designNames()) {
    const bool reg = isRegister(name.id);
    const std::string text = name.text();
    const int id = reg ? HapGetRegisterByName(designHandle(), text.c_str())
                       : getParameterIdByName(text.c_str());
    if (id < 1)
      logMissing(reg ? "cannot retrieve HAP id for HAP parameter: '"
                     : "cannot retrieve KT id for KT parameter: '",
                 text);
    designIds_.set(name, id);
  }
}

void FgKtWrapperImpl::initParameterInfo() {
  for (Port& port : ports_) {
    const int index = static_cast<int>(port.index);
    describe(catalogue(), *parameterInfo(), parameterNodes(), index);
    // The runtime's tools expect the two groups of the last port in the opposite order.
    const bool registersFirst = port.index == kPorts - 1;
    if (registersFirst && directRegisterAccess_) describeRegisters(*this, index);
    describeDesignParameters(*this, index, designParameters_);
    if (!registersFirst && directRegisterAccess_) describeRegisters(*this, index);

    for (const ParameterRow& row : listedParameters())
      port.nodes.push_back(parameterNodes().find(index, row.id));
  }
}

void FgKtWrapperImpl::routePorts() {
  try {
    for (Port& port : ports_) {
      trigger_outputs::park(port);
      trigger_transitions::hold(port);
      trigger_outputs::route(port);
    }
  } catch (...) {
    rethrowCancellation();
    // The remaining ports keep the design's own routing until their outputs are set.
  }
}

void FgKtWrapperImpl::applyDefaults() {
  for (const DesignName& name : designNames()) {
    if (!isRegister(name.id)) continue;
    try {
      ports_[name.port].writeRegister(name.id, 0);
    } catch (int) {
      // The other registers do not depend on it.
    }
  }
  const ProcessSettings defaults;
  for (Port& port : ports_) {
    for (const ParameterRow& row : listedParameters()) {
      if (!row.appliedAtStart) continue;
      if (row.field.real)
        setQuietly(port, row, defaults.*row.field.real);
      else
        setQuietly(port, row, defaults.*row.field.integer);
    }
  }
}

}  // namespace velmora
