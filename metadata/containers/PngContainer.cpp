#include "metadata/containers/Containers.h"
#include "metadata/containers/Photoshop.h"
#include "metadata/containers/Unpacking.h"

#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t signatureSize = 8, chunkHeaderSize = 8, checksumSize = 4;
constexpr std::uint64_t longestText = 1024 * 1024;
constexpr std::uint64_t longestKeyword = 79;
constexpr int mostTexts = 16; // with metadata in them; unpacking them is work

/// Finds in PNG files (W3C, third edition; ImageMagick's "Raw profile" texts besides).
class PngFinder {
public:
    explicit PngFinder(FileWindow& file) : file_(file) { }

    MetadataBlocks find(ByteRange area)
    {
        auto rest = area.from(signatureSize);
        while (const auto header = file_.start(rest, chunkHeaderSize)) {
            const auto length = header->bigEndian(0, 4).value_or(0);
            const auto type = header->text().substr(4);
            rest = rest.from(chunkHeaderSize);
            if (type == "IEND" || length > rest.length)
                break;
            take(type, rest.first(length));
            rest = rest.from(length + checksumSize);
        }
        return blocks_;
    }

private:
    void take(std::string_view type, ByteRange data)
    {
        if (type == "IHDR")
            takeSize(data);
        else if (type == "eXIf")
            takeExifChunk(withoutExifMark(file_, data));
        else if (type == "iTXt" || type == "zTXt" || type == "tEXt")
            takeText(type, data);
    }

    /// Programs that write this chunk may leave what stands in a text beside it.
    void takeExifChunk(ByteRange exif)
    {
        if (blocks_.exif)
            blocks_.furtherExif = blocks_.exif;
        blocks_.exif = exif;
        hasExifChunk_ = true;
    }

    void takeSize(ByteRange data)
    {
        if (const auto bytes = file_.start(data, 8))
            blocks_.size = {bytes->bigEndian(0, 4).value_or(0), bytes->bigEndian(4, 4).value_or(0)};
    }

    void takeText(std::string_view type, ByteRange data)
    {
        const auto start = file_.view(data.first(longestKeyword + 1));
        if (!start || data.length > longestText)
            return;
        const auto keyword = start->text().substr(0, start->text().find('\0'));
        const auto rest = data.from(keyword.size() + 1);
        constexpr auto profileMark = "Raw profile type "sv;
        const bool isXmp = keyword == "XML:com.adobe.xmp" && type == "iTXt";
        if ((!isXmp && !keyword.starts_with(profileMark)) || ++texts_ > mostTexts)
            return;
        if (isXmp)
            blocks_.xmp = internationalText(rest);
        else
            takeProfile(keyword.substr(profileMark.size()), type, rest);
    }

    /// After the keyword: whether and how it is packed, language, translated keyword, text.
    std::optional<ByteRange> internationalText(ByteRange data)
    {
        const auto bytes = file_.view(data);
        if (!bytes || bytes->size() < 2)
            return std::nullopt;
        const auto languageEnd = bytes->text().find('\0', 2);
        const auto keywordEnd
            = languageEnd == std::string_view::npos ? languageEnd : bytes->text().find('\0', languageEnd + 1);
        if (keywordEnd == std::string_view::npos)
            return std::nullopt;
        const auto text = data.from(keywordEnd + 1);
        return (*bytes)[0] == 0 ? std::optional(text) : inflated(file_, text);
    }

    void takeProfile(std::string_view name, std::string_view type, ByteRange data)
    {
        constexpr std::uint64_t methodSize = 1;
        const auto text = type == "zTXt" ? inflated(file_, data.from(methodSize)) : std::optional(data);
        const auto profile = text ? profileBytes(*text) : std::nullopt;
        const auto bytes = profile ? file_.view(*profile) : std::nullopt;
        if (!bytes)
            return;
        if (constexpr auto mark = "http://ns.adobe.com/xap/1.0/\0"sv; bytes->startsWith(mark))
            takeFirst(blocks_.xmp, profile->from(mark.size()));
        else if (name == "xmp")
            takeFirst(blocks_.xmp, *profile);
        else if (name == "exif" || name == "APP1")
            takeFirst(hasExifChunk_ ? blocks_.furtherExif : blocks_.exif, withoutExifMark(file_, *profile));
        else if (name == "iptc")
            takeFirst(
                blocks_.iptc, bytes->startsWith("8BIM") ? findIptcInPhotoshop(file_, *profile) : *profile);
    }

    static void takeFirst(std::optional<ByteRange>& block, std::optional<ByteRange> found)
    {
        if (!block)
            block = found;
    }

    /// A profile stands there as lines with its name, its length and its bytes in hexadecimal digits.
    std::optional<ByteRange> profileBytes(ByteRange range)
    {
        const auto bytes = file_.view(range);
        auto text = bytes ? bytes->text() : std::string_view();
        for (int line = 0; line < 2; ++line) {
            text.remove_prefix(std::min(text.find_first_not_of(" \n"), text.size()));
            text.remove_prefix(std::min(text.find('\n'), text.size()));
        }
        return text.empty() ? std::nullopt : file_.append(fromHexadecimal(text));
    }

    FileWindow& file_;
    MetadataBlocks blocks_;
    bool hasExifChunk_ = false;
    int texts_ = 0;
};

} // namespace

MetadataBlocks findInPng(FileWindow& file, ByteRange area)
{
    return PngFinder(file).find(area);
}

} // namespace korvo
