#include "app/PhotoExport.h"

#include "base/Text.h"
#include "metadata/Containers.h"
#include "metadata/MetadataError.h"
#include "platform/FileSync.h"
#include "platform/PosixFile.h"

#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

namespace korvo {

namespace fs = std::filesystem;

namespace {

PictureFormat formatOf(const fs::path& file)
{
    if (const auto format = pictureFormat(file))
        return *format;
    throw std::invalid_argument(file.string() + ": the name must end in .jpg, .png, .webp or .tif");
}

bool isInApertureLibrary(const fs::path& file)
{
    return std::ranges::any_of(
        file, [](const fs::path& part) { return asciiLower(part.native()).ends_with(".aplibrary"); });
}

/// Refuses to write over a photo, by whatever name it is called.
void checkIsNoOriginal(
    const ExportJob& job, const fs::path& destination, const std::function<bool(const fs::path&)>& isOriginal)
{
    std::error_code absent; // a file that is not there is not the photo's
    if (fs::equivalent(job.destination, job.render.file, absent) || isOriginal(destination))
        throw std::runtime_error(
            job.destination.string() + ": is an original photo, which is never written over");
    if (isInApertureLibrary(destination))
        throw std::runtime_error(
            job.destination.string() + ": lies in an Aperture library, which is never changed");
}

/// A file on its way, beside its place; removed unless it got there.
class UnfinishedFile {
public:
    explicit UnfinishedFile(const fs::path& place)
        : path_(place.parent_path()
            / ("." + place.stem().string() + "." + std::to_string(getpid()) + ".part"
                + place.extension().string()))
    { }
    ~UnfinishedFile()
    {
        std::error_code ignored; // it has been moved, or there is nothing more to be done about it
        fs::remove(path_, ignored);
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

    const fs::path& path() const { return path_; }

    void write(Bytes bytes) const
    {
        const auto file = openFile(path_, O_WRONLY | O_CREAT | O_TRUNC);
        if (!file)
            throwFileError("write", path_);
        writeAll(file, path_, bytes);
    }

private:
    fs::path path_;
};

bool hasExif(const fs::path& file)
try {
    FileWindow window(file);
    const auto blocks = findMetadata(window);
    return blocks && (blocks->exif || blocks->exifDirectory || blocks->gpsDirectory || blocks->furtherExif);
} catch (const MetadataError&) { // then there is none to be kept
    return false;
}

/// What no longer holds of the picture as it is written: its turn, its size, its colours, its thumbnail.
ExifToolArguments copyArguments(const ExportJob& job, const EncodedPhoto& photo, const fs::path& file)
{
    auto arguments = copyCameraExifArguments(fs::absolute(job.render.file), file, Position::keep);
    arguments.insert(arguments.end() - 1,
        {"-IFD1:all=", "-Orientation#=1", "-ColorSpace#=1", "-ExifImageWidth=" + std::to_string(photo.width),
            "-ExifImageHeight=" + std::to_string(photo.height)});
    return arguments;
}

} // namespace

ExportedPhoto exportPhoto(ImageReader& reader, const ExifTool& tool, const ExportJob& job,
    const std::function<bool(const fs::path&)>& isOriginal, const std::stop_token& stop)
{
    const auto format = formatOf(job.destination);
    const auto place = fs::weakly_canonical(fs::absolute(job.destination));
    checkIsNoOriginal(job, place, isOriginal);
    const auto photo = encodePhoto(reader, job.render, format, job.quality, stop);
    ExportedPhoto result{photo.width, photo.height, photo.note, {}};
    const UnfinishedFile file(place);
    file.write(Bytes(photo.bytes));
    if (hasExif(job.render.file))
        try {
            tool.run(copyArguments(job, photo, file.path()), stop);
        } catch (const ExifToolError& error) { // the picture itself is whole
            result.exifFailure = error.what();
        }
    moveIntoPlace(file.path(), place);
    return result;
}

} // namespace korvo
