#include "metadata/FileWork.h"

#include "base/Text.h"
#include "base/UserError.h"
#include "catalog/sql/DatabaseError.h"

#include <fmt/format.h>

namespace korvo {

namespace {

bool isMissing(const ExifTool& tool)
try {
    (void)tool.path();
    return false;
} catch (const ExifToolError&) {
    return true;
}

} // namespace

FilesBusy::FilesBusy() : std::runtime_error("A save or generation is running — try again when it finishes.")
{ }

FileWork::FileWork(MainThread& main, LibraryStore& store, const ExifTool& tool)
    : main_(main), store_(store), tool_(tool)
{ }

const std::string* FileWork::failureOf(PhotoID photo) const
{
    const auto& status = store_.status(photo);
    return status.kind == PhotoItem::Status::Kind::error ? &status.message : nullptr;
}

void FileWork::forgetFailures()
{
    main_.assertCurrent();
    failures_.clear();
    changed.emit();
}

void FileWork::requireIdle() const
{
    if (saving_)
        throw FilesBusy();
}

void FileWork::begin(FileJob job)
{
    main_.assertCurrent();
    requireIdle();
    saving_ = true;
    stop_ = {};
    ended_ = std::move(job.ended);
    correcting_ = std::move(job.correcting);
    task_ = runInBackground(main_,
        [this, &catalog = store_.catalog(), stop = stop_, work = std::move(job)](
            const Task::Context& context) {
            const auto deliver = [&](FilesWritten result, std::string message) {
                context.deliver([=, this, missing = isMissing(tool_)] {
                    exiftoolMissing_ = missing;
                    finish(result, message);
                });
            };
            const std::stop_callback goes(
                context.stopToken(), [&] { std::stop_source(stop).request_stop(); });
            try {
                const auto progress = [&](std::size_t number, std::size_t total) {
                    context.deliver([=, this, verb = work.verb] {
                        say(fmt::format("{} {} of {}…", verb, grouped(number), grouped(total)));
                    });
                };
                auto result = work.run(catalog, tool_, stop.get_token(), progress);
                const auto message = result.fault.empty() ? work.summary(result) : result.fault;
                deliver(std::move(result), message);
            } catch (
                const std::exception& error) { // of the tool or the catalog: what was not written waits on
                deliver({.fault = textForUser(error)}, textForUser(error));
            }
        });
    changed.emit();
}

void FileWork::say(std::string message)
{
    statusMessage_ = std::move(message);
    changed.emit();
}

void FileWork::finish(const FilesWritten& result, std::string message)
{
    saving_ = false;
    correcting_.clear();
    statusMessage_ = std::move(message);
    failures_ = result.failures;
    hasFailed_ = !result.failures.empty() || !result.fault.empty();
    std::vector<std::pair<PhotoID, PhotoItem::Status>> statuses;
    for (const PhotoID photo : result.touched)
        statuses.emplace_back(photo, PhotoItem::Status());
    for (const auto& [photo, why] : result.failures)
        statuses.emplace_back(photo, PhotoItem::Status{PhotoItem::Status::Kind::error, why});
    store_.setStatuses(statuses);
    if (const auto ended = std::exchange(ended_, {}))
        ended(result);
    try {
        store_.photosChanged(store_.catalog().withVersions(result.touched));
    } catch (const DatabaseError&) { // the next change shows it; that the work has ended is told
    }
    changed.emit();
}

} // namespace korvo
