#pragma once

#include "aperture/BinaryPlist.h"

#include <string>
#include <utility>
#include <vector>

namespace korvo {

/// The bytes of a property list out of parts that need not be sound.
struct RawPlist {
    std::vector<std::string> objects; ///< each with its marker
    std::uint64_t top = 0;
    std::uint8_t offsetSize = 1;
    std::uint8_t refSize = 1;

    std::string bytes() const;
};

/// `value` in `width` bytes, most significant first.
std::string bigEndianBytes(std::uint64_t value, unsigned width);

/// A sound property list that holds the value.
std::string plistBytes(const BinaryPlist::Value& value);

/// A dictionary with text as keys.
BinaryPlist::Value plistDict(std::vector<std::pair<std::string, BinaryPlist::Value>> members);

/// A keyed archive of plain values, as archivers write it: dictionaries become NSMutableDictionary, arrays
/// NSArray, all else objects of its own.
std::string archiveBytes(const BinaryPlist::Value& root);

} // namespace korvo
