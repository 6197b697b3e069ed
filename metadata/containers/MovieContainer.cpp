#include "metadata/CaptureDate.h"
#include "metadata/Iso6709.h"
#include "metadata/containers/BoxFields.h"
#include "metadata/containers/Containers.h"
#include "metadata/containers/IsoBoxes.h"
#include "metadata/containers/MovieItems.h"

#include <string_view>

namespace korvo {

namespace {

using namespace std::string_view_literals;

constexpr auto canonBoxes = "\x85\xC0\xB6\x87\x82\x0F\x11\xE0\x81\x11\xF4\xCE\x46\x2B\x6A\x48"sv;
constexpr auto xmpBox = "\xBE\x7A\xCF\xCB\x97\xA9\x42\xE8\x9C\x71\x99\x94\x91\xE3\xAF\xAC"sv;
constexpr std::int64_t secondsFrom1904To1970 = 2'082'844'800;

/// Finds in QuickTime and MP4 movies, and in Canon's CR3 photos, which are built like them.
class MovieFinder {
public:
    explicit MovieFinder(FileWindow& file) : file_(file) { }

    MetadataBlocks find(ByteRange area)
    {
        IsoBoxes boxes(file_, area);
        while (const auto box = boxes.next()) {
            if (box->type == "moov")
                takeMovie(box->content);
            else if (box->type == xmpBox)
                blocks_.xmp = box->content;
        }
        if (blocks_.own.dateTimeOriginal.empty() && created_ > 0)
            takeDate(exifDate(created_), "+00:00");
        return blocks_;
    }

private:
    void takeMovie(ByteRange movie)
    {
        IsoBoxes boxes(file_, movie);
        while (const auto box = boxes.next()) {
            if (box->type == "mvhd")
                takeHeader(box->content);
            else if (box->type == "trak")
                takeTrack(box->content);
            else if (box->type == "udta")
                takeUserData(box->content);
            else if (box->type == "meta")
                takeItems(box->content);
            else if (box->type == canonBoxes)
                takeCanonBoxes(box->content);
        }
    }

    void takeHeader(ByteRange box)
    {
        BoxFields fields(file_.view(box.first(12)));
        const unsigned width = fields.takeVersion() == 0 ? 4 : 8;
        created_ = static_cast<std::int64_t>(fields.take(width) & INT64_MAX) - secondsFrom1904To1970;
    }

    void takeTrack(ByteRange track)
    {
        const auto header = findBox(file_, track, "tkhd");
        const auto version = header ? file_.start(*header, 1) : std::nullopt;
        if (!version || !blocks_.size.empty())
            return;
        const std::uint64_t sizeAt = (*version)[0] == 0 ? 76 : 88;
        if (const auto size = file_.start(header->from(sizeAt), 8)) // with 16 bits after the point
            blocks_.size = {size->bigEndian(0, 2).value_or(0), size->bigEndian(4, 2).value_or(0)};
    }

    void takeUserData(ByteRange userData)
    {
        IsoBoxes boxes(file_, userData);
        while (const auto box = boxes.next()) {
            if (box->type == "XMP_")
                blocks_.xmp = box->content;
            else if (box->type == "\xA9xyz"sv && !blocks_.own.coordinate)
                blocks_.own.coordinate = parseIso6709(userText(box->content));
            else if (box->type == "meta")
                takeItems(box->content);
        }
    }

    /// The length and the language, two bytes each, come first.
    std::string_view userText(ByteRange box)
    {
        const auto header = file_.start(box, 4);
        const auto text
            = header ? file_.view(box.from(4).first(header->bigEndian(0, 2).value_or(0))) : std::nullopt;
        return text ? text->text() : std::string_view();
    }

    void takeItems(ByteRange meta)
    {
        for (const auto& [name, text] : movieItems(file_, meta)) {
            if (name == "com.apple.quicktime.creationdate")
                takeIsoDate(text);
            else if (name == "com.apple.quicktime.location.ISO6709")
                takePosition(text);
            else if (name == "com.apple.quicktime.make")
                blocks_.own.make = text;
            else if (name == "com.apple.quicktime.model")
                blocks_.own.model = text;
        }
    }

    void takePosition(std::string_view text)
    {
        if (const auto position = parseIso6709(text))
            blocks_.own.coordinate = position;
    }

    /// "2023-05-01T12:34:56+0200", or with a colon in the offset or "Z" for it.
    void takeIsoDate(std::string_view text)
    {
        constexpr std::size_t offsetAt = 19;
        if (text.size() < offsetAt)
            return;
        std::string date(text.substr(0, offsetAt)), offset(text.substr(offsetAt));
        date[4] = date[7] = ':';
        date[10] = ' ';
        if (offset.size() == 5)
            offset.insert(3, ":");
        takeDate(date, offset == "Z" ? "+00:00" : offset);
    }

    void takeDate(std::string_view date, std::string_view offset)
    {
        if (!parseCaptureDate(date, offset))
            return;
        blocks_.own.dateTimeOriginal = file_.keep(date);
        blocks_.own.offsetTimeOriginal = file_.keep(offset);
    }

    void takeCanonBoxes(ByteRange area)
    {
        blocks_.parts = {.exif = true, .xmp = true};
        IsoBoxes boxes(file_, area);
        while (const auto box = boxes.next()) {
            if (box->type == "CMT1")
                blocks_.exif = box->content;
            else if (box->type == "CMT2")
                blocks_.exifDirectory = box->content;
            else if (box->type == "CMT4")
                blocks_.gpsDirectory = box->content;
        }
        if (blocks_.exif)
            blocks_.size = findInTiff(file_, *blocks_.exif).size;
    }

    FileWindow& file_;
    MetadataBlocks blocks_{.parts = {.exif = false, .film = true}};
    std::int64_t created_ = 0;
};

} // namespace

MetadataBlocks findInMovie(FileWindow& file, ByteRange area)
{
    return MovieFinder(file).find(area);
}

} // namespace korvo
