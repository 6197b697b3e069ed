#include "base/Base64.h"

#include <algorithm>

namespace korvo {

std::string base64(std::span<const std::uint8_t> bytes)
{
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(3, bytes.size()))) {
        const auto byte = [&](std::size_t i) { return i < bytes.size() ? bytes[i] : 0U; };
        const auto group = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (std::size_t i = 0; i < 4; ++i)
            text += i <= bytes.size() ? digits[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

} // namespace korvo
