#include "base/FoldedText.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

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

} // namespace

std::string_view TextFolder::fold(std::string_view text)
{
    if (result_.size() < text.size())
        result_.resize(text.size() * 2);
    // Without an early end, so that the compiler takes many bytes at once.
    unsigned seen = 0;
    char* const out = result_.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        seen |= c;
        out[i] = static_cast<char>(c + (c >= 'A' && c <= 'Z' ? 'a' - 'A' : 0));
    }
    lastWasAscii_ = seen < 0x80;
    return lastWasAscii_ ? std::string_view(out, text.size()) : foldUnicode(text);
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
