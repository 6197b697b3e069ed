#pragma once

#include "app/Session.h"
#include "app/SystemTools.h"
#include "app/desktop/Jobs.h"
#include "app/desktop/Pictures.h"
#include "app/desktop/QtMainThread.h"
#include "app/pictures/LiveRenders.h"
#include "app/view/EditDraft.h"
#include "app/view/Search.h"
#include "faces/FaceModelStore.h"
#include "imports/VolumeWatcher.h"
#include "platform/linux/CurlDownloader.h"
#include "platform/linux/LinuxVolumes.h"

namespace korvo {

/// A line for the user.
struct Notice {
    /// News come from the background, and wait while something is offered.
    enum class Kind { note, news, error };
    Kind kind;
    std::string text;
    std::optional<std::uint64_t> undoes = std::nullopt; ///< the step that a button beside it takes back
    std::optional<std::uint64_t> redoes = std::nullopt; ///< or does again
};

enum class Offer { nothing, undo };

/// An open library and everything that the window's parts share. Each of them takes it by reference; it
/// outlives them all. Used on the main thread.
class Desktop {
public:
    /// As long as a window may stand still for a list that is just being read.
    static constexpr std::chrono::milliseconds usualPatience{10};

    /// `main`, `clock` and `defaults` must outlive it. `patience` is the store's.
    Desktop(QtMainThread& main, std::unique_ptr<Catalog> catalog, const Clock& clock, Defaults& defaults,
        std::chrono::milliseconds patience = usualPatience);

    Session& session() { return session_; }
    LibraryStore& store() { return session_.store(); }
    /// Which photo is looked at, how, and which ones a command acts on.
    Browser& browser() { return browser_; }
    Search& search() { return search_; }
    QtMainThread& mainThread() { return main_; }
    Pictures& pictures() { return pictures_; }
    /// What the viewer shows and will show next, before its edits, in memory.
    DecodedPhotos& decoded() { return decoded_; }
    LiveRenders& renders() { return renders_; }
    /// The edits that are being made on the panel.
    EditDraft& draft() { return draft_; }
    FaceModelStore& faceModel() { return faceModel_; }
    Jobs& jobs() { return jobs_; }
    /// For tasks that nobody wants any more: the window never waits for them.
    LeftTasks& leftTasks() { return leftTasks_; }
    /// What photos can be imported from. Throws std::system_error when the system cannot be watched.
    VolumeWatcher& volumes();
    const Clock& clock() const { return clock_; }
    Defaults& defaults() { return defaults_; }
    ImageReader& imageReader() { return tools_.reader; }
    const ExifTool& exifTool() const { return tools_.exifTool; }

    /// Whether photos, pictures or jobs are still to come.
    bool isBusy();

    Signal<const Notice&> noticed;
    /// Shows a line that goes after five seconds, with a button that takes back what the attempt that says so
    /// did, if that is offered and anything was done. Of a step that has not ended it is said when it has,
    /// and not at all when it failed.
    void say(std::string text, Offer offer = Offer::nothing);
    /// Shows what went wrong, as a sentence; it stays until it is clicked away, but for what only had to
    /// wait.
    void fail(const std::exception& error);
    /// Does something that the user asked for, and shows what goes wrong with it. When it has changed many
    /// photos without a word, says so, and offers to take it back.
    template <typename Action>
    void attempt(Action action)
    {
        beginAttempt();
        try {
            action();
        } catch (const std::exception& error) {
            fail(error);
        }
        endAttempt();
    }

private:
    void beginAttempt();
    void endAttempt();
    /// What the user did since that step, with a way to take it back.
    void sayDone(std::string text, std::uint64_t since);
    void offerUndo(std::uint64_t since);
    /// Says how many photos undo took out of the library, and offers to bring them back.
    void sayTakenOut(std::size_t photos);
    void stepEnded(StepOutcome outcome);
    void notify(const Notice& notice);

    QtMainThread& main_;
    const Clock& clock_;
    Defaults& defaults_;
    SystemTools tools_;
    Session session_;
    PreviewCache previewCache_;
    Browser browser_;
    Search search_;
    Pictures pictures_;
    DecodedPhotos decoded_;
    LiveRenders renders_;
    EditDraft draft_;
    CurlDownloader downloader_;
    FaceModelStore faceModel_;
    Jobs jobs_;
    LinuxVolumes volumeService_;
    std::unique_ptr<VolumeWatcher> volumes_; // from the first time on that it is asked for
    LeftTasks leftTasks_;
    int attempts_ = 0; // one within the other
    std::uint64_t newestBefore_ = 0; // step of the store when the outermost of them began
    bool hasSpoken_ = false; // since then
    const std::string* stepBefore_ = nullptr; // the long one that ran then
    std::uint64_t newestBeforeStep_ = 0; // when the one began that has not ended
    std::optional<std::string> saidOfStep_; // once it has
    Connection storeChanged_, stepEnded_, failed_;
};

} // namespace korvo
