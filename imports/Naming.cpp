#include "imports/Naming.h"

#include "catalog/FileTypes.h"

#include <fmt/format.h>

#include <algorithm>

namespace korvo {

namespace {

constexpr std::string_view sequenceToken = "{seq}";

void replaceAll(std::string& text, std::string_view token, std::string_view replacement)
{
    for (auto at = text.find(token); at != text.npos; at = text.find(token, at + replacement.size()))
        text.replace(at, token.size(), replacement);
}

std::string sequence(NamingPlace place)
{
    const auto width = std::max<std::size_t>(3, std::to_string(place.total).size());
    return fmt::format("{:0{}d}", place.index, width);
}

/// What the tokens behind {seq} become, and what no file name can hold.
void finish(std::string& text, const NamingFacts& facts)
{
    replaceAll(text, "{date}", localDay(facts.fileDate));
    replaceAll(text, "{title}", facts.title.empty() ? facts.name : facts.title);
    for (const char forbidden : {'/', ':', '\0'})
        std::replace(text.begin(), text.end(), forbidden, '-');
}

/// Takes `excess` bytes, and the rest of a character that this would split, from the end.
void cut(std::string& text, std::size_t excess)
{
    const auto isContinuation = [](char byte) { return (byte & 0xC0) == 0x80; };
    auto end = text.size() - std::min(excess, text.size());
    while (end > 0 && end < text.size() && isContinuation(text[end]))
        --end;
    text.resize(end);
}

constexpr std::string_view blanks = " \t";

void trimStart(std::string& text)
{
    text.erase(0, text.find_first_not_of(blanks));
}

void trimEnd(std::string& text)
{
    text.erase(text.find_last_not_of(blanks) + 1);
}

/// An expanded pattern, parted behind its first sequence number, so that cutting can spare the number.
struct Expansion {
    std::string head;
    std::string number;
    std::string tail;

    std::size_t size() const { return head.size() + number.size() + tail.size(); }

    void trim()
    {
        trimStart(head);
        trimEnd(number.empty() ? head : tail);
    }

    void fit(std::size_t room)
    {
        for (std::string* part : {&longer(), &shorter()})
            if (size() > room)
                cut(*part, size() - room);
    }

private:
    std::string& longer() { return head.size() > tail.size() ? head : tail; }
    std::string& shorter() { return head.size() > tail.size() ? tail : head; }
};

Expansion expand(const NamingFacts& facts, std::string_view pattern, NamingPlace place)
{
    std::string text(pattern);
    replaceAll(text, "{name}", facts.name);
    Expansion result{text, {}, {}};
    if (const auto at = text.find(sequenceToken); at != text.npos) {
        result = {text.substr(0, at), sequence(place), text.substr(at + sequenceToken.size())};
        replaceAll(result.tail, sequenceToken, result.number);
    }
    finish(result.head, facts);
    finish(result.tail, facts);
    return result;
}

UnixTime fileDateOrToday(const std::filesystem::path& file)
{
    try {
        return modificationTime(file);
    } catch (const std::filesystem::filesystem_error&) {
        return SystemClock().now(); // a name needs some date
    }
}

} // namespace

std::string baseName(const NamingFacts& facts, std::string_view pattern, NamingPlace place, std::size_t room)
{
    auto expansion = expand(facts, pattern, place);
    expansion.trim();
    expansion.fit(room);
    expansion.trim(); // cutting may have left blanks at the end
    auto text = expansion.head + expansion.number + expansion.tail;
    if (text.empty()) {
        text = facts.name;
        cut(text, text.size() - std::min(text.size(), room));
    }
    return text;
}

NamingFacts listedFacts(const PhotoItem& photo)
{
    return {std::string(withoutExtension(photo.filename.view())), photo.metadata.title.string(),
        photo.fileDate ? *photo.fileDate : SystemClock().now()};
}

std::string baseName(
    const PhotoItem& photo, std::string_view pattern, std::size_t index, std::size_t total, std::size_t room)
{
    auto facts = listedFacts(photo);
    facts.fileDate = fileDateOrToday(photo.path());
    return baseName(facts, pattern, {index, total}, room);
}

std::string_view withoutExtension(std::string_view filename)
{
    const auto extension = extensionOf(filename);
    return extension.empty() ? filename : filename.substr(0, filename.size() - extension.size() - 1);
}

} // namespace korvo
