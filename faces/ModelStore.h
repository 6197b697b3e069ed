#pragma once

#include "base/Enum.h"
#include "base/MainThread.h"
#include "base/Signal.h"
#include "base/Task.h"
#include "faces/ModelFetch.h"
#include "platform/Downloader.h"

#include <filesystem>
#include <string>

namespace korvo {

/// Where models come from unless the user names a mirror.
inline constexpr const char* defaultModelHost = "https://huggingface.co";

/// Knows whether a model is installed, and fetches and removes it at the user's request. Lives on the main
/// thread; the work is done in the background.
class ModelStore {
public:
    struct State {
        enum class Case {
            missing,
            downloading, ///< with `progress`
            failed, ///< with `message`
            ready,
        };
        Case which = Case::missing;
        ModelProgress progress = {};
        std::string message = {}; ///< for the user

        friend bool operator==(const State&, const State&) = default;
    };

    /// Looks whether the files are in place and removes what a killed download left behind. `root` is the
    /// application-data folder, `host` a scheme and a name that stand before the files' pinned paths. `main`
    /// and `downloader` must outlive the store.
    ModelStore(MainThread& main, Downloader& downloader, ModelSet models, std::filesystem::path root,
        std::string host = defaultModelHost);
    ModelStore(const ModelStore&) = delete;
    ModelStore& operator=(const ModelStore&) = delete;

    const State& state() const { return state_; }

    /// The state has changed; look at state(). Observers may fetch, cancel and remove from inside the call.
    Signal<> changed;

    /// Starts a download unless one is running or the model is installed.
    void fetch();

    /// Stops a running download, which is no failure. Returns at once; what was downloaded is removed in the
    /// background.
    void cancel();

    /// Stops a running download and removes what is installed. Throws std::system_error.
    void remove();

protected:
    std::filesystem::path placeOf(const ModelFile& file) const { return fetch_.placeOf(file); }

private:
    void runFetch(const Task::Context& context);
    void finish(State state);
    void set(State state);
    State found() const;

    MainThread& main_;
    Downloader& downloader_;
    const ModelFetch fetch_;
    State state_;
    Task task_; // the last, so that it ends before what it uses
};

/// The line for the user: "Not installed", "Downloading… 45 %", "Downloading… 3 MB", "Installed", or what
/// went wrong.
std::string stateText(const ModelStore::State& state);

KORVO_ENUM(ModelStore::State::Case, missing, downloading, failed, ready)

} // namespace korvo
