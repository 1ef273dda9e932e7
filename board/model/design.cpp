#include "board/model/design.h"

#include <zlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <utility>

#include "board/model/description.h"
#include "board/model/image.h"

namespace board {
namespace {

std::shared_ptr<const Design> fromManifest(std::string_view text) {
  try {
    const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
    const auto fingerprint = static_cast<std::uint32_t>(crc32_z(0, bytes, text.size()));
    return std::make_shared<const Design>(parseManifest(text), fingerprint);
  } catch (const ManifestError&) {
    return nullptr;
  }
}

template <class Record>
const Record* at(const std::vector<Record>& records, std::int64_t index) {
  return index >= 0 && index < std::ssize(records) ? &records[static_cast<std::size_t>(index)]
                                                   : nullptr;
}

template <class Record, class Ids>
void number(const std::vector<Record>& records, int firstId, Ids& ids) {
  int id = firstId;
  for (const auto& record : records) ids.emplace(record.name, id++);
}

}  // namespace

std::shared_ptr<const Design> Design::fromImage(std::string_view image) {
  const auto manifest = unpackImage(image);
  return manifest ? fromManifest(*manifest) : nullptr;
}

std::shared_ptr<const Design> Design::fromFile(const char* file) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(file, ignored)) return nullptr;
  std::ifstream in(file, std::ios::binary);
  return fromManifest(std::string{std::istreambuf_iterator<char>(in), {}});
}

Design::Design(Manifest manifest, std::uint32_t fingerprint)
    : manifest_(std::move(manifest)), fingerprint_(fingerprint) {
  number(manifest_.parameters, kFirstParameterId, parameterIds_);
  number(manifest_.registers, kFirstRegisterId, registerIds_);
  for (const auto& event : manifest_.events) {
    events_.push_back({events_.size(), event.name.c_str(), event.kind});
  }
  describeParameters(manifest_.parameters, kFirstParameterId, description_);
}

int Design::find(const Ids& ids, std::string_view name) {
  const auto found = ids.find(name);
  return found == ids.end() ? 0 : found->second;
}

const ParameterRecord* Design::parameter(int id) const {
  return at(manifest_.parameters, std::int64_t{id} - kFirstParameterId);
}

const RegisterRecord* Design::registerWithId(int id) const {
  return at(manifest_.registers, std::int64_t{id} - kFirstRegisterId);
}

const HapEvent* Design::event(int index) const { return at(events_, index); }

RegisterInfo* Design::description() const { return description_.getRegisterInfo(0); }

}  // namespace board
