#pragma once

#include "catalog/LibraryReading.h"
#include "catalog/store/BackgroundReading.h"

namespace korvo {

/// The sidebar's counts, for which all photos are looked at: in the background, and again after a change.
/// Used on the main thread.
class PhotoCounter {
public:
    /// `counted` is called when counts that took longer than `patience` have come and differ from those
    /// before. `main` and `catalog` must outlive this.
    PhotoCounter(MainThread& main, const Catalog& catalog, std::chrono::milliseconds patience,
        std::function<void()> counted);

    /// Begins to count where that is due; returns whether counts() are new.
    bool bringUpToDate();
    /// What was counted may have changed.
    void invalidate() { isDue_ = true; }
    bool isDue() const { return isDue_; }
    /// What was counted last; nothing before the first time.
    const std::optional<LibraryCounts>& counts() const { return counts_; }
    bool isCounting() const { return counting_ != nullptr; }

private:
    void countsArrived();
    /// Returns whether there were any to take.
    bool takeCounts();

    MainThread& main_;
    const Catalog& catalog_;
    std::chrono::milliseconds patience_;
    std::function<void()> counted_;
    std::optional<LibraryCounts> counts_;
    bool isDue_ = true;
    std::unique_ptr<BackgroundReading<LibraryCounts>> counting_;
};

} // namespace korvo
