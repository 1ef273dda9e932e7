#include "parameters/fg_kt_wrapper_impl.h"

#include <cstring>
#include <stdexcept>

#include "external/dervin.h"
#include "external/korv_hw.h"
#include "parameters/design/direct_access.h"
#include "parameters/design/failure.h"
#include "parameters/port/applet_identity.h"
#include "parameters/port/parameter_table.h"
#include "support/logging.h"
#include "velmora/parameters.h"

namespace velmora {

using korv::templates::platform::CriticalSectionGuard;
using korv::tools::logging::Logger;
using korv::tools::logging::Logging;
using korv::tools::logging::logMessage;

namespace {

constexpr int kWidestWord = 32;

/// Reads the caller's value; the pointer need not be aligned.
template <class T>
T load(const void* value) {
  T result;
  std::memcpy(&result, value, sizeof result);
  return result;
}

bool passesThrough(int id) { return id > kDesignParameterIdOffset; }

}  // namespace

FgKtWrapperImpl::FgKtWrapperImpl()
    : FgKtWrapper(kPorts),
      ports_{{{*this, designIds_, strings_, 0},
              {*this, designIds_, strings_, 1},
              {*this, designIds_, strings_, 2},
              {*this, designIds_, strings_, 3}}} {
  directRegisterAccess_ = isEnabled("KORV_ENABLE_DRA");
}

FgKtWrapperImpl::~FgKtWrapperImpl() noexcept = default;

Logger& FgKtWrapperImpl::logger() {
  Logger* logger = logger_;
  // An instance may outlive the loggers, in a static object of the host.
  if (!logger || Logging::ended() || logger->isDefault())
    logger_ = logger = Logging::getLogger("korv.wrapper.Velmora");
  return *logger;
}

template <class... Pieces>
void FgKtWrapperImpl::logRefusal(const Pieces&... pieces) {
  logMessage(logger(), kLogComplaint, pieces...);
}

int FgKtWrapperImpl::Fg_setParameterWithType(int id, const void* value, unsigned dma, int type) {
  if (!value) return fgError().setErr(VELMORA_INVALID_ARGUMENT);
  const CriticalSectionGuard guard(callLock_);
  int result = VELMORA_OK;
  if (passesThrough(id)) {
    result = setUnwrappedParameterWithType(id - kDesignParameterIdOffset, value, dma, type);
  } else if (isDirectRegister(id)) {
    result = setRegister(id - kRegisterIdOffset, value);
  } else {
    try {
      setParameter(id, value, dma);
    } catch (int code) {
      result = code;
    }
  }
  return fgError().setErr(result);
}

int FgKtWrapperImpl::Fg_getParameterWithType(int id, void* value, unsigned dma, int type) {
  if (!value) return fgError().setErr(VELMORA_INVALID_ARGUMENT);
  const CriticalSectionGuard guard(callLock_);
  int result = VELMORA_OK;
  if (passesThrough(id)) {
    result = getUnwrappedParameterWithType(id - kDesignParameterIdOffset, value, dma, type);
  } else if (isDirectRegister(id)) {
    result = getRegister(id - kRegisterIdOffset, value);
  } else {
    try {
      getParameter(id, value, dma, type);
    } catch (int code) {
      result = code;
    }
  }
  return fgError().setErr(result);
}

bool FgKtWrapperImpl::isDirectRegister(int id) const {
  return directRegisterAccess_ && id > kRegisterIdOffset;
}

int FgKtWrapperImpl::setRegister(int id, const void* value) const {
  const bool wide = HapGetRegisterBitRange(designHandle(), id) > kWidestWord;
  return KorvRegisterWrite(boardHandle(), id,
                           wide ? load<std::uint64_t>(value) : load<std::uint32_t>(value));
}

int FgKtWrapperImpl::getRegister(int id, void* value) const {
  std::uint64_t content = 0;
  if (const int result = KorvRegisterRead(boardHandle(), id, &content); result != 0) return result;
  const bool wide = HapGetRegisterBitRange(designHandle(), id) > kWidestWord;
  const auto word = static_cast<std::uint32_t>(content);
  if (wide)
    std::memcpy(value, &content, sizeof content);
  else
    std::memcpy(value, &word, sizeof word);
  return VELMORA_OK;
}

void FgKtWrapperImpl::setParameter(int id, const void* value, unsigned dma) {
  Port* port = portOf(dma);
  if (!port) {
    logRefusal("trying to set SDK parameter '", id, "' on unknown process ", dma, "!");
    fail(VELMORA_INVALID_ARGUMENT);
  }
  const ParameterRow* row = findParameter(id);
  if (!row) {
    logRefusal("trying to set unknown SDK parameter '", id, "' on process ", dma, "!");
    fail(VELMORA_INVALID_ARGUMENT);
  }
  if (!row->writable()) {
    logRefusal("trying to set read-only SDK parameter '", row->name, "' on process ", dma, "!");
    fail(VELMORA_NOT_AVAILABLE);
  }
  if (row->setReal)
    set(*port, *row, load<double>(value));
  else
    set(*port, *row, load<std::uint32_t>(value));
}

void FgKtWrapperImpl::getParameter(int id, void* value, unsigned dma, int type) {
  const ParameterRow* row = findParameter(id);
  // The number of processes does not depend on the channel, which need not exist.
  Port* port = id == FG_NR_OF_PROCESSES ? &ports_.front() : portOf(dma);
  if (!port) {
    logRefusal("trying to get SDK parameter '", id, "' on unknown process ", dma, "!");
    fail(VELMORA_INVALID_ARGUMENT);
  }
  if (!row) {
    logRefusal("trying to get unknown SDK parameter '", id, "' on process ", dma, "!");
    fail(VELMORA_INVALID_ARGUMENT);
  }
  row->get(*port, *row, value, type);
}

int FgKtWrapperImpl::Fg_freeParameterStringWithType(int id, void* value, unsigned dma, int type) {
  if (passesThrough(id))
    return fgError().setErr(
        freeUnwrappedParameterString(id - kDesignParameterIdOffset, value, dma, type));
  if (!portOf(dma)) {
    logRefusal("trying to free SDK parameter '", id, "' on unknown process ", dma, "!");
    return fgError().setErr(VELMORA_INVALID_ARGUMENT);
  }
  if (const ParameterRow* row = findParameter(id); row && row->runtimeOwnsStrings)
    return freeUnwrappedParameterString(id, value, dma, type);
  return strings_.takeBack(value) ? VELMORA_OK : fgError().setErr(VELMORA_INVALID_ARGUMENT);
}

int FgKtWrapperImpl::Fg_getParameterIdByName(const char* name) {
  const auto id = name ? names_.idOf(name) : std::nullopt;
  setError(id ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  return id.value_or(VELMORA_INVALID_ARGUMENT);
}

const char* FgKtWrapperImpl::Fg_getParameterName(int index) {
  const char* name = names_.nameAt(index);
  setError(name ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  return name;
}

int FgKtWrapperImpl::Fg_getParameterId(int index) {
  const auto id = names_.idAt(index);
  setError(id ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  return id.value_or(VELMORA_INVALID_ARGUMENT);
}

int FgKtWrapperImpl::Fg_getNrOfParameter() { return names_.count(); }

std::uint64_t FgKtWrapperImpl::Fg_getEventMask(const char* name) {
  const std::uint64_t mask = events_.maskOf(name);
  setError(mask ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  return mask;
}

const char* FgKtWrapperImpl::Fg_getEventName(std::uint64_t mask) {
  const char* name = events_.nameOf(mask);
  setError(name ? VELMORA_OK : VELMORA_INVALID_ARGUMENT);
  return name;
}

const char* FgKtWrapperImpl::getVendorName() { return kVendorName; }
const char* FgKtWrapperImpl::getAppletName() { return kAppletName; }
const char* FgKtWrapperImpl::getAppletVersion() { return kConfigurationVersion; }
int FgKtWrapperImpl::getLoadAppletId() { return kLoadAppletId; }

int FgKtWrapperImpl::processChannelToDma(int, int) {
  throw std::runtime_error("processChannelToDma() is not implemented.");
}

int FgKtWrapperImpl::mapDmaToFormat(int) {
  throw std::runtime_error("mapDmaToFormat() is not implemented.");
}

int FgKtWrapperImpl::setDmaAlignment(int, int) {
  throw std::runtime_error("setDmaAlignment() is not implemented.");
}

int FgKtWrapperImpl::getDmaAlignment(int) {
  throw std::runtime_error("getDmaAlignment() is not implemented.");
}

}  // namespace velmora
