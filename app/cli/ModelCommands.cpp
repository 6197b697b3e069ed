#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "app/cli/RunLoop.h"
#include "faces/FaceModelStore.h"
#include "platform/AppFolders.h"
#include "platform/linux/CurlDownloader.h"

namespace korvo {

namespace {

using State = ModelStore::State;

std::string_view stateName(State::Case which)
{
    switch (which) {
    case State::Case::missing:
        return "missing";
    case State::Case::downloading:
        return "downloading";
    case State::Case::failed:
        return "failed";
    case State::Case::ready:
        return "ready";
    }
    return {};
}

void print(const Context& context, const FaceModelStore& store)
{
    const auto state = stateName(store.state().which);
    const auto path = store.modelPath().native();
    if (context.options().json) {
        JsonWriter json;
        json.beginObject();
        json.member("state", state);
        json.member("path", path);
        if (!store.state().message.empty())
            json.member("message", store.state().message);
        json.endObject();
        context.print(json.take());
    } else {
        context.print(std::string(state) + "  " + path);
    }
}

/// The store, with what it works with.
struct Models {
    explicit Models(const std::string& host = {})
        : store(loop, downloader, applicationDataFolder(), host.empty() ? defaultModelHost : host)
    { }

    RunLoop loop;
    CurlDownloader downloader;
    FaceModelStore store;
};

} // namespace

ExitCode modelStatusCommand(Context& context)
{
    const Models models;
    print(context, models.store);
    return ExitCode::done;
}

ExitCode fetchModelCommand(Context& context, const std::string& host)
{
    Models models(host);
    FaceModelStore& store = models.store;
    Progress progress(
        "Downloading bytes", context.options().quiet ? Progress::Mode::quiet : Progress::Mode::shown);
    const auto watching = store.changed.connect([&] {
        const auto& [received, fraction] = store.state().progress;
        if (fraction.value_or(0) > 0)
            progress.setTotal(static_cast<std::size_t>(static_cast<double>(received) / *fraction));
        progress.setDone(received);
    });
    store.fetch();
    models.loop.runUntil([&] { return store.state().which != State::Case::downloading; }, context.stop());
    if (store.state().which == State::Case::downloading)
        store.cancel();
    if (store.state().which == State::Case::failed)
        context.fail(store.state().message);
    print(context, store);
    return context.finish(store.state().which == State::Case::ready ? 1 : 0);
}

ExitCode removeModelCommand(Context& context)
{
    Models models;
    models.store.remove();
    print(context, models.store);
    return ExitCode::done;
}

} // namespace korvo
