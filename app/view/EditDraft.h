#pragma once

#include "app/view/Browser.h"

namespace korvo {

/// The edits of the photos that the panel works on, while a control is being moved: they are shown at once
/// and stored, as one step of undo, when it is let go. A control changes one thing in each photo's own edits,
/// so that many photos keep what else they have. Used on the main thread.
class EditDraft {
public:
    using Change = std::function<void(PhotoEdits&)>;

    /// Both must outlive it.
    EditDraft(LibraryStore& store, Browser& browser) : store_(store), browser_(browser) { }

    /// What editsOf() says of some photo has changed, without anything being stored.
    Signal<> changed;

    /// The photo's edits as drafted, else as stored; none for stored edits that cannot be read.
    PhotoEdits editsOf(const PhotoItem& item) const;
    bool isOpen() const { return bool(change_); }
    /// What is drafted, "Change Exposure", while it is open.
    const std::string& title() const { return title_; }

    /// Shows the change, in place of the one drafted before under that title, on the photos that commands act
    /// on when it begins. A draft of another title is kept first.
    void show(std::string title, Change change);
    /// Stores what is drafted, if anything. Throws as the store does: what could not be written now (another
    /// program writes, the disk is full) stays drafted for the next time, anything else is dropped.
    void keep();
    void drop();
    /// Shows and keeps in one.
    void apply(std::string title, Change change);

private:
    LibraryStore& store_;
    Browser& browser_;
    std::string title_;
    std::vector<PhotoID> photos_;
    Change change_;
    bool isOver_ = false; // let go, but it could not be stored yet
};

} // namespace korvo
