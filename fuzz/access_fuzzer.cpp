/// The input is a series of sets and gets of any id, port, type and value, some with a design
/// access that fails. A refused set changes no setting and passes the access's code on; an accepted
/// integer is what a get returns; nothing is left at the end.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>

#include "fuzz/fuzzing.h"
#include "tests/applet_fixture.h"

using namespace fuzzing;
using fixture::Applet;

namespace {

constexpr int kInjected = -4711;
constexpr unsigned kFewAccesses = 4, kMostAccesses = 64;
constexpr std::size_t kLongestText = 4096;
constexpr int kDirectIds[] = {2000000, 2100000, 1000000};  ///< Runtime, design, registers.
constexpr int kDirectCount = 300;
constexpr int kIndexMask = 0x7FFFFFFF;

struct Parameter {
  int id;
  bool integer, real, setting;
};

/// All listed parameters of the applet's own.
std::vector<Parameter> parametersOf(Applet& applet) {
  std::vector<Parameter> parameters;
  for (int i = 0; i < Fg_getNrOfParameter(applet.fg()); ++i) {
    const std::string name = Fg_getParameterName(applet.fg(), i);
    if (!name.starts_with("FG_")) continue;
    const int id = Fg_getParameterId(applet.fg(), i);
    const RegisterInfo* const node = applet.node(id);
    const bool real = node && node->kind == REGISTER_INFO_DOUBLE;
    const bool command = name.ends_with("_CLEAR") || id == FG_SENDSOFTWARETRIGGER;
    const bool writable = node && (node->accessMode & REGISTER_INFO_WRITABLE) != 0;
    parameters.push_back({id, node && !real && id != FG_HAP_FILE, real, writable && !command});
  }
  return parameters;
}

class Calls {
 public:
  Calls(Applet& applet, FuzzedDataProvider& input) : applet_(applet), in_(input) {
    static const std::vector<Parameter> parameters = parametersOf(applet);
    parameters_ = &parameters;
  }

  void run() {
    while (in_.remaining_bytes() > 0) {
      chooseParameter();
      port_ = rarely() ? in_.ConsumeIntegral<unsigned>()
                       : in_.ConsumeIntegralInRange(0u, fixture::kPorts - 1);
      type_ = in_.ConsumeBool() ? FG_PARAM_TYPE_STRING : in_.ConsumeIntegral<int>();
      failing_ = in_.ConsumeBool()
                     ? in_.ConsumeIntegralInRange(1u, rarely() ? kMostAccesses : kFewAccesses)
                     : 0;
      in_.ConsumeBool() ? set() : get();
    }
  }

 private:
  bool rarely() { return in_.ConsumeIntegral<std::uint8_t>() % 16 == 0; }

  /// A listed parameter, one of direct access, or any id.
  void chooseParameter() {
    parameter_ = nullptr;
    id_ = in_.ConsumeIntegral<int>();
    if (!rarely()) id_ = in_.PickValueInArray(kDirectIds) + std::abs(id_ % kDirectCount);
    if (in_.ConsumeIntegral<std::uint8_t>() % 4 == 0) return;
    parameter_ = &(*parameters_)[static_cast<std::size_t>(id_ & kIndexMask) % parameters_->size()];
    id_ = parameter_->id;
  }

  /// What a get of the parameter leaves in a value, after its result.
  std::string reading(const Parameter& parameter, unsigned port) {
    std::string value(sizeof(double) + sizeof(int), '\0');
    const int code = Fg_getParameterWithType(applet_.fg(), parameter.id, value.data(), port, 0);
    std::memcpy(&value[sizeof(double)], &code, sizeof code);
    return value;
  }
  std::string settings() {
    std::string all;
    for (const Parameter& parameter : *parameters_)
      for (unsigned port = 0; parameter.setting && port < fixture::kPorts; ++port)
        all += reading(parameter, port);
    return all;
  }

  /// A value of exactly the parameter's width, so that reading past it is seen; of any width for
  /// other ids.
  std::vector<std::uint8_t> valueToSet() {
    const std::size_t width = parameter_ && !parameter_->real ? sizeof(int) : sizeof(double);
    std::vector<std::uint8_t> value(parameter_ ? width : 2 * width);
    if (in_.ConsumeBool()) {
      in_.ConsumeData(value.data(), width);
    } else if (parameter_ && parameter_->real) {
      const double number = in_.ConsumeFloatingPointInRange(0.0, 70e6);
      std::memcpy(value.data(), &number, sizeof number);
    } else {
      value[0] = in_.ConsumeIntegral<std::uint8_t>();
    }
    return value;
  }

  void set() {
    const std::vector<std::uint8_t> value = valueToSet();
    const std::string before = settings();
    board::startJournal();
    board::failAt(failing_, kInjected);
    const int result = Fg_setParameterWithType(applet_.fg(), id_, value.data(), port_, type_);
    const auto accesses = board::takeJournal();
    board::stopJournal();
    require(applet_.lastError() == result, "a set records its result");
    board::clearFaults();
    const bool failed = std::ranges::any_of(
        accesses, [](const board::Access& access) { return access.result == kInjected; });
    if (failed) require(result == kInjected, "a set passes the access's code on");
    if (result != VELMORA_OK) require(settings() == before, "a refused set changes no setting");
    if (result == VELMORA_OK && parameter_ && parameter_->setting && parameter_->integer)
      require(reading(*parameter_, port_).starts_with(textOf(value.data(), sizeof(int))),
              "a get returns what was set");
  }

  void get() {
    const bool text = !parameter_ || !(parameter_->integer || parameter_->real);
    std::vector<char> value(text ? kLongestText : parameter_->real ? sizeof(double) : sizeof(int));
    if (id_ == FG_PARAM_DESCR) {
      const std::string name = in_.ConsumeRandomLengthString(64);
      std::ranges::copy(name, value.begin());
    }
    const int strings = board::outstanding().strings;
    // Only doubles have room for the 64 bits that these types clear.
    if (!text && !parameter_->real &&
        (type_ == FG_PARAM_TYPE_INT64 || type_ == FG_PARAM_TYPE_UINT64))
      type_ = FG_PARAM_TYPE_INT32;
    board::failAt(failing_, kInjected);
    const int result = Fg_getParameterWithType(applet_.fg(), id_, value.data(), port_, type_);
    require(applet_.lastError() == result, "a get records its result");
    board::clearFaults();
    const bool ownText = id_ == FG_HAP_FILE || id_ == FG_PARAM_DESCR;
    const bool handedOut = ownText || board::outstanding().strings > strings;
    if (result != VELMORA_OK || type_ != FG_PARAM_TYPE_STRING || !handedOut) return;
    char* string = nullptr;
    std::memcpy(&string, value.data(), sizeof string);
    require(string && std::strlen(string) < kLongestText, "a text get hands a string out");
    require(Fg_freeParameterStringWithType(applet_.fg(), id_, string, port_, type_) == VELMORA_OK,
            "a string is taken back");
  }

  Applet& applet_;
  FuzzedDataProvider& in_;
  const std::vector<Parameter>* parameters_ = nullptr;
  const Parameter* parameter_ = nullptr;  ///< Null for an id that need not exist.
  int id_ = 0;
  unsigned port_ = 0;
  int type_ = 0;
  unsigned failing_ = 0;  ///< The access of the call that fails, from 1; 0 for none.
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  keepOpen("libvorn5.so");
  setenv("KORV_ENABLE_DRA", "1", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  {
    Applet applet(input.ConsumeBool() ? fixture::kNoDefaults : 0);
    board::stopJournal();
    board::takeJournal();
    Calls(applet, input).run();
  }
  requireNothingOutstanding();
  return 0;
}
