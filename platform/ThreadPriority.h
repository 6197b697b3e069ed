#pragma once

namespace korvo {

/// Lets all that the user waits for go before the work of the calling thread, for the rest of its life. A
/// system that does not allow it leaves the thread as it is.
void giveWayToOthers();

} // namespace korvo
