#include "app/pictures/SourcePreviews.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <mutex>

namespace korvo {

namespace fs = std::filesystem;

namespace {

/// A folder that goes with all that is in it.
class TemporaryPlace {
public:
    TemporaryPlace()
    {
        auto name = (fs::temp_directory_path() / "korvo-camera-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::system_error(errno, std::generic_category(), name);
        path_ = name;
    }
    ~TemporaryPlace()
    {
        std::error_code ignored; // the system clears its temporary files too
        fs::remove_all(path_, ignored);
    }
    TemporaryPlace(const TemporaryPlace&) = delete;
    TemporaryPlace& operator=(const TemporaryPlace&) = delete;

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

/// A picture is only a help in choosing: without one the list shows the kind of file.
std::optional<fs::path> fetched(FileSource& files, const SourceFile& file,
    std::optional<TemporaryPlace>& place, std::size_t number, const std::stop_token& stop)
try {
    const auto picture = files.preview(file, stop);
    if (picture.empty())
        return std::nullopt;
    if (!place)
        place.emplace();
    auto path = place->path() / std::to_string(number);
    std::ofstream written(path, std::ios::binary);
    written.exceptions(std::ios::failbit | std::ios::badbit);
    written << picture;
    written.close();
    return path;
} catch (const SourceError&) {
    return std::nullopt;
} catch (const std::system_error&) { // there is no room for it
    return std::nullopt;
}

} // namespace

struct SourcePreviews::Wishes {
    std::mutex mutex;
    std::condition_variable_any changed;
    std::deque<SourceFile> files; // the newest first
    std::optional<TemporaryPlace> place; // made by the fetching
    std::size_t number = 0; // of the file that is written
};

SourcePreviews::SourcePreviews(
    MainThread& main, std::shared_ptr<FileSource> files, std::function<void()> arrived)
    : wishes_(std::make_shared<Wishes>()), arrived_(std::move(arrived))
{
    fetching_ = runInBackground(
        main, [this, source = std::move(files), wishes = wishes_](const Task::Context& context) {
            fetch(*source, *wishes, context,
                [this, &context](const std::string& name, std::optional<fs::path> picture) {
                    context.deliver([this, name, found = std::move(picture)] { keep(name, found); });
                });
        });
}

void SourcePreviews::fetch(FileSource& files, Wishes& wishes, const Task::Context& context,
    const std::function<void(const std::string&, std::optional<fs::path>)>& deliver)
{
    const auto stop = context.stopToken();
    while (true) {
        std::unique_lock lock(wishes.mutex);
        if (!wishes.changed.wait(lock, stop, [&] { return !wishes.files.empty(); }) || stop.stop_requested())
            return;
        const auto file = std::move(wishes.files.front());
        wishes.files.pop_front();
        lock.unlock();
        deliver(file.path.native(), fetched(files, file, wishes.place, wishes.number++, stop));
    }
}

std::optional<fs::path> SourcePreviews::find(const SourceFile& file)
{
    if (const auto found = found_.find(file.path.native()); found != found_.end())
        return found->second;
    const std::lock_guard lock(wishes_->mutex);
    auto& files = wishes_->files;
    std::erase_if(files, [&](const SourceFile& other) { return other.path == file.path; });
    files.push_front(file);
    files.resize(std::min(files.size(), mostWishes));
    wishes_->changed.notify_one();
    return std::nullopt;
}

void SourcePreviews::keep(const std::string& name, std::optional<fs::path> picture)
{
    if (!found_.emplace(name, std::move(picture)).second)
        return; // it was asked for again while it came
    order_.push_back(name);
    if (order_.size() > mostKept) {
        const auto oldest = found_.extract(order_.front());
        order_.pop_front();
        if (std::error_code ignored; oldest.mapped()) // goes with the folder otherwise
            fs::remove(*oldest.mapped(), ignored);
    }
    arrived_();
}

} // namespace korvo
