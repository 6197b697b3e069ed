#pragma once

#include "base/Task.h"
#include "platform/FileSource.h"

#include <deque>
#include <map>

namespace korvo {

/// Small pictures of what a source holds, for a list that asks for those on screen whenever it paints:
/// fetched in the background one after the other, the newest wish first, into files of a temporary folder,
/// where they are decoded as all others are. Used on the main thread.
class SourcePreviews {
public:
    static constexpr std::size_t mostKept = 600, mostWishes = 80;

    /// `arrived` is called when there is something new to find.
    SourcePreviews(MainThread& main, std::shared_ptr<FileSource> files, std::function<void()> arrived);

    /// Where the picture of a file is; nothing while it is fetched, and when there is none.
    std::optional<std::filesystem::path> find(const SourceFile& file);

    /// Ends it. The source may be in use until the task has ended, which a camera can make long.
    Task end() { return std::move(fetching_); }

private:
    struct Wishes;

    static void fetch(FileSource& files, Wishes& wishes, const Task::Context& context,
        const std::function<void(const std::string&, std::optional<std::filesystem::path>)>& deliver);
    void keep(const std::string& name, std::optional<std::filesystem::path> picture);

    std::shared_ptr<Wishes> wishes_;
    std::function<void()> arrived_;
    std::map<std::string, std::optional<std::filesystem::path>> found_; // by path in the source
    std::deque<std::string> order_; // of coming
    Task fetching_;
};

} // namespace korvo
