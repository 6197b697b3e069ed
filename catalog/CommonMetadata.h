#pragma once

#include "catalog/MetadataChange.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace korvo {

/// One of the descriptive fields as the inspector shows it.
struct MetadataField {
    std::string_view title;
    SharedText PhotoMetadata::*value;
    std::optional<SharedText> MetadataChange::*change;
    std::string_view undoTitle; // of a step that changes this field alone
};

/// All six in the inspector's order.
std::span<const MetadataField, 6> metadataFields();
inline constexpr std::size_t keywordsField = 2; // its place among them

/// The descriptive fields of several photos, seen as one: a text that differs between them is mixed, and
/// shown as such. Of the keywords those count that all photos have.
class CommonMetadata {
public:
    void add(const PhotoMetadata& metadata);

    /// The text that all photos have in a field, given by its place; nothing when they differ. Of the
    /// keywords, those in common.
    const std::optional<SharedText>& text(std::size_t field) const { return texts_[field]; }
    /// Whether some photos have keywords that others have not.
    bool keywordsDiffer() const { return keywordsDiffer_; }

private:
    void addKeywords(const SharedText& keywords);

    bool isFirst_ = true;
    std::array<std::optional<SharedText>, 6> texts_;
    bool keywordsDiffer_ = false;
    SharedText lastKeywords_; // neighbours often share theirs
};

/// What the inspector says in an empty field whose texts differ, and of keywords that not all photos have.
inline constexpr std::string_view mixedText = "Multiple values";
inline constexpr std::string_view mixedKeywordsText
    = "Shown are the keywords that all photos have; each keeps its others";

} // namespace korvo
