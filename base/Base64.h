#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace korvo {

/// The bytes as base64 (RFC 4648), padded, in one line.
std::string base64(std::span<const std::uint8_t> bytes);

} // namespace korvo
