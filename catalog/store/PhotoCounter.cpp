#include "catalog/store/PhotoCounter.h"

namespace korvo {

PhotoCounter::PhotoCounter(MainThread& main, const Catalog& catalog, std::chrono::milliseconds patience,
    std::function<void()> counted)
    : main_(main), catalog_(catalog), patience_(patience), counted_(std::move(counted))
{ }

bool PhotoCounter::bringUpToDate()
{
    if (!isDue_ || counting_)
        return false;
    isDue_ = false;
    counting_ = std::make_unique<BackgroundReading<LibraryCounts>>(
        main_, catalog_, [](Database& database, const std::stop_token&) { return countsIn(database); },
        [this] { countsArrived(); });
    if (!counting_->waitFor(patience_))
        return false;
    return takeCounts();
}

bool PhotoCounter::takeCounts()
{
    const auto counting = std::move(counting_);
    try {
        counts_ = counting->take();
        return true;
    } catch (const DatabaseError&) { // those of before stay, and who asks next counts again
        isDue_ = true;
        return false;
    }
}

void PhotoCounter::countsArrived()
{
    const auto before = counts_;
    if (takeCounts())
        bringUpToDate();
    if (before != counts_)
        counted_();
}

} // namespace korvo
