#pragma once

#include <functional>

namespace velmora {

/// Lets `write` write a file so that what was there before stays until the new content is whole: it
/// is given the name of a new file beside `file`, which then takes its place, with the mode and the
/// owner of the old one. Links to `file` are followed; another hard link keeps the old content.
///
/// `write` is given `file` itself where there is nothing to be replaced that way: when `file` is a
/// link to nothing, no regular file or not writable, and when its directory takes no new file of
/// the same owner.
/// @param write writes a whole file; false when that fails, and then the new file is removed.
/// @return whether the file has the new content.
bool replaceFile(const char* file, const std::function<bool(const char*)>& write);

}  // namespace velmora
