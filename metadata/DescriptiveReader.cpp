#include "metadata/DescriptiveReader.h"

#include "base/Text.h"
#include "metadata/ExifTagReader.h"
#include "metadata/ForeignText.h"
#include "metadata/Iptc.h"
#include "metadata/MetadataError.h"
#include "metadata/Xmp.h"
#include "metadata/containers/Containers.h"

#include <array>

namespace korvo {

namespace {

constexpr std::array textFields{&DescriptiveFields::altText, &DescriptiveFields::title,
    &DescriptiveFields::caption, &DescriptiveFields::creator, &DescriptiveFields::copyright};

/// Takes from a source of lower rank what is still empty.
void fillIn(DescriptiveFields& fields, DescriptiveFields&& other)
{
    for (const auto field : textFields)
        if ((fields.*field).empty())
            fields.*field = std::move(other.*field);
    if (fields.keywords.empty())
        fields.keywords = std::move(other.keywords);
}

/// The notices of photographer and editor on a line each (Exif 2.32, tag Copyright).
std::string copyrightText(std::string_view raw)
{
    const auto withoutBlanks
        = [](std::string_view text) { return text.substr(0, text.find_last_not_of(' ') + 1); };
    const auto end = raw.find('\0');
    const auto photographer = withoutBlanks(raw.substr(0, end));
    const auto rest = end == std::string_view::npos ? std::string_view() : raw.substr(end + 1);
    const auto editor = withoutBlanks(rest.substr(0, rest.find('\0')));
    return fromUnknownEncoding(photographer) + (editor.empty() ? "" : "\n") + fromUnknownEncoding(editor);
}

DescriptiveFields descriptiveFields(FileWindow& file, const MetadataBlocks& blocks, const ExifTags& tags)
{
    DescriptiveFields fields;
    for (const auto& packet : {blocks.xmp, blocks.extendedXmp})
        if (const auto bytes = packet ? file.view(*packet) : std::nullopt)
            fillIn(fields, readXmp(*bytes));
    if (const auto bytes = blocks.iptc ? file.view(*blocks.iptc) : std::nullopt)
        fillIn(fields, readIptc(*bytes));
    if (fields.creator.empty())
        fields.creator = fromUnknownEncoding(tags.artist);
    if (fields.copyright.empty())
        fields.copyright = copyrightText(tags.copyright);
    return fields;
}

} // namespace

DescriptiveFields readDescriptive(const std::filesystem::path& path)
{
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    return blocks ? descriptiveFields(file, *blocks, readExifTags(file, *blocks)) : DescriptiveFields();
}

bool hasExif(const std::filesystem::path& path)
try {
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    return blocks && (blocks->exif || blocks->exifDirectory || blocks->gpsDirectory || blocks->furtherExif);
} catch (const MetadataError&) { // then there is none to be kept
    return false;
}

bool hasDamagedXmp(const std::filesystem::path& path)
{
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    const auto packet = blocks && blocks->xmp ? file.view(*blocks->xmp) : std::nullopt;
    return packet && isDamagedXmp(*packet);
}

FileMetadata readFileMetadata(const std::filesystem::path& path)
{
    FileWindow file(path);
    const auto blocks = findMetadata(file);
    if (!blocks)
        return {};
    const auto tags = readExifTags(file, *blocks);
    return {descriptiveFields(file, *blocks, tags), exifInfo(tags, blocks->size)};
}

} // namespace korvo
