/// The folder tests/ checks the applet through its exports and some classes on their own. This
/// fixture is an applet opened on a virtual board.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "board/control.h"
#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/velmora.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace fixture {

using Lines = std::vector<std::string>;

/// `Std_entry` flag: the design keeps what it has.
inline constexpr int kNoDefaults = VELMORA_LEAVE_DESIGN;

using velmora::kPorts;

/// Owns a device and, if `Std_entry` succeeds, an applet on it. The journal runs from construction
/// on and holds start-up until it is taken. Ends with no faults, no journal and everything
/// released.
class Applet {
 public:
  explicit Applet(int flags = 0) : device_(VirtualBoard_createDevice()) {
    board::startJournal();
    grabber_.applet = Std_entry(device_, &error_, flags);
  }
  Applet(const Applet&) = delete;
  ~Applet() {
    board::clearFaults();
    board::stopJournal();
    close();
    VirtualBoard_destroyDevice(device_);
  }

  /// Releases the applet ahead of time; the result of `Fg_FreeGrabber`, -2001 when it is gone.
  int close() { return Fg_FreeGrabber(&grabber_); }

  KTdevice* device() { return device_; }
  Fg_Struct* fg() { return &grabber_; }
  bool opened() const { return grabber_.applet != nullptr; }
  int error() const { return error_; }
  int lastError() { return Fg_getLastErrorNumber(&grabber_); }

  /// Sets a 32-bit or a double parameter; the result of the export.
  template <class T>
  int set(int id, T value, unsigned port = 0) {
    if constexpr (std::is_same_v<T, double>)
      return Fg_setParameterWithType(&grabber_, id, &value, port, FG_PARAM_TYPE_DOUBLE);
    const auto word = static_cast<std::uint32_t>(value);
    return Fg_setParameterWithType(&grabber_, id, &word, port, FG_PARAM_TYPE_INT32);
  }

  /// What a get returns and stores.
  template <class T>
  struct Reading {
    int code;
    T value;
    bool operator==(const Reading&) const = default;
  };
  using Word = Reading<std::uint32_t>;
  Word word(int id, unsigned port = 0) { return read(id, port, FG_PARAM_TYPE_INT32, 0xDEADBEEF); }
  Reading<double> real(int id, unsigned port = 0) {
    return read(id, port, FG_PARAM_TYPE_DOUBLE, -1.0);
  }

  /// The ids of all listed parameters.
  std::vector<int> ids() {
    std::vector<int> all;
    for (int i = 0; i < Fg_getNrOfParameter(fg()); ++i) all.push_back(Fg_getParameterId(fg(), i));
    return all;
  }

  /// The description nodes of all parameters by id.
  std::map<int, RegisterInfo*> nodes(unsigned port) {
    std::map<int, RegisterInfo*> all;
    for (RegisterInfo* root = Fg_getParameterInfo(&grabber_, static_cast<int>(port)); root;
         root = root->next)
      collect(*root, all);
    return all;
  }
  /// A parameter's description node, or null.
  RegisterInfo* node(int id, unsigned port = 0) {
    const auto all = nodes(port);
    const auto found = all.find(id);
    return found == all.end() ? nullptr : found->second;
  }
  bool writable(int id) {
    const RegisterInfo* described = node(id);
    return described && (described->accessMode & REGISTER_INFO_WRITABLE) != 0;
  }

 private:
  template <class T>
  Reading<T> read(int id, unsigned port, int type, T value) {
    const int code = Fg_getParameterWithType(&grabber_, id, &value, port, type);
    return {code, value};
  }
  static void collect(RegisterInfo& node, std::map<int, RegisterInfo*>& all) {
    if (node.kind != REGISTER_INFO_GROUP)
      all.emplace(node.id, &node);
    else
      for (std::uint32_t i = 0; i < node.value.group.childCount; ++i)
        collect(*node.value.group.children[i], all);
  }

  KTdevice* device_;
  Fg_Struct grabber_{};
  int error_ = 1;
};

/// The accesses since the last take as journal lines, without the calls that are no parameter or
/// register access: "set NAME[1] = 3", "get NAME[0] -> 5", "write REG = 1", "read REG -> 1".
inline Lines takeAccesses() {
  Lines lines;
  for (const board::Access& access : board::takeJournal())
    if (access.kind != board::AccessKind::kCall) lines.push_back(board::describe(access));
  return lines;
}

}  // namespace fixture
