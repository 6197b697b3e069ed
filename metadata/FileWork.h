#pragma once

#include "base/Task.h"
#include "catalog/store/LibraryStore.h"
#include "metadata/MetadataSave.h"

#include <stop_token>
#include <string>

namespace korvo {

/// Why work on files is not begun: other work is still running; what() is for the user.
class FilesBusy : public std::runtime_error {
public:
    FilesBusy();
};

/// Work on the files of photos.
struct FileJob {
    std::string verb; // "Saving", which stands before "3 of 24…"
    std::function<std::string(const FilesWritten&)> summary; // said at its end
    /// Runs in the background.
    std::function<FilesWritten(Catalog&, const ExifTool&, const std::stop_token&, const FileProgress&)> run;
    /// Runs on the main thread, before the store hears of what has changed.
    std::function<void(const FilesWritten&)> ended = {};
    std::string correcting = {}; // see FileWork::correcting()
};

/// Work on the files of the open library's photos, one job at a time, in the background. Used on the main
/// thread.
class FileWork {
public:
    /// All of these must outlive this.
    FileWork(MainThread& main, LibraryStore& store, const ExifTool& tool);

    Signal<> changed; // something below has a new value

    /// Whether a job is running.
    bool isSaving() const { return saving_; }
    /// The title of a running change of dates or positions, or of its undoing, which leaves off when it is
    /// ended; else empty. What is not saved or reverted yet waits on.
    const std::string& correcting() const { return correcting_; }
    /// What is being done, or what came of it.
    const std::string& statusMessage() const { return statusMessage_; }
    /// What went wrong with which photo in the last job.
    const std::vector<FileFailure>& failures() const { return failures_; }
    /// They have been seen.
    void forgetFailures();
    /// Why the photo's last job failed, until one does not; null when it did not.
    const std::string* failureOf(PhotoID photo) const;
    /// Whether it could not write all that it was to, or nothing.
    bool hasFailed() const { return hasFailed_; }
    bool exiftoolMissing() const { return exiftoolMissing_; }

    /// Throws FilesBusy while a job runs.
    void requireIdle() const;
    /// Throws FilesBusy.
    void begin(FileJob job);
    /// Ends a running job, also one whose tool hangs; what is not written yet waits on.
    void stopSaving() { stop_.request_stop(); }

private:
    void say(std::string message);
    void finish(const FilesWritten& result, std::string message);

    MainThread& main_;
    LibraryStore& store_;
    const ExifTool& tool_;
    bool saving_ = false;
    std::string correcting_;
    bool hasFailed_ = false;
    bool exiftoolMissing_ = false;
    std::string statusMessage_;
    std::stop_source stop_; // of what is running
    std::function<void(const FilesWritten&)> ended_; // the same
    std::vector<FileFailure> failures_;
    Task task_; // last, so that it ends first
};

} // namespace korvo
