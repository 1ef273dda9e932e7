/// The board with the applet on it, through their public headers.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gentl/info.h"
#include "velmora/velmora.h"
#include "velmora/virtual_board.h"

/// The host's side of a frame grabber.
struct Fg_Struct {
  void* applet;
};

namespace gentl {

class Grabber {
 public:
  /// Opens a board, with the design that the environment names, if it does.
  Grabber();
  Grabber(const Grabber&) = delete;
  Grabber& operator=(const Grabber&) = delete;
  ~Grabber();

  Fg_Struct* fg() { return &grabber_; }

  /// @name Parameters
  /// As the bytes of a register, 4, 8 for wide ones or a text; or as a type of that size.
  /// @{
  std::string get(int id, unsigned port);
  void set(int id, unsigned port, std::string_view bytes);
  template <class T>
  T value(int id, unsigned port) {
    T value{};
    get(id, port).copy(reinterpret_cast<char*>(&value), sizeof value);
    return value;
  }
  std::uint32_t word(int id, unsigned port) { return value<std::uint32_t>(id, port); }
  struct Setting {
    int id;
    std::string bytes;
  };
  /// Sets in turn; if one is refused, those before it get their values back.
  void setAll(unsigned port, const std::vector<Setting>& settings);
  /// @}

  /// As they are at the moment.
  std::pair<Value, Value> limits(int id, unsigned port);
  std::string nameOf(int id, unsigned port);
  int idOf(const std::string& name);
  /// The applet's document of a port.
  std::string document(unsigned port);
  /// Bytes of a picture.
  std::size_t payload(unsigned port);

  /// @name Events of the applet
  /// @{
  using Listener = std::function<void(const VirtualBoardEvent&)>;
  /// Name and mask of the events that a port has: its own and those of the inputs.
  std::vector<std::pair<std::string, std::uint64_t>> events(unsigned port);
  /// Tells of them from now on, or no more if there is nobody to tell.
  void listen(unsigned port, Listener told);
  /// @}

 private:
  void pace(unsigned port);
  const RegisterInfo& describe(int id, unsigned port);
  void watch(const std::stop_token& stop);

  std::unique_ptr<KTdevice, void (*)(KTdevice*)> device_{VirtualBoard_createDevice(),
                                                         VirtualBoard_destroyDevice};
  Fg_Struct grabber_{};
  std::mutex sets_;  ///< Sets must not overlap what reads descriptions.

  struct Ear {
    std::uint64_t mask = 0;
    Listener told;
  };
  std::mutex listening_;
  std::array<Ear, VELMORA_PORTS> ears_;
  std::jthread watcher_;
};

/// A code of the applet or the board with its meaning.
std::string codeText(int code);

}  // namespace gentl
