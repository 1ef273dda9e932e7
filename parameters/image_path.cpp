#include "parameters/image_path.h"

#include "parameters/handlers.h"

namespace velmora {

/// A size and its offset share the frame: each is bounded by what the other leaves of it. The two
/// margins differ by the smallest size.
struct ImagePath::Partner {
  std::uint32_t frame;                      ///< Bound of the value and its partner together.
  std::uint32_t ProcessSettings::*setting;  ///< The partner.
  int id;                                   ///< The partner's parameter.
  std::uint32_t frameOfPartner;             ///< The same bound from the partner's side.
};

namespace {

constexpr std::uint32_t kFrameWidth = 8192;
constexpr std::uint32_t kFrameHeight = 65535;
constexpr std::uint32_t kOffsetFrameWidth = 8184;
constexpr std::uint32_t kOffsetFrameHeight = 65533;

/// What `used` leaves of `frame`; nothing rather than a wrapped number.
constexpr std::uint32_t remaining(std::uint32_t frame, std::uint32_t used) {
  return used < frame ? frame - used : 0;
}

}  // namespace

void ImagePath::setTimeout(const ParameterRow& row, std::uint32_t timeout) {
  handlers::setThrough(port_, row, timeout, [&] { port_.design.setRuntime(FG_TIMEOUT, timeout); });
}

void ImagePath::setWidth(const ParameterRow& row, std::uint32_t width) {
  setRegionSide(row, width,
                {kFrameWidth, &ProcessSettings::xOffset, FG_XOFFSET, kOffsetFrameWidth});
}

void ImagePath::setHeight(const ParameterRow& row, std::uint32_t height) {
  setRegionSide(row, height,
                {kFrameHeight, &ProcessSettings::yOffset, FG_YOFFSET, kOffsetFrameHeight});
}

void ImagePath::setXOffset(const ParameterRow& row, std::uint32_t offset) {
  setRegionSide(row, offset, {kOffsetFrameWidth, &ProcessSettings::width, FG_WIDTH, kFrameWidth});
}

void ImagePath::setYOffset(const ParameterRow& row, std::uint32_t offset) {
  setRegionSide(row, offset,
                {kOffsetFrameHeight, &ProcessSettings::height, FG_HEIGHT, kFrameHeight});
}

void ImagePath::setRegionSide(const ParameterRow& row, std::uint32_t value,
                              const Partner& partner) {
  const std::uint32_t most = remaining(partner.frame, port_.settings.*partner.setting);
  if (value < row.limits.word.min || value > most) throw int{VELMORA_OUT_OF_RANGE};
  if (value % row.limits.word.inc != 0) throw int{VELMORA_STEP_VIOLATION};

  Transaction change(port_.settings.*row.field.word, value);
  port_.design.write(row.design, value);
  change.keep();
  port_.describeMaximum(partner.id, remaining(partner.frameOfPartner, value));
}

void ImagePath::setBayerInit(const ParameterRow& row, std::uint32_t order) {
  handlers::setThrough(port_, row, order, [&] {
    port_.design.write(DesignId::kBayerfilterBayerInit, order);
    port_.design.write(DesignId::kWhiteBayerInit, order);
  });
}

}  // namespace velmora
