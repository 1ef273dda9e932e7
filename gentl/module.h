#pragma once

#include <initializer_list>
#include <map>
#include <vector>

#include "gentl/event.h"

namespace gentl {

enum class RegisterKind { kInteger, kFloat, kText };

/// A register of a module's own. Numbers have eight bytes, texts `kTextLength`.
struct Register {
  std::string name;  ///< Of its node in the document.
  RegisterKind kind;
  std::function<Value()> read;
  std::function<void(const Value&)> write = nullptr;  ///< Empty for a register to read only.
  std::vector<const char*> invalidators = {};         ///< Nodes whose change changes this one.
};
inline constexpr std::size_t kTextLength = 512;
inline constexpr std::uint64_t kRegisters = 0x80000000;  ///< Their address; ids are smaller.

/// A module of the standard: what it tells, its port, its events, and the modules below it.
class Module : public Object, public std::enable_shared_from_this<Module> {
 public:
  /// @param kind the standard's name of the module.
  /// @param events the types of events that it has beside those of its errors and of the module.
  /// @param below ids of the modules below.
  Module(std::string id, const char* kind, std::shared_ptr<Module> parent,
         std::initializer_list<EVENT_TYPE> events = {}, std::vector<std::string> below = {});

  const std::string id;
  const char* const kind;
  const std::shared_ptr<Module> parent;  ///< Which holds this one while it is open.
  void parentHandle(void** handle) { put(handle, parent->handle); }

  /// @name The port
  /// @{
  void read(std::uint64_t address, void* buffer, std::size_t* size);
  void write(std::uint64_t address, const void* buffer, std::size_t* size);
  void portInfo(PORT_INFO_CMD command, Answer to);
  void urlInfo(std::uint32_t index, URL_INFO_CMD command, Answer to);
  std::string url();
  const std::string& document();
  std::size_t documentSize() { return document().size(); }
  virtual bool writable() const { return true; }
  /// @}

  /// @name Events
  /// @{
  void registerEvent(EVENT_TYPE type, EVENT_HANDLE* handle);
  void unregisterEvent(EVENT_TYPE type);
  Event& event(EVENT_TYPE type) { return *events_.at(type); }
  /// @}

  /// @name The modules below
  /// Calls that open and close expect the registry's structure lock.
  /// @{
  std::size_t count() const { return below_.size(); }
  const std::string& belowId(std::size_t index) const;
  std::size_t indexOf(const char* wanted) const;
  std::shared_ptr<Module> opened(std::size_t index) const { return below_[index].module; }
  /// Closes what is open below, ends waits and gives the handle back.
  virtual void close();
  /// @}

 protected:
  template <class Make>
  void open(const char* wanted, void** handle, const Make& make) {
    requirePointer(handle);
    Below& place = below_[indexOf(wanted)];
    require(!place.module, GC_ERR_RESOURCE_IN_USE, "the module is open");
    std::shared_ptr<Module> made = make();
    *handle = Registry::instance().add(made);
    place.module = std::move(made);
  }
  virtual void registered(EVENT_TYPE /*type*/, bool /*yes*/) {}

  /// @name The document, from its parts
  /// @{
  void add(Register added) { registers_.push_back(std::move(added)); }
  /// A feature that is a register.
  void addFeature(const std::string& name, RegisterKind kind, std::function<Value()> read,
                  std::vector<const char*> invalidators = {});
  /// The rows of a table that have a feature's name, of the module that `of` returns.
  template <class M, std::size_t N, class Of>
  void addInfos(const InfoRow<M> (&table)[N], Of of, std::vector<const char*> invalidators = {}) {
    for (const InfoRow<M>& row : table) {
      const auto read = [&row, of] {
        auto&& module = of();
        return row.get(module);
      };
      const bool isText = row.type == INFO_DATATYPE_STRING;
      if (row.feature)
        addFeature(row.feature, isText ? RegisterKind::kText : RegisterKind::kInteger, read,
                   invalidators);
    }
  }
  /// @param action nothing for what this producer never needs to do.
  void addCommand(
      const std::string& name, const std::function<void()>& action = [] {});
  /// The value that comes with an event.
  void addEvent(const std::string& name, std::uint64_t eventId);
  /// Chooses one of the modules below, of which other features tell.
  void addSelector(const std::string& name);
  std::size_t selected() const { return selected_; }
  /// @param value a node: a constant, or a reference to where the value is.
  void addEnumeration(const std::string& name, std::initializer_list<const char*> entries,
                      const std::string& value = "<Value>0</Value>\n");
  virtual std::string makeDocument();
  const Register& at(std::uint64_t address) const;
  /// The nodes of all registers.
  std::string registerNodes() const;
  /// @}

  /// @name A register as its bytes
  /// The module's own ones.
  /// @{
  virtual std::string readRegister(std::uint64_t address);
  virtual void writeRegister(std::uint64_t address, std::string_view bytes);
  /// @}

 private:
  struct Below {
    std::string id;
    std::shared_ptr<Module> module;  ///< Null if it is closed.
  };

  std::vector<Below> below_;

  std::mutex portLock_;
  std::vector<Register> registers_;  ///< An index gives an address.
  std::string features_;             ///< Nodes.
  std::string names_;                ///< Of them, as a category refers to them.
  std::size_t selected_ = 0;
  std::once_flag documented_;
  std::string document_;

  std::mutex eventLock_;
  std::map<EVENT_TYPE, std::shared_ptr<Event>> events_;
};

/// `<Tag>text</Tag>`, and the same with a name and elements in it.
std::string element(const std::string& tag, const std::string& text);
std::string node(const std::string& tag, const std::string& name, const std::string& elements);
/// By which a GenApi library shows the word that comes with an event.
std::string eventNodes(const std::string& feature, std::uint64_t id, const std::string& more = {});
std::string registerNode(const Register& from, std::uint64_t address, const std::string& port);

}  // namespace gentl
