#include "bench/catalog/StepBench.h"

#include "bench/support/Compare.h"
#include "catalog/store/LibraryActions.h"
#include "tests/support/ManualMainThread.h"

#include <fmt/format.h>

namespace korvo::bench {

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begun)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - begun).count();
}

/// A store as the window has it, and how long it holds the main thread.
struct WatchedStore {
    explicit WatchedStore(const std::filesystem::path& library)
        : store(main, std::make_unique<Catalog>(library, SystemClock()), std::chrono::milliseconds(10))
    {
        settle();
    }

    void settle()
    {
        while (store.longStep() || store.isReading() || store.isOrdering() || store.isCounting())
            longest = std::max(longest, 1000 * secondsOf([&] { main.runPending(); }));
    }

    void report(const char* what, const std::function<void()>& action)
    {
        longest = 0;
        const auto begun = Clock::now();
        action();
        const auto call = millisecondsSince(begun);
        settle();
        fmt::print("  {:<34} call {:8.1f} ms, longest hold after it {:8.1f} ms, all done {:8.1f} ms\n", what,
            call, longest, millisecondsSince(begun));
    }

    ManualMainThread main;
    LibraryStore store;
    double longest = 0;
};

} // namespace

void reportSteps(const std::filesystem::path& library, std::size_t photos)
{
    WatchedStore watched(library);
    auto& store = watched.store;
    std::vector<PhotoID> ids;
    for (const auto position : store.list().shown())
        if (ids.size() < photos)
            ids.push_back(store.list().items()[position].id);
    fmt::print("Actions on {} of {} photos\n", ids.size(), store.list().items().size());
    const auto reportThrice = [&](const char* what, const std::function<void()>& action) {
        watched.report(what, action);
        watched.report("  undo", [&] { store.undo(); });
        watched.report("  redo", [&] { store.redo(); });
        store.undo();
        watched.settle();
    };
    watched.report("select", [&] { store.select(ids); });
    reportThrice("set rating", [&] { setRating(store, ids, 3); });
    reportThrice("set label", [&] { setLabel(store, ids, PhotoLabel::none); });
    reportThrice("add a keyword", [&] { editKeywords(store, ids, {.added = {"night"}, .removed = {}}); });
    reportThrice("set title", [&] { setMetadataField(store, ids, 1, "A title"); });
    reportThrice("remove", [&] { removePhotos(store, ids); });
    reportThrice("adopt what was added", [&] { store.adopt("Add", {ids, {}, {}}, store.newestStep()); });
}

} // namespace korvo::bench
