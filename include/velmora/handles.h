/// Opaque handles and the number of ports, shared by hosts, the applet and the board's libraries.
#pragma once

/// Camera ports of the applet, each with a DMA channel of the same number.
enum { VELMORA_PORTS = 4 };
#ifdef __cplusplus
namespace velmora {
inline constexpr unsigned kPorts = VELMORA_PORTS;
}
#endif

typedef struct KTdevice KTdevice;            ///< Board device; owned by the host.
typedef struct fpga_design fpga_design;      ///< Loaded FPGA design; owned by the design runtime.
typedef struct ShadingMaster ShadingMaster;  ///< Shading data; this applet creates none.

/// Frame grabber. The outer handle belongs to the host and its first word is the applet instance:
/// `struct Fg_Struct { void* applet; };` is all a host needs. The inner handle is the acquisition
/// runtime's own and opaque to the applet.
typedef struct Fg_Struct Fg_Struct;
