#pragma once

#include "base/Dates.h"
#include "base/FoldedText.h"
#include "catalog/NearPlace.h"
#include "catalog/PhotoItem.h"
#include "catalog/SmartAlbumRules.h"

#include <array>
#include <optional>
#include <variant>

namespace korvo {

// The tests that rules become, from the cheapest to the dearest. Each is the positive one: "is not" and
// "does not contain" are turned round by RuleTest.

struct YesNoTest {
    SmartAlbumRule::Field field;
    bool wanted;

    bool holds(const PhotoItem& item) const;
};

/// The photo's number lies in [least, most]. A photo without the number passes none.
struct NumberTest {
    SmartAlbumRule::Field field;
    double least;
    double most;

    bool holds(const PhotoItem& item) const;
};

/// The photo's moment lies in [from, to). A photo without a date passes none.
struct DateTest {
    UnixTime from;
    UnixTime to;

    bool holds(const PhotoItem& item) const;
};

struct LocationTest {
    NearTest near;

    bool holds(const PhotoItem& item) const
    {
        return item.latitude && item.longitude && near.holds(*item.latitude, *item.longitude);
    }
};

struct VideoTest {
    bool wanted;

    bool holds(const PhotoItem& item) const;
};

struct FileTypeTest {
    std::string extension; // lower case, one spelling of each

    bool holds(const PhotoItem& item) const;
};

/// One of the field's texts, or of the entries of its list, equals the wanted text or contains it.
class TextTest {
public:
    TextTest(const SmartAlbumRule& rule);

    bool holds(const PhotoItem& item, TextFolder& folder);

private:
    bool fits(std::string_view text) const;
    bool fitsAnEntry(std::string_view list) const;
    bool holdsFor(std::string_view folded) const;
    bool holdsFor(const SharedText& text, std::size_t place, TextFolder& folder);
    bool holdsForOneOf(const PhotoMetadata& texts, TextFolder& folder);

    SmartAlbumRule::Field field_;
    bool whole_;
    std::string wanted_; // folded

    /// The last text in each place that was dear to fold, and what came of it: neighbours repeat each other's
    /// creator and copyright.
    struct Known {
        SharedText text;
        bool holds = false;
    };
    std::array<Known, 6> known_;
};

/// A rule made ready to be tried on many photos.
struct RuleTest {
    std::variant<YesNoTest, NumberTest, DateTest, LocationTest, VideoTest, FileTypeTest, TextTest> test;
    bool negated = false;

    /// Allocates nothing once `folder` has met the longest text.
    bool holds(const PhotoItem& item, TextFolder& folder);
};

/// The test of a rule; nothing for one that has a fault.
std::optional<RuleTest> ruleTest(const SmartAlbumRule& rule);

/// What is wrong with a rule, for the user: an operator its field does not take, or a value that cannot be
/// read as the field requires. Such a rule matches nothing.
std::optional<std::string> fault(const SmartAlbumRule& rule);

} // namespace korvo
