/// The commands of `velmora`, the command line tool of this folder: it opens the applet library on
/// the virtual board as a runtime would, and calls exported functions only. Commands print to
/// standard output and throw `Failure`.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tool/parameter_access.h"
#include "tool/session.h"
#include "tool/stimuli.h"

namespace velmora::tool {

/// Everything that the applet answers without being opened. The icon is written to `iconFile`
/// unless that is empty.
void showInfo(const AppletLibrary& library, const std::string& iconFile, bool json);

enum class ListForm { kTree, kFlat, kJson };
/// All parameters of the ports with their values.
void listParameters(Session& session, const std::vector<unsigned>& ports, ListForm form);
/// Values of parameters, on `ports` where a name has none. Goes on after a failure.
void getParameters(Session& session, const std::vector<std::string>& names,
                   const std::vector<unsigned>& ports, bool json);
/// Sets parameters in order until one is refused, on `ports` where an assignment names none.
void assignParameters(Session& session, const std::vector<std::string>& assignments,
                      const std::vector<unsigned>& ports);
/// Sets like `assignParameters`, then reads back and shows what was set.
void setParameters(Session& session, const std::vector<std::string>& assignments,
                   const std::vector<unsigned>& ports, bool json);

/// The trees of the ports' parameters with their live limits.
void describePorts(Session& session, const std::vector<unsigned>& ports, bool json);
/// Everything about one parameter, NAME or NAME@PORT.
void describeParameter(Session& session, const std::string& name,
                       const std::vector<unsigned>& ports, bool json);
/// The GenApi XML document of a port, byte for byte, to `file` or, when that is empty, to standard
/// output. A terminal gets printable lines. `Failure` for several ports.
void writeXml(Session& session, const std::vector<unsigned>& ports, const std::string& file);
void listEvents(Session& session, bool json);

struct Acquisition {
  std::vector<unsigned> ports;
  std::int64_t pictures = 0;  ///< On each port.
  int timeout = 5;            ///< Seconds to wait for each picture.
  std::string output;         ///< Directory or pattern of the PNG files; empty for none.
  std::vector<CameraFiles> cameras;
  std::vector<TriggerTrain> triggers;
  double softwareTrigger = 0;      ///< Hz, on each port; 0 for none.
  std::vector<std::string> shown;  ///< Parameters to print afterwards.
  bool json = false;
};
/// Acquires on several ports at the same time; reports pictures, rate and lost pictures of each.
/// `Interrupted` at the end when a signal ended it.
void acquirePictures(Session& session, const Acquisition& acquisition);

/// Writes the settings of all ports to a configuration file. A failure names each value that is
/// left out, since it cannot be read.
void saveConfiguration(Session& session, const std::string& file);
struct LoadForm {
  bool force = false;  ///< Whether differences between file and settings are no failure.
  bool json = false;
};
/// Applies a configuration file. A failure names the first key or section that is missing, or each
/// value of the file that is not in force afterwards.
void loadConfiguration(Session& session, const std::string& file, const LoadForm& form);

/// Shows the ports in a browser, which may change them, until a signal ends it.
/// @param listen a text that `parseListenAddress` knows.
void viewBoard(Session& session, const std::string& listen);

}  // namespace velmora::tool
