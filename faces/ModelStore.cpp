#include "faces/ModelStore.h"

#include "base/Text.h"

#include "platform/PartFile.h"
#include "platform/PosixFile.h"

#include <exception>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace korvo {

namespace {

using Case = ModelStore::State::Case;

std::string withoutSlash(std::string host)
{
    while (host.ends_with('/'))
        host.pop_back();
    return host;
}

void removeInstalled(const std::filesystem::path& file)
{
    std::error_code reason;
    std::filesystem::remove(file, reason);
    if (reason)
        throwFileError("remove", file, reason);
    // The model's own folder goes too; that fails when something else is in it, which may stay.
    rmdir(file.parent_path().c_str());
}

} // namespace

ModelStore::ModelStore(
    MainThread& main, Downloader& downloader, ModelSet models, std::filesystem::path root, std::string host)
    : main_(main),
      downloader_(downloader), fetch_{std::move(models), std::move(root), withoutSlash(std::move(host))},
      state_(found())
{
    for (const auto& file : fetch_.models.files)
        PartFile::removeLeftOvers(placeOf(file));
}

ModelStore::State ModelStore::found() const
{
    return {fetch_.isInstalled() ? Case::ready : Case::missing};
}

void ModelStore::fetch()
{
    main_.assertCurrent();
    if (state_.which == Case::downloading)
        return;
    task_.cancel(); // one that was cancelled may still be clearing up
    if (fetch_.isInstalled())
        return set({Case::ready});
    task_ = runInBackground(main_, [this](const Task::Context& context) { runFetch(context); });
    set({Case::downloading});
}

/// On the background thread: touches nothing but what stays the same as long as the task lives.
void ModelStore::runFetch(const Task::Context& context)
{
    const auto report = [&](const ModelProgress& progress) {
        context.deliver([this, progress] { set({Case::downloading, progress}); });
    };
    try {
        fetchModels(fetch_, downloader_, report, context.stopToken());
        context.deliver([this] { finish({Case::ready}); });
    } catch (const std::exception& error) {
        // A cancelled download ends here too; what its task delivers is withheld.
        context.deliver([this, message = std::string(error.what())] { finish({Case::failed, {}, message}); });
    }
}

void ModelStore::finish(State state)
{
    task_.cancel();
    set(std::move(state));
}

void ModelStore::cancel()
{
    main_.assertCurrent();
    if (state_.which != Case::downloading)
        return;
    task_.requestStop(); // without waiting: to remove a large part file takes its time
    set(found());
}

void ModelStore::remove()
{
    main_.assertCurrent();
    task_.cancel();
    try {
        for (const auto& file : fetch_.models.files)
            removeInstalled(placeOf(file));
    } catch (...) {
        set(found());
        throw;
    }
    set(found());
}

std::string stateText(const ModelStore::State& state)
{
    const auto& [received, fraction] = state.progress;
    switch (state.which) {
    case ModelStore::State::Case::missing:
        return "Not installed";
    case ModelStore::State::Case::downloading:
        return "Downloading… "
            + (fraction ? std::to_string(static_cast<int>(*fraction * 100)) + " %" : sizeText(received));
    case ModelStore::State::Case::failed:
        return state.message;
    case ModelStore::State::Case::ready:
        break;
    }
    return "Installed";
}

/// The last thing each function does: observers may change the state again.
void ModelStore::set(State state)
{
    main_.assertCurrent();
    if (state == state_)
        return;
    state_ = std::move(state);
    changed.emit();
}

} // namespace korvo
