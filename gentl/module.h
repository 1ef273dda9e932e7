/// What all modules are: ports with registers and a document that describes them, and sources of
/// events.
#pragma once

#include <functional>
#include <map>
#include <span>
#include <vector>

#include "gentl/event.h"

namespace gentl {

inline constexpr const char* kVendor = "Brightfold";
inline constexpr const char* kModel = "Velmora";
inline constexpr const char* kTechnology = "Custom";
inline constexpr const char* kVersion = VELMORA_VERSION;

enum class RegisterKind { kInteger, kFloat, kText };

/// A register of a module's own. Numbers have eight bytes, texts `kTextLength`.
struct Register {
  std::string name;  ///< Of its node in the document.
  RegisterKind kind;
  std::function<Value()> read;
  std::function<void(const Value&)> write;  ///< Empty for a register to read only.
  std::vector<const char*> invalidators;    ///< Nodes whose change changes this one.

  std::size_t length() const;
};
inline constexpr std::size_t kTextLength = 512;

class Module : public Object, public std::enable_shared_from_this<Module> {
 public:
  /// @param kind the standard's name of the module.
  /// @param events the types of events that it can have.
  Module(std::string id, const char* kind, std::initializer_list<EVENT_TYPE> events);

  const std::string id;
  const char* const kind;

  /// @name The port
  /// @{
  void read(std::uint64_t address, void* buffer, std::size_t size);
  void write(std::uint64_t address, const void* buffer, std::size_t size);
  void portInfo(PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size);
  void urlInfo(URL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size);
  std::string url();
  const std::string& document();
  virtual bool writable() const { return true; }
  /// @}

  std::shared_ptr<Event> registerEvent(EVENT_TYPE type);
  void unregisterEvent(EVENT_TYPE type);
  /// Tells who has registered.
  void fire(EVENT_TYPE type, std::string data);

  /// Closes what is open below, ends waits and gives the handle back.
  virtual void close();

 protected:
  virtual void registered(EVENT_TYPE /*type*/, bool /*yes*/) {}
  EventQueue& queue(EVENT_TYPE type) { return *queues_.at(type); }

  /// @name The document, from its parts
  /// @{
  void add(Register added) { registers_.push_back(std::move(added)); }
  /// A feature with a register of its own.
  void addFeature(const std::string& name, INFO_DATATYPE type, std::function<Value()> read,
                  std::vector<const char*> invalidators = {});
  void addCommand(const std::string& name);
  /// Chooses one of some objects, of which other features tell.
  void addSelector(const std::string& name, std::uint64_t count, std::uint64_t& selected);
  /// @param value the node that says where its value is: `element("pValue", …)` or a constant.
  void addEnumeration(const std::string& name, std::span<const char* const> entries,
                      const std::string& value);
  /// The rows that have a feature's name.
  template <class M, std::size_t N>
  void addInfos(const InfoRow<M> (&table)[N], M& module) {
    for (const InfoRow<M>& row : table)
      if (row.feature) addFeature(row.feature, row.type, [&] { return row.get(module); });
  }
  virtual std::string makeDocument();
  /// The nodes of all registers.
  std::string registerNodes() const;
  /// @}

  /// Registers that are not the module's own.
  virtual std::string readOther(std::uint64_t address);
  virtual void writeOther(std::uint64_t address, std::string_view bytes);

 private:
  const Register* at(std::uint64_t address) const;

  std::mutex portLock_;
  std::vector<Register> registers_;  ///< An index gives an address.
  std::string features_;             ///< Nodes.
  std::string names_;                ///< Of them, as a category refers to them.
  std::once_flag documented_;
  std::string document_;

  std::mutex eventLock_;
  std::map<EVENT_TYPE, std::shared_ptr<EventQueue>> queues_;
  std::map<EVENT_TYPE, std::shared_ptr<Event>> events_;
};

/// A node `<Tag>text</Tag>`.
std::string element(const std::string& tag, const std::string& text);

}  // namespace gentl
