/// The standard's functions: each finds its modules and calls them. Nothing but results leaves.
#include <new>

#include "gentl/system.h"

namespace {

using namespace gentl;

thread_local GC_ERROR lastCode = GC_ERR_SUCCESS;
thread_local char lastText[256] = "no error";

GC_ERROR record(GC_ERROR code, const char* text) noexcept {
  lastCode = code;
  std::snprintf(lastText, sizeof lastText, "%s", text);
  return code;
}

/// Runs a function's body and turns what it throws into the result.
template <class Body>
GC_ERROR guarded(const Body& body) noexcept {
  try {
    body();
    return GC_ERR_SUCCESS;
  } catch (const Failure& failure) {
    return record(failure.code, failure.text.c_str());
  } catch (const std::bad_alloc&) {
    return record(GC_ERR_OUT_OF_MEMORY, "out of memory");
  } catch (const std::exception& error) {
    return record(GC_ERR_ERROR, error.what());
  } catch (...) {
    return record(GC_ERR_ERROR, "unknown error");
  }
}

/// The same for a function that takes a handle.
template <class Kind, class Body>
GC_ERROR with(const void* handle, const Body& body) noexcept {
  return guarded([&] {
    Registry::instance().requireOpen();
    body(*Registry::instance().find<Kind>(handle));
  });
}

/// The same for one that opens or closes modules; `Body` is run under the lock for that.
template <class Kind, class Body>
GC_ERROR changing(const void* handle, const Body& body) noexcept {
  return guarded([&] {
    Registry::instance().requireOpen();
    const std::lock_guard guard(Registry::instance().structure);
    body(*Registry::instance().find<Kind>(handle));
  });
}

template <class Body>
GC_ERROR withBuffer(DS_HANDLE stream, BUFFER_HANDLE handle, const Body& body) noexcept {
  return with<Stream>(stream, [&](Stream& found) { body(found, *found.buffer(handle)); });
}

template <class T>
void put(T* out, T value) {
  requirePointer(out);
  *out = value;
}

std::string_view textOf(const char* text) {
  requirePointer(text);
  return text;
}

void requireIndex(std::uint32_t index, std::uint32_t count) {
  require(index < count, GC_ERR_INVALID_INDEX, "there are not as many");
}

/// The lists of this producer never change.
void unchanged(bool8_t* changed) {
  if (changed) *changed = false;
}

/// Closes what a consumer leaves open when the process ends or unloads the library.
struct LastOne {
  LastOne() { Registry::instance(), System::open(); }
  ~LastOne() {
    guarded([] {
      if (const auto system = System::open()) system->close();
    });
  }
} lastOne;

}  // namespace

GC_ERROR GCInitLib() {
  return guarded([] { Registry::instance().setOpen(true); });
}
GC_ERROR GCCloseLib() {
  return guarded([] {
    Registry::instance().requireOpen();
    const std::lock_guard guard(Registry::instance().structure);
    if (const auto system = System::open()) system->close();
    Registry::instance().setOpen(false);
  });
}
GC_ERROR GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
  return guarded([&] { systemInfo(command, type, buffer, size); });
}
GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
  try {
    requirePointer(code);
    *code = lastCode;
    storeText(lastText, text, size);
    return GC_ERR_SUCCESS;
  } catch (const Failure& failure) {
    return failure.code;  // The last error stays.
  } catch (...) {
    return GC_ERR_OUT_OF_MEMORY;
  }
}

// Ports.

GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
  return with<Module>(port, [&](Module& m) {
    requirePointer(buffer);
    requirePointer(size);
    m.read(address, buffer, *size);
  });
}
GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
  return with<Module>(port, [&](Module& m) {
    requirePointer(buffer);
    requirePointer(size);
    m.write(address, buffer, *size);
  });
}

namespace {

/// Goes through the entries up to the first that fails and tells how many went well.
template <class Access>
GC_ERROR stacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count,
                 const Access& access) noexcept {
  return with<Module>(port, [&](Module& m) {
    requirePointer(entries);
    requirePointer(count);
    const std::size_t all = *count;
    for (*count = 0; *count < all; ++*count) {
      requirePointer(entries[*count].pBuffer);
      access(m, entries[*count]);
    }
  });
}

}  // namespace

GC_ERROR GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return stacked(port, entries, count, [](Module& m, const PORT_REGISTER_STACK_ENTRY& entry) {
    m.read(entry.Address, entry.pBuffer, entry.Size);
  });
}
GC_ERROR GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return stacked(port, entries, count, [](Module& m, const PORT_REGISTER_STACK_ENTRY& entry) {
    m.write(entry.Address, entry.pBuffer, entry.Size);
  });
}
GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
  return with<Module>(port, [&](Module& m) { storeText(m.url(), url, size); });
}
GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
  return with<Module>(port, [&](Module&) { put(count, 1U); });
}
GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD command,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<Module>(port, [&](Module& m) {
    requireIndex(index, 1);
    m.urlInfo(command, type, buffer, size);
  });
}
GC_ERROR GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
  return with<Module>(port, [&](Module& m) { m.portInfo(command, type, buffer, size); });
}

// Events.

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event) {
  return changing<Module>(source, [&](Module& m) {
    requirePointer(event);
    *event = m.registerEvent(type)->handle;
  });
}
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type) {
  return changing<Module>(source, [&](Module& m) { m.unregisterEvent(type); });
}
GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t timeout) {
  return with<Event>(event, [&](Event& e) { e.queue->take(buffer, size, timeout); });
}
GC_ERROR EventGetDataInfo(EVENT_HANDLE event, const void* in, size_t inSize,
                          EVENT_DATA_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                          size_t* size) {
  return with<Event>(event, [&](Event& e) {
    requirePointer(in);
    e.dataInfo({static_cast<const char*>(in), inSize}, command, type, buffer, size);
  });
}
GC_ERROR EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                      size_t* size) {
  return with<Event>(event, [&](Event& e) { e.info(command, type, buffer, size); });
}
GC_ERROR EventFlush(EVENT_HANDLE event) {
  return with<Event>(event, [](Event& e) { e.queue->flush(); });
}
GC_ERROR EventKill(EVENT_HANDLE event) {
  return with<Event>(event, [](Event& e) { e.queue->kill(); });
}

// System.

GC_ERROR TLOpen(TL_HANDLE* system) {
  return guarded([&] {
    Registry::instance().requireOpen();
    requirePointer(system);
    const std::lock_guard guard(Registry::instance().structure);
    require(!System::open(), GC_ERR_RESOURCE_IN_USE, "the system is open");
    System::open() = std::make_shared<System>();
    *system = Registry::instance().add(System::open());
  });
}
GC_ERROR TLClose(TL_HANDLE system) {
  return changing<System>(system, [](System& s) { s.close(); });
}
GC_ERROR TLGetInfo(TL_HANDLE system, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<System>(system, [&](System&) { systemInfo(command, type, buffer, size); });
}
GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* count) {
  return with<System>(system, [&](System&) { put(count, 1U); });
}
GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* id, size_t* size) {
  return with<System>(system, [&](System&) {
    requireIndex(index, 1);
    storeText(kInterfaceId, id, size);
  });
}
GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD command,
                            INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<System>(system, [&](System&) {
    require(textOf(id) == kInterfaceId, GC_ERR_INVALID_ID, "no interface has this id");
    interfaceInfo(command, type, buffer, size);
  });
}
GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* opened) {
  return changing<System>(system, [&](System& s) {
    requirePointer(opened);
    *opened = s.openInterface(textOf(id))->handle;
  });
}
GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t /*timeout*/) {
  return with<System>(system, [&](System&) { unchanged(changed); });
}

// Interface.

GC_ERROR IFClose(IF_HANDLE handle) {
  return changing<Interface>(handle, [](Interface& i) { i.close(); });
}
GC_ERROR IFGetInfo(IF_HANDLE handle, INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<Interface>(handle, [&](Interface&) { interfaceInfo(command, type, buffer, size); });
}
GC_ERROR IFGetNumDevices(IF_HANDLE handle, uint32_t* count) {
  return with<Interface>(handle, [&](Interface&) { put<std::uint32_t>(count, VELMORA_PORTS); });
}
GC_ERROR IFGetDeviceID(IF_HANDLE handle, uint32_t index, char* id, size_t* size) {
  return with<Interface>(handle, [&](Interface&) {
    requireIndex(index, VELMORA_PORTS);
    storeText(deviceId(index), id, size);
  });
}
GC_ERROR IFUpdateDeviceList(IF_HANDLE handle, bool8_t* changed, uint64_t /*timeout*/) {
  return with<Interface>(handle, [&](Interface&) { unchanged(changed); });
}
GC_ERROR IFGetDeviceInfo(IF_HANDLE handle, const char* id, DEVICE_INFO_CMD command,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<Interface>(
      handle, [&](Interface& i) { deviceInfo(i.device(textOf(id)), command, type, buffer, size); });
}
GC_ERROR IFOpenDevice(IF_HANDLE handle, const char* id, DEVICE_ACCESS_FLAGS access,
                      DEV_HANDLE* opened) {
  return changing<Interface>(handle, [&](Interface& i) {
    requirePointer(opened);
    *opened = i.openDevice(textOf(id), access)->handle;
  });
}
GC_ERROR IFGetParentTL(IF_HANDLE handle, TL_HANDLE* system) {
  return with<Interface>(handle, [&](Interface& i) { put(system, i.parent->handle); });
}

// Device.

GC_ERROR DevClose(DEV_HANDLE handle) {
  return changing<Device>(handle, [](Device& d) { d.close(); });
}
GC_ERROR DevGetInfo(DEV_HANDLE handle, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
  return with<Device>(handle,
                      [&](Device& d) { deviceInfo(d.facts(), command, type, buffer, size); });
}
GC_ERROR DevGetPort(DEV_HANDLE handle, PORT_HANDLE* port) {
  return with<Device>(handle, [&](Device& d) { put(port, d.remote()->handle); });
}
GC_ERROR DevGetNumDataStreams(DEV_HANDLE handle, uint32_t* count) {
  return with<Device>(handle, [&](Device&) { put(count, 1U); });
}
GC_ERROR DevGetDataStreamID(DEV_HANDLE handle, uint32_t index, char* id, size_t* size) {
  return with<Device>(handle, [&](Device& d) {
    requireIndex(index, 1);
    storeText(d.streamId(), id, size);
  });
}
GC_ERROR DevOpenDataStream(DEV_HANDLE handle, const char* id, DS_HANDLE* opened) {
  return changing<Device>(handle, [&](Device& d) {
    requirePointer(opened);
    *opened = d.openStream(textOf(id))->handle;
  });
}
GC_ERROR DevGetParentIF(DEV_HANDLE handle, IF_HANDLE* parent) {
  return with<Device>(handle, [&](Device& d) { put(parent, d.parent->handle); });
}

// Data stream.

GC_ERROR DSClose(DS_HANDLE handle) {
  return changing<Stream>(handle, [](Stream& s) {
    s.close();
    s.device.streamClosed();
  });
}
GC_ERROR DSGetParentDev(DS_HANDLE handle, DEV_HANDLE* parent) {
  return with<Stream>(handle, [&](Stream& s) { put(parent, s.device.handle); });
}
GC_ERROR DSGetInfo(DS_HANDLE handle, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<Stream>(handle, [&](Stream& s) { s.info(command, type, buffer, size); });
}
GC_ERROR DSStartAcquisition(DS_HANDLE handle, ACQ_START_FLAGS flags, uint64_t pictures) {
  return with<Stream>(handle, [&](Stream& s) {
    require(flags == ACQ_START_FLAGS_DEFAULT, GC_ERR_INVALID_PARAMETER, "no such flags");
    s.start(pictures);
  });
}
GC_ERROR DSStopAcquisition(DS_HANDLE handle, ACQ_STOP_FLAGS flags) {
  return with<Stream>(handle, [&](Stream& s) {
    require(flags == ACQ_STOP_FLAGS_DEFAULT || flags == ACQ_STOP_FLAGS_KILL,
            GC_ERR_INVALID_PARAMETER, "no such flags");
    s.stop(flags == ACQ_STOP_FLAGS_KILL);
  });
}
GC_ERROR DSFlushQueue(DS_HANDLE handle, ACQ_QUEUE_TYPE operation) {
  return with<Stream>(handle, [&](Stream& s) { s.flush(operation); });
}

namespace {

GC_ERROR announce(DS_HANDLE stream, void* base, size_t size, void* user, BUFFER_HANDLE* handle) {
  return with<Stream>(stream, [&](Stream& s) {
    requirePointer(handle);
    *handle = s.announce(base, size, user)->handle;
  });
}

}  // namespace

GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* buffer, size_t size, void* user,
                          BUFFER_HANDLE* handle) {
  if (!buffer) return record(GC_ERR_INVALID_PARAMETER, "a pointer is null");
  return announce(stream, buffer, size, user, handle);
}
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* user,
                                  BUFFER_HANDLE* handle) {
  return announce(stream, nullptr, size, user, handle);
}
GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE handle, void** buffer, void** user) {
  return withBuffer(stream, handle, [&](Stream& s, Buffer& b) {
    s.revoke(b);
    if (buffer) *buffer = b.own() ? nullptr : b.base();
    if (user) *user = b.user;
  });
}
GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE handle) {
  return withBuffer(stream, handle, [](Stream& s, Buffer& b) { s.enqueue(b); });
}
GC_ERROR DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* handle) {
  return with<Stream>(stream, [&](Stream& s) { put(handle, s.bufferId(index)); });
}
GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE handle, BUFFER_INFO_CMD command,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
  return withBuffer(stream, handle,
                    [&](Stream& s, Buffer& b) { s.bufferInfo(b, command, type, buffer, size); });
}
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE stream, BUFFER_HANDLE handle,
                                DS_BUFFER_INFO_STACKED* infos, size_t count) {
  return withBuffer(stream, handle, [&](Stream&, Buffer&) {
    requirePointer(infos);
    for (auto* info = infos; info < infos + count; ++info) {
      std::size_t size = info->iSize;
      INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
      info->iResult = DSGetBufferInfo(stream, handle, info->iInfoCmd, &type, info->pBuffer, &size);
      info->iSize = size;
      info->iType = type;
    }
  });
}

// Buffers of this producer hold a picture and nothing else: no chunks, parts, segments or flows.

GC_ERROR DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE handle, SINGLE_CHUNK_DATA* /*chunks*/,
                              size_t* /*count*/) {
  return withBuffer(stream, handle,
                    [](Stream&, Buffer&) { fail(GC_ERR_NOT_AVAILABLE, "buffers have no chunks"); });
}
GC_ERROR DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE handle, uint32_t* count) {
  return withBuffer(stream, handle, [&](Stream&, Buffer&) { put(count, 0U); });
}
GC_ERROR DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE handle, uint32_t /*index*/,
                             BUFFER_PART_INFO_CMD /*command*/, INFO_DATATYPE* /*type*/,
                             void* /*buffer*/, size_t* /*size*/) {
  return withBuffer(stream, handle,
                    [](Stream&, Buffer&) { fail(GC_ERR_INVALID_INDEX, "buffers have no parts"); });
}
GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE stream, BUFFER_HANDLE handle,
                                    DS_BUFFER_PART_INFO_STACKED* infos, size_t count) {
  return withBuffer(stream, handle, [&](Stream&, Buffer&) {
    requirePointer(infos);
    for (auto* info = infos; info < infos + count; ++info) info->iResult = GC_ERR_INVALID_INDEX;
  });
}

namespace {

template <class Kind>
GC_ERROR notImplemented(const void* handle) {
  return with<Kind>(handle, [](Kind&) { fail(GC_ERR_NOT_IMPLEMENTED, "not implemented"); });
}

}  // namespace

GC_ERROR DSAnnounceCompositeBuffer(DS_HANDLE stream, size_t /*count*/, void** /*segments*/,
                                   size_t* /*sizes*/, void* /*user*/, BUFFER_HANDLE* /*handle*/) {
  return notImplemented<Stream>(stream);
}
GC_ERROR DSGetNumFlows(DS_HANDLE stream, uint32_t* /*count*/) {
  return notImplemented<Stream>(stream);
}
GC_ERROR DSGetFlowInfo(DS_HANDLE stream, uint32_t /*index*/, FLOW_INFO_CMD /*command*/,
                       INFO_DATATYPE* /*type*/, void* /*buffer*/, size_t* /*size*/) {
  return notImplemented<Stream>(stream);
}
GC_ERROR DSGetNumBufferSegments(DS_HANDLE stream, BUFFER_HANDLE /*handle*/, uint32_t* /*count*/) {
  return notImplemented<Stream>(stream);
}
GC_ERROR DSGetBufferSegmentInfo(DS_HANDLE stream, BUFFER_HANDLE /*handle*/, uint32_t /*index*/,
                                SEGMENT_INFO_CMD /*command*/, INFO_DATATYPE* /*type*/,
                                void* /*buffer*/, size_t* /*size*/) {
  return notImplemented<Stream>(stream);
}
