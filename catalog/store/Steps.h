#pragma once

#include "catalog/Catalog.h"
#include "catalog/sql/Changeset.h"
#include "catalog/store/Background.h"
#include "catalog/store/UndoHistory.h"

#include <chrono>

namespace korvo {

// What a step of undo does to the catalog: each is one transaction, on any thread, that waits so long for
// other writers. Each throws DatabaseError, and what the change itself throws, with nothing done.

struct StepDone {
    Changeset changes; // as UndoHistory keeps them; empty for a step that is taken again
    ChangedRows rows;
    std::vector<PhotoID> toSelect = {};
    /// The store's dataVersion() around the step, where nobody else has written meanwhile.
    struct Seen {
        std::int64_t before, after;
    };
    std::optional<Seen> seen = {};
};

/// Makes a change.
StepDone madeChange(
    Catalog& catalog, std::chrono::milliseconds patience, const std::function<void(Catalog&)>& change);
/// Takes out of the library what was added. The changes bring it back.
StepDone takenOut(Catalog& catalog, std::chrono::milliseconds patience, const AddedRows& added);
/// Takes recorded changes back, or makes them again. Metadata that comes so waits to be written.
StepDone retraced(
    Catalog& catalog, std::chrono::milliseconds patience, const Changeset& changes, UndoWay way);

/// Each change that another connection commits gives a new number.
std::int64_t dataVersion(Catalog& catalog);

/// From how much on things are done in the background.
struct StoreBounds {
    std::size_t photosAtOnce = 2'000; // of a step: about 100 ms
    std::size_t bytesAtOnce = std::size_t{512} << 10; // of the changes of one that is taken again: the same
    std::size_t photosListed = 20'000; // of a list that is read, put in order, or freed
};

using MakeStep = std::function<StepDone(Catalog&, std::chrono::milliseconds patience)>;
using TakeStep = std::function<StepDone()>; // what was made; throws what making it threw
using EndStep = std::function<void(const TakeStep&)>;

/// Makes it by a connection of its own, which waits for others as long as they need.
StepDone madeBeside(Catalog& catalog, const MakeStep& making);

/// How a step ended that was not waited for. One that failed for now may go well if it is tried again.
enum class StepOutcome { done, failed, failedForNow };

/// A step that is made on another thread, and ended on the main thread.
struct LongStep {
    std::string title;
    Background<StepDone> work;
    EndStep ending;
    StepOutcome outcome = StepOutcome::failed;
};

/// Whether photos got other values of what stands in their files.
bool touchesMetadata(const ChangedRows& rows);

} // namespace korvo
