#include "gentl/module.h"

#include <cstring>

namespace gentl {
namespace {

// Parameter ids are positive and of 31 bits, so none lies here.
constexpr std::uint64_t kRegisters = 0x80000000;
constexpr std::uint64_t kRegisterSlot = 0x400;
constexpr std::uint64_t kDocument = 0x90000000;

constexpr std::size_t kEventLimit = 4096;
constexpr const char* kNoRegister = "no register has this address";

template <auto constant>
Value always(Module&) {
  return number(constant);
}

const InfoRow<Module> kPortInfos[] = {
    {PORT_INFO_ID, INFO_DATATYPE_STRING, [](Module& m) { return Value(m.id); }},
    {PORT_INFO_VENDOR, INFO_DATATYPE_STRING, [](Module&) { return Value(kVendor); }},
    {PORT_INFO_MODEL, INFO_DATATYPE_STRING, [](Module&) { return Value(kModel); }},
    {PORT_INFO_TLTYPE, INFO_DATATYPE_STRING, [](Module&) { return Value(kTechnology); }},
    {PORT_INFO_MODULE, INFO_DATATYPE_STRING, [](Module& m) { return Value(m.kind); }},
    {PORT_INFO_LITTLE_ENDIAN, INFO_DATATYPE_BOOL8, always<1>},
    {PORT_INFO_BIG_ENDIAN, INFO_DATATYPE_BOOL8, always<0>},
    {PORT_INFO_ACCESS_READ, INFO_DATATYPE_BOOL8, always<1>},
    {PORT_INFO_ACCESS_WRITE, INFO_DATATYPE_BOOL8, [](Module& m) { return number(m.writable()); }},
    {PORT_INFO_ACCESS_NA, INFO_DATATYPE_BOOL8, always<0>},
    {PORT_INFO_ACCESS_NI, INFO_DATATYPE_BOOL8, always<0>},
    {PORT_INFO_VERSION, INFO_DATATYPE_STRING, [](Module&) { return Value(kVersion); }},
    {PORT_INFO_PORTNAME, INFO_DATATYPE_STRING, [](Module& m) { return Value(m.kind); }},
};

const InfoRow<Module> kUrlInfos[] = {
    {URL_INFO_URL, INFO_DATATYPE_STRING, [](Module& m) { return Value(m.url()); }},
    {URL_INFO_SCHEMA_VER_MAJOR, INFO_DATATYPE_INT32, always<1>},
    {URL_INFO_SCHEMA_VER_MINOR, INFO_DATATYPE_INT32, always<0>},
    {URL_INFO_FILE_VER_MAJOR, INFO_DATATYPE_INT32, always<1>},
    {URL_INFO_FILE_VER_MINOR, INFO_DATATYPE_INT32, always<0>},
    {URL_INFO_FILE_VER_SUBMINOR, INFO_DATATYPE_INT32, always<0>},
    {URL_INFO_FILE_SHA1_HASH, INFO_DATATYPE_BUFFER, nullptr},
    {URL_INFO_FILE_REGISTER_ADDRESS, INFO_DATATYPE_UINT64, always<kDocument>},
    {URL_INFO_FILE_SIZE, INFO_DATATYPE_UINT64,
     [](Module& m) { return number(m.document().size()); }},
    {URL_INFO_SCHEME, INFO_DATATYPE_INT32, always<URL_SCHEME_LOCAL>},
    {URL_INFO_FILENAME, INFO_DATATYPE_STRING, nullptr},
};

const char* tagOf(RegisterKind kind) {
  return kind == RegisterKind::kInteger ? "IntReg"
         : kind == RegisterKind::kFloat ? "FloatReg"
                                        : "StringReg";
}

}  // namespace

std::string element(const std::string& tag, const std::string& text) {
  return "<" + tag + ">" + text + "</" + tag + ">\n";
}

std::size_t Register::length() const { return kind == RegisterKind::kText ? kTextLength : 8; }

Module::Module(std::string id, const char* kind, std::initializer_list<EVENT_TYPE> events)
    : id(std::move(id)), kind(kind) {
  for (const EVENT_TYPE type : events) {
    const auto made = queues_.emplace(type, std::make_shared<EventQueue>()).first;
    if (type != EVENT_NEW_BUFFER) made->second->setLimit(kEventLimit);
  }
}

void Module::read(std::uint64_t address, void* buffer, std::size_t size) {
  const std::lock_guard guard(portLock_);
  if (address >= kDocument) {
    const std::string& text = document();
    const std::uint64_t offset = address - kDocument;
    require(offset <= text.size() && size <= text.size() - offset, GC_ERR_INVALID_ADDRESS,
            "beyond the end of the document");
    std::memcpy(buffer, text.data() + offset, size);
    return;
  }
  std::string bytes;
  if (const Register* own = at(address)) {
    bytes = encoded(INFO_DATATYPE_UINT64, own->read());
    bytes.resize(own->length());
  } else {
    bytes = readOther(address);
  }
  require(size <= bytes.size(), GC_ERR_INVALID_PARAMETER, "more bytes than the register has");
  std::memcpy(buffer, bytes.data(), size);
}

void Module::write(std::uint64_t address, const void* buffer, std::size_t size) {
  require(writable(), GC_ERR_ACCESS_DENIED, "opened to read only");
  const std::lock_guard guard(portLock_);
  const Register* own = at(address);
  if (!own) return writeOther(address, {static_cast<const char*>(buffer), size});
  require(own->write != nullptr, GC_ERR_ACCESS_DENIED, "a register to read only");
  require(size == own->length(), GC_ERR_INVALID_PARAMETER, "not the size of the register");
  std::uint64_t whole = 0;
  double real = 0;
  const bool isReal = own->kind == RegisterKind::kFloat;
  std::memcpy(isReal ? static_cast<void*>(&real) : &whole, buffer, sizeof whole);
  own->write(isReal ? Value(real) : Value(whole));
}

std::string Module::readOther(std::uint64_t /*address*/) {
  fail(GC_ERR_INVALID_ADDRESS, kNoRegister);
}
void Module::writeOther(std::uint64_t /*address*/, std::string_view /*bytes*/) {
  fail(GC_ERR_INVALID_ADDRESS, kNoRegister);
}

void Module::portInfo(PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  answer(kPortInfos, *this, command, type, buffer, size);
}
void Module::urlInfo(URL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
  answer(kUrlInfos, *this, command, type, buffer, size);
}

std::string Module::url() {
  return "Local:" + id + ".xml;" + hexadecimal(kDocument) + ";" + hexadecimal(document().size());
}

const std::string& Module::document() {
  std::call_once(documented_, [this] { document_ = makeDocument(); });
  return document_;
}

std::shared_ptr<Event> Module::registerEvent(EVENT_TYPE type) {
  require(type >= EVENT_ERROR && type <= EVENT_MODULE, GC_ERR_INVALID_PARAMETER,
          "no such type of event");
  const std::lock_guard guard(eventLock_);
  require(queues_.contains(type), GC_ERR_NOT_IMPLEMENTED, "this module has no such events");
  require(!events_.contains(type), GC_ERR_RESOURCE_IN_USE, "the event is registered");
  auto event = std::make_shared<Event>(type, queues_.at(type));
  registered(type, true);
  event->queue->setClosed(false);
  events_.emplace(type, event);
  Registry::instance().add(event);
  return event;
}

void Module::unregisterEvent(EVENT_TYPE type) {
  const std::lock_guard guard(eventLock_);
  const auto found = events_.find(type);
  require(found != events_.end(), GC_ERR_INVALID_PARAMETER, "the event is not registered");
  registered(type, false);
  found->second->queue->setClosed(true);
  if (type != EVENT_NEW_BUFFER) found->second->queue->flush();
  Registry::instance().remove(*found->second);
  events_.erase(found);
}

void Module::fire(EVENT_TYPE type, std::string data) {
  EventQueue& told = queue(type);
  const std::lock_guard guard(told.mutex);
  if (!told.closed()) told.push(std::move(data));
}

void Module::close() {
  Registry::instance().remove(*this);
  for (const auto& each : queues_) {
    const bool open = [&] {
      const std::lock_guard guard(eventLock_);
      return events_.contains(each.first);
    }();
    if (open) unregisterEvent(each.first);
  }
}

void Module::addFeature(const std::string& name, INFO_DATATYPE type, std::function<Value()> read,
                        std::vector<const char*> invalidators) {
  names_ += element("pFeature", name);
  if (type == INFO_DATATYPE_STRING)
    return add({name, RegisterKind::kText, std::move(read), nullptr, std::move(invalidators)});
  add({name + "_Reg", RegisterKind::kInteger, std::move(read), nullptr, std::move(invalidators)});
  features_ +=
      "<Integer Name=\"" + name + "\">\n" + element("pValue", name + "_Reg") + "</Integer>\n";
}

void Module::addCommand(const std::string& name) {
  names_ += element("pFeature", name);
  add({name + "_Reg", RegisterKind::kInteger, [] { return number(0); }, [](const Value&) {}, {}});
  features_ += "<Command Name=\"" + name + "\">\n" + element("pValue", name + "_Reg") +
               element("CommandValue", "1") + "</Command>\n";
}

void Module::addSelector(const std::string& name, std::uint64_t count, std::uint64_t& selected) {
  names_ += element("pFeature", name);
  add({name + "_Reg",
       RegisterKind::kInteger,
       [&selected] { return number(selected); },
       [&selected, count](const Value& value) {
         const auto index = std::get<std::uint64_t>(value);
         require(index < count, GC_ERR_INVALID_VALUE, "there are not as many");
         selected = index;
       },
       {}});
  features_ += "<Integer Name=\"" + name + "\">\n" + element("pValue", name + "_Reg") +
               element("Min", "0") + element("Max", std::to_string(count - 1)) + "</Integer>\n";
}

void Module::addEnumeration(const std::string& name, std::span<const char* const> entries,
                            const std::string& value) {
  names_ += element("pFeature", name);
  features_ += "<Enumeration Name=\"" + name + "\">\n";
  for (std::size_t i = 0; i < entries.size(); ++i)
    features_ += std::string("<EnumEntry Name=\"") + entries[i] + "\">\n" +
                 element("Value", std::to_string(i)) + "</EnumEntry>\n";
  features_ += value + "</Enumeration>\n";
}

std::string Module::makeDocument() {
  return std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n") +
         "<RegisterDescription ModelName=\"" + kModel + kind + "\" VendorName=\"" + kVendor +
         "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\""
         " SchemaSubMinorVersion=\"1\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\""
         " ProductGuid=\"0\" VersionGuid=\"0\""
         " xmlns=\"http://www.genicam.org/GenApi/Version_1_0\">\n"
         "<Category Name=\"Root\">\n<pFeature>Information</pFeature>\n</Category>\n"
         "<Category Name=\"Information\">\n" +
         names_ + "</Category>\n" + features_ + registerNodes() + "<Port Name=\"" + kind +
         "\"></Port>\n</RegisterDescription>\n";
}

std::string Module::registerNodes() const {
  std::string nodes;
  std::uint64_t address = kRegisters;
  for (const Register& each : registers_) {
    const std::string tag = tagOf(each.kind);
    nodes += "<" + tag + " Name=\"" + each.name + "\">\n" +
             element("Address", "0x" + hexadecimal(address)) +
             element("Length", std::to_string(each.length())) +
             element("AccessMode", each.write ? "RW" : "RO") + element("pPort", kind) +
             element("Cachable", "NoCache");
    for (const char* invalidator : each.invalidators) nodes += element("pInvalidator", invalidator);
    if (each.kind == RegisterKind::kInteger) nodes += element("Sign", "Signed");
    if (each.kind != RegisterKind::kText) nodes += element("Endianess", "LittleEndian");
    nodes += "</" + tag + ">\n";
    address += kRegisterSlot;
  }
  return nodes;
}

const Register* Module::at(std::uint64_t address) const {
  if (address < kRegisters || address % kRegisterSlot != 0) return nullptr;
  const std::uint64_t index = (address - kRegisters) / kRegisterSlot;
  return index < registers_.size() ? &registers_[index] : nullptr;
}

}  // namespace gentl
