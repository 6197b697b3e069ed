#include "base/Uuid.h"

#include <cerrno>
#include <charconv>
#include <sys/random.h>
#include <system_error>

namespace korvo {

namespace {

constexpr std::size_t textLength = 36;

/// Whether a hyphen stands at that place of the text.
constexpr bool isHyphenPlace(std::size_t at)
{
    return at == 8 || at == 13 || at == 18 || at == 23;
}

std::optional<std::uint8_t> byteOf(std::string_view twoDigits)
{
    std::uint8_t byte = 0;
    const auto [end, error] = std::from_chars(twoDigits.begin(), twoDigits.end(), byte, 16);
    return error == std::errc() && end == twoDigits.end() ? std::optional(byte) : std::nullopt;
}

} // namespace

Uuid Uuid::random()
{
    Uuid uuid;
    // std::random_device may ask the processor's seed instruction, which took 90 microseconds for 16 bytes
    // where this takes 0.3.
    if (getentropy(uuid.bytes.data(), uuid.bytes.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "no random numbers");
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40); // version 4
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80); // the variant of RFC 4122
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    if (text.size() != textLength)
        return std::nullopt;
    Uuid uuid;
    std::size_t at = 0;
    for (auto& byte : uuid.bytes) {
        if (isHyphenPlace(at) && text[at++] != '-')
            return std::nullopt;
        const auto parsed = byteOf(text.substr(at, 2));
        if (!parsed)
            return std::nullopt;
        byte = *parsed;
        at += 2;
    }
    return uuid;
}

std::string Uuid::text() const
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const auto byte : bytes) {
        if (isHyphenPlace(text.size()))
            text += '-';
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

} // namespace korvo

std::size_t std::hash<korvo::Uuid>::operator()(const korvo::Uuid& uuid) const
{
    const std::string_view bytes(reinterpret_cast<const char*>(uuid.bytes.data()), uuid.bytes.size());
    return std::hash<std::string_view>()(bytes);
}
