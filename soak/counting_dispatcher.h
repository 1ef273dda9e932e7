/// Logging dispatcher for the soak: counts what is logged and changes the threshold of the one
/// logger that it has.
#pragma once

#include <cstdint>

namespace fakes {

/// Any thread.
void setLogThreshold(std::int32_t level);
std::uint64_t loggedMessages();

}  // namespace fakes
