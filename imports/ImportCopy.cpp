#include "imports/ImportCopy.h"

#include "platform/Sha256.h"

#include <system_error>

namespace korvo {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view hiddenStart = ".korvo-import-";

} // namespace

std::optional<FileCopy> copyInto(
    const fs::path& folder, FileSource& source, const SourceFile& file, const std::stop_token& stop)
{
    auto part = PartFile::beginHidden(folder, hiddenStart);
    FileStream stream(part.file(), part.path());
    FileCopy copy{std::move(part), std::move(stream), 0, {}};
    Sha256 digest;
    source.read(
        file,
        [&](Bytes bytes) {
            copy.stream.write(bytes);
            digest.add(bytes);
            copy.size += bytes.size();
        },
        stop);
    if (stop.stop_requested())
        return std::nullopt;
    if (copy.size != file.size)
        throw SourceError("is not as long as it was when it was listed");
    copy.digest = digest.finish();
    return copy;
}

bool finish(FileCopy& copy, const std::optional<fs::file_time_type>& modified)
{
    copy.stream.finish();
    std::error_code refused;
    if (modified)
        fs::last_write_time(copy.part.path(), *modified, refused);
    return !refused;
}

bool verify(const FileCopy& copy, const std::stop_token& stop)
{
    const auto digest = sha256OnDisk(copy.part.path(), stop);
    if (digest && (*digest != copy.digest || fs::file_size(copy.part.path()) != copy.size))
        throw SourceError("the copy, read again, differs from the original");
    return digest.has_value();
}

void removeHalfWritten(const fs::path& folder)
{
    PartFile::removeLeftOvers(folder / hiddenStart);
}

} // namespace korvo
