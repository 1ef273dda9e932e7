#include "parameters/families/image_path.h"

#include "parameters/port/setting.h"
#include "velmora/parameters.h"

namespace velmora::image_path {
namespace {

constexpr std::uint32_t kFrameWidth = 8192;
constexpr std::uint32_t kFrameHeight = 65535;
// An offset leaves room for the smallest size.
constexpr std::uint32_t kOffsetFrameWidth = 8184;
constexpr std::uint32_t kOffsetFrameHeight = 65533;

/// A size or an offset, and the partner that it shares the frame with.
struct RegionSide {
  DesignId design;
  std::uint32_t frame;                      ///< Limit of the value and its partner together.
  std::uint32_t ProcessSettings::*partner;  ///< The partner's setting.
  int partnerId;                            ///< The partner's parameter.
  std::uint32_t partnerFrame;               ///< The same limit from the partner's side.
};

using S = ProcessSettings;
constexpr RegionSide kWidth{DesignId::kXLength, kFrameWidth, &S::xOffset, FG_XOFFSET,
                            kOffsetFrameWidth};
constexpr RegionSide kHeight{DesignId::kYLength, kFrameHeight, &S::yOffset, FG_YOFFSET,
                             kOffsetFrameHeight};
constexpr RegionSide kXOffset{DesignId::kXOffset, kOffsetFrameWidth, &S::width, FG_WIDTH,
                              kFrameWidth};
constexpr RegionSide kYOffset{DesignId::kYOffset, kOffsetFrameHeight, &S::height, FG_HEIGHT,
                              kFrameHeight};

/// What `used` leaves of `frame`; 0 rather than a number that wrapped around.
constexpr std::uint32_t remaining(std::uint32_t frame, std::uint32_t used) {
  return used < frame ? frame - used : 0;
}

void set(Port& port, const ParameterRow& row, std::uint32_t value, const RegionSide& side) {
  const std::uint32_t most = remaining(side.frame, port.settings.*side.partner);
  if (value < row.limits.integer.min || value > most) fail(VELMORA_OUT_OF_RANGE);
  if (value % row.limits.integer.inc != 0) fail(VELMORA_STEP_VIOLATION);

  Transaction change(port.settings.*row.field.integer, value);
  port.design.write(side.design, value);
  change.commit();
  port.describeMaximum(side.partnerId, remaining(side.partnerFrame, value));
}

}  // namespace

void setTimeout(Port& port, const ParameterRow& row, std::uint32_t timeout) {
  setThrough(port, row, timeout, [&] { port.design.setRuntime(FG_TIMEOUT, timeout); });
}

void setWidth(Port& port, const ParameterRow& row, std::uint32_t width) {
  set(port, row, width, kWidth);
}

void setHeight(Port& port, const ParameterRow& row, std::uint32_t height) {
  set(port, row, height, kHeight);
}

void setXOffset(Port& port, const ParameterRow& row, std::uint32_t offset) {
  set(port, row, offset, kXOffset);
}

void setYOffset(Port& port, const ParameterRow& row, std::uint32_t offset) {
  set(port, row, offset, kYOffset);
}

void setBayerInit(Port& port, const ParameterRow& row, std::uint32_t order) {
  setThrough(port, row, order, [&] {
    port.design.write(DesignId::kBayerfilterBayerInit, order);
    port.design.write(DesignId::kWhiteBayerInit, order);
  });
}

}  // namespace velmora::image_path
