#include "gentl/grabber.h"

#include <stdlib.h>

#include <filesystem>
#include <optional>

#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"

namespace gentl {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDesignVariable = "__KORV_FORCE_EXTERNAL_HAP";
constexpr std::size_t kBytesPerPixel = 3;
constexpr std::size_t kTextBytes = 4096;  ///< As the applet's document has it.

/// While it lives, the applet finds the design `file` as its external design: it looks into the
/// working directory, which is another one for this while.
class ExternalDesign {
 public:
  explicit ExternalDesign(const std::string& file) : before_(fs::current_path()) {
    std::string name = fs::temp_directory_path() / "velmora-XXXXXX";
    if (!mkdtemp(name.data())) fail(GC_ERR_IO, "cannot create " + name);
    directory_ = name;
    fs::create_symlink(fs::absolute(file), directory_ / "Velmora.hap");
    setenv(kDesignVariable, "1", 1);
    fs::current_path(directory_);
  }
  ExternalDesign(const ExternalDesign&) = delete;
  ~ExternalDesign() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
    unsetenv(kDesignVariable);
    fs::remove_all(directory_, ignored);
  }

 private:
  fs::path before_, directory_;
};

struct Meaning {
  int code;
  const char* text;
};

/// Of the applet's codes; the board explains its own.
constexpr Meaning kMeanings[] = {
    {VELMORA_NOT_AVAILABLE, "read-only parameter"},
    {VELMORA_TRIGGER_BUSY, "the trigger generator is busy and the trigger queue is off"},
    {VELMORA_NO_DESIGN, "the design cannot be loaded or opened"},
    {VELMORA_OUT_OF_MEMORY, "out of memory"},
    {VELMORA_NO_RUNTIME, "acquisition runtime libvorn5.so is missing or has no init function"},
    {VELMORA_INVALID_ARGUMENT, "no such parameter or port"},
    {VELMORA_NOT_REPRESENTABLE, "a value that its register cannot hold"},
    {VELMORA_DOWNSCALE_PERIOD, "downscale does not fit the trigger period"},
    {VELMORA_TRIGGER_PERIOD, "frame rate, delay or width does not fit the trigger period"},
    {VELMORA_NOT_SOFTWARE_MODE, "the area trigger mode is not ATM_SOFTWARE"},
    {VELMORA_TRIGGER_NOT_ACTIVE, "the trigger state is not TS_ACTIVE"},
    {VELMORA_OUT_OF_RANGE, "value out of range or not one of the allowed values"},
    {VELMORA_STEP_VIOLATION, "value breaks a step rule"},
};

const RegisterInfo* find(const RegisterInfo& node, int id) {
  if (node.kind != REGISTER_INFO_GROUP) return node.id == id ? &node : nullptr;
  for (std::uint32_t i = 0; i < node.value.group.childCount; ++i)
    if (const RegisterInfo* found = find(*node.value.group.children[i], id)) return found;
  return nullptr;
}

struct Width {
  int type;
  std::size_t bytes;
};

Width widthOf(const RegisterInfo& node) {
  if (node.kind == REGISTER_INFO_DOUBLE) return {FG_PARAM_TYPE_DOUBLE, 8};
  const bool wide = node.kind == REGISTER_INFO_UINT64 || node.kind == REGISTER_INFO_INT64;
  return wide ? Width{FG_PARAM_TYPE_INT64, 8} : Width{FG_PARAM_TYPE_INT32, 4};
}

void requireSuccess(int code, GC_ERROR failure, const std::string& what) {
  if (code != VELMORA_OK) fail(failure, what + ": " + codeText(code));
}

}  // namespace

std::string codeText(int code) {
  const auto* row = std::ranges::find(kMeanings, code, &Meaning::code);
  const bool ofBoard = row == std::end(kMeanings);
  return std::to_string(code) + ", " + (ofBoard ? VirtualBoard_errorText(code) : row->text);
}

Grabber::Grabber() {
  const char* const board = secure_getenv("VELMORA_BOARD");
  const std::string named = board ? board : "";
  int error = 0;
  {
    std::optional<ExternalDesign> design;
    if (!named.empty()) design.emplace(named);
    grabber_.applet = Std_entry(device_.get(), &error, 0);
  }
  if (!grabber_.applet)
    fail(GC_ERR_IO, "the applet does not start" +
                        (named.empty() ? "" : " with the design " + named) + ": " +
                        codeText(error));
  for (unsigned port = 0; port < VELMORA_PORTS; ++port) pace(port);
}

/// A camera sends freely until the applet has triggered it once, and cannot go back to that. So it
/// is triggered from the start, as often as it would send.
void Grabber::pace(unsigned port) {
  constexpr double kRate = 30;  // Hz.
  try {
    setAll(port, {{FG_TRIGGER_FRAMESPERSECOND, bytesOf(kRate)},
                  {FG_AREATRIGGERMODE, bytesOf(ATM_GENERATOR)},
                  {FG_TRIGGERSTATE, bytesOf(TS_ACTIVE)}});
  } catch (const Failure&) {  // A design that cannot stays as it is.
  }
}

Grabber::~Grabber() {
  watcher_ = {};
  Fg_FreeGrabber(&grabber_);
}

const RegisterInfo& Grabber::describe(int id, unsigned port) {
  for (const RegisterInfo* root = Fg_getParameterInfo(fg(), static_cast<int>(port)); root;
       root = root->next)
    if (const RegisterInfo* found = find(*root, id)) return *found;
  fail(GC_ERR_INVALID_ADDRESS, "no parameter has this address");
}

std::string Grabber::get(int id, unsigned port) {
  const std::lock_guard guard(sets_);
  const RegisterInfo& node = describe(id, port);
  if (node.kind == REGISTER_INFO_STRING) {
    char* text = nullptr;
    const int code = Fg_getParameterWithType(fg(), id, &text, port, FG_PARAM_TYPE_STRING);
    requireSuccess(code, GC_ERR_IO, node.paramName);
    std::string bytes = text;
    Fg_freeParameterStringWithType(fg(), id, text, port, FG_PARAM_TYPE_STRING);
    bytes.resize(kTextBytes);
    return bytes;
  }
  const auto [type, size] = widthOf(node);
  std::string bytes(size, '\0');
  const int code = Fg_getParameterWithType(fg(), id, bytes.data(), port, type);
  requireSuccess(code, GC_ERR_IO, node.paramName);
  return bytes;
}

void Grabber::set(int id, unsigned port, std::string_view bytes) {
  const std::lock_guard guard(sets_);
  const RegisterInfo& node = describe(id, port);
  const auto [type, size] = widthOf(node);
  require(bytes.size() == size || node.kind == REGISTER_INFO_STRING, GC_ERR_INVALID_PARAMETER,
          "not the size of the register");
  const std::string ended(bytes);  // In a zero, for texts.
  const int code = Fg_setParameterWithType(fg(), id, ended.data(), port, type);
  const bool readOnly = code == VELMORA_NOT_AVAILABLE || code == VELMORA_BOARD_READ_ONLY ||
                        code == VELMORA_BOARD_REGISTER_READ_ONLY;
  requireSuccess(code, readOnly ? GC_ERR_ACCESS_DENIED : GC_ERR_INVALID_VALUE, node.paramName);
}

void Grabber::setAll(unsigned port, const std::vector<Setting>& settings) {
  std::vector<Setting> before;
  try {
    for (const auto& [id, bytes] : settings) {
      const std::string old = get(id, port);
      set(id, port, bytes);
      before.insert(before.begin(), {id, old});
    }
  } catch (...) {
    for (const auto& [id, bytes] : before) {
      try {
        set(id, port, bytes);
      } catch (const Failure&) {  // The refusal that led here is the one to tell.
      }
    }
    throw;
  }
}

std::pair<Value, Value> Grabber::limits(int id, unsigned port) {
  const std::lock_guard guard(sets_);
  const RegisterInfo& node = describe(id, port);
  const auto of = [](const auto& range) {
    return std::pair(toValue(range.min), toValue(range.max));
  };
  switch (node.kind) {
    case REGISTER_INFO_DOUBLE:
      return of(node.value.real);
    case REGISTER_INFO_UINT64:
    case REGISTER_INFO_INT64:
      return of(node.value.int64);
    case REGISTER_INFO_INT:
      return of(node.value.int32);
    default:
      return of(node.value.uint32);
  }
}

std::string Grabber::nameOf(int id, unsigned port) { return describe(id, port).paramName; }
int Grabber::idOf(const std::string& name) { return Fg_getParameterIdByName(fg(), name.c_str()); }

std::string Grabber::document(unsigned port) {
  const std::lock_guard guard(sets_);
  std::size_t size = 0;
  std::string text;
  int code = Fg_getParameterInfoXML(fg(), static_cast<int>(port), nullptr, &size);
  if (code == VELMORA_OK) {
    text.resize(size);
    code = Fg_getParameterInfoXML(fg(), static_cast<int>(port), text.data(), &size);
  }
  requireSuccess(code, GC_ERR_IO, "no document");
  text.pop_back();  // The zero.
  return text;
}

std::size_t Grabber::payload(unsigned port) {
  return std::size_t{word(FG_WIDTH, port)} * word(FG_HEIGHT, port) * kBytesPerPixel;
}

std::vector<std::pair<std::string, std::uint64_t>> Grabber::events(unsigned port) {
  const std::string letter = std::string("_CAM_PORT_") + static_cast<char>('A' + port);
  const std::string camera = "_CAM" + std::to_string(port);
  std::vector<std::pair<std::string, std::uint64_t>> found;
  for (unsigned bit = 0; bit < 64; ++bit) {
    const std::uint64_t mask = std::uint64_t{1} << bit;
    const char* const event = Fg_getEventName(fg(), mask);
    const std::string name = event ? event : "";
    const bool ofCameras = name.find("_CAM") != std::string::npos;
    const bool ofPort = name.ends_with(letter) || name.find(camera) != std::string::npos;
    if (event && (ofPort || !ofCameras)) found.emplace_back(name, mask);
  }
  return found;
}

void Grabber::listen(unsigned port, Listener told) {
  const auto all = events(port);
  const std::lock_guard guard(listening_);
  ears_[port] = {0, std::move(told)};
  if (ears_[port].told)
    for (const auto& [name, mask] : all) ears_[port].mask |= mask;
  std::uint64_t wanted = 0;
  for (const Ear& ear : ears_) wanted |= ear.mask;
  VirtualBoard_enableEvents(device_.get(), wanted);
  if (!watcher_.joinable())
    watcher_ = std::jthread([this](const std::stop_token& stop) { watch(stop); });
}

void Grabber::watch(const std::stop_token& stop) {
  constexpr double kPatience = 0.02;  // Seconds until it looks whether to stop.
  while (!stop.stop_requested()) {
    VirtualBoardEvent event{};
    if (VirtualBoard_takeEvent(device_.get(), kPatience, &event) != VELMORA_OK) continue;
    const std::lock_guard guard(listening_);
    for (const Ear& ear : ears_)
      if (ear.mask & event.mask) ear.told(event);
  }
}

}  // namespace gentl
