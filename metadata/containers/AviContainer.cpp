#include "metadata/CaptureDate.h"
#include "metadata/containers/Containers.h"
#include "metadata/containers/RiffChunks.h"

#include "base/Text.h"

#include <array>
#include <fmt/format.h>
#include <vector>

namespace korvo {

namespace {

constexpr std::uint64_t fileHeaderSize = 12; // "RIFF", length, "AVI "
constexpr std::uint64_t listTypeSize = 4;

/// "Mon Mar 10 15:04:43 2003", as C's asctime writes it.
std::string fromCalendarText(const std::vector<std::string_view>& words)
{
    constexpr std::array months{
        "jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct", "nov", "dec"};
    const auto month = std::ranges::find(months, asciiLower(words[1]));
    return month == months.end()
        ? ""
        : fmt::format("{}:{}:{} {}", words[4], month - months.begin() + 1, words[2], words[3]);
}

/// The date in the form that photos have it in, whatever form the camera chose.
std::string exifDateFrom(std::string_view text)
{
    std::vector<std::string_view> words;
    for (const auto word : split(trimmed(text.substr(0, text.find('\0'))), ' '))
        if (const auto bare = trimmed(word); !bare.empty())
            words.push_back(bare);
    if (words.size() >= 5)
        return fromCalendarText(words);
    if (words.size() < 2)
        return {};
    // "2002-12-16  15:35:01" and "2005/11/28/ 09:19"
    std::string date(words[0]);
    std::ranges::replace(date, '-', ':');
    std::ranges::replace(date, '/', ':');
    if (date.ends_with(':'))
        date.pop_back();
    const bool hasSeconds = std::ranges::count(words[1], ':') > 1;
    return fmt::format("{} {}{}", date, words[1], hasSeconds ? "" : ":00");
}

class AviFinder {
public:
    explicit AviFinder(FileWindow& file) : file_(file) { }

    MetadataBlocks find(ByteRange area)
    {
        takeChunks(area.from(fileHeaderSize), Lists::enter);
        return blocks_;
    }

private:
    enum class Lists { enter, pass };

    void takeChunks(ByteRange area, Lists lists)
    {
        RiffChunks chunks(file_, area);
        while (const auto chunk = chunks.next()) {
            if (chunk->type == "LIST" && lists == Lists::enter)
                takeList(chunk->data);
            else if (chunk->type == "IDIT" && blocks_.own.dateTimeOriginal.empty())
                takeDate(chunk->data);
            else if (chunk->type == "avih")
                takeSize(chunk->data);
            else if (chunk->type == "_PMX")
                blocks_.xmp = chunk->data;
        }
    }

    void takeList(ByteRange list)
    {
        const auto type = file_.start(list, listTypeSize);
        if (type && (type->text() == "hdrl" || type->text() == "INFO"))
            takeChunks(list.from(listTypeSize), Lists::pass);
    }

    void takeSize(ByteRange header)
    {
        if (const auto bytes = file_.start(header, 40))
            blocks_.size = {bytes->littleEndian(32, 4).value_or(0), bytes->littleEndian(36, 4).value_or(0)};
    }

    void takeDate(ByteRange data)
    {
        constexpr std::uint64_t longestDate = 64;
        if (const auto bytes = file_.view(data.first(longestDate)))
            if (const auto date = exifDateFrom(bytes->text()); parseCaptureDate(date))
                blocks_.own.dateTimeOriginal = file_.keep(date);
    }

    FileWindow& file_;
    MetadataBlocks blocks_;
};

} // namespace

MetadataBlocks findInAvi(FileWindow& file, ByteRange area)
{
    return AviFinder(file).find(area);
}

} // namespace korvo
