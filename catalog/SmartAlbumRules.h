#pragma once

#include "base/Enum.h"
#include "base/Record.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// One test of a smart album, as it is stored.
struct SmartAlbumRule {
    enum class Field : std::uint8_t {
        rating,
        flagged,
        label,
        keyword,
        text,
        kind,
        hasAlt,
        adjusted,
        filename,
        date,
        fileType,
        camera,
        lens,
        focalLength,
        person,
        location
    };
    enum class Op : std::uint8_t { is, isNot, atLeast, atMost, contains, notContains, near };

    Field field = Field::rating;
    Op op = Op::is;
    std::string value; // text whatever the field
};
KORVO_ENUM(SmartAlbumRule::Field, rating, flagged, label, keyword, text, kind, hasAlt, adjusted, filename,
    date, fileType, camera, lens, focalLength, person, location)
KORVO_ENUM(SmartAlbumRule::Op, is, isNot, atLeast, atMost, contains, notContains, near)
KORVO_RECORD(SmartAlbumRule, field, op, value)

/// The query that a smart album is.
struct SmartAlbumRules {
    std::vector<SmartAlbumRule> rules; // none lists every photo
    bool matchAll = true; // else one rule that matches is enough
};
KORVO_RECORD(SmartAlbumRules, rules, matchAll)

/// The rules of a stored text; "{}" is none. Throws JsonError for what cannot be read.
SmartAlbumRules smartAlbumRules(std::string_view json);

/// How the value of a rule is read.
enum class RuleValue : std::uint8_t { text, number, label, day, kind, fileType, yesNo, place };

/// What the editor offers for a field.
struct SmartAlbumField {
    SmartAlbumRule::Field field;
    std::string_view title;
    RuleValue value;
    std::span<const SmartAlbumRule::Op> ops;
    std::string_view hint = {}; // an example shown in the empty field; of a place, in that of the radius
    std::string_view needs = {}; // what is wrong with a value that cannot be read; texts all can
};

/// All fields in the order of the menu.
std::span<const SmartAlbumField> smartAlbumFields();
const SmartAlbumField& fieldOf(const SmartAlbumRule& rule);

/// "is at least"; of `near` what stands before the radius.
std::string_view label(SmartAlbumRule::Op op);

} // namespace korvo
