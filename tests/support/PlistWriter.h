#pragma once

#include "aperture/BinaryPlist.h"

#include <string>
#include <utility>
#include <variant>
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

/// A value that is to be written.
struct PlistDraft {
    struct Member;
    struct Null { };
    using Date = BinaryPlist::Value::Date;
    using Uid = BinaryPlist::Value::Uid;
    using Data = std::vector<std::uint8_t>;
    using Array = std::vector<PlistDraft>;
    using Dict = std::vector<Member>;

    PlistDraft() = default;
    template <typename T>
    explicit PlistDraft(T held) : value(std::move(held))
    { }

    std::variant<Null, bool, std::int64_t, double, Date, Uid, Data, std::string, Array, Dict> value;
};

struct PlistDraft::Member {
    PlistDraft key;
    PlistDraft value;
};

/// A sound property list that holds the value.
std::string plistBytes(const PlistDraft& value);

/// A dictionary with text as keys.
PlistDraft plistDict(std::vector<std::pair<std::string, PlistDraft>> members);

/// A keyed archive of plain values, as archivers write it: dictionaries become NSMutableDictionary, arrays
/// NSArray, all else objects of its own.
std::string archiveBytes(const PlistDraft& root);

} // namespace korvo
