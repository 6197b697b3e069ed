#pragma once

#include "base/MainThread.h"
#include "base/Signal.h"
#include "catalog/Catalog.h"
#include "catalog/CommonMetadata.h"
#include "catalog/MetadataChange.h"
#include "catalog/store/LibraryChange.h"
#include "catalog/store/ListReading.h"
#include "catalog/store/PhotoCounter.h"
#include "catalog/store/Steps.h"

#include <chrono>
#include <deque>
#include <memory>
#include <unordered_map>

namespace korvo {

/// The open library as the views see it: the current source, its photos, the selection, and everything the
/// user does to them. Each action is one transaction, one step of undo, and one published change; one that
/// fails throws DatabaseError and leaves everything as it was. Used on the main thread.
class LibraryStore {
public:
    static constexpr std::chrono::hours untilItIsRead{24};
    /// How long an action waits while another process writes, before it throws.
    static constexpr std::chrono::milliseconds writePatience{100};

    /// Reads the whole library. `main` must outlive the store. Lists are read in the background, and waited
    /// for as long as `patience` says; one that takes longer is shown when it is there.
    LibraryStore(MainThread& main, std::unique_ptr<Catalog> catalog,
        std::chrono::milliseconds patience = untilItIsRead, const StoreBounds& bounds = {});

    Catalog& catalog() { return *catalog_; }
    Signal<const LibraryChange&> changed;
    /// A step that was not waited for has ended, and is published.
    Signal<StepOutcome> stepEnded;
    /// Something failed that nobody waits for any more.
    Signal<const std::exception&> failed;

    // What is shown
    const PhotoList& list() const { return list_; }
    /// Whether a list is being read. Till it is there, a source that was just chosen lists nothing, and one
    /// that is read again what it did before.
    bool isReading() const { return reading_ != nullptr; }
    /// Whether the order of the photos shown is being found out; till it is, they are shown as before.
    bool isOrdering() const { return ordering_ != nullptr; }
    const std::optional<LibrarySource>& source() const { return source_; }
    /// Why a source that cannot be listed shows nothing: a smart album whose rules cannot be read, or that is
    /// gone.
    const std::optional<std::string>& sourceFault() const { return sourceFault_; }
    const std::vector<PhotoID>& selection() const { return selection_; }
    /// The same, or what will be selected once the list that is being read is there.
    const std::vector<PhotoID>& wishedSelection() const { return toSelect_.empty() ? selection_ : toSelect_; }
    /// The sidebar, read again after it has changed. Its counts of photos may follow, as another change.
    const LibraryTree& tree();
    /// Whether those have been counted at all.
    bool isCounted() const { return counter_.counts().has_value(); }
    /// Whether counts are to follow.
    bool isCounting() const { return counter_.isCounting() || (reading_ && counter_.isDue()); }
    /// How many versions a photo has, itself left out, as last counted with the tree.
    std::int64_t versionCount(PhotoID master) const;
    /// What is being done with the photo, as setStatuses has it.
    const PhotoItem::Status& status(PhotoID id) const;
    /// All of them as one change; of two of one photo the later counts.
    void setStatuses(std::span<const std::pair<PhotoID, PhotoItem::Status>> statuses);

    void chooseSource(std::optional<LibrarySource> source);
    /// The photos of a long list are put in order in the background.
    void arrange(std::optional<SortKey> key, std::optional<GridFilter> filter);
    /// Shows only photos that match all of these too; what the search field and the filter bar leave.
    void narrow(std::span<const SmartAlbumRules> rules);
    /// While a source that was just chosen is read, they are selected when it is there.
    void select(std::vector<PhotoID> ids);

    /// Makes any change of the catalog one undoable action. That of many photos, as undo and redo of it, runs
    /// on another thread, must own all that it uses, and is waited for no longer than a list is. Until
    /// stepEnded nothing else is done, and throws.
    void perform(std::string title, std::function<void(Catalog&)> change, std::size_t photos = 0);
    /// The title of the step that runs so, if any.
    const std::string* longStep() const { return longStep_ ? &longStep_->title : nullptr; }
    /// Whether a step may begin: none is running, and the last has been told of.
    bool isFree() const { return !longStep_ && !endedStep_; }
    void requireFree() const; ///< throws DatabaseError::Case::occupied unless it is
    /// Does it once it is free: at once, or after stepEnded, in the order asked for.
    void whenFree(std::function<void()> action);
    void finishLongStep(); ///< returns once none is running

    /// Reads the current source again after a job has added something, which becomes one action, "Import 24
    /// Photos": undo does Catalog::takeOut, the files stay, and redo brings everything back as it was then.
    /// What was done since the job began, when newestStep() was `since`, is undone before it.
    void adopt(std::string_view verb, AddedRows added, std::uint64_t since);
    /// The same of a job that has changed photos and their files: undo and redo call `retrace`, and throw
    /// until what it began has ended.
    void adopt(std::string title, Retrace retrace, std::uint64_t since);

    /// Numbers for the actions that would be undone and redone, which no others get.
    std::optional<std::uint64_t> undoStep() const;
    std::optional<std::uint64_t> redoStep() const;
    /// That of the action that came last; 0 before the first.
    std::uint64_t newestStep() const { return history_.newest(); }
    /// The title of the action that would be undone or redone, for the menu.
    std::optional<std::string> undoTitle() const;
    std::optional<std::string> redoTitle() const;
    /// How many photos the action that would be undone changed, made or removed; 0 for one that added them.
    std::size_t undoPhotos() const;
    /// Takes the last action back, or does it again, and selects the photos it touched. Nothing happens when
    /// there is none; a step that can no longer be taken is forgotten, and DatabaseError thrown. Metadata
    /// that comes back waits to be written into the files again.
    void undo();
    void redo();

    /// Publishes changes that were made to these photos beside the store, by background work.
    void photosChanged(std::span<const PhotoID> ids);
    void reload(); ///< reads the current source again, as after photos were added
    /// Reads the current source again if another process has changed the library since the last call.
    void reloadIfChangedElsewhere();

private:
    enum class Shown { yes, later };

    // The list (LibraryStoreList.cpp)
    /// Reads all photos of a source and makes it the current one. Throws, with nothing changed, when it
    /// cannot be read and that shows in time.
    Shown load(std::optional<LibrarySource> source);
    /// Ends a reading that nobody waits for any more.
    void giveUp(std::unique_ptr<ListReading> reading);
    void listArrived(); ///< the one that was waited for
    /// `since` may be missing in what was read.
    void show(ListOfSource read, const ChangedRows& since);
    void replaceList(PhotoList list);
    /// Shows the list as it is wished.
    void arrange(ListArrangement as);
    Shown order(std::chrono::milliseconds patience);
    void orderArrived();
    /// Ends an ordering that may be running, before what it looks at changes. Returns the rows kept for it.
    ChangedRows endOrdering();
    /// Does what follows a change that is stored already, and must be told even if the list cannot show it.
    /// Returns whether it went well.
    bool follow(const std::function<void()>& step);
    /// Frees a list that may be long, in the background.
    void discard(PhotoList list);
    bool mustReload(const ChangedRows& rows) const;
    /// Brings the list up to date; returns whether it is shown otherwise.
    bool updateList(const ChangedRows& rows);
    /// The same with these rows alone, while nothing is being ordered.
    bool updateRows(const ChangedRows& rows);
    bool updatePhotos(const ChangedRows& rows);
    /// Those of the photos that the source lists; nothing when it cannot be listed any more.
    std::optional<std::vector<PhotoItem>> listedOf(std::span<const PhotoID> ids);

    // The selection (LibraryStoreSelection.cpp)
    /// Brings it in line with the list; returns whether it has changed.
    bool repairSelection(std::optional<std::size_t> placeAfter);
    std::optional<std::size_t> placeAfterSelection() const;

    void treeChanged();

    // Steps (LibraryStoreSteps.cpp)
    enum class Where { here, beside };
    /// Does something to the catalog, here or on another thread, and ends it here.
    void make(std::string title, Where where, MakeStep making, EndStep ending);
    StepDone taken(LongStep& step);
    void longStepArrived();
    void tellFault(const std::function<void()>& action);
    /// What came of the step that is next on this way; forgets it when it can never be taken.
    StepDone attempt(UndoWay way, const TakeStep& take);
    void takeOut(const UndoStep& step);
    void takeStep(const UndoStep& step, UndoWay way);
    /// Brings the list up to date with what changed, and publishes it. `select` names photos to select.
    void publish(ChangedRows rows, std::span<const PhotoID> select = {}, std::size_t takenOut = 0);

    MainThread& main_;
    std::unique_ptr<Catalog> catalog_;
    std::chrono::milliseconds patience_;
    StoreBounds bounds_;
    std::optional<LibrarySource> source_;
    std::optional<std::string> sourceFault_;
    PhotoList list_;
    bool isListed_ = false; // list_ is the source's, though maybe of an earlier moment
    std::vector<PhotoID> selection_;
    std::vector<PhotoID> toSelect_; // once the list is there that is being read, or its order
    std::optional<LibraryTree> tree_;
    std::unordered_map<PhotoID, PhotoItem::Status> statuses_; // but those that are idle
    UndoHistory history_;
    std::int64_t dataVersion_;
    LeftTasks left_; // readings given up, and lists that are being freed
    PhotoCounter counter_;
    std::unique_ptr<ListReading> reading_;
    ChangedRows late_; // what background work changed while ordering_ looks at the list, which thus stands
    std::unique_ptr<Background<PhotoList::Order>> ordering_; // of list_; ends before it
    std::deque<std::function<void()>> whenFree_; // once the long step has ended
    std::unique_ptr<LongStep> endedStep_; // till all have heard of it
    std::unique_ptr<LongStep> longStep_; // of history_; last, so that it ends first
};

} // namespace korvo
