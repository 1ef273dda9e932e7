/// The C interface of GenTL 1.6, by which GenICam consumers use a transport layer: what this
/// producer needs of it. Names, numbers and layouts are the standard's.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
typedef bool bool8_t;
#else
typedef uint8_t bool8_t;
#endif

// clang-format off
typedef int32_t GC_ERROR;
enum {
  GC_ERR_SUCCESS = 0, GC_ERR_ERROR = -1001, GC_ERR_NOT_INITIALIZED = -1002,
  GC_ERR_NOT_IMPLEMENTED = -1003, GC_ERR_RESOURCE_IN_USE = -1004, GC_ERR_ACCESS_DENIED = -1005,
  GC_ERR_INVALID_HANDLE = -1006, GC_ERR_INVALID_ID = -1007, GC_ERR_NO_DATA = -1008,
  GC_ERR_INVALID_PARAMETER = -1009, GC_ERR_IO = -1010, GC_ERR_TIMEOUT = -1011, GC_ERR_ABORT = -1012,
  GC_ERR_INVALID_BUFFER = -1013, GC_ERR_NOT_AVAILABLE = -1014, GC_ERR_INVALID_ADDRESS = -1015,
  GC_ERR_BUFFER_TOO_SMALL = -1016, GC_ERR_INVALID_INDEX = -1017, GC_ERR_PARSING_CHUNK_DATA = -1018,
  GC_ERR_INVALID_VALUE = -1019, GC_ERR_RESOURCE_EXHAUSTED = -1020, GC_ERR_OUT_OF_MEMORY = -1021,
  GC_ERR_BUSY = -1022, GC_ERR_AMBIGUOUS = -1023
};

#define GENTL_INFINITE 0xFFFFFFFFFFFFFFFFULL  ///< A timeout, or a number of buffers.

/// What a handle stands for is the producer's secret; null is none.
typedef void* TL_HANDLE;
typedef void* IF_HANDLE;
typedef void* DEV_HANDLE;
typedef void* DS_HANDLE;
typedef void* BUFFER_HANDLE;
typedef void* PORT_HANDLE;      ///< Any of those before, or a remote device's.
typedef void* EVENTSRC_HANDLE;  ///< Any of those before the ports.
typedef void* EVENT_HANDLE;
typedef int32_t INFO_DATATYPE;
enum {
  INFO_DATATYPE_UNKNOWN = 0, INFO_DATATYPE_STRING = 1, INFO_DATATYPE_INT32 = 5,
  INFO_DATATYPE_UINT32 = 6, INFO_DATATYPE_UINT64 = 8, INFO_DATATYPE_FLOAT64 = 9,
  INFO_DATATYPE_PTR = 10, INFO_DATATYPE_BOOL8 = 11, INFO_DATATYPE_SIZET = 12,
  INFO_DATATYPE_BUFFER = 13
};
typedef int32_t TL_INFO_CMD;
enum {
  TL_INFO_ID, TL_INFO_VENDOR, TL_INFO_MODEL, TL_INFO_VERSION, TL_INFO_TLTYPE, TL_INFO_NAME,
  TL_INFO_PATHNAME, TL_INFO_DISPLAYNAME, TL_INFO_CHAR_ENCODING, TL_INFO_GENTL_VER_MAJOR,
  TL_INFO_GENTL_VER_MINOR
};
enum { TL_CHAR_ENCODING_ASCII, TL_CHAR_ENCODING_UTF8 };
typedef int32_t INTERFACE_INFO_CMD;
enum { INTERFACE_INFO_ID, INTERFACE_INFO_DISPLAYNAME, INTERFACE_INFO_TLTYPE };
typedef int32_t DEVICE_ACCESS_FLAGS;
enum { DEVICE_ACCESS_READONLY = 2, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE };
enum {
  DEVICE_ACCESS_STATUS_UNKNOWN, DEVICE_ACCESS_STATUS_READWRITE, DEVICE_ACCESS_STATUS_READONLY,
  DEVICE_ACCESS_STATUS_NOACCESS, DEVICE_ACCESS_STATUS_BUSY, DEVICE_ACCESS_STATUS_OPEN_READWRITE,
  DEVICE_ACCESS_STATUS_OPEN_READONLY
};
typedef int32_t DEVICE_INFO_CMD;
enum {
  DEVICE_INFO_ID, DEVICE_INFO_VENDOR, DEVICE_INFO_MODEL, DEVICE_INFO_TLTYPE,
  DEVICE_INFO_DISPLAYNAME, DEVICE_INFO_ACCESS_STATUS, DEVICE_INFO_USER_DEFINED_NAME,
  DEVICE_INFO_SERIAL_NUMBER, DEVICE_INFO_VERSION, DEVICE_INFO_TIMESTAMP_FREQUENCY
};
typedef int32_t ACQ_START_FLAGS;
enum { ACQ_START_FLAGS_DEFAULT };
typedef int32_t ACQ_STOP_FLAGS;
enum { ACQ_STOP_FLAGS_DEFAULT, ACQ_STOP_FLAGS_KILL };
typedef int32_t ACQ_QUEUE_TYPE;
enum {
  ACQ_QUEUE_INPUT_TO_OUTPUT, ACQ_QUEUE_OUTPUT_DISCARD, ACQ_QUEUE_ALL_TO_INPUT,
  ACQ_QUEUE_UNQUEUED_TO_INPUT, ACQ_QUEUE_ALL_DISCARD
};
typedef int32_t STREAM_INFO_CMD;
enum {
  STREAM_INFO_ID, STREAM_INFO_NUM_DELIVERED, STREAM_INFO_NUM_UNDERRUN, STREAM_INFO_NUM_ANNOUNCED,
  STREAM_INFO_NUM_QUEUED, STREAM_INFO_NUM_AWAIT_DELIVERY, STREAM_INFO_NUM_STARTED,
  STREAM_INFO_PAYLOAD_SIZE, STREAM_INFO_IS_GRABBING, STREAM_INFO_DEFINES_PAYLOADSIZE,
  STREAM_INFO_TLTYPE, STREAM_INFO_NUM_CHUNKS_MAX, STREAM_INFO_BUF_ANNOUNCE_MIN,
  STREAM_INFO_BUF_ALIGNMENT, STREAM_INFO_FLOW_TABLE, STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR
};
typedef int32_t BUFFER_INFO_CMD;
enum {
  BUFFER_INFO_BASE, BUFFER_INFO_SIZE, BUFFER_INFO_USER_PTR, BUFFER_INFO_TIMESTAMP,
  BUFFER_INFO_NEW_DATA, BUFFER_INFO_IS_QUEUED, BUFFER_INFO_IS_ACQUIRING, BUFFER_INFO_IS_INCOMPLETE,
  BUFFER_INFO_TLTYPE, BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT,
  BUFFER_INFO_XOFFSET, BUFFER_INFO_YOFFSET, BUFFER_INFO_XPADDING, BUFFER_INFO_YPADDING,
  BUFFER_INFO_FRAMEID, BUFFER_INFO_IMAGEPRESENT, BUFFER_INFO_IMAGEOFFSET, BUFFER_INFO_PAYLOADTYPE,
  BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE, BUFFER_INFO_DELIVERED_IMAGEHEIGHT,
  BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, BUFFER_INFO_CHUNKLAYOUTID, BUFFER_INFO_FILENAME,
  BUFFER_INFO_PIXEL_ENDIANNESS, BUFFER_INFO_DATA_SIZE, BUFFER_INFO_TIMESTAMP_NS,
  BUFFER_INFO_DATA_LARGER_THAN_BUFFER, BUFFER_INFO_CONTAINS_CHUNKDATA, BUFFER_INFO_IS_COMPOSITE
};
enum { PAYLOAD_TYPE_IMAGE = 1, PIXELFORMAT_NAMESPACE_PFNC_32BIT = 4, PIXELENDIANNESS_LITTLE = 1 };
enum { PFNC_BGR8 = 0x02180015 };
typedef int32_t BUFFER_PART_INFO_CMD;
typedef int32_t FLOW_INFO_CMD;
typedef int32_t SEGMENT_INFO_CMD;
typedef int32_t PORT_INFO_CMD;
enum {
  PORT_INFO_ID, PORT_INFO_VENDOR, PORT_INFO_MODEL, PORT_INFO_TLTYPE, PORT_INFO_MODULE,
  PORT_INFO_LITTLE_ENDIAN, PORT_INFO_BIG_ENDIAN, PORT_INFO_ACCESS_READ, PORT_INFO_ACCESS_WRITE,
  PORT_INFO_ACCESS_NA, PORT_INFO_ACCESS_NI, PORT_INFO_VERSION, PORT_INFO_PORTNAME
};
typedef int32_t URL_INFO_CMD;
enum {
  URL_INFO_URL, URL_INFO_SCHEMA_VER_MAJOR, URL_INFO_SCHEMA_VER_MINOR, URL_INFO_FILE_VER_MAJOR,
  URL_INFO_FILE_VER_MINOR, URL_INFO_FILE_VER_SUBMINOR, URL_INFO_FILE_SHA1_HASH,
  URL_INFO_FILE_REGISTER_ADDRESS, URL_INFO_FILE_SIZE, URL_INFO_SCHEME, URL_INFO_FILENAME
};
enum { URL_SCHEME_LOCAL };
typedef int32_t EVENT_TYPE;
enum {
  EVENT_ERROR, EVENT_NEW_BUFFER, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE,
  EVENT_REMOTE_DEVICE, EVENT_MODULE
};
typedef int32_t EVENT_INFO_CMD;
enum {
  EVENT_EVENT_TYPE, EVENT_NUM_IN_QUEUE, EVENT_NUM_FIRED, EVENT_SIZE_MAX, EVENT_INFO_DATA_SIZE_MAX
};
typedef int32_t EVENT_DATA_INFO_CMD;
enum { EVENT_DATA_ID, EVENT_DATA_VALUE, EVENT_DATA_NUMID };

// clang-format on

#pragma pack(push, 1)
typedef struct {
  BUFFER_HANDLE BufferHandle;
  void* pUserPointer;
} EVENT_NEW_BUFFER_DATA;

typedef struct {
  uint64_t Address;
  void* pBuffer;
  size_t Size;
} PORT_REGISTER_STACK_ENTRY;

typedef struct {
  uint64_t ChunkID;
  ptrdiff_t ChunkOffset;
  size_t ChunkLength;
} SINGLE_CHUNK_DATA;

typedef struct {
  BUFFER_INFO_CMD iInfoCmd;
  INFO_DATATYPE iType;
  void* pBuffer;
  size_t iSize;
  GC_ERROR iResult;
} DS_BUFFER_INFO_STACKED;

typedef struct {
  uint32_t iPartIndex;
  BUFFER_PART_INFO_CMD iInfoCmd;
  GC_ERROR iResult;
  INFO_DATATYPE iType;
  void* pBuffer;
  size_t iSize;
} DS_BUFFER_PART_INFO_STACKED;
#pragma pack(pop)

#define GC_API __attribute__((visibility("default"))) GC_ERROR

GC_API GCGetInfo(TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API GCGetLastError(GC_ERROR* errorCode, char* text, size_t* size);
GC_API GCInitLib(void);
GC_API GCCloseLib(void);
GC_API GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size);
GC_API GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size);
GC_API GCGetPortURL(PORT_HANDLE port, char* url, size_t* size);
GC_API GCGetPortInfo(PORT_HANDLE port, PORT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                     size_t* size);
GC_API GCRegisterEvent(EVENTSRC_HANDLE eventSrc, EVENT_TYPE eventID, EVENT_HANDLE* event);
GC_API GCUnregisterEvent(EVENTSRC_HANDLE eventSrc, EVENT_TYPE eventID);
GC_API EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t timeout);
GC_API EventGetDataInfo(EVENT_HANDLE event, const void* inBuffer, size_t inSize,
                        EVENT_DATA_INFO_CMD command, INFO_DATATYPE* type, void* outBuffer,
                        size_t* outSize);
GC_API EventGetInfo(EVENT_HANDLE event, EVENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                    size_t* size);
GC_API EventFlush(EVENT_HANDLE event);
GC_API EventKill(EVENT_HANDLE event);
GC_API TLOpen(TL_HANDLE* tl);
GC_API TLClose(TL_HANDLE tl);
GC_API TLGetInfo(TL_HANDLE tl, TL_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API TLGetNumInterfaces(TL_HANDLE tl, uint32_t* numIfaces);
GC_API TLGetInterfaceID(TL_HANDLE tl, uint32_t index, char* id, size_t* size);
GC_API TLGetInterfaceInfo(TL_HANDLE tl, const char* ifaceID, INTERFACE_INFO_CMD command,
                          INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API TLOpenInterface(TL_HANDLE tl, const char* ifaceID, IF_HANDLE* iface);
GC_API TLUpdateInterfaceList(TL_HANDLE tl, bool8_t* changed, uint64_t timeout);
GC_API IFClose(IF_HANDLE iface);
GC_API IFGetInfo(IF_HANDLE iface, INTERFACE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API IFGetNumDevices(IF_HANDLE iface, uint32_t* numDevices);
GC_API IFGetDeviceID(IF_HANDLE iface, uint32_t index, char* id, size_t* size);
GC_API IFUpdateDeviceList(IF_HANDLE iface, bool8_t* changed, uint64_t timeout);
GC_API IFGetDeviceInfo(IF_HANDLE iface, const char* deviceID, DEVICE_INFO_CMD command,
                       INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API IFOpenDevice(IF_HANDLE iface, const char* deviceID, DEVICE_ACCESS_FLAGS openFlag,
                    DEV_HANDLE* device);
GC_API DevGetPort(DEV_HANDLE device, PORT_HANDLE* remoteDevice);
GC_API DevGetNumDataStreams(DEV_HANDLE device, uint32_t* numDataStreams);
GC_API DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* dataStreamID, size_t* size);
GC_API DevOpenDataStream(DEV_HANDLE device, const char* dataStreamID, DS_HANDLE* dataStream);
GC_API DevGetInfo(DEV_HANDLE device, DEVICE_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                  size_t* size);
GC_API DevClose(DEV_HANDLE device);
GC_API DSAnnounceBuffer(DS_HANDLE dataStream, void* buffer, size_t size, void* user,
                        BUFFER_HANDLE* handle);
GC_API DSAllocAndAnnounceBuffer(DS_HANDLE dataStream, size_t size, void* user,
                                BUFFER_HANDLE* handle);
GC_API DSFlushQueue(DS_HANDLE dataStream, ACQ_QUEUE_TYPE operation);
GC_API DSStartAcquisition(DS_HANDLE dataStream, ACQ_START_FLAGS startFlags, uint64_t numToAcquire);
GC_API DSStopAcquisition(DS_HANDLE dataStream, ACQ_STOP_FLAGS stopFlags);
GC_API DSGetInfo(DS_HANDLE dataStream, STREAM_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                 size_t* size);
GC_API DSGetBufferID(DS_HANDLE dataStream, uint32_t index, BUFFER_HANDLE* handle);
GC_API DSClose(DS_HANDLE dataStream);
GC_API DSRevokeBuffer(DS_HANDLE dataStream, BUFFER_HANDLE handle, void** buffer, void** user);
GC_API DSQueueBuffer(DS_HANDLE dataStream, BUFFER_HANDLE handle);
GC_API DSGetBufferInfo(DS_HANDLE dataStream, BUFFER_HANDLE handle, BUFFER_INFO_CMD command,
                       INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API GCGetNumPortURLs(PORT_HANDLE port, uint32_t* numURLs);
GC_API GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, URL_INFO_CMD command, INFO_DATATYPE* type,
                        void* buffer, size_t* size);
GC_API GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* numEntries);
GC_API GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* numEntries);
GC_API DSGetBufferChunkData(DS_HANDLE dataStream, BUFFER_HANDLE handle,
                            SINGLE_CHUNK_DATA* chunkData, size_t* numChunks);
GC_API IFGetParentTL(IF_HANDLE iface, TL_HANDLE* system);
GC_API DevGetParentIF(DEV_HANDLE device, IF_HANDLE* iface);
GC_API DSGetParentDev(DS_HANDLE dataStream, DEV_HANDLE* device);
GC_API DSGetNumBufferParts(DS_HANDLE dataStream, BUFFER_HANDLE handle, uint32_t* numParts);
GC_API DSGetBufferPartInfo(DS_HANDLE dataStream, BUFFER_HANDLE handle, uint32_t partIndex,
                           BUFFER_PART_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                           size_t* size);
GC_API DSAnnounceCompositeBuffer(DS_HANDLE dataStream, size_t numSegments, void** segments,
                                 size_t* sizes, void* user, BUFFER_HANDLE* handle);
GC_API DSGetBufferInfoStacked(DS_HANDLE dataStream, BUFFER_HANDLE handle,
                              DS_BUFFER_INFO_STACKED* infoStacked, size_t numInfos);
GC_API DSGetBufferPartInfoStacked(DS_HANDLE dataStream, BUFFER_HANDLE handle,
                                  DS_BUFFER_PART_INFO_STACKED* infoStacked, size_t numInfos);
GC_API DSGetNumFlows(DS_HANDLE dataStream, uint32_t* numFlows);
GC_API DSGetFlowInfo(DS_HANDLE dataStream, uint32_t flowIndex, FLOW_INFO_CMD command,
                     INFO_DATATYPE* type, void* buffer, size_t* size);
GC_API DSGetNumBufferSegments(DS_HANDLE dataStream, BUFFER_HANDLE handle, uint32_t* numSegments);
GC_API DSGetBufferSegmentInfo(DS_HANDLE dataStream, BUFFER_HANDLE handle, uint32_t segmentIndex,
                              SEGMENT_INFO_CMD command, INFO_DATATYPE* type, void* buffer,
                              size_t* size);

#ifdef __cplusplus
}
#endif
