#include "tool/stimuli.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <optional>
#include <sstream>

#include "tool/png_file.h"
#include "tool/text.h"

namespace velmora::tool {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

/// Takes a part such as "rate=25" for its value; false for another part.
template <class Number>
bool assign(const std::string& part, const std::string& name, Number& value) {
  if (!part.starts_with(name + '=')) return false;
  const auto number = parseWhole<Number>(std::string_view(part).substr(name.size() + 1));
  if (number) value = *number;
  return number.has_value();
}

}  // namespace

TriggerTrain parseTriggerTrain(const std::string& text) {
  TriggerTrain train;
  std::istringstream parts(text);
  bool known = text.find("input=") != std::string::npos && text.find("rate=") != std::string::npos;
  for (std::string part; known && std::getline(parts, part, ',');)
    known = assign(part, "input", train.input) || assign(part, "rate", train.rate) ||
            assign(part, "pulses", train.pulses);
  if (!known)
    throw Failure(fmt::format("'{}' is not of the form input=N,rate=HZ[,pulses=N]", text));
  return train;
}

CameraFiles parseCameraFiles(const std::string& text) {
  const auto equals = text.find('=');
  const auto port = parseWhole<unsigned>(std::string_view(text).substr(0, equals));
  if (equals == std::string::npos || !port || *port >= kPorts)
    throw Failure(fmt::format("'{}' is not of the form PORT=DIR", text));
  return {*port, text.substr(equals + 1)};
}

void playFiles(Session& session, const CameraFiles& camera) {
  std::vector<std::string> names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(camera.directory, error))
    if (entry.path().extension() == ".png") names.push_back(entry.path());
  if (error) throw Failure(fmt::format("{}: {}", camera.directory, error.message()));
  if (names.empty()) throw Failure(fmt::format("{}: no PNG files", camera.directory));
  std::ranges::sort(names);
  std::vector<RawPicture> raw;
  std::vector<VirtualBoardRawPicture> pictures;
  raw.reserve(names.size());
  pictures.reserve(names.size());
  for (const std::string& name : names) raw.push_back(readRawPng(name));
  for (const RawPicture& r : raw) pictures.push_back({r.pixels.data(), r.width, r.height, r.bits});
  const int code = VirtualBoard_setCameraPictures(
      session.device(), camera.port, static_cast<std::uint32_t>(pictures.size()), pictures.data());
  if (code < 0) throw Failure(fmt::format("{}: {}", camera.directory, codeText(code)));
}

void drive(Session& session, const std::vector<TriggerTrain>& trains, bool on) {
  for (const TriggerTrain& train : trains) {
    const int code = VirtualBoard_trainInput(session.device(), train.input, on ? train.rate : 0,
                                             on ? train.pulses : 0);
    if (code < 0) throw Failure(fmt::format("trigger input {}: {}", train.input, codeText(code)));
  }
}

SoftwareTrigger::SoftwareTrigger(Session& session, const std::vector<unsigned>& ports, double rate,
                                 Failures& failures) {
  if (rate <= 0) return;
  for (const unsigned port : ports)
    targets_.push_back(findParameter(session, "FG_SENDSOFTWARETRIGGER", port));
  thread_ = std::jthread([=, this, &session, &failures](const std::stop_token& stop) {
    run(session, rate, failures, stop);
  });
}

void SoftwareTrigger::run(Session& session, double rate, Failures& failures,
                          const std::stop_token& stop) const {
  constexpr Seconds kSlice{0.1};
  std::int64_t refused = 0;
  std::string reason;
  const auto begin = Clock::now();
  for (std::int64_t sent = 1; !stop.stop_requested(); ++sent) {
    for (const Parameter& target : targets_) {
      try {
        writeParameter(session, target, "1");
      } catch (const Failure& failure) {
        if (refused++ == 0) reason = failure.what();
      }
    }
    const auto due = begin + Seconds(static_cast<double>(sent) / rate);
    while (!stop.stop_requested() && Clock::now() < due)
      std::this_thread::sleep_for(std::min<Seconds>(due - Clock::now(), kSlice));
  }
  if (refused > 0)
    failures.add(Failure(fmt::format("{} software triggers were refused: {}", refused, reason)));
}

}  // namespace velmora::tool
