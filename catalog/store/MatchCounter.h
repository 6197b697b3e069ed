#pragma once

#include "base/MainThread.h"
#include "base/Signal.h"
#include "base/Task.h"
#include "catalog/store/LibraryStore.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace korvo {

/// Counts the masters that rules match while the user types them. Where the store holds the whole library it
/// goes through it in slices of a few milliseconds on the main thread; else the catalog is read in the
/// background. Used on the main thread.
class MatchCounter {
public:
    /// Both must outlive this.
    MatchCounter(MainThread& main, LibraryStore& store);

    /// Begins to count anew, and again whenever the library changes.
    void count(SmartAlbumRules rules);

    /// Nothing while it counts.
    const std::optional<std::size_t>& result() const { return result_; }
    /// Why the photos could not be counted; or empty.
    const std::string& fault() const { return fault_; }
    Signal<> changed;

private:
    struct Slices {
        SmartAlbumMatcher matcher;
        std::size_t next = 0;
        std::size_t found = 0;
    };

    void begin();
    void countSlice();
    void countInBackground();
    void finish(std::optional<std::size_t> count, std::string fault);

    MainThread& main_;
    LibraryStore& store_;
    std::optional<SmartAlbumRules> rules_;
    std::optional<std::size_t> result_;
    std::string fault_;
    std::optional<Slices> slices_;
    MainThread::Timer nextSlice_;
    Connection storeChanged_;
    Task task_; // last, so that it ends first
};

} // namespace korvo
