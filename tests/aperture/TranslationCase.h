#pragma once

#include "aperture/ApertureTranslator.h"
#include "tests/support/PlistWriter.h"

#include <string>
#include <vector>

namespace korvo {

/// The values of a property list from JSON text; a text "data:..." becomes data.
PlistDraft plistOf(const std::string& json);

/// An adjustment; its parameters as JSON.
struct TranslationStep {
    std::string name;
    std::string parameters = "{}";
    std::optional<std::string> mask; ///< its file exists, unless it is "gone"
    bool isEnabled = true;

    /// As it is read from an archive like Aperture's.
    ApertureAdjustment adjustment() const { return with(plistOf(parameters)); }
    /// The same with other parameters.
    ApertureAdjustment with(const PlistDraft& values) const;
    /// The same with that value in place of each parameter's own.
    ApertureAdjustment filledWith(const PlistDraft& value) const;
};

constexpr ApertureTranslator::Photo usualPhoto{{5000, 10}, 4000, 3000};

struct TranslationCase {
    std::vector<TranslationStep> steps;
    std::string edits; ///< as changes() gives them
    std::string report = "";
    ApertureTranslator::Photo photo = usualPhoto;
};

struct TranslationResult {
    PhotoEdits edits;
    std::string report; ///< a line for each count
};

TranslationResult translated(
    const std::vector<ApertureAdjustment>& adjustments, const ApertureTranslator::Photo& photo = usualPhoto);

/// The fields that are not the identity's as JSON, then the layers in short.
std::string changes(PhotoEdits edits);

void expect(const std::vector<TranslationCase>& cases);

} // namespace korvo
