#pragma once

#include "catalog/CatalogRecords.h"
#include "catalog/sql/Changeset.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace korvo {

enum class UndoWay { back, forth };

/// Begins work in the background that takes a step back, or does it again; it may refuse by throwing. When
/// that has ended, later and on the main thread, it tells which way the step has gone: forth also where
/// something of it could not be taken back.
using Retrace = std::function<void(UndoWay, std::function<void(UndoWay gone)> ended)>;

/// One user action, whatever the number of photos it changed.
struct UndoStep {
    std::string title; // "Set Rating"
    Changeset changes;
    std::size_t photos = 0; // that it changed, made or removed, but for those added
    AddedRows added; // which undo takes out of the library, whatever became of them since
    Retrace retrace = {}; // where files have part in it
    std::uint64_t number = 0; // given by the history, never twice
};

/// The user's actions, done and undone. The oldest are forgotten when there are more than `stepsKept`, or
/// when all together pass `bytesKept`; `fewestSteps` stay whatever they take.
class UndoHistory {
public:
    static constexpr std::size_t stepsKept = 500;
    static constexpr std::size_t fewestSteps = 200;
    static constexpr std::size_t bytesKept = std::size_t{256} << 20;

    /// A new action; what was undone before it can no longer be redone.
    void add(UndoStep step)
    {
        steps_.resize(done_);
        put(std::move(step), done_);
    }
    /// An action that ends now but began when the step `since` was the newest: what was done meanwhile is
    /// undone before it, and still can be redone if it is undone already. What is older and was undone no
    /// longer can: it may be what has come again.
    void addBehind(std::uint64_t since, UndoStep step)
    {
        if (done_ < steps_.size() && steps_[done_].number <= since)
            steps_.resize(done_);
        auto place = done_;
        while (place > 0 && steps_[place - 1].number > since)
            --place;
        put(std::move(step), place);
    }
    /// The number of the action that came last, done or undone; 0 before the first.
    std::uint64_t newest() const { return newest_; }

    /// The action that undo takes back, and the one that redo does again; null when there is none.
    const UndoStep* toUndo() const { return done_ > 0 ? &steps_[done_ - 1] : nullptr; }
    const UndoStep* toRedo() const { return done_ < steps_.size() ? &steps_[done_] : nullptr; }

    /// Forgets a step that cannot be undone, or redone, any more.
    void forgetUndo() { steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(--done_)); }
    void forgetRedo() { steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_)); }

    void undone() { --done_; }
    /// The same, where undoing it took back more than was recorded.
    void undone(Changeset redo)
    {
        steps_[--done_].changes = std::move(redo);
        forgetOldest();
    }
    void redone()
    {
        if (steps_[done_].added.areThere()) // undo goes by these
            steps_[done_].changes = {};
        ++done_;
    }

    /// Its retrace has begun. Till that ends it counts as done, whatever comes after it, and nothing else is
    /// undone or redone.
    void beginRetrace(UndoWay way)
    {
        if (way == UndoWay::forth)
            redone();
        retracing_ = steps_[done_ - 1].number;
    }
    /// Null when there is none.
    const UndoStep* retracing() const
    {
        const auto found = std::ranges::find(steps_, retracing_, &UndoStep::number);
        return found == steps_.end() ? nullptr : &*found;
    }
    void endRetrace(UndoWay gone)
    {
        const auto number = std::exchange(retracing_, 0);
        if (gone == UndoWay::forth)
            return;
        if (toUndo() && toUndo()->number == number)
            undone();
        else // what is undone before others is not done again
            done_ -= std::erase_if(steps_, [&](const UndoStep& step) { return step.number == number; });
    }

private:
    void put(UndoStep step, std::size_t place)
    {
        step.number = ++newest_;
        steps_.insert(steps_.begin() + static_cast<std::ptrdiff_t>(place), std::move(step));
        ++done_;
        forgetOldest();
    }

    void forgetOldest()
    {
        std::size_t bytes = 0;
        for (const auto& step : steps_)
            bytes += step.changes.bytes().size();
        while (
            done_ > 0 && (steps_.size() > stepsKept || (bytes > bytesKept && steps_.size() > fewestSteps))) {
            --done_;
            bytes -= steps_.front().changes.bytes().size();
            steps_.pop_front();
        }
    }

    std::deque<UndoStep> steps_;
    std::size_t done_ = 0;
    std::uint64_t newest_ = 0;
    std::uint64_t retracing_ = 0; // the number of the step; none has 0
};

} // namespace korvo
