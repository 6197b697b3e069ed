// bench_saving [FILES]: writes titles into so many small JPEGs (200 without an argument), and into as many of
// 6 MB, through the kept exiftool process, three times, and with a process for each file, which takes a
// minute, once. Both have to give the same bytes.

#include "bench/support/Compare.h"
#include "metadata/MetadataSave.h"
#include "tests/support/TemporaryFolder.h"

#include <fmt/format.h>

#include <cstdlib>
#include <random>

namespace korvo::bench {

namespace fs = std::filesystem;

namespace {

/// Starts no program to talk to, so that each call of the tool is a process of its own.
class SingleCalls : public ProcessLauncher {
public:
    ProcessOutput run(
        const std::vector<std::string>& command, std::string_view input, const std::stop_token& stop) override
    {
        return system_->run(command, input, stop);
    }

    std::unique_ptr<RunningProcess> start(const std::vector<std::string>&) override
    {
        throw ProcessError(ProcessError::Case::launch, "only single calls");
    }

private:
    std::unique_ptr<ProcessLauncher> system_ = systemProcessLauncher();
};

/// A photo of about so many bytes; exiftool copies picture data without looking into it.
std::string photoOf(std::size_t size)
{
    auto photo = readFile(std::string(KORVO_TEST_DATA) + "/metadata/all-sources.jpg");
    std::mt19937 random(1);
    std::uniform_int_distribution<int> notAMarker(0, 254);
    std::string picture;
    while (photo.size() + picture.size() < size)
        picture += static_cast<char>(notAMarker(random));
    return photo.insert(photo.size() - 2, picture); // before the end marker
}

/// A library whose photos all wait to be written for the first time.
class Photos {
public:
    Photos(const TemporaryFolder& folder, const std::string& name, ProcessLauncher& launcher)
        : folder_(folder), name_(name), tool_(launcher, {})
    { }

    void prepare(const std::string& contents, int count)
    {
        catalog_.reset();
        fs::remove_all(folder_ / name_);
        catalog_ = std::make_unique<Catalog>(folder_ / name_ / "Library", SystemClock());
        std::vector<NewPhoto> photos;
        for (int i = 0; i < count; ++i) {
            const auto file = folder_.write(name_ + "/" + std::to_string(i) + ".jpg", contents);
            photos.push_back({.path = file,
                .fileDate = modificationTime(file),
                .fileSize = static_cast<std::int64_t>(contents.size())});
        }
        std::vector<PhotoID> ids;
        for (const auto& added : catalog_->addPhotos(photos))
            ids.push_back(added.id);
        catalog_->changeMetadata(
            ids, {.title = "A title", .caption = "What is seen", .keywords = "one, two"}, WriteBack::pending);
    }

    void save()
    {
        const auto result = saveMetadata(*catalog_, tool_, {}, [](std::size_t, std::size_t) {});
        if (!result.failures.empty())
            throw std::runtime_error(result.failures.front().message);
    }

    std::string written(int index) const
    {
        return readFile(folder_ / name_ / (std::to_string(index) + ".jpg"));
    }

private:
    const TemporaryFolder& folder_;
    std::string name_;
    ExifTool tool_;
    std::unique_ptr<Catalog> catalog_;
};

void compareOn(const std::string& kind, std::size_t size, int count)
{
    const TemporaryFolder folder;
    const auto launcher = systemProcessLauncher();
    SingleCalls singleCalls;
    Photos kept(folder, "kept", *launcher), single(folder, "single", singleCalls);
    const auto contents = photoOf(size);
    const auto medians = compare(fmt::format("Saving {} {} files", count, kind),
        {{"a process for each file", [&] { single.save(); }, [&] { single.prepare(contents, count); }, 1},
            {"the kept process", [&] { kept.save(); }, [&] { kept.prepare(contents, count); }}},
        3);
    for (int i = 0; i < count; ++i)
        if (kept.written(i) != single.written(i) || kept.written(i) == contents)
            throw std::runtime_error("the two ways do not write the same");
    fmt::print("  {:.1f} and {:.1f} files/s, byte-identical, {} bytes before\n", count / medians[0],
        count / medians[1], contents.size());
}

} // namespace

} // namespace korvo::bench

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 200;
    korvo::bench::compareOn("small", 0, count);
    korvo::bench::compareOn("6 MB", 6'000'000, count);
}
