#include "gentl/module.h"

#include <cstring>

namespace gentl {
namespace {

constexpr std::uint64_t kRegisterSlot = 0x400;
constexpr std::uint64_t kDocument = 0x8000000000;  // Behind all registers.

const InfoRow<Module> kPortInfos[] = {
    {PORT_INFO_ID, INFO_DATATYPE_STRING, tell<&Module::id>},
    {PORT_INFO_VENDOR, INFO_DATATYPE_STRING, tell<kVendor>},
    {PORT_INFO_MODEL, INFO_DATATYPE_STRING, tell<kModel>},
    {PORT_INFO_TLTYPE, INFO_DATATYPE_STRING, tell<kTechnology>},
    {PORT_INFO_MODULE, INFO_DATATYPE_STRING, tell<&Module::kind>},
    {PORT_INFO_LITTLE_ENDIAN, INFO_DATATYPE_BOOL8, tell<true>},
    {PORT_INFO_BIG_ENDIAN, INFO_DATATYPE_BOOL8, tell<false>},
    {PORT_INFO_ACCESS_READ, INFO_DATATYPE_BOOL8, tell<true>},
    {PORT_INFO_ACCESS_WRITE, INFO_DATATYPE_BOOL8, tell<&Module::writable>},
    {PORT_INFO_ACCESS_NA, INFO_DATATYPE_BOOL8, tell<false>},
    {PORT_INFO_ACCESS_NI, INFO_DATATYPE_BOOL8, tell<false>},
    {PORT_INFO_VERSION, INFO_DATATYPE_STRING, tell<kVersion>},
    {PORT_INFO_PORTNAME, INFO_DATATYPE_STRING, tell<&Module::kind>},
};

const InfoRow<Module> kUrlInfos[] = {
    {URL_INFO_URL, INFO_DATATYPE_STRING, tell<&Module::url>},
    {URL_INFO_SCHEMA_VER_MAJOR, INFO_DATATYPE_INT32, tell<1>},
    {URL_INFO_SCHEMA_VER_MINOR, INFO_DATATYPE_INT32, tell<0>},
    {URL_INFO_FILE_VER_MAJOR, INFO_DATATYPE_INT32, tell<1>},
    {URL_INFO_FILE_VER_MINOR, INFO_DATATYPE_INT32, tell<0>},
    {URL_INFO_FILE_VER_SUBMINOR, INFO_DATATYPE_INT32, tell<0>},
    {URL_INFO_FILE_SHA1_HASH, INFO_DATATYPE_BUFFER, nullptr},
    {URL_INFO_FILE_REGISTER_ADDRESS, INFO_DATATYPE_UINT64, tell<kDocument>},
    {URL_INFO_FILE_SIZE, INFO_DATATYPE_UINT64, tell<&Module::documentSize>},
    {URL_INFO_SCHEME, INFO_DATATYPE_INT32, tell<URL_SCHEME_LOCAL>},
    {URL_INFO_FILENAME, INFO_DATATYPE_STRING, nullptr},
};

std::size_t lengthOf(const Register& of) {
  return of.kind == RegisterKind::kText ? kTextLength : sizeof(std::uint64_t);
}

}  // namespace

Module::Module(std::string id, const char* kind, std::shared_ptr<Module> parent,
               std::initializer_list<EVENT_TYPE> events, std::vector<std::string> below)
    : id(std::move(id)), kind(kind), parent(std::move(parent)) {
  for (const EVENT_TYPE type : {EVENT_TYPE{EVENT_ERROR}, EVENT_TYPE{EVENT_MODULE}})
    events_.emplace(type, std::make_shared<Event>(type));
  for (const EVENT_TYPE type : events) events_.emplace(type, std::make_shared<Event>(type));
  for (std::string& each : below) below_.push_back({std::move(each), nullptr});
}

void Module::read(std::uint64_t address, void* buffer, std::size_t* size) {
  requirePointer(buffer);
  requirePointer(size);
  const std::lock_guard guard(portLock_);
  if (address >= kDocument) {
    const std::string& text = document();
    const std::uint64_t offset = address - kDocument;
    require(offset <= text.size() && *size <= text.size() - offset, GC_ERR_INVALID_ADDRESS,
            "beyond the end of the document");
    std::memcpy(buffer, text.data() + offset, *size);
    return;
  }
  const std::string bytes = readRegister(address);
  require(*size <= bytes.size(), GC_ERR_INVALID_PARAMETER, "more bytes than the register has");
  std::memcpy(buffer, bytes.data(), *size);
}

void Module::write(std::uint64_t address, const void* buffer, std::size_t* size) {
  requirePointer(buffer);
  requirePointer(size);
  require(writable(), GC_ERR_ACCESS_DENIED, "opened to read only");
  const std::lock_guard guard(portLock_);
  writeRegister(address, {static_cast<const char*>(buffer), *size});
}

std::string Module::readRegister(std::uint64_t address) {
  const Register& own = at(address);
  std::string bytes = encoded(INFO_DATATYPE_UINT64, own.read());
  bytes.resize(lengthOf(own));
  return bytes;
}

void Module::writeRegister(std::uint64_t address, std::string_view bytes) {
  const Register& own = at(address);
  require(own.write != nullptr, GC_ERR_ACCESS_DENIED, "a register to read only");
  require(bytes.size() == lengthOf(own), GC_ERR_INVALID_PARAMETER, "not the size of the register");
  std::uint64_t bits = 0;
  bytes.copy(reinterpret_cast<char*>(&bits), sizeof bits);
  if (own.kind == RegisterKind::kFloat)
    own.write(std::bit_cast<double>(bits));
  else
    own.write(bits);
}

void Module::portInfo(PORT_INFO_CMD command, Answer to) { answer(kPortInfos, *this, command, to); }
void Module::urlInfo(std::uint32_t index, URL_INFO_CMD command, Answer to) {
  requireIndex(index, 1);
  answer(kUrlInfos, *this, command, to);
}

std::string Module::url() {
  return "Local:" + id + ".xml;" + hexadecimal(kDocument) + ";" + hexadecimal(documentSize());
}

const std::string& Module::document() {
  std::call_once(documented_, [this] { document_ = makeDocument(); });
  return document_;
}

void Module::registerEvent(EVENT_TYPE type, EVENT_HANDLE* handle) {
  requirePointer(handle);
  require(type >= EVENT_ERROR && type <= EVENT_MODULE, GC_ERR_INVALID_PARAMETER,
          "no such type of event");
  const std::lock_guard guard(eventLock_);
  const auto found = events_.find(type);
  require(found != events_.end(), GC_ERR_NOT_IMPLEMENTED, "this module has no such events");
  Event& event = *found->second;
  require(!event.handle, GC_ERR_RESOURCE_IN_USE, "the event is registered");
  registered(type, true);
  event.setRegistered(true);
  *handle = Registry::instance().add(found->second);
}

void Module::unregisterEvent(EVENT_TYPE type) {
  const std::lock_guard guard(eventLock_);
  const auto found = events_.find(type);
  require(found != events_.end() && found->second->handle, GC_ERR_INVALID_PARAMETER,
          "the event is not registered");
  Event& event = *found->second;
  registered(type, false);
  Registry::instance().remove(event);
  event.handle = nullptr;
  event.setRegistered(false);
}

const std::string& Module::belowId(std::size_t index) const {
  requireIndex(index, count());
  return below_[index].id;
}

std::size_t Module::indexOf(const char* wanted) const {
  requirePointer(wanted);
  const auto found = std::ranges::find(below_, wanted, &Below::id);
  require(found != below_.end(), GC_ERR_INVALID_ID, "nothing has this id");
  return static_cast<std::size_t>(found - below_.begin());
}

void Module::close() {
  for (const Below& each : below_)
    if (const auto module = each.module) module->close();
  Registry::instance().remove(*this);
  for (const auto& [type, event] : events_)
    if (event->handle) unregisterEvent(type);
  if (!parent) return;
  for (Below& each : parent->below_)
    if (each.module.get() == this) each.module.reset();
}

void Module::addFeature(const std::string& name, RegisterKind kind, std::function<Value()> read,
                        std::vector<const char*> invalidators) {
  names_ += element("pFeature", name);
  add({name, kind, std::move(read), nullptr, std::move(invalidators)});
}

void Module::addCommand(const std::string& name, const std::function<void()>& action) {
  names_ += element("pFeature", name);
  const auto act = [action](const Value& value) {
    require(std::get<std::uint64_t>(value) == 1, GC_ERR_INVALID_VALUE, "a command takes a 1");
    action();
  };
  add({name + "_Reg", RegisterKind::kInteger, [] { return toValue(0); }, act});
  features_ +=
      node("Command", name, element("pValue", name + "_Reg") + element("CommandValue", "1"));
}

void Module::addEvent(const std::string& name, std::uint64_t eventId) {
  names_ += element("pFeature", name);
  features_ += eventNodes(name, eventId);
}

void Module::addSelector(const std::string& name) {
  names_ += element("pFeature", name);
  const auto select = [this](const Value& value) {
    const auto index = std::get<std::uint64_t>(value);
    require(index < count(), GC_ERR_INVALID_VALUE, "there are not as many");
    selected_ = index;
  };
  add({name + "_Reg", RegisterKind::kInteger, [this] { return toValue(selected_); }, select});
  features_ += node("Integer", name,
                    element("pValue", name + "_Reg") + element("Min", "0") +
                        element("Max", std::to_string(count() - 1)));
}

void Module::addEnumeration(const std::string& name, std::initializer_list<const char*> entries,
                            const std::string& value) {
  names_ += element("pFeature", name);
  std::string elements;
  for (int i = 0; const char* entry : entries)
    elements += node("EnumEntry", entry, element("Value", std::to_string(i++)));
  features_ += node("Enumeration", name, elements + value);
}

std::string Module::makeDocument() {
  return std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n") +
         "<RegisterDescription ModelName=\"" + kModel + kind + "\" VendorName=\"" + kVendor +
         "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\""
         " SchemaSubMinorVersion=\"1\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\""
         " ProductGuid=\"0\" VersionGuid=\"0\""
         " xmlns=\"http://www.genicam.org/GenApi/Version_1_0\">\n" +
         node("Category", "Root", element("pFeature", "Information")) +
         node("Category", "Information", names_) + features_ + registerNodes() +
         node("Port", kind, "") + "</RegisterDescription>\n";
}

std::string element(const std::string& tag, const std::string& text) {
  return "<" + tag + ">" + text + "</" + tag + ">\n";
}

std::string node(const std::string& tag, const std::string& name, const std::string& elements) {
  return "<" + tag + " Name=\"" + name + "\">\n" + elements + "</" + tag + ">\n";
}

std::string eventNodes(const std::string& feature, std::uint64_t id, const std::string& more) {
  const std::string port = feature + "_Event";
  return node("Integer", feature,
              element("Visibility", "Expert") + element("pValue", feature + "_Reg") + more) +
         registerNode({feature + "_Reg", RegisterKind::kInteger, nullptr}, 0, port) +
         node("Port", port, element("EventID", hexadecimal(id)));
}

std::string registerNode(const Register& from, std::uint64_t address, const std::string& port) {
  constexpr const char* kTags[] = {"IntReg", "FloatReg", "StringReg"};
  std::string elements = element("Address", "0x" + hexadecimal(address)) +
                         element("Length", std::to_string(lengthOf(from))) +
                         element("AccessMode", from.write ? "RW" : "RO") + element("pPort", port) +
                         element("Cachable", "NoCache");
  for (const char* other : from.invalidators) elements += element("pInvalidator", other);
  if (from.kind == RegisterKind::kInteger) elements += element("Sign", "Signed");
  if (from.kind != RegisterKind::kText) elements += element("Endianess", "LittleEndian");
  return node(kTags[static_cast<int>(from.kind)], from.name, elements);
}

std::string Module::registerNodes() const {
  std::string nodes;
  std::uint64_t address = kRegisters;
  for (const Register& each : registers_) {
    nodes += registerNode(each, address, kind);
    address += kRegisterSlot;
  }
  return nodes;
}

const Register& Module::at(std::uint64_t address) const {
  const std::uint64_t index = (address - kRegisters) / kRegisterSlot;
  require(address >= kRegisters && address % kRegisterSlot == 0 && index < registers_.size(),
          GC_ERR_INVALID_ADDRESS, "no register has this address");
  return registers_[index];
}

}  // namespace gentl
