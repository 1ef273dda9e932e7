#include "tool/session.h"

#include <fmt/format.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <utility>

#include "tool/code_text.h"
#include "tool/scratch_directory.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

namespace fs = std::filesystem;

// The applet loads a file of this name from the working directory when the variable exists.
constexpr const char* kExternalDesignName = "Velmora.hap";
constexpr const char* kExternalDesignVariable = "__KORV_FORCE_EXTERNAL_HAP";

/// While it lives, signals to this thread wait: none ends the process.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

/// While it lives, the working directory is one where the applet finds the design `file` as its
/// external design. A signal that would leave the directory behind waits.
class ExternalDesign {
 public:
  explicit ExternalDesign(const std::string& file) : workingDirectory_(fs::current_path()) {
    fs::create_symlink(fs::absolute(file), directory_.path() / kExternalDesignName);
    setenv(kExternalDesignVariable, "1", 1);
    fs::current_path(directory_.path());
  }
  ExternalDesign(const ExternalDesign&) = delete;
  ExternalDesign& operator=(const ExternalDesign&) = delete;
  ~ExternalDesign() {
    std::error_code ignored;
    fs::current_path(workingDirectory_, ignored);
  }

 private:
  SignalsBlocked signals_;  // First, to be let go last.
  fs::path workingDirectory_;
  ScratchDirectory directory_;
};

}  // namespace

Observation::Observation(Observer observer, Others others)
    : observer_(std::move(observer)), others_(others), before_(current) {
  install(this);
}

Observation::~Observation() { install(before_); }

void Observation::install(const Observation* observation) {
  current = observation;
  if (observation)
    board::observe([observation](const board::Access& access) { observation->call(access); });
  else
    board::observe({});
}

void Observation::call(const board::Access& access) const {
  observer_(access);
  if (before_ && others_ == Others::kGoOn) before_->call(access);
}

void showAccess(const board::Access& access) { printError(board::describe(access)); }

void Session::DestroyDevice::operator()(KTdevice* device) const {
  VirtualBoard_destroyDevice(device);
}

Session::Session(const AppletLibrary& library, SessionOptions options)
    : library_(library), options_(std::move(options)), device_(VirtualBoard_createDevice()) {
  if (options_.trace) tracing_.emplace(showAccess);
  int error = 0;
  {
    std::optional<ExternalDesign> design;
    if (!options_.design.empty()) design.emplace(options_.design);
    grabber_.applet =
        library_.stdEntry(device_.get(), &error, options_.writeDefaults ? 0 : VELMORA_LEAVE_DESIGN);
  }
  if (!grabber_.applet) {
    const std::string where = options_.design.empty() ? "" : " with the design " + options_.design;
    throw Failure(fmt::format("the applet does not start{}: {}", where, codeText(error)));
  }
}

Session::~Session() { library_.freeGrabber(&grabber_); }

}  // namespace velmora::tool
