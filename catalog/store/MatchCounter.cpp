#include "catalog/store/MatchCounter.h"

#include "base/UserError.h"

#include <chrono>

namespace korvo {

namespace {

using namespace std::chrono_literals;

constexpr auto longestSlice = 4ms;
constexpr std::size_t photosBetweenLooks = 512; // at the time

} // namespace

MatchCounter::MatchCounter(MainThread& main, LibraryStore& store)
    : main_(main), store_(store), storeChanged_(store.changed.connect([this](const LibraryChange& change) {
          if (rules_ && (change.list || !change.photos.empty()))
              begin();
      }))
{ }

void MatchCounter::count(SmartAlbumRules rules)
{
    main_.assertCurrent();
    rules_ = std::move(rules);
    begin();
}

void MatchCounter::begin()
{
    task_.requestStop();
    slices_.reset();
    nextSlice_ = nullptr;
    result_.reset();
    fault_.clear();
    if (store_.source() || store_.isReading()) {
        changed.emit();
        countInBackground();
    } else {
        slices_.emplace(Slices{SmartAlbumMatcher(*rules_)});
        countSlice();
        if (!result_)
            changed.emit();
    }
}

void MatchCounter::countSlice()
{
    const auto end = std::chrono::steady_clock::now() + longestSlice;
    const auto& items = store_.list().items();
    auto& [matcher, next, found] = *slices_;
    while (next < items.size()) {
        const auto last = std::min(next + photosBetweenLooks, items.size());
        for (; next < last; ++next)
            found += matcher.matches(items[next]) ? 1 : 0;
        if (std::chrono::steady_clock::now() < end)
            continue;
        nextSlice_ = main_.postAfter(0ms, [this] { countSlice(); });
        return;
    }
    finish(found, {});
}

void MatchCounter::countInBackground()
{
    task_ = runInBackground(
        main_, [this, &catalog = store_.catalog(), rules = *rules_](const Task::Context& context) {
            try {
                const auto count = catalog.countMatching(rules, context.stopToken());
                context.deliver([this, count] { finish(count, {}); });
            } catch (const std::exception& error) {
                context.deliver([this, fault = textForUser(error)] { finish(std::nullopt, fault); });
            }
        });
}

void MatchCounter::finish(std::optional<std::size_t> count, std::string fault)
{
    result_ = count;
    fault_ = std::move(fault);
    changed.emit();
}

} // namespace korvo
