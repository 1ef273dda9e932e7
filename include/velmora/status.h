/// What `Fg_getStatusEx` takes as `param` on the virtual board. A real board's runtime may have
/// other numbers.
#pragma once

enum VelmoraChannelStatus {
  VELMORA_STATUS_GRABBED_PICTURES = 1,  ///< Number of the last picture; 0 before the first start.
  VELMORA_STATUS_LOST_PICTURES = 2,     ///< Pictures that found no free buffer, since the start.
  VELMORA_STATUS_ACQUIRING = 3          ///< 1 while a channel runs and expects pictures, else 0.
};
