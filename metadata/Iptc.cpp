#include "metadata/Iptc.h"

#include "metadata/ForeignText.h"
#include "metadata/Keywords.h"

#include <algorithm>
#include <vector>

namespace korvo {

namespace {

constexpr std::uint8_t dataSetMark = 0x1C;
constexpr std::uint64_t extendedLength = 0x8000;

/// Numbers of data sets, record times 256 and number in the record.
enum DataSet : std::uint16_t {
    codedCharacterSet = 0x015A,
    objectName = 0x0205,
    keywords = 0x0219,
    byLine = 0x0250,
    copyrightNotice = 0x0274,
    captionAbstract = 0x0278,
};

struct Item {
    std::uint64_t dataSet;
    std::string_view text;
    std::uint64_t end;
};

/// The data set at an offset; nothing at the end and where the data are damaged.
std::optional<Item> itemAt(Bytes bytes, std::uint64_t at)
{
    const auto dataSet = bytes.bigEndian(at + 1, 2);
    auto length = bytes.bigEndian(at + 3, 2);
    if (!length || bytes[static_cast<std::size_t>(at)] != dataSetMark)
        return std::nullopt;
    at += 5;
    if (*length & extendedLength) {
        const auto width = *length & ~extendedLength;
        length = width <= 8 ? bytes.bigEndian(at, static_cast<unsigned>(width)) : std::nullopt;
        at += width;
    }
    const auto data = length ? bytes.slice(at, *length) : std::nullopt;
    if (!data)
        return std::nullopt;
    return Item{*dataSet, data->text().substr(0, data->text().find('\0')), at + *length};
}

/// Some programs write the data into TIFF files as 32-bit integers of the other byte order; empty for others.
std::vector<std::uint8_t> swappedBack(Bytes bytes)
{
    if (bytes.size() < 4 || bytes[0] == dataSetMark || bytes[3] != dataSetMark)
        return {};
    std::vector<std::uint8_t> swapped(bytes.data(), bytes.data() + bytes.size() / 4 * 4);
    for (auto word = swapped.begin(); word != swapped.end(); word += 4)
        std::reverse(word, word + 4);
    return swapped;
}

class IptcReader {
public:
    void take(const Item& item)
    {
        switch (item.dataSet) {
        case codedCharacterSet:
            isUtf8_ = item.text == "\x1B%G";
            break;
        case objectName:
            return takeText(fields_.title, item);
        case captionAbstract:
            return takeText(fields_.caption, item);
        case byLine: // of several the first counts, of what should stand once the last
            return fields_.creator.empty() ? takeText(fields_.creator, item) : void();
        case copyrightNotice:
            return takeText(fields_.copyright, item);
        case keywords:
            keywords_.push_back(decoded(item));
            break;
        default:
            break;
        }
    }

    DescriptiveFields finish()
    {
        fields_.keywords = tidyKeywords(std::move(keywords_));
        return std::move(fields_);
    }

private:
    std::string decoded(const Item& item) const
    {
        return isUtf8_ ? fromUnknownEncoding(item.text) : fromWindowsLatin(item.text);
    }

    void takeText(std::string& field, const Item& item) const
    {
        if (auto text = decoded(item); !text.empty())
            field = std::move(text);
    }

    bool isUtf8_ = false;
    DescriptiveFields fields_;
    std::vector<std::string> keywords_;
};

} // namespace

DescriptiveFields readIptc(Bytes dataSets)
{
    if (const auto straight = swappedBack(dataSets); !straight.empty())
        return readIptc(Bytes(straight.data(), straight.size()));
    IptcReader reader;
    std::uint64_t at = 0;
    while (const auto item = itemAt(dataSets, at)) {
        reader.take(*item);
        at = item->end;
    }
    return reader.finish();
}

} // namespace korvo
