/// The applet's start-up, from the name tables to the defaults in the design.
#include <cxxabi.h>

#include "parameters/camera_simulator.h"
#include "parameters/catalogue.h"
#include "parameters/direct_access.h"
#include "parameters/fg_kt_wrapper_impl.h"
#include "parameters/trigger_outputs.h"
#include "parameters/trigger_path.h"
#include "external/dervin.h"
#include "support/logging.h"

namespace velmora {

using korv::tools::logging::logMessage;

namespace {

constexpr int kLogMissingName = 4;

}  // namespace

void FgKtWrapperImpl::buildTables() {
  for (const ParameterRow& row : listedParameters()) names_.add(row.name, row.id);
  if (directRegisterAccess_)
    for (const DesignRegister& reg : designRegisters(designHandle()))
      names_.add(kRegisterPrefix + reg.name, reg.id + kRegisterIdOffset);
  if (switchedOn("KORV_ENABLE_DKTA")) designParameters_ = designParameters(*this);
  for (const auto& [name, id] : designParameters_)
    names_.add(kDesignParameterPrefix + name, id + kDesignParameterIdOffset);

  events_.read(designHandle(), [this](const std::string& name) {
    logMessage(FgKtWrapper::logger(), kLogMissingName,
               "cannot retrieve event id for internal event: '", name, "'");
  });
}

void FgKtWrapperImpl::resolveParameterIds() {
  designIds_.resolve(
      [this](DesignId id, const std::string& name) {
        return isRegister(id) ? HapGetRegisterByName(designHandle(), name.c_str())
                              : getParameterIdByName(name.c_str());
      },
      [this](DesignId id, const std::string& name) {
        logMessage(FgKtWrapper::logger(), kLogMissingName,
                   isRegister(id) ? "cannot retrieve HAP id for HAP parameter: '"
                                  : "cannot retrieve KT id for KT parameter: '",
                   name, "'");
      });
}

void FgKtWrapperImpl::initParameterInfo() {
  for (Port& port : ports_) {
    const int process = static_cast<int>(port.index);
    Catalogue catalogue(*this, process);
    catalogue.describeParameters();
    // The runtime's tools expect the two groups of the last port the other way round.
    const bool registersFirst = port.index == kPorts - 1;
    if (registersFirst && directRegisterAccess_) catalogue.describeRegisters();
    catalogue.describeDesignParameters(designParameters_);
    if (!registersFirst && directRegisterAccess_) catalogue.describeRegisters();

    const auto rows = listedParameters();
    for (std::size_t i = 0; i < rows.size(); ++i)
      port.nodes[i] = parameterNodes().find(process, rows[i].id);
  }
}

void FgKtWrapperImpl::routePorts() {
  try {
    for (Port& port : ports_) {
      TriggerOutputs outputs(port);
      outputs.park();
      TriggerPath(port).hold();
      outputs.route();
    }
  } catch (abi::__forced_unwind&) {
    throw;  // The thread is being cancelled.
  } catch (...) {
    // The ports that are left keep the design's own routing until their outputs are set.
  }
}

void FgKtWrapperImpl::applyDefaults() {
  forEachDesignName([this](unsigned port, DesignId id, const std::string&) {
    if (isRegister(id)) CameraSimulator(ports_[port]).clear(id);
  });
  const ProcessSettings defaults;
  for (Port& port : ports_) {
    for (const ParameterRow& row : listedParameters()) {
      if (!row.applied()) continue;
      if (row.field.real)
        setQuietly(port, row, defaults.*row.field.real);
      else
        setQuietly(port, row, defaults.*row.field.word);
    }
  }
}

}  // namespace velmora
