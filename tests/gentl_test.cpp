/// The GenTL producer as a consumer sees it: a library that is opened by its name and the
/// standard's functions, with an independent GenApi library on its ports.
#include "gentl/gentl.h"

#include <arv.h>
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

#include "board/pictures/picture.h"
#include "velmora/errors.h"
#include "velmora/parameters.h"
#include "velmora/values.h"
#include "velmora/virtual_board.h"

namespace {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using Bytes = std::vector<std::uint8_t>;

void* symbol(const char* name) {
  static void* const library = dlopen(PRODUCER, RTLD_NOW | RTLD_LOCAL);
  EXPECT_TRUE(library) << dlerror();
  return dlsym(library, name);
}
#define GENTL(function) (*reinterpret_cast<decltype(&function)>(symbol(#function)))
#define SUCCEEDS(function, ...) EXPECT_EQ(GENTL(function)(__VA_ARGS__), GC_ERR_SUCCESS)

/// The size of a buffer, to be passed by its address.
struct Room {
  std::size_t size;
  operator std::size_t*() { return &size; }
};

/// A number, or a text as a `std::string`, by a function that takes an info command after `first`.
template <class T, class Function, class... First>
T ask(Function& function, std::int32_t command, First... first) {
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  constexpr bool isText = std::is_same_v<T, std::string>;
  std::conditional_t<isText, char[600], T> value{};
  EXPECT_EQ(function(first..., command, &type, &value, Room{sizeof value}), GC_ERR_SUCCESS);
  EXPECT_EQ(type == INFO_DATATYPE_STRING, isText) << command;
  return value;
}

std::pair<GC_ERROR, std::string> lastError() {
  GC_ERROR code = 1;
  char text[300] = "";
  SUCCEEDS(GCGetLastError, &code, text, Room{sizeof text});
  return {code, text};
}

/// A port of the producer as a device of the GenApi library.
struct PortDevice {
  ArvDevice parent;
  PORT_HANDLE port;
  ArvGc* features;
};
using PortDeviceClass = ArvDeviceClass;
G_DEFINE_TYPE(PortDevice, port_device, ARV_TYPE_DEVICE)

template <auto function, class Pointer>
gboolean access(ArvDevice* device, guint64 address, guint32 size, Pointer data, GError** error) {
  std::size_t bytes = size;
  const GC_ERROR code =
      function(reinterpret_cast<PortDevice*>(device)->port, address, data, &bytes);
  if (code != GC_ERR_SUCCESS)
    g_set_error_literal(error, ARV_DEVICE_ERROR, code, lastError().second.c_str());
  return code == GC_ERR_SUCCESS;
}
void port_device_init(PortDevice*) {}
void port_device_class_init(PortDeviceClass* type) {
  type->get_genicam = [](ArvDevice* d) { return reinterpret_cast<PortDevice*>(d)->features; };
  type->read_memory = access<[](auto... all) { return GENTL(GCReadPort)(all...); }, void*>;
  type->write_memory = access<[](auto... all) { return GENTL(GCWritePort)(all...); }, void*>;
}

std::string documentOf(PORT_HANDLE port) {
  const auto url = ask<std::string>(GENTL(GCGetPortURLInfo), URL_INFO_URL, port, 0U);
  std::smatch parts;
  const std::regex form("Local:([^;]+\\.xml);([0-9A-F]+);([0-9A-F]+)");
  EXPECT_TRUE(std::regex_match(url, parts, form)) << url;
  const std::uint64_t address = std::stoull(parts[2], nullptr, 16);
  std::string text(std::stoull(parts[3], nullptr, 16), '?');
  EXPECT_GT(address, 0x7FFFFFFFU);  // No parameter id.
  SUCCEEDS(GCReadPort, port, address, text.data(), Room{text.size()});
  char behind = 0;
  EXPECT_EQ(GENTL(GCReadPort)(port, address + text.size(), &behind, Room{1}),
            GC_ERR_INVALID_ADDRESS);
  return text;
}

/// The features of a port.
class Features {
 public:
  explicit Features(PORT_HANDLE port)
      : text_(documentOf(port)),
        device_(static_cast<PortDevice*>(g_object_new(port_device_get_type(), nullptr))) {
    device_->port = port;
    device_->features = arv_gc_new(ARV_DEVICE(device_), text_.data(), text_.size());
    EXPECT_TRUE(device_->features);
  }
  Features(const Features&) = delete;
  ~Features() { g_object_unref(device_->features), g_object_unref(device_); }

  /// The value as text, or why there is none.
  std::string get(const char* name) const {
    GError* error = nullptr;
    const char* value = arv_gc_feature_node_get_value_as_string(feature(name), &error);
    return done(error, value ? value : "");
  }
  std::string set(const char* name, const char* value) const {
    GError* error = nullptr;
    arv_gc_feature_node_set_value_from_string(feature(name), value, &error);
    return done(error, "");
  }
  std::string execute(const char* name) const {
    GError* error = nullptr;
    arv_gc_command_execute(ARV_GC_COMMAND(feature(name)), &error);
    return done(error, "");
  }
  ArvGcFeatureNode* feature(const char* name) const {
    ArvGcNode* node = arv_gc_get_node(device_->features, name);
    EXPECT_TRUE(ARV_IS_GC_FEATURE_NODE(node)) << name;
    return ARV_GC_FEATURE_NODE(node);
  }
  std::uint64_t address(const char* name) const {
    ArvGcNode* node = arv_gc_get_node(device_->features, name);
    return arv_gc_register_get_address(ARV_GC_REGISTER(node), nullptr);
  }
  std::int64_t max(const char* name) const {
    return arv_gc_integer_get_max(ARV_GC_INTEGER(feature(name)), nullptr);
  }
  /// Names of all features below a category that have a value.
  std::vector<std::string> list(const char* category = "Root") const {
    std::vector<std::string> names;
    ArvGcNode* node = arv_gc_get_node(device_->features, category);
    for (const GSList* each = arv_gc_category_get_features(ARV_GC_CATEGORY(node)); each;
         each = each->next) {
      const char* name = static_cast<const char*>(each->data);
      if (ARV_IS_GC_CATEGORY(feature(name)))
        std::ranges::copy(list(name), std::back_inserter(names));
      else
        names.emplace_back(name);
    }
    return names;
  }
  const std::string& text() const { return text_; }

 private:
  static std::string done(GError* error, std::string value) {
    if (!error) return value;
    value = error->message;
    g_error_free(error);
    return value;
  }

  std::string text_;
  PortDevice* device_;
};

struct Port {
  DEV_HANDLE device = nullptr;
  PORT_HANDLE remote = nullptr;
  DS_HANDLE stream = nullptr;
  EVENT_HANDLE event = nullptr;  ///< New buffer.

  GC_ERROR start(std::uint64_t pictures = GENTL_INFINITE) const {
    return GENTL(DSStartAcquisition)(stream, ACQ_START_FLAGS_DEFAULT, pictures);
  }
  GC_ERROR stop() const { return GENTL(DSStopAcquisition)(stream, ACQ_STOP_FLAGS_DEFAULT); }
  BUFFER_HANDLE take() const {
    EVENT_NEW_BUFFER_DATA data{};
    SUCCEEDS(EventGetData, event, &data, Room{sizeof data}, 10000);
    return data.BufferHandle;
  }
  template <class T = std::uint64_t>
  T info(BUFFER_HANDLE buffer, BUFFER_INFO_CMD command) const {
    return ask<T>(GENTL(DSGetBufferInfo), command, stream, buffer);
  }
  std::uint64_t count(STREAM_INFO_CMD command) const {
    return ask<std::uint64_t>(GENTL(DSGetInfo), command, stream);
  }
  void await(STREAM_INFO_CMD command, std::uint64_t least) const {
    while (count(command) < least) std::this_thread::yield();
  }
};

constexpr std::uint64_t kOne = 1;
constexpr std::size_t kSmall = 16 * 8 * 3;

class GenTl : public testing::Test {
 protected:
  GenTl() {
    SUCCEEDS(GCInitLib);
    open();
  }
  ~GenTl() override { SUCCEEDS(GCCloseLib); }

  void open() {
    SUCCEEDS(TLOpen, &system);
    SUCCEEDS(TLOpenInterface, system, "velmora-board", &board);
  }
  /// A device that sends small pictures.
  Port openPort(unsigned number) {
    Port port;
    const std::string id = "velmora-port" + std::to_string(number);
    SUCCEEDS(IFOpenDevice, board, id.c_str(), DEVICE_ACCESS_CONTROL, &port.device);
    SUCCEEDS(DevGetPort, port.device, &port.remote);
    SUCCEEDS(DevOpenDataStream, port.device, (id + "-stream0").c_str(), &port.stream);
    SUCCEEDS(GCRegisterEvent, port.stream, EVENT_NEW_BUFFER, &port.event);
    for (const auto& [parameter, value] : {std::pair{FG_WIDTH, 16U}, {FG_HEIGHT, 8U}})
      SUCCEEDS(GCWritePort, port.remote, parameter, &value, Room{sizeof value});
    return port;
  }
  static std::vector<BUFFER_HANDLE> announce(const Port& port, unsigned count,
                                             std::size_t size = kSmall) {
    std::vector<BUFFER_HANDLE> buffers(count);
    for (auto& buffer : buffers) {
      SUCCEEDS(DSAllocAndAnnounceBuffer, port.stream, size, &buffer, &buffer);
      SUCCEEDS(DSQueueBuffer, port.stream, buffer);
    }
    return buffers;
  }

  TL_HANDLE system = nullptr;
  IF_HANDLE board = nullptr;
};

TEST(GenTlLibrary, ExportsExactlyTheStandardsFunctions) {
  std::ostringstream header;
  header << std::ifstream(GENTL_HEADER).rdbuf();
  const std::string text = header.str();
  std::set<std::string> declared, exported;
  const std::regex prototype("GC_API ([A-Z]\\w+)\\(");
  for (std::sregex_iterator it(text.begin(), text.end(), prototype), end; it != end; ++it)
    declared.insert((*it)[1]);
  std::FILE* const pipe = popen(NM " -D --defined-only --format=just-symbols " PRODUCER, "r");
  for (char name[100]; std::fscanf(pipe, "%99s", name) == 1;) exported.insert(name);
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_EQ(exported, declared);
  EXPECT_EQ(declared.size(), 64U);
}

TEST(GenTlLibrary, IsInitialisedAndOpenedOnce) {
  TL_HANDLE system = nullptr, second = nullptr;
  EXPECT_EQ(GENTL(TLOpen)(&system), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(GENTL(GCCloseLib)(), GC_ERR_NOT_INITIALIZED);
  EXPECT_EQ(ask<std::string>(GENTL(GCGetInfo), TL_INFO_NAME), "velmora.cti");
  for (int round = 0; round < 2; ++round) {
    SUCCEEDS(GCInitLib);
    EXPECT_EQ(GENTL(GCInitLib)(), GC_ERR_RESOURCE_IN_USE);
    SUCCEEDS(TLOpen, &system);
    EXPECT_EQ(GENTL(TLOpen)(&second), GC_ERR_RESOURCE_IN_USE);
    SUCCEEDS(GCCloseLib);
    EXPECT_EQ(GENTL(TLClose)(system), GC_ERR_NOT_INITIALIZED);
  }
}

TEST_F(GenTl, OpensTheBoardOfADesignFile) {
  const std::filesystem::path before = std::filesystem::current_path();
  const std::string file = testing::TempDir() + "gentl_board.design";
  std::ostringstream design;
  design << std::ifstream(DESIGN_MANIFEST).rdbuf();
  // One that lacks a parameter.
  std::ofstream(file) << std::regex_replace(design.str(), std::regex("\n[^\n]*_XOffset[^\n]*"), "");
  SUCCEEDS(IFClose, board);
  setenv("VELMORA_BOARD", "/nowhere.design", 1);
  EXPECT_EQ(GENTL(TLOpenInterface)(system, "velmora-board", &board), GC_ERR_IO);
  EXPECT_THAT(lastError().second, AllOf(HasSubstr("/nowhere.design"), HasSubstr("-100")));
  setenv("VELMORA_BOARD", file.c_str(), 1);
  SUCCEEDS(TLOpenInterface, system, "velmora-board", &board);
  unsetenv("VELMORA_BOARD");
  EXPECT_EQ(std::filesystem::current_path(), before);
  const Features features(openPort(0).remote);
  EXPECT_EQ(features.set("OffsetY", "4"), "");
  EXPECT_THAT(features.set("OffsetX", "4"), HasSubstr("FG_XOFFSET: -2080, no such design"));
}

/// Asks for every command as the standard lets one ask, and returns those that were answered.
template <class Function, class... First>
std::set<std::int32_t> askAll(Function& function, First... first) {
  std::set<std::int32_t> answered;
  for (std::int32_t command = 0; command < 40; ++command) {
    SCOPED_TRACE(command);
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t needed = 0;
    const GC_ERROR code = function(first..., command, &type, nullptr, &needed);
    if (code != GC_ERR_SUCCESS) {
      EXPECT_TRUE(code == GC_ERR_NOT_IMPLEMENTED || code == GC_ERR_NOT_AVAILABLE);
      continue;
    }
    answered.insert(command);
    EXPECT_GT(needed, 0U);
    Bytes room(needed + 1, 0xEE);
    const auto answer = [&](std::size_t* size) {
      return function(first..., command, &type, room.data(), size);
    };
    EXPECT_EQ(answer(Room{needed - 1}), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(answer(nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_THAT(room, Each(0xEE));
    std::size_t size = room.size();
    EXPECT_EQ(answer(&size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, needed);
    EXPECT_EQ(room[needed], 0xEE);
    EXPECT_TRUE(type != INFO_DATATYPE_STRING || room[needed - 1] == 0);
  }
  return answered;
}
std::set<std::int32_t> upTo(std::int32_t last, const std::set<std::int32_t>& without = {}) {
  std::set<std::int32_t> all;
  for (std::int32_t command = 0; command <= last; ++command)
    if (!without.contains(command)) all.insert(command);
  return all;
}

TEST_F(GenTl, EveryInfoCommandAnswers) {
  const Port port = openPort(2);
  const BUFFER_HANDLE buffer = announce(port, 1).front();
  auto always = upTo(BUFFER_INFO_SIZE_FILLED, {BUFFER_INFO_TIMESTAMP});
  always.insert(BUFFER_INFO_IS_COMPOSITE);
  EXPECT_EQ(askAll(GENTL(DSGetBufferInfo), port.stream, buffer), always);  // Not delivered.
  EXPECT_EQ(port.start(1), GC_ERR_SUCCESS);
  EXPECT_EQ(Features(port.remote).execute("AcquisitionStart"), "");
  EXPECT_EQ(port.take(), buffer);
  const EVENT_NEW_BUFFER_DATA data{buffer, nullptr};
  const void* const bytes = &data;
  const auto device = upTo(DEVICE_INFO_TIMESTAMP_FREQUENCY, {DEVICE_INFO_USER_DEFINED_NAME});
  const std::pair<std::set<std::int32_t>, std::set<std::int32_t>> answers[] = {
      {askAll(GENTL(DSGetBufferInfo), port.stream, buffer),
       upTo(BUFFER_INFO_IS_COMPOSITE, {BUFFER_INFO_CHUNKLAYOUTID, BUFFER_INFO_FILENAME})},
      {askAll(GENTL(GCGetInfo)), upTo(TL_INFO_GENTL_VER_MINOR)},
      {askAll(GENTL(TLGetInfo), system), upTo(TL_INFO_GENTL_VER_MINOR)},
      {askAll(GENTL(TLGetInterfaceInfo), system, "velmora-board"), upTo(INTERFACE_INFO_TLTYPE)},
      {askAll(GENTL(IFGetInfo), board), upTo(INTERFACE_INFO_TLTYPE)},
      {askAll(GENTL(IFGetDeviceInfo), board, "velmora-port3"), device},
      {askAll(GENTL(DevGetInfo), port.device), device},
      {askAll(GENTL(DSGetInfo), port.stream), upTo(STREAM_INFO_BUF_ALIGNMENT)},
      {askAll(GENTL(EventGetInfo), port.event), upTo(EVENT_INFO_DATA_SIZE_MAX)},
      {askAll(GENTL(EventGetDataInfo), port.event, bytes, sizeof data), upTo(EVENT_DATA_NUMID)}};
  for (const auto& [answered, expected] : answers) EXPECT_EQ(answered, expected);
  std::array<void*, 3> parents{};
  SUCCEEDS(IFGetParentTL, board, &parents[0]);
  SUCCEEDS(DevGetParentIF, port.device, &parents[1]);
  SUCCEEDS(DSGetParentDev, port.stream, &parents[2]);
  EXPECT_EQ(parents, (std::array{system, board, port.device}));
  std::uint32_t parts = 7;
  SUCCEEDS(DSGetNumBufferParts, port.stream, buffer, &parts);
  EXPECT_EQ(parts, 0U);
}

TEST_F(GenTl, EveryModuleHasADocumentWhoseFeaturesCanBeRead) {
  const Port port = openPort(1);
  const BUFFER_HANDLE buffer = announce(port, 1).front();
  const std::tuple<PORT_HANDLE, const char*, std::vector<std::string>> modules[] = {
      {system,
       "TLSystem",
       {"TLID", "TLVendorName", "TLType", "InterfaceUpdateList", "InterfaceID"}},
      {board, "TLInterface", {"InterfaceID", "DeviceUpdateList", "DeviceSelector", "DeviceID"}},
      {port.device, "TLDevice", {"DeviceID", "DeviceVendorName", "StreamSelector", "StreamID"}},
      {port.stream, "TLDataStream", {"StreamID", "StreamType", "StreamAnnouncedBufferCount"}},
      {buffer, "TLBuffer", {"BufferUserData"}},
      {port.remote,
       "Device",
       {"DeviceVendorName", "DeviceModelName", "DeviceVersion", "Width", "PixelFormat",
        "PayloadSize", "AcquisitionStart", "TriggerSoftware", "TestPattern", "FG_WIDTH"}}};
  for (const auto& [handle, name, expected] : modules) {
    SCOPED_TRACE(name);
    EXPECT_EQ(askAll(GENTL(GCGetPortInfo), handle), upTo(PORT_INFO_PORTNAME));
    EXPECT_EQ(askAll(GENTL(GCGetPortURLInfo), handle, 0U),
              upTo(URL_INFO_SCHEME, {URL_INFO_FILE_SHA1_HASH}));
    EXPECT_EQ(ask<std::string>(GENTL(GCGetPortInfo), PORT_INFO_MODULE, handle), name);
    const Features features(handle);
    const auto all = features.list();
    EXPECT_THAT(all, testing::IsSupersetOf(expected));
    for (const std::string& feature : all) {
      const bool readable =
          !feature.starts_with("Event") && !ARV_IS_GC_COMMAND(features.feature(feature.c_str()));
      EXPECT_TRUE(!readable || features.get(feature.c_str()) != "") << feature;
    }
    EXPECT_EQ(features.text().substr(features.text().size() - 2), ">\n");
  }
  const Features interface(board);
  EXPECT_EQ(interface.set("DeviceSelector", "3"), "");
  EXPECT_EQ(interface.get("DeviceID"), "velmora-port3");
  EXPECT_EQ(interface.get("DeviceAccessStatus"), "ReadWrite");
}

TEST_F(GenTl, StandardFeaturesMoveParametersAndBack) {
  const std::array<const char*, 4> steps[] = {
      // Set, to this, and a parameter is this.
      {"Width", "512", "FG_WIDTH", "512"},
      {"FG_HEIGHT", "100", "Height", "100"},
      {"Height", "256", "PayloadSize", "393216"},
      {"OffsetX", "1024", "FG_XOFFSET", "1024"},
      {"OffsetY", "7", "FG_YOFFSET", "7"},
      {"OffsetY", "8", "HeightMax", "65527"},
      {"TestPattern", "GreyDiagonalRampMoving", "FG_GEN_ENABLE", "FG_GENERATOR"},
      {"FG_GEN_ENABLE", "FG_CAMPORT", "TestPattern", "Off"},
      {"TestPattern", "Off", "FG_TRIGGERSTATE", "TS_ACTIVE"},
      {"AcquisitionFrameRate", "25", "FG_TRIGGER_FRAMESPERSECOND", "25"},
      {"FG_TRIGGERSTATE", "TS_ASYNC_STOP", "TriggerMode", "Off"},
      {"TriggerMode", "Off", "FG_TRIGGERSTATE", "TS_ACTIVE"},
      {"FG_TRIGGERSTATE", "TS_ASYNC_STOP", "TriggerMode", "Off"},
      {"AcquisitionFrameRate", "50", "FG_TRIGGERSTATE", "TS_ACTIVE"},
      {"TriggerMode", "On", "FG_AREATRIGGERMODE", "ATM_SOFTWARE"},
      {"TriggerSource", "Line6", "FG_TRIGGERIN_SRC", "TRGINSRC_6"},
      {"TriggerActivation", "FallingEdge", "FG_TRIGGERIN_POLARITY", "LOW_ACTIVE"},
      {"FG_TRIGGERIN_SRC", "TRGINSRC_2", "TriggerSource", "Line2"},
      {"TestPattern", "GreyDiagonalRampMoving", "FG_TRIGGERSTATE", "TS_ASYNC_STOP"},
      {"TestPattern", "Off", "TriggerMode", "On"},
      {"TriggerMode", "Off", "FG_AREATRIGGERMODE", "ATM_GENERATOR"},
      {"FG_GEN_ENABLE", "FG_GENERATOR", "FG_TRIGGERSTATE", "TS_ACTIVE"},
      {"TestPattern", "GreyDiagonalRampMoving", "FG_TRIGGERSTATE", "TS_ASYNC_STOP"},
      {"TriggerMode", "Off", "FG_TRIGGERSTATE", "TS_ASYNC_STOP"},
      {"TestPattern", "Off", "FG_TRIGGERSTATE", "TS_ACTIVE"},
      {"FG_SCALINGFACTOR_BLUE", "1.5", "BalanceRatio", "1"},
      {"BalanceRatioSelector", "Blue", "BalanceRatio", "1.5"},
      {"BalanceRatio", "0.5", "FG_SCALINGFACTOR_BLUE", "0.5"},
  };
  for (unsigned number = 0; number < 4; ++number) {
    const Port port = openPort(number);
    const Features features(port.remote);
    EXPECT_EQ(features.get("AcquisitionFrameRate"), "30");
    for (const auto& [feature, value, other, expected] : steps) {
      EXPECT_EQ(features.set(feature, value), "") << feature;
      EXPECT_EQ(features.get(other), expected) << feature << ' ' << other;
    }
    EXPECT_THAT(features.set("Width", "513"),
                HasSubstr("FG_WIDTH: -7080, value breaks a step rule"));
    EXPECT_EQ(lastError().first, GC_ERR_INVALID_VALUE);
    EXPECT_THAT(features.execute("TriggerSoftware"), HasSubstr("-2140"));
    const auto write = [&](std::uint64_t address, std::size_t size) {
      const std::uint32_t word = 1;
      return GENTL(GCWritePort)(port.remote, address, &word, Room{size});
    };
    EXPECT_EQ(write(FG_CAMSTATUS, 4), GC_ERR_ACCESS_DENIED);
    EXPECT_THAT(lastError().second, HasSubstr("FG_CAMSTATUS: -12, "));
    EXPECT_EQ(write(12345, 4), GC_ERR_INVALID_ADDRESS);
    for (const char* name : {"TriggerMode_Reg", "AcquisitionStart_Reg"})
      EXPECT_EQ(GENTL(GCWritePort)(port.remote, features.address(name), &kSmall, Room{8}),
                GC_ERR_INVALID_VALUE);
    EXPECT_EQ(write(FG_WIDTH, 2), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(features.set("TestPattern", "GreyDiagonalRampMoving"), "");
    EXPECT_THAT(features.get("AcquisitionFrameRate"), HasSubstr("TestPattern is on"));
    EXPECT_FALSE(
        arv_gc_feature_node_is_available(features.feature("AcquisitionFrameRate"), nullptr));
    for (const char* name : {"TriggerMode_Reg", "AcquisitionFrameRate_Reg"})
      EXPECT_EQ(GENTL(GCWritePort)(port.remote, features.address(name), &kOne, Room{sizeof kOne}),
                GC_ERR_ACCESS_DENIED);
    std::thread([] { EXPECT_EQ(lastError().first, GC_ERR_SUCCESS); }).join();
  }
}

TEST_F(GenTl, ARefusedWriteChangesNothing) {
  const Port port = openPort(2);
  const Features features(port.remote);
  const std::pair<const char*, const char*> writes[] = {{"TriggerMode", "On"},
                                                        {"TriggerSource", "Line6"},
                                                        {"FG_AREATRIGGERMODE", "ATM_SYNCHRONIZED"},
                                                        {"TriggerSource", "Line2"},
                                                        {"TriggerMode", "Off"},
                                                        {"AcquisitionFrameRate", "20"},
                                                        {"TriggerMode", "On"},
                                                        {"TriggerSource", "Software"},
                                                        {"TriggerMode", "Off"}};
  const auto state = [&] {
    std::vector<std::string> values;
    for (const char* name : {"TriggerMode", "TriggerSource", "AcquisitionFrameRate",
                             "FG_TRIGGERIN_SRC", "FG_AREATRIGGERMODE", "FG_TRIGGERSTATE"})
      values.push_back(features.get(name));
    return values;
  };
  unsigned refused = 0;
  for (const auto& [feature, value] : writes) {
    for (std::uint32_t k = 1;; ++k, ++refused) {  // Each access of the applet to the board fails.
      const auto before = state();
      EXPECT_EQ(GENTL(VirtualBoard_failAt)(VELMORA_COUNT_WRITES, k, VELMORA_BOARD_DOES_NOT_FIT), 0);
      const std::string result = features.set(feature, value);
      GENTL(VirtualBoard_clearFaults)();
      if (result.empty()) break;
      EXPECT_EQ(state(), before) << feature << ' ' << value << ' ' << k;
    }
    EXPECT_EQ(features.get(feature), value);
  }
  EXPECT_GT(refused, std::size(writes));
  // A start that was refused does not take effect later.
  announce(port, 1);
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  GENTL(VirtualBoard_failNamed)("Fg_AcquireEx", VELMORA_BOARD_BAD_ARGUMENT, 1);
  EXPECT_THAT(features.execute("AcquisitionStart"), HasSubstr("-2087, argument out of range"));
  EXPECT_EQ(port.stop(), GC_ERR_SUCCESS);
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  std::uint64_t data[2];
  EXPECT_EQ(GENTL(EventGetData)(port.event, data, Room{sizeof data}, 200), GC_ERR_TIMEOUT);
}

TEST_F(GenTl, LimitsMoveAndWhatDependsIsInvalidated) {
  const Port port = openPort(1);
  const Features features(port.remote);
  EVENT_HANDLE invalidated = nullptr;
  SUCCEEDS(GCRegisterEvent, port.device, EVENT_FEATURE_INVALIDATE, &invalidated);
  const auto changes = [&] {
    std::set<std::string> names;
    char data[300];
    while (GENTL(EventGetData)(invalidated, data, Room{sizeof data}, 0) == GC_ERR_SUCCESS)
      names.insert(ask<std::string>(GENTL(EventGetDataInfo), EVENT_DATA_ID, invalidated,
                                    static_cast<const void*>(data), sizeof data));
    return names;
  };
  using Names = std::set<std::string>;
  const std::tuple<const char*, const char*, const char*, std::int64_t, Names> steps[] = {
      // Set, to this, and another's limit is this, and these change.
      {"OffsetX", "8", "Width", 8184, {"Width", "OffsetX", "FG_WIDTH", "PayloadSize"}},
      {"Width", "1024", "OffsetX", 7160, {"Width", "OffsetX", "FG_XOFFSET", "PayloadSize"}},
      {"Width", "24", "FG_XOFFSET", 8160, {"Width", "OffsetX", "FG_XOFFSET", "PayloadSize"}},
      {"FG_TRIGGERIN_DOWNSCALE",
       "5",
       "FG_TRIGGERIN_DOWNSCALE_PHASE",
       4,
       {"FG_TRIGGERIN_DOWNSCALE_PHASE"}}};
  for (const auto& [feature, value, other, max, changed] : steps) {
    EXPECT_EQ(features.set(feature, value), "");
    EXPECT_EQ(features.max(other), max);
    EXPECT_EQ(changes(), changed) << feature;
  }
  EXPECT_EQ(features.set("TriggerMode", "On"), "");
  EXPECT_THAT(changes(), testing::IsSupersetOf({"FG_AREATRIGGERMODE", "TriggerSource"}));
  EXPECT_NE(features.set("Width", "13"), "");
  EXPECT_EQ(changes(), Names{});
}

/// Pictures of a device, which are the board's own, all of them and in their order.
void expectPictures(const Port& port, unsigned number, unsigned pictures) {
  std::uint64_t last = 0;
  for (unsigned i = 1; i <= pictures; ++i) {
    const BUFFER_HANDLE buffer = port.take();
    Bytes expected(kSmall);
    board::renderPicture(board::Camera{number}, i, {.xOffset = 4, .width = 16, .height = 8},
                         expected);
    const auto* pixels = port.info<const std::uint8_t*>(buffer, BUFFER_INFO_BASE);
    EXPECT_EQ(Bytes(pixels, pixels + expected.size()), expected) << i;
    const std::uint64_t time = port.info(buffer, BUFFER_INFO_TIMESTAMP);
    EXPECT_GT(time, std::exchange(last, time));
    const std::pair<BUFFER_INFO_CMD, std::uint64_t> infos[] = {
        {BUFFER_INFO_FRAMEID, i},
        {BUFFER_INFO_SIZE_FILLED, kSmall},
        {BUFFER_INFO_WIDTH, 16},
        {BUFFER_INFO_HEIGHT, 8},
        {BUFFER_INFO_XOFFSET, 4},
        {BUFFER_INFO_PAYLOADTYPE, PAYLOAD_TYPE_IMAGE},
        {BUFFER_INFO_PIXELFORMAT, 0x02180015}};
    for (const auto& [command, value] : infos) EXPECT_EQ(port.info(buffer, command), value);
    SUCCEEDS(DSQueueBuffer, port.stream, buffer);
  }
}

TEST_F(GenTl, FourDevicesDeliverTheBoardsPictures) {
  std::vector<std::jthread> threads;
  for (unsigned number = 0; number < 4; ++number) {
    const Port port = openPort(number);
    const Features features(port.remote);
    for (const auto& [name, value] : {std::pair{"OffsetX", "4"},
                                      {"AcquisitionFrameRate", "500"},
                                      {"AcquisitionMode", "MultiFrame"},
                                      {"AcquisitionFrameCount", "40"}})
      EXPECT_EQ(features.set(name, value), "");
    announce(port, 40);
    threads.emplace_back([port, number, start = features.address("AcquisitionStart_Reg")] {
      for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
        EXPECT_EQ(port.start(), GC_ERR_RESOURCE_IN_USE);
        SUCCEEDS(GCWritePort, port.remote, start, &kOne, Room{sizeof kOne});
        expectPictures(port, number, 40);
        EXPECT_EQ(port.count(STREAM_INFO_NUM_DELIVERED), 40U);
        EXPECT_EQ(port.count(STREAM_INFO_NUM_UNDERRUN), 0U);
        EXPECT_EQ(port.stop(), GC_ERR_SUCCESS);
        SUCCEEDS(DSFlushQueue, port.stream, ACQ_QUEUE_ALL_TO_INPUT);
      }
      EXPECT_EQ(port.stop(), GC_ERR_RESOURCE_IN_USE);
    });
  }
}

TEST_F(GenTl, EveryStartGoesOnWithThePictures) {
  const Port port = openPort(1);
  const Features features(port.remote);
  EXPECT_EQ(features.set("AcquisitionMode", "SingleFrame"), "");
  announce(port, 3);
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  const auto late = [](void*, const VirtualBoardAccess* access) {
    if (access->name == std::string_view("Fg_stopAcquireEx"))
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
  };
  EXPECT_EQ(GENTL(VirtualBoard_observe)(late, nullptr, nullptr), 0);
  for (const std::uint64_t id : {1U, 2U, 3U}) {  // The one before has not ended yet.
    EXPECT_EQ(features.execute("AcquisitionStart"), "");
    EXPECT_EQ(port.info(port.take(), BUFFER_INFO_FRAMEID), id);
  }
  GENTL(VirtualBoard_observe)(nullptr, nullptr, nullptr);
}

TEST_F(GenTl, BuffersGoTheirWay) {
  const Port port = openPort(0);
  const Features features(port.remote);
  EXPECT_EQ(features.set("AcquisitionFrameRate", "1000"), "");
  const auto buffers = announce(port, 3);
  using States = std::array<std::uint64_t, 2>;  // In the input pool, in the output queue.
  const auto states = [&] {
    return States{port.count(STREAM_INFO_NUM_QUEUED), port.count(STREAM_INFO_NUM_AWAIT_DELIVERY)};
  };
  const auto flush = [&](ACQ_QUEUE_TYPE how) {
    SUCCEEDS(DSFlushQueue, port.stream, how);
    return states();
  };
  EXPECT_EQ(GENTL(DSQueueBuffer)(port.stream, buffers[0]), GC_ERR_RESOURCE_IN_USE);
  void *base = nullptr, *user = nullptr;
  EXPECT_EQ(GENTL(DSRevokeBuffer)(port.stream, buffers[0], &base, &user), GC_ERR_BUSY);
  // A consumer that queues nothing gets what there was room for, and a count.
  EXPECT_EQ(features.execute("AcquisitionStart"), "");
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  EXPECT_THAT(features.set("AcquisitionMode", "SingleFrame"), HasSubstr("the camera is sending"));
  for (const std::uint64_t id : {1U, 2U, 3U})
    EXPECT_EQ(port.info(port.take(), BUFFER_INFO_FRAMEID), id);
  port.await(STREAM_INFO_NUM_UNDERRUN, 5);
  EXPECT_EQ(states(), (States{0, 0}));
  SUCCEEDS(DSQueueBuffer, port.stream, buffers[1]);
  EXPECT_EQ(port.take(), buffers[1]);
  EXPECT_GT(port.info(buffers[1], BUFFER_INFO_FRAMEID), 8U);
  EXPECT_EQ(features.execute("AcquisitionStop"), "");
  // The flush modes, while no pictures come.
  const std::pair<ACQ_QUEUE_TYPE, States> flushes[] = {
      {ACQ_QUEUE_UNQUEUED_TO_INPUT, {3, 0}}, {ACQ_QUEUE_INPUT_TO_OUTPUT, {0, 3}},
      {ACQ_QUEUE_ALL_TO_INPUT, {3, 0}},      {ACQ_QUEUE_ALL_DISCARD, {0, 0}},
      {ACQ_QUEUE_UNQUEUED_TO_INPUT, {3, 0}}, {ACQ_QUEUE_INPUT_TO_OUTPUT, {0, 3}},
      {ACQ_QUEUE_OUTPUT_DISCARD, {0, 0}},    {ACQ_QUEUE_UNQUEUED_TO_INPUT, {3, 0}},
      {ACQ_QUEUE_INPUT_TO_OUTPUT, {0, 3}}};
  for (const auto& [how, expected] : flushes) EXPECT_EQ(flush(how), expected) << how;
  EXPECT_TRUE(port.info<bool>(buffers[0], BUFFER_INFO_IS_INCOMPLETE));
  EXPECT_FALSE(port.info<bool>(buffers[0], BUFFER_INFO_NEW_DATA));
  SUCCEEDS(EventFlush, port.event);
  EXPECT_EQ(states(), (States{0, 0}));
  EXPECT_EQ(port.count(STREAM_INFO_NUM_DELIVERED), 4U);  // Those that were taken.
  EXPECT_EQ(port.stop(), GC_ERR_SUCCESS);
  // Pictures grow between two starts: buffers that are too small are refused.
  EXPECT_EQ(features.set("Width", "32"), "");
  EXPECT_EQ(features.get("PayloadSize"), std::to_string(2 * kSmall));
  EXPECT_EQ(port.count(STREAM_INFO_PAYLOAD_SIZE), 2 * kSmall);
  SUCCEEDS(DSQueueBuffer, port.stream, buffers[0]);
  EXPECT_EQ(port.start(), GC_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(flush(ACQ_QUEUE_ALL_DISCARD), (States{0, 0}));
  // An acquisition of a number ends by itself.
  announce(port, 5, 2 * kSmall);
  EXPECT_EQ(port.start(4), GC_ERR_SUCCESS);
  EXPECT_EQ(features.execute("AcquisitionStart"), "");
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(port.info(port.take(), BUFFER_INFO_SIZE_FILLED), 2 * kSmall);
  while (ask<bool>(GENTL(DSGetInfo), STREAM_INFO_IS_GRABBING, port.stream))
    std::this_thread::yield();
  EXPECT_EQ(port.count(STREAM_INFO_NUM_DELIVERED), 4U);
  EXPECT_EQ(port.stop(), GC_ERR_SUCCESS);
  SUCCEEDS(DSRevokeBuffer, port.stream, buffers[0], &base, &user);
  EXPECT_EQ(GENTL(DSRevokeBuffer)(port.stream, buffers[0], &base, &user), GC_ERR_INVALID_HANDLE);
}

TEST_F(GenTl, BuffersComeAndGoWhileItAcquires) {
  const Port port = openPort(0);
  const Features features(port.remote);
  for (const auto& [name, value] :
       {std::pair{"Width", "512"}, {"Height", "512"}, {"AcquisitionFrameRate", "10000"}})
    EXPECT_EQ(features.set(name, value), "");
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  EXPECT_EQ(features.execute("AcquisitionStart"), "");
  Bytes memory(512 * 512 * 3);
  for (int i = 0; i < 9; ++i) {
    BUFFER_HANDLE buffer = nullptr;
    SUCCEEDS(DSAnnounceBuffer, port.stream, memory.data(), memory.size(), nullptr, &buffer);
    SUCCEEDS(DSQueueBuffer, port.stream, buffer);
    std::uint32_t used = 0;  // Percent of the board's buffers.
    SUCCEEDS(GCReadPort, port.remote, FG_FILLLEVEL, &used, Room{sizeof used});
    EXPECT_EQ(used % 100, 0U);
    EXPECT_EQ(port.take(), buffer);
    SUCCEEDS(DSRevokeBuffer, port.stream, buffer, nullptr, nullptr);
  }
  const auto buffers = announce(port, 4, memory.size());  // Soon with pictures on their way.
  port.take();
  BUFFER_HANDLE small = nullptr;
  SUCCEEDS(DSAllocAndAnnounceBuffer, port.stream, kSmall, nullptr, &small);
  EXPECT_EQ(GENTL(DSFlushQueue)(port.stream, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_BUFFER_TOO_SMALL);
  SUCCEEDS(DSFlushQueue, port.stream, ACQ_QUEUE_ALL_DISCARD);
  for (const BUFFER_HANDLE buffer : buffers)
    SUCCEEDS(DSRevokeBuffer, port.stream, buffer, nullptr, nullptr);
}

TEST_F(GenTl, EventsOfTheAppletAndOfLossArrive) {
  const Port port = openPort(3);
  const Features features(port.remote);
  EVENT_HANDLE remote = nullptr, module = nullptr, again = nullptr;
  SUCCEEDS(GCRegisterEvent, port.device, EVENT_REMOTE_DEVICE, &remote);
  EXPECT_EQ(GENTL(GCRegisterEvent)(port.device, EVENT_REMOTE_DEVICE, &again),
            GC_ERR_RESOURCE_IN_USE);
  EXPECT_EQ(GENTL(GCRegisterEvent)(port.device, EVENT_NEW_BUFFER, &again), GC_ERR_NOT_IMPLEMENTED);
  SUCCEEDS(GCRegisterEvent, port.stream, EVENT_MODULE, &module);
  announce(port, 1);
  EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
  EXPECT_EQ(features.execute("AcquisitionStart"), "");
  std::uint64_t data[2] = {};
  const auto get = [&](EVENT_HANDLE event, std::uint64_t timeout) {
    return GENTL(EventGetData)(event, data, Room{sizeof data}, timeout);
  };
  std::set<std::string> seen;
  while (seen.size() < 2) {  // Start and end of this port's pictures, and nothing of the others.
    EXPECT_EQ(get(remote, 10000), GC_ERR_SUCCESS);
    seen.insert(
        ask<std::string>(GENTL(EventGetDataInfo), EVENT_DATA_ID, remote, data, sizeof data));
  }
  for (const std::string& id : seen)
    EXPECT_THAT(features.text(), testing::ContainsRegex(
                                     "_FRAME_CAM_PORT_DTimestamp_Event\">\n<EventID>" + id + "<"));
  const BUFFER_HANDLE buffer = port.take();
  port.await(STREAM_INFO_NUM_UNDERRUN, 1);
  SUCCEEDS(DSQueueBuffer, port.stream, buffer);
  EXPECT_EQ(get(module, 10000), GC_ERR_SUCCESS);
  EXPECT_GE(data[1], 1U);  // Lost ones.
  EXPECT_THAT(Features(port.stream).text(), HasSubstr("<EventID>" + std::to_string(data[0]) + "<"));
  EXPECT_EQ(port.stop(), GC_ERR_SUCCESS);
  SUCCEEDS(EventFlush, module);
  EXPECT_EQ(get(module, 0), GC_ERR_TIMEOUT);
  SUCCEEDS(EventKill, module);
  EXPECT_EQ(get(module, 10000), GC_ERR_ABORT);
  std::jthread waits([module] {
    std::uint64_t unused[2];
    const GC_ERROR code = GENTL(EventGetData)(module, unused, Room{16}, GENTL_INFINITE);
    EXPECT_TRUE(code == GC_ERR_ABORT || code == GC_ERR_INVALID_HANDLE) << code;
  });
  SUCCEEDS(GCUnregisterEvent, port.stream, EVENT_MODULE);
  EXPECT_EQ(GENTL(EventKill)(module), GC_ERR_INVALID_HANDLE);
}

TEST_F(GenTl, ClosingInAnyOrderLeavesStaleHandles) {
  for (const int order : {0, 1, 2, 3}) {
    const Port port = openPort(0);
    const BUFFER_HANDLE buffer = announce(port, 4).front();
    EXPECT_EQ(port.start(), GC_ERR_SUCCESS);
    EXPECT_EQ(Features(port.remote).execute("AcquisitionStart"), "");
    port.take();
    const std::function<GC_ERROR()> closes[] = {
        [&] { return GENTL(DSClose)(port.stream); }, [&] { return GENTL(DevClose)(port.device); },
        [&] { return GENTL(IFClose)(board); }, [&] { return GENTL(TLClose)(system); }};
    for (int i = order; i < 4; ++i) EXPECT_EQ(closes[i](), GC_ERR_SUCCESS);
    EXPECT_EQ(GENTL(TLClose)(system), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GENTL(IFClose)(board), GC_ERR_INVALID_HANDLE);
    open();
    char byte = 0;
    PORT_HANDLE none = nullptr;
    for (void* const handle : {port.device, port.remote, port.stream, port.event, buffer, none,
                               static_cast<void*>(&byte)}) {
      EXPECT_EQ(GENTL(GCReadPort)(handle, 0, &byte, Room{1}), GC_ERR_INVALID_HANDLE);
      EXPECT_EQ(GENTL(DevGetPort)(handle, &none), GC_ERR_INVALID_HANDLE);
      EXPECT_EQ(GENTL(DSQueueBuffer)(port.stream, handle), GC_ERR_INVALID_HANDLE);
      EXPECT_EQ(GENTL(EventGetData)(handle, &byte, Room{1}, 0), GC_ERR_INVALID_HANDLE);
      EXPECT_EQ(GENTL(DSClose)(handle), GC_ERR_INVALID_HANDLE);
    }
    EXPECT_EQ(GENTL(DSQueueBuffer)(board, system), GC_ERR_INVALID_HANDLE);  // Of another kind.
  }
}

TEST_F(GenTl, CallsMayOverlapClosing) {
  std::atomic<bool> done{false};
  std::atomic<DEV_HANDLE> device{nullptr};
  std::vector<std::jthread> threads;
  const auto use = [&] {
    while (!done) {
      Port port{.device = device};
      BUFFER_HANDLE buffer = nullptr;
      std::uint64_t data[2] = {};
      INFO_DATATYPE type = 0;
      GENTL(DevGetPort)(port.device, &port.remote);
      GENTL(GCReadPort)(port.remote, FG_WIDTH, data, Room{4});
      GENTL(DevOpenDataStream)(port.device, "velmora-port0-stream0", &port.stream);
      GENTL(GCRegisterEvent)(port.stream, EVENT_NEW_BUFFER, &port.event);
      for (int j = 0; j < 3; ++j) {
        GENTL(DSAllocAndAnnounceBuffer)(port.stream, kSmall, nullptr, &buffer);
        GENTL(DSQueueBuffer)(port.stream, buffer);
      }
      port.start();
      GENTL(DSGetInfo)(port.stream, STREAM_INFO_NUM_QUEUED, &type, data, Room{8});
      GENTL(EventGetData)(port.event, data, Room{sizeof data}, 5);
      EXPECT_NE(GENTL(DSClose)(port.stream), GC_ERR_ERROR);
      EXPECT_NE(lastError().first, GC_ERR_ERROR);
    }
  };
  for (int i = 0; i < 3; ++i) threads.emplace_back(use);
  for (int round = 0; round < 10; ++round) {
    const Port port = openPort(0);
    SUCCEEDS(DSClose, port.stream);
    EXPECT_EQ(Features(port.remote).execute("AcquisitionStart"), "");
    device = port.device;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    SUCCEEDS(DevClose, port.device);
  }
  done = true;
}

}  // namespace
