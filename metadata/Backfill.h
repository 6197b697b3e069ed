#pragma once

#include "base/Task.h"
#include "catalog/store/LibraryStore.h"

#include <stop_token>
#include <vector>

namespace korvo {

/// What a backfill reads from the files.
enum class Backfill { camera, positions };

/// Reads the next files that have not been read yet, behind the photo `after`, and stores what they say. A
/// file that is gone or broken counts as read too. A stop request ends it early; what was read until then is
/// kept. Throws DatabaseError.
struct BackfillBatch {
    std::vector<PhotoID> photos; // the masters that were read
    bool isLast = false;
};
BackfillBatch readBatch(Catalog& catalog, Backfill kind, PhotoID after, const std::stop_token& stop);

/// The two backfills of the open library, each one run at a time in the background, giving way to other work,
/// published batch by batch. Started while it runs, one looks once more for unread files at its end. What one
/// leaves unread when it goes is read the next time. Used on the main thread.
class Backfills {
public:
    /// Both must outlive this.
    Backfills(MainThread& main, LibraryStore& store) : main_(main), store_(store) { }

    bool exifBackfillRunning() const { return camera_.running; }
    bool locationBackfillRunning() const { return positions_.running; }

    void startExifBackfill() { start(camera_, Backfill::camera); }
    void startLocationBackfill() { start(positions_, Backfill::positions); }

private:
    struct Run {
        bool running = false;
        bool again = false;
        Task task;
    };

    void start(Run& run, Backfill kind);

    MainThread& main_;
    LibraryStore& store_;
    Run camera_;
    Run positions_;
};

} // namespace korvo
