#pragma once

#include "edits/PhotoEdits.h"

namespace korvo {

/// Where the number that a slider moves lies in the edits. One that is not set reads as 0.
struct EditField {
    double (*get)(const PhotoEdits&);
    void (*set)(PhotoEdits&, double);
};

template <double PhotoEdits::*Member>
inline constexpr EditField plainField{
    [](const PhotoEdits& edits) { return edits.*Member; },
    [](PhotoEdits& edits, double value) { edits.*Member = value; },
};

template <std::optional<double> PhotoEdits::*Member>
inline constexpr EditField optionalField{
    [](const PhotoEdits& edits) { return (edits.*Member).value_or(0); },
    [](PhotoEdits& edits, double value) { edits.*Member = value; },
};

} // namespace korvo
