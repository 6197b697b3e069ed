#pragma once

#include "imports/ImportOutcome.h"

#include <cstddef>
#include <functional>
#include <stop_token>

namespace korvo {

/// Called with the number, from 1, of the file that is about to be copied; on any thread, one call at a time.
using ImportProgress = std::function<void(std::size_t index)>;

/// Carries a plan out: copies the files into the destination, or leaves them where they are, names them, adds
/// them to the library, and gives them metadata and projects. Copies are written beside their final names,
/// flushed, read again, compared, and only then moved to names that nothing has. A file that fails is listed,
/// and the rest goes on; what is half-written goes. Works in batches: after a stop, a crash or an error
/// everything batched so far stands, and the same import goes on where it ended. What lets nothing more be
/// kept, as a destination that has gone or a full disk under the library, ends the run with what was done.
/// Ejects nothing. Throws NotFoundError for a project that there is not, std::invalid_argument for a
/// destination on the card itself, and std::system_error when the destination cannot be made.
ImportResult runImport(Catalog& catalog, FileSource& source, const ImportPlan& plan, const Clock& clock,
    const std::stop_token& stop, const ImportProgress& progress);

} // namespace korvo
