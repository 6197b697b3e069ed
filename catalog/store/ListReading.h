#pragma once

#include "catalog/sql/Changeset.h"
#include "catalog/store/BackgroundReading.h"
#include "catalog/store/SourceReading.h"

#include <mutex>

namespace korvo {

/// The list of a source while it is read in the background, with what happens meanwhile.
class ListReading {
public:
    /// As BackgroundReading.
    ListReading(MainThread& main, const Catalog& catalog, std::optional<LibrarySource> source,
        ListArrangement as, std::function<void()> ended)
        : wish_(std::make_shared<Wish>(std::move(as))),
          reading_(
              main, catalog,
              [source = std::move(source), wish = wish_](Database& database, const std::stop_token& stop) {
                  return readSource(
                      database, source, [&] { return wish->get(); }, stop);
              },
              std::move(ended))
    { }

    /// How the list is to be arranged; one that is nearly there may come arranged as was wished before.
    void arrange(ListArrangement as) { wish_->set(std::move(as)); }
    /// As BackgroundReading.
    bool waitFor(std::chrono::milliseconds patience) { return reading_.waitFor(patience); }
    ListOfSource take() { return reading_.take(); }
    /// As Background.
    void leaveTo(LeftTasks& left) { reading_.leaveTo(left); }

    ChangedRows since; ///< what changed since the beginning, and may be missing in the list
    bool isOutdated = false; ///< more than such rows may be missing

private:
    class Wish {
    public:
        explicit Wish(ListArrangement as) : as_(std::move(as)) { }
        void set(ListArrangement as)
        {
            const std::lock_guard lock(mutex_);
            as_ = std::move(as);
        }
        ListArrangement get() const
        {
            const std::lock_guard lock(mutex_);
            return as_;
        }

    private:
        mutable std::mutex mutex_;
        ListArrangement as_;
    };

    std::shared_ptr<Wish> wish_;
    BackgroundReading<ListOfSource> reading_;
};

} // namespace korvo
