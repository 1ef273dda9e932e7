/// The standard's functions: each finds its modules and calls them. Nothing but results leaves.
#include <new>

#include "gentl/interface.h"
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

/// Calls a member, or another function, with what the handle stands for and the arguments.
template <class Kind, class Member, class... Arguments>
GC_ERROR with(const void* handle, const Member& member, Arguments... arguments) noexcept {
  return guarded(
      [&] { std::invoke(member, *Registry::instance().find<Kind>(handle), arguments...); });
}

/// The same where modules are opened or closed, or must not be meanwhile.
template <class Kind, class Member, class... Arguments>
GC_ERROR changing(const void* handle, const Member& member, Arguments... arguments) noexcept {
  const std::lock_guard guard(Registry::instance().structure);
  return with<Kind>(handle, member, arguments...);
}

// What functions of several modules do.

void count(const Module& module, std::uint32_t* out) { put(out, module.count()); }
void one(const Module& /*module*/, std::uint32_t* out) { put(out, 1); }
void idBelow(const Module& module, std::uint32_t index, char* id, std::size_t* size) {
  storeText(module.belowId(index), id, size);
}
/// The lists of this producer never change.
void update(const Module& /*module*/, bool8_t* changed) {
  if (changed) *changed = false;
}
void notImplemented(const Module& /*module*/) { fail(GC_ERR_NOT_IMPLEMENTED, "not implemented"); }

/// Closes what a consumer leaves open when the process ends or unloads the library.
struct LastOne {
  LastOne() { Registry::instance(), System::current(); }
  ~LastOne() {
    guarded([] {
      if (const auto system = System::current()) system->close();
    });
  }
} lastOne;

}  // namespace

GC_ERROR GCInitLib() {
  return guarded([] { Registry::instance().setOpen(true); });
}
GC_ERROR GCCloseLib() {
  return guarded([] {
    const std::lock_guard guard(Registry::instance().structure);
    Registry::instance().setOpen(false);
    if (const auto system = System::current()) system->close();
  });
}
GC_ERROR GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size) {
  return guarded([&] { System::producerInfo(command, {type, buffer, size}); });
}
GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
  try {
    put(code, lastCode);
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
  return with<Module>(port, &Module::read, address, buffer, size);
}
GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
  return with<Module>(port, &Module::write, address, buffer, size);
}

namespace {

/// Goes through the entries up to the first that fails and tells how many went well.
template <class Access>
GC_ERROR stacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count,
                 const Access& access) noexcept {
  return with<Module>(port, [&](Module& module) {
    requirePointer(entries);
    requirePointer(count);
    const std::size_t all = *count;
    for (*count = 0; *count < all; ++*count) {
      const auto [address, buffer, size] = entries[*count];
      std::size_t bytes = size;
      std::invoke(access, module, address, buffer, &bytes);
    }
  });
}

}  // namespace

GC_ERROR GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return stacked(port, entries, count, &Module::read);
}
GC_ERROR GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
  return stacked(port, entries, count, &Module::write);
}
GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
  return with<Module>(port, [&](Module& module) { storeText(module.url(), url, size); });
}
GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
  return with<Module>(port, one, count);
}
GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD command,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<Module>(port, &Module::urlInfo, index, command, Answer{type, buffer, size});
}
GC_ERROR GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                       size_t* size) {
  return with<Module>(port, &Module::portInfo, command, Answer{type, buffer, size});
}

// Events.

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type, EVENT_HANDLE* event) {
  return changing<Module>(source, &Module::registerEvent, type, event);
}
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, EVENT_TYPE type) {
  return changing<Module>(source, &Module::unregisterEvent, type);
}
GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t timeout) {
  return with<Event>(event, &Event::take, buffer, size, timeout);
}
GC_ERROR EventGetDataInfo(EVENT_HANDLE event, const void* in, size_t inSize,
                          EVENT_DATA_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                          size_t* size) {
  return with<Event>(event, &Event::dataInfo, in, inSize, command, Answer{type, buffer, size});
}
GC_ERROR EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                      size_t* size) {
  return with<Event>(event, &Event::info, command, Answer{type, buffer, size});
}
GC_ERROR EventFlush(EVENT_HANDLE event) { return with<Event>(event, &Event::flush); }
GC_ERROR EventKill(EVENT_HANDLE event) { return with<Event>(event, &Event::kill); }

// System.

GC_ERROR TLOpen(TL_HANDLE* system) {
  return guarded([&] {
    Registry::instance().requireOpen();
    requirePointer(system);
    const std::lock_guard guard(Registry::instance().structure);
    require(!System::current(), GC_ERR_RESOURCE_IN_USE, "the system is open");
    System::current() = std::make_shared<System>();
    *system = Registry::instance().add(System::current());
  });
}
GC_ERROR TLClose(TL_HANDLE system) { return changing<System>(system, &System::close); }
GC_ERROR TLGetInfo(TL_HANDLE system, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<System>(system, &System::info, command, Answer{type, buffer, size});
}
GC_ERROR TLGetNumInterfaces(TL_HANDLE system, uint32_t* out) {
  return with<System>(system, count, out);
}
GC_ERROR TLGetInterfaceID(TL_HANDLE system, uint32_t index, char* id, size_t* size) {
  return with<System>(system, idBelow, index, id, size);
}
GC_ERROR TLGetInterfaceInfo(TL_HANDLE system, const char* id, INTERFACE_INFO_CMD command,
                            INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<System>(system, &System::interfaceInfo, id, command, Answer{type, buffer, size});
}
GC_ERROR TLOpenInterface(TL_HANDLE system, const char* id, IF_HANDLE* opened) {
  return changing<System>(system, &System::openInterface, id, opened);
}
GC_ERROR TLUpdateInterfaceList(TL_HANDLE system, bool8_t* changed, uint64_t /*timeout*/) {
  return with<System>(system, update, changed);
}

// Interface.

GC_ERROR IFClose(IF_HANDLE board) { return changing<Interface>(board, &Interface::close); }
GC_ERROR IFGetInfo(IF_HANDLE board, INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<Interface>(board, &Interface::info, command, Answer{type, buffer, size});
}
GC_ERROR IFGetNumDevices(IF_HANDLE board, uint32_t* out) {
  return with<Interface>(board, count, out);
}
GC_ERROR IFGetDeviceID(IF_HANDLE board, uint32_t index, char* id, size_t* size) {
  return with<Interface>(board, idBelow, index, id, size);
}
GC_ERROR IFUpdateDeviceList(IF_HANDLE board, bool8_t* changed, uint64_t /*timeout*/) {
  return with<Interface>(board, update, changed);
}
GC_ERROR IFGetDeviceInfo(IF_HANDLE board, const char* id, DEVICE_INFO_CMD command,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
  return changing<Interface>(board, &Interface::deviceInfo, id, command,
                             Answer{type, buffer, size});
}
GC_ERROR IFOpenDevice(IF_HANDLE board, const char* id, DEVICE_ACCESS_FLAGS access,
                      DEV_HANDLE* opened) {
  return changing<Interface>(board, &Interface::openDevice, id, access, opened);
}
GC_ERROR IFGetParentTL(IF_HANDLE board, TL_HANDLE* system) {
  return with<Interface>(board, &Interface::parentHandle, system);
}

// Device.

GC_ERROR DevClose(DEV_HANDLE device) { return changing<Device>(device, &Device::close); }
GC_ERROR DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size) {
  return with<Device>(device, &Device::info, command, Answer{type, buffer, size});
}
GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* port) {
  return changing<Device>(device, &Device::remotePort, port);
}
GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* out) {
  return with<Device>(device, count, out);
}
GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* id, size_t* size) {
  return with<Device>(device, idBelow, index, id, size);
}
GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* opened) {
  return changing<Device>(device, &Device::openStream, id, opened);
}
GC_ERROR DevGetParentIF(DEV_HANDLE device, IF_HANDLE* board) {
  return with<Device>(device, &Device::parentHandle, board);
}

// Data stream.

GC_ERROR DSClose(DS_HANDLE stream) { return changing<Stream>(stream, &Stream::close); }
GC_ERROR DSGetParentDev(DS_HANDLE stream, DEV_HANDLE* device) {
  return with<Stream>(stream, &Stream::parentHandle, device);
}
GC_ERROR DSGetInfo(DS_HANDLE stream, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                   size_t* size) {
  return with<Stream>(stream, &Stream::info, command, Answer{type, buffer, size});
}
GC_ERROR DSStartAcquisition(DS_HANDLE stream, ACQ_START_FLAGS flags, uint64_t pictures) {
  return with<Stream>(stream, &Stream::start, flags, pictures);
}
GC_ERROR DSStopAcquisition(DS_HANDLE stream, ACQ_STOP_FLAGS flags) {
  return with<Stream>(stream, &Stream::stop, flags);
}
GC_ERROR DSFlushQueue(DS_HANDLE stream, ACQ_QUEUE_TYPE operation) {
  return with<Stream>(stream, &Stream::flush, operation);
}
GC_ERROR DSAnnounceBuffer(DS_HANDLE stream, void* buffer, size_t size, void* user,
                          BUFFER_HANDLE* handle) {
  return with<Stream>(stream, [&](Stream& found) {
    requirePointer(buffer);
    found.announce(buffer, size, user, handle);
  });
}
GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE stream, size_t size, void* user,
                                  BUFFER_HANDLE* handle) {
  return with<Stream>(stream, &Stream::announce, nullptr, size, user, handle);
}
GC_ERROR DSRevokeBuffer(DS_HANDLE stream, BUFFER_HANDLE handle, void** buffer, void** user) {
  return with<Stream>(stream, &Stream::revoke, handle, buffer, user);
}
GC_ERROR DSQueueBuffer(DS_HANDLE stream, BUFFER_HANDLE handle) {
  return with<Stream>(stream, &Stream::enqueue, handle);
}
GC_ERROR DSGetBufferID(DS_HANDLE stream, uint32_t index, BUFFER_HANDLE* handle) {
  return with<Stream>(stream, &Stream::bufferId, index, handle);
}
GC_ERROR DSGetBufferInfo(DS_HANDLE stream, BUFFER_HANDLE handle, BUFFER_INFO_CMD command,
                         INFO_DATATYPE* type, void* buffer, size_t* size) {
  return with<Stream>(stream, &Stream::bufferInfo, handle, command, Answer{type, buffer, size});
}
GC_ERROR DSGetBufferInfoStacked(DS_HANDLE stream, BUFFER_HANDLE handle,
                                DS_BUFFER_INFO_STACKED* infos, size_t count) {
  return with<Stream>(stream, [&](Stream& found) {
    found.requireBuffer(handle);
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

namespace {

void none(Stream& stream, BUFFER_HANDLE handle, GC_ERROR code) {
  stream.requireBuffer(handle);
  fail(code, "the buffer holds a picture and nothing else");
}

}  // namespace

GC_ERROR DSGetBufferChunkData(DS_HANDLE stream, BUFFER_HANDLE handle, SINGLE_CHUNK_DATA*, size_t*) {
  return with<Stream>(stream, none, handle, GC_ERR_NOT_AVAILABLE);
}
GC_ERROR DSGetNumBufferParts(DS_HANDLE stream, BUFFER_HANDLE handle, uint32_t* count) {
  return with<Stream>(stream, [&](Stream& found) {
    found.requireBuffer(handle);
    put(count, 0);
  });
}
GC_ERROR DSGetBufferPartInfo(DS_HANDLE stream, BUFFER_HANDLE handle, uint32_t, BUFFER_PART_INFO_CMD,
                             INFO_DATATYPE*, void*, size_t*) {
  return with<Stream>(stream, none, handle, GC_ERR_INVALID_INDEX);
}
GC_ERROR DSGetBufferPartInfoStacked(DS_HANDLE stream, BUFFER_HANDLE handle,
                                    DS_BUFFER_PART_INFO_STACKED* infos, size_t count) {
  return with<Stream>(stream, [&](Stream& found) {
    found.requireBuffer(handle);
    requirePointer(infos);
    for (auto* info = infos; info < infos + count; ++info) info->iResult = GC_ERR_INVALID_INDEX;
  });
}
GC_ERROR DSAnnounceCompositeBuffer(DS_HANDLE stream, size_t, void**, size_t*, void*,
                                   BUFFER_HANDLE*) {
  return with<Stream>(stream, notImplemented);
}
GC_ERROR DSGetNumFlows(DS_HANDLE stream, uint32_t*) { return with<Stream>(stream, notImplemented); }
GC_ERROR DSGetFlowInfo(DS_HANDLE stream, uint32_t, FLOW_INFO_CMD, INFO_DATATYPE*, void*, size_t*) {
  return with<Stream>(stream, notImplemented);
}
GC_ERROR DSGetNumBufferSegments(DS_HANDLE stream, BUFFER_HANDLE, uint32_t*) {
  return with<Stream>(stream, notImplemented);
}
GC_ERROR DSGetBufferSegmentInfo(DS_HANDLE stream, BUFFER_HANDLE, uint32_t, SEGMENT_INFO_CMD,
                                INFO_DATATYPE*, void*, size_t*) {
  return with<Stream>(stream, notImplemented);
}
