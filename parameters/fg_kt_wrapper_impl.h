/// The folder parameters/ is the applet proper: the table of parameters (table/), what setting and
/// getting them does (families/), and how that reaches the FPGA design (design/).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "parameters/design/design_events.h"
#include "parameters/design/design_ids.h"
#include "parameters/port/port.h"
#include "parameters/table/parameter_names.h"
#include "support/locks.h"
#include "wrapper/fg_kt_wrapper.h"
#include "wrapper/handed_out_strings.h"

namespace velmora {

/// The applet: translates the SDK parameters of four camera ports onto one design. `Std_entry`
/// calls the start-up operations below in order, on one thread; afterwards the tables are fixed and
/// sets and gets run one at a time under the call lock.
class FgKtWrapperImpl : public FgKtWrapper {
 public:
  FgKtWrapperImpl();
  /// Releases the strings that callers still hold. Destroying an instance during a call is fatal.
  ~FgKtWrapperImpl() noexcept override;

  /// @name Start-up, in this order
  /// @{
  /// Lists the names and events, names of direct access included when enabled.
  void buildTables();
  /// Looks up the design's ids of all names in use. Names that the design lacks are logged.
  void resolveParameterIds();
  void initParameterInfo() override;
  /// Parks and then routes the outputs, port by port. A failure ends this step, not the start-up.
  void routePorts();
  /// Writes every default to the design. A failure does not stop the writes that follow.
  void applyDefaults();
  /// @}

  korv::tools::logging::Logger& logger() override;
  bool loadParameters(Fg_ConfigFileParser& parser) override;
  void saveParameters(Fg_ConfigFileParser& parser) override;

  /// @name Not offered by this applet; they throw `std::runtime_error`
  /// @{
  int processChannelToDma(int process, int channel) override;
  int mapDmaToFormat(int dma) override;
  int setDmaAlignment(int dma, int alignment) override;
  int getDmaAlignment(int dma) override;
  /// @}

  int Fg_setParameterWithType(int id, const void* value, unsigned dma, int type) override;
  int Fg_getParameterWithType(int id, void* value, unsigned dma, int type) override;
  int Fg_freeParameterStringWithType(int id, void* value, unsigned dma, int type) override;
  int Fg_getParameterIdByName(const char* name) override;
  const char* Fg_getParameterName(int index) override;
  int Fg_getParameterId(int index) override;
  int Fg_getNrOfParameter() override;
  std::uint64_t Fg_getEventMask(const char* name) override;
  const char* Fg_getEventName(std::uint64_t mask) override;
  const char* getVendorName() override;
  const char* getAppletName() override;
  const char* getAppletVersion() override;
  int getLoadAppletId() override;

 private:
  static constexpr int kLogComplaint = 4;  ///< Level of refusals and missing names.

  bool isDirectRegister(int id) const;
  int setRegister(int id, const void* value) const;
  int getRegister(int id, void* value) const;
  void setParameter(int id, const void* value, unsigned dma);
  void getParameter(int id, void* value, unsigned dma, int type);
  Port* portOf(unsigned dma) { return dma < ports_.size() ? &ports_[dma] : nullptr; }
  template <class... Pieces>
  void logRefusal(const Pieces&... pieces);
  void logMissing(const char* what, const std::string& name);

  /// Any thread may store it; `Logging` gives all of them the same one.
  std::atomic<korv::tools::logging::Logger*> logger_{nullptr};
  korv::templates::platform::CriticalSection callLock_;
  HandedOutStrings strings_;
  DesignIds designIds_;
  std::array<Port, kPorts> ports_;
  ParameterNames names_;
  std::map<std::string, int> designParameters_;  ///< Names of direct access, without their prefix.
  DesignEvents events_;
};

}  // namespace velmora
