#include "base/FoldedText.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace korvo {

namespace {

using Units = std::vector<char16_t>;

int length(std::size_t size)
{
    return static_cast<int>(size);
}

/// Runs an ICU call that fills a buffer, again with a larger one when it asks for it, and gives the length of
/// the result.
template <typename Buffer, typename Call>
std::size_t filled(Buffer& buffer, Call call)
{
    for (;;) {
        UErrorCode error = U_ZERO_ERROR;
        const auto needed = static_cast<std::size_t>(call(buffer.data(), length(buffer.size()), &error));
        if (error == U_BUFFER_OVERFLOW_ERROR)
            buffer.resize(needed + needed / 2);
        else if (U_FAILURE(error))
            throw std::runtime_error(std::string("cannot fold text: ") + u_errorName(error));
        else
            return needed;
    }
}

std::size_t decoded(std::string_view text, Units& to)
{
    return filled(to, [&](char16_t* out, int capacity, UErrorCode* error) {
        int needed = 0;
        u_strFromUTF8WithSub(
            out, capacity, &needed, text.data(), length(text.size()), 0xFFFD, nullptr, error);
        return needed;
    });
}

std::size_t encoded(const Units& from, std::size_t size, std::string& to)
{
    return filled(to, [&](char* out, int capacity, UErrorCode* error) {
        int needed = 0;
        u_strToUTF8(out, capacity, &needed, from.data(), length(size), error);
        return needed;
    });
}

std::size_t normalize(const UNormalizer2* form, const Units& from, std::size_t size, Units& to)
{
    return filled(to, [&](char16_t* out, int capacity, UErrorCode* error) {
        return unorm2_normalize(form, from.data(), length(size), out, capacity, error);
    });
}

const UNormalizer2* form(const UNormalizer2* (*get)(UErrorCode*))
{
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* const found = get(&error);
    if (U_FAILURE(error))
        throw std::runtime_error(std::string("cannot normalize text: ") + u_errorName(error));
    return found;
}

using Word = std::uint64_t;
constexpr Word eachByte = 0x0101'0101'0101'0101;

/// Lower case for the eight bytes of a word, if all of them are ASCII.
Word lowerWord(Word word)
{
    constexpr Word top = 0x80 * eachByte;
    const Word fromA = word + (0x80 - 'A') * eachByte; // the top bit where a byte is 'A' or above
    const Word beyondZ = word + (0x80 - 'Z' - 1) * eachByte;
    return word + ((fromA & ~beyondZ & top) >> 2); // 0x20, from capital to small
}

/// Writes the text in lower case, if all of it is ASCII, and returns whether it is. Eight bytes at a time:
/// texts are too short for the compiler's longer vectors, with which matching takes a quarter longer.
bool lowerAscii(std::string_view text, char* out)
{
    if (text.empty())
        return true;
    Word seen = 0;
    const auto lower = [&](std::size_t at, std::size_t size) {
        Word word = 0;
        std::memcpy(&word, text.data() + at, size);
        seen |= word;
        word = lowerWord(word);
        std::memcpy(out + at, &word, size);
    };
    for (std::size_t at = 0; at + sizeof(Word) <= text.size(); at += sizeof(Word))
        lower(at, sizeof(Word));
    if (text.size() < sizeof(Word))
        lower(0, text.size());
    else
        lower(text.size() - sizeof(Word), sizeof(Word)); // some bytes once more
    return (seen & 0x80 * eachByte) == 0;
}

} // namespace

std::string_view TextFolder::fold(std::string_view text)
{
    if (result_.size() < text.size())
        result_.resize(text.size() * 2);
    lastWasAscii_ = lowerAscii(text, result_.data());
    return lastWasAscii_ ? std::string_view(result_.data(), text.size()) : foldUnicode(text);
}

std::string_view TextFolder::foldUnicode(std::string_view text)
{
    static const UNormalizer2* const decomposed = form(unorm2_getNFDInstance);
    static const UNormalizer2* const composed = form(unorm2_getNFCInstance);
    auto size = decoded(text, from_);
    size = normalize(decomposed, from_, size, to_);
    size = filled(from_, [&](char16_t* out, int capacity, UErrorCode* error) {
        return u_strFoldCase(out, capacity, to_.data(), length(size), U_FOLD_CASE_DEFAULT, error);
    });
    size = normalize(composed, from_, size, to_);
    size = encoded(to_, size, result_);
    return {result_.data(), size};
}

std::string lowered(std::string_view text)
{
    Units from;
    Units to;
    std::string result;
    auto size = decoded(text, from);
    size = filled(to, [&](char16_t* out, int capacity, UErrorCode* error) {
        return u_strToLower(out, capacity, from.data(), length(size), "", error);
    });
    result.resize(encoded(to, size, result));
    return result;
}

std::string folded(std::string_view text)
{
    return std::string(TextFolder().fold(text));
}

} // namespace korvo
