#include "app/cli/Commands.h"
#include "app/cli/Progress.h"
#include "app/cli/RunLoop.h"
#include "faces/FaceModelStore.h"
#include "platform/AppFolders.h"
#include "platform/linux/CurlDownloader.h"

#include <fmt/format.h>

namespace korvo {

namespace {

using State = ModelStore::State;

struct ModelStatus {
    State::Case state;
    std::string path;
    std::optional<std::string> message;
};
KORVO_RECORD(ModelStatus, state, path, message)

void printStatus(const Context& context, const FaceModelStore& store)
{
    const auto& [which, progress, message] = store.state();
    const ModelStatus status{
        which, store.modelPath().string(), message.empty() ? std::nullopt : std::optional(message)};
    context.print(status, fmt::format("{}  {}", nameOf(which), status.path));
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

ExitCode fetchModel(Context& context, const std::string& host)
{
    Models models(host);
    FaceModelStore& store = models.store;
    Progress progress("Downloading bytes", context.progressMode());
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
    printStatus(context, store);
    return context.finish(store.state().which == State::Case::ready ? 1 : 0);
}

} // namespace

void addModelCommands(const Commands& app)
{
    const auto model = app.group("model", "the face-recognition model");
    model.add("status", "whether it is installed, and where",
        [](Context& context) { printStatus(context, Models().store); });
    model.add<std::string>(
        "fetch", "download, verify and install it",
        [](CLI::App& sub, std::string& host) {
            sub.add_option("--host", host, "a mirror, as https://example.org");
        },
        fetchModel);
    model.add("remove", "remove it", [](Context& context) {
        Models models;
        models.store.remove();
        printStatus(context, models.store);
    });
}

} // namespace korvo
