#pragma once

namespace korvo {

/// Answers requests to decode files, which are read from the one descriptor, on the other, until there are no
/// more. Each file is decoded in a process of its own with bounded time and memory, so that whatever it does
/// costs that file alone. Returns the exit status.
int serveDecoding(int requests, int answers);

} // namespace korvo
