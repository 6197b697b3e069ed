// A whole file of any kind, read as the catalog reads it.
#include "metadata/DescriptiveReader.h"
#include "metadata/ExifReader.h"

#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

/// A file of this process that each input is written into.
const std::filesystem::path& inputFile()
{
    static const std::filesystem::path path
        = std::filesystem::temp_directory_path() / ("korvo-fuzz-metadata-" + std::to_string(::getpid()));
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::ofstream(inputFile(), std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const auto metadata = korvo::readFileMetadata(inputFile());
    const auto info = korvo::readExif(inputFile()).value_or(korvo::PhotoExifInfo());
    if (info != metadata.exif || korvo::readGPS(inputFile()) != metadata.exif.coordinate)
        std::abort(); // all must see the same
    (void)korvo::fileParts(inputFile());
    (void)korvo::hasDamagedXmp(inputFile());
    std::filesystem::remove(inputFile());
    return 0;
}
