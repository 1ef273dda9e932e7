/// What acts on the board while it acquires: cameras, trigger inputs, software triggers.
#pragma once

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "tool/code_text.h"
#include "tool/parameter_access.h"
#include "tool/session.h"

namespace velmora::tool {

/// Pulses on a trigger input.
struct TriggerTrain {
  unsigned input = 0;
  double rate = 0;           ///< Hz
  std::int64_t pulses = -1;  ///< Without end when -1.
};
/// A directory of PNG files that the camera of a port plays.
struct CameraFiles {
  unsigned port = 0;
  std::string directory;
};

/// `Failure` when the text is no "input=N,rate=HZ[,pulses=N]" or "PORT=DIR".
TriggerTrain parseTriggerTrain(const std::string& text);
CameraFiles parseCameraFiles(const std::string& text);

/// Makes a camera play the PNG files of a directory, in the order of their names.
void playFiles(Session& session, const CameraFiles& camera);
/// Starts the pulses, or ends them.
void drive(Session& session, const std::vector<TriggerTrain>& trains, bool on);

/// Sends software triggers to ports at a rate (Hz; 0 for none) while it lives. Refusals do not end
/// it; at the end it adds their number and reason to `failures`.
class SoftwareTrigger {
 public:
  SoftwareTrigger(Session& session, const std::vector<unsigned>& ports, double rate,
                  Failures& failures);

 private:
  void run(Session& session, double rate, Failures& failures, const std::stop_token& stop) const;

  std::vector<Parameter> targets_;
  std::jthread thread_;
};

}  // namespace velmora::tool
