#pragma once

namespace korvo {

/// Keeps what threads free from lying idle in many heaps of their own. Called before the first thread begins.
void keepFewHeapArenas() noexcept;

} // namespace korvo
