#pragma once

#include "app/view/Browser.h"

namespace korvo {

/// The edits of the photos that the panel works on, while a control is being moved: they are shown at once
/// and stored, as one step of undo, when it is let go. A control changes one thing in each photo's own edits,
/// so that many photos keep what else they have. Used on the main thread.
class EditDraft {
public:
    /// Owns all that it uses: it may be called on another thread, after whoever made it has gone.
    using Change = std::function<void(PhotoEdits&)>;

    /// Both must outlive it.
    EditDraft(LibraryStore& store, Browser& browser);

    /// What editsOf() says of some photo has changed, without anything being stored.
    Signal<> changed;

    /// The photo's edits as drafted, else as stored; none for stored edits that cannot be read.
    PhotoEdits editsOf(const PhotoItem& item) const;
    bool isOpen() const { return change_ && state_ != State::storing; }
    /// Whether its control has not been let go.
    bool isMoved() const { return change_ && state_ == State::open; }
    /// What is drafted, "Change Exposure", while it is open.
    const std::string& title() const { return title_; }

    /// Shows the change, in place of the one drafted before under that title, on the photos that commands act
    /// on when it begins. A draft of another title is kept first. Throws while a step runs, which is no time
    /// to begin another.
    void show(std::string title, Change change);
    /// Stores what is drafted, if anything. Throws as the store does: what could not be written now (another
    /// program writes, the disk is full) stays drafted for the next time, anything else is dropped. What the
    /// store does not wait for is shown till it is stored, and drafted again where that fails so.
    void keep();
    void drop();
    /// Shows and keeps in one.
    void apply(std::string title, Change change);

private:
    enum class State {
        open,
        over, ///< let go, but it could not be stored yet
        storing, ///< by a step that has not ended
    };

    void store();
    void end();
    void requireFree();
    void stepEnded(StepOutcome outcome);

    LibraryStore& store_;
    Browser& browser_;
    std::string title_;
    std::vector<PhotoID> photos_;
    Change change_;
    State state_ = State::open;
    Connection stepEnded_;
};

} // namespace korvo
