#pragma once

#include "catalog/Changeset.h"

#include <optional>
#include <string>
#include <vector>

namespace korvo {

/// One user action, whatever the number of photos it changed.
struct UndoStep {
    std::string title; // "Set Rating"
    Changeset changes;
};

/// The user's actions, done and undone. The oldest of more than `stepsKept` are forgotten.
class UndoHistory {
public:
    static constexpr std::size_t stepsKept = 500;

    /// A new action; what was undone before it can no longer be redone.
    void add(UndoStep step)
    {
        steps_.resize(done_);
        steps_.push_back(std::move(step));
        if (steps_.size() > stepsKept)
            steps_.erase(steps_.begin());
        done_ = steps_.size();
    }

    /// The action that undo takes back, and the one that redo does again; null when there is none.
    const UndoStep* toUndo() const { return done_ > 0 ? &steps_[done_ - 1] : nullptr; }
    const UndoStep* toRedo() const { return done_ < steps_.size() ? &steps_[done_] : nullptr; }

    /// Forgets a step that cannot be undone, or redone, any more.
    void forgetUndo() { steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(--done_)); }
    void forgetRedo() { steps_.erase(steps_.begin() + static_cast<std::ptrdiff_t>(done_)); }

    void undone() { --done_; }
    void redone() { ++done_; }

private:
    std::vector<UndoStep> steps_;
    std::size_t done_ = 0;
};

} // namespace korvo
