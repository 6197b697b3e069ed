// Thumbnails and whole exports of 24-megapixel JPEGs beside plain ones, and beside bench_vips where it was
// built.
//
//     bench_pictures [FILE...]                     the photos given, or one that is made
//     bench_pictures thumbnails FOLDER FILE...     makes their thumbnails there, for whole programs to stand
//     beside
#include "app/pictures/PhotoRender.h"
#include "app/pictures/Previews.h"
#include "bench/app/PlainThumbnails.h"
#include "bench/support/Compare.h"
#include "bench/support/MadePhoto.h"
#include "edits/BasicStage.h"
#include "platform/linux/images/SystemImageReader.h"
#include "tests/support/SixSteps.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <thread>

namespace {

using namespace korvo;
namespace fs = std::filesystem;

constexpr int width = 6000, height = 4000, thumbnails = 500, workers = 2;
void write(const fs::path& file, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

/// The photo with a preview of 1620 pixels in its multi-picture index, as cameras write it.
fs::path withPreview(const fs::path& photo, ImageReader& reader, const fs::path& file)
{
    const auto preview = encodedPreview(renderPhoto(reader, {photo, {}, 1620}, {}).image, 85);
    const auto contents = readFile(photo);
    const auto number = [](std::size_t value, int bytes) {
        std::string text;
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
            text += static_cast<char>(value >> shift);
        return text;
    };
    const std::string index = std::string("MPF\0MM\0*\0\0\0\x08\0\x01", 14) + number(0xB002, 2) + number(7, 2)
        + number(32, 4) + number(26, 4) + number(0, 4) + std::string(16, '\0') + number(0x010002, 4)
        + number(preview.size(), 4);
    const auto segment = number(0xFFE2, 2) + number(index.size() + 10, 2) + index;
    const auto offset = contents.size() + segment.size() + 8 - 10; // from behind "MPF" and the segment's head
    std::ofstream(file, std::ios::binary)
        << contents.substr(0, 2) << segment << number(offset, 4) << number(0, 4) << contents.substr(2)
        << std::string(preview.begin(), preview.end());
    return file;
}

void makeThumbnails(
    ImageReader& reader, const std::vector<fs::path>& files, PictureSource source, const fs::path& out)
{
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (auto i = next++; i < files.size(); i = next++)
            write(out / (std::to_string(i) + ".jpg"),
                encodedPreview(
                    renderPhoto(reader, {files[i], {}, Previews::thumbnailSize, source}, {}).image, 80));
    };
    std::vector<std::jthread> threads;
    for (int i = 0; i < workers; ++i)
        threads.emplace_back(work);
}

void run(const std::string& command)
{
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(command + " failed");
}

void compareThumbnails(
    ImageReader& reader, const std::vector<fs::path>& photos, const TemporaryFolder& folder)
{
    std::vector<fs::path> files, previews;
    for (int i = 0; i < thumbnails; ++i)
        files.push_back(photos[static_cast<std::size_t>(i) % photos.size()]);
    for (std::size_t i = 0; i < photos.size(); ++i)
        previews.push_back(withPreview(photos[i], reader, folder / ("preview" + std::to_string(i) + ".jpg")));
    std::vector<fs::path> quickFiles;
    for (std::size_t i = 0; i < files.size(); ++i)
        quickFiles.push_back(previews[i % previews.size()]);
    bench::compare(std::to_string(thumbnails) + " thumbnails of 512 pixels, two workers",
        {{"korvo, embedded previews",
             [&] { makeThumbnails(reader, quickFiles, PictureSource::quick, folder.path()); }},
            {"korvo", [&] { makeThumbnails(reader, files, PictureSource::whole, folder.path()); }},
            {"plain loops",
                [&] { bench::plainThumbnails(files, folder.path(), workers, Previews::thumbnailSize); }}},
        3);
}

void compareExport(ImageReader& reader, const fs::path& photo, const TemporaryFolder& folder)
{
    const auto out = folder / "out.jpg";
    const auto whole = std::get<Bitmap>(reader.read(photo, {}, {}).pixels);
    Bitmap adjusted = whole;
    const auto plan = basicPlan(basicFilters(sixSteps));
    const auto alone = [&] {
        reader.read(photo, {}, {});
        runBasicStage(plan, whole, adjusted);
        const auto writer = pictureWriter(PictureFormat::jpeg, {adjusted.width, adjusted.height}, 90, out);
        for (int y = 0; y < adjusted.height; ++y)
            writer->write(adjusted.row(y));
        write(out, writer->finish());
    };
    std::vector<bench::Contender> contenders{
        {"korvo", [&] {
             write(out, encodePhoto(reader, {photo, sixSteps}, PictureFormat::jpeg, 90, {}).bytes);
         }}};
    if (const auto vips = fs::read_symlink("/proc/self/exe").parent_path() / "bench_vips"; fs::exists(vips))
        contenders.push_back({"libvips",
            [&, vips] { run("'" + vips.string() + "' '" + photo.string() + "' '" + out.string() + "'"); }});
    contenders.push_back({"decode, render, encode, one after the other", alone});
    bench::compare("24 megapixels to JPEG q90 with all six steps", contenders);
}

} // namespace

int main(int count, char** arguments)
{
    const TemporaryFolder folder;
    const auto launcher = systemProcessLauncher();
    SystemImageReader reader(*launcher, SystemImageReader::installedDecoder());
    std::vector<fs::path> photos(arguments + 1, arguments + count);
    if (count > 3 && photos[0] == "thumbnails") {
        makeThumbnails(reader, {photos.begin() + 2, photos.end()}, PictureSource::whole, photos[1]);
        return 0;
    }
    if (photos.empty())
        photos.push_back(bench::madePhoto(folder / "photo.jpg", width, height, 1));
    encodePhoto(reader, {photos[0], sixSteps}, PictureFormat::jpeg, 90, {});
    std::cout << "peak memory of an export: " << std::lround(bench::peakMemory() / 1e6) << " MB\n";
    compareExport(reader, photos[0], folder);
    compareThumbnails(reader, photos, folder);
}
