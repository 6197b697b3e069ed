#pragma once

#include "catalog/store/LibraryStore.h"

namespace korvo {

/// How the photos are looked at.
enum class ViewMode { grid, viewer, compare, survey, fullScreen };

/// Where the user is among the shown photos: how they are looked at, and which of them is the current one:
/// the one the viewer shows, or the grid's cursor. The selection is the store's. When the current photo
/// leaves the list, the one that took its place becomes current. Used on the main thread.
class Browser {
public:
    /// `store` must outlive it.
    explicit Browser(LibraryStore& store);

    /// The mode or the current photo has changed.
    Signal<> changed;

    ViewMode mode() const { return mode_; }
    /// Does nothing for a mode other than the grid while no photo is shown. In the survey the current photo
    /// is one of those that are surveyed; without any the grid comes back.
    void setMode(ViewMode mode);

    /// Nothing only when no photo is shown, or when none was chosen yet.
    std::optional<PhotoID> current() const { return current_; }
    const PhotoItem* currentItem() const;
    /// Makes a shown photo the current one. The selection stays when it holds the photo; else it becomes the
    /// selection.
    void setCurrent(PhotoID id);
    /// Makes the photo current that stands so many places further on (or back), at most the last (or first).
    void step(std::ptrdiff_t places);

    /// The photo to go on to after these: the one behind the last of them that is shown, in the survey among
    /// those that are surveyed.
    std::optional<PhotoID> after(std::span<const PhotoID> ids) const;

    /// The store's undo, which selects what it touched. A survey keeps what it shows, and takes that along.
    /// A source that is gone by it is left for all photos.
    void undo();
    /// The store's redo. A survey keeps what it shows.
    void redo();

    /// Lists a photo, or a version, with all versions of it, and makes it the selected one.
    void showVersions(PhotoID photo);
    /// Lists again what was listed before; does nothing when no versions are listed.
    void leaveVersions();

    /// The photos that a command acts on: in the grid all selected, else the current one alone.
    std::vector<PhotoID> targets() const;
    std::size_t targetCount() const;

private:
    void leaveGoneSource();
    void stepEnded();
    void undoTogether();
    bool listsVersions() const;
    void selectShown(std::vector<PhotoID> ids);
    void storeChanged(const LibraryChange& change);
    std::optional<std::size_t> place() const;
    void keepCurrent();
    void keepSurvey();
    PhotoID inPlaceOfCurrent() const;

    LibraryStore& store_;
    ViewMode mode_ = ViewMode::grid;
    std::optional<PhotoID> current_;
    struct Left {
        std::optional<LibrarySource> source;
        std::vector<PhotoID> selection;
    };
    Left leftForVersions_;
    std::optional<std::vector<PhotoID>> together_; // to be surveyed when the step has ended, as before it
    std::size_t place_ = 0; // of the current photo among the shown ones, as it was last
    Connection storeChanged_, stepEnded_;
};

} // namespace korvo
