#pragma once

#include "aperture/BinaryPlist.h"
#include "edits/ToneCurves.h"

#include <array>
#include <optional>
#include <span>
#include <string_view>

namespace korvo {

/// The parameters of an adjustment by their keys. What is absent, of another kind or not finite is not there.
/// The list that they are from must outlive them.
class AdjustmentParameters {
public:
    /// `root` is what the adjustment's archive holds: the parameters are in its dictionary "inputKeys" if it
    /// has one, else in the root itself.
    explicit AdjustmentParameters(const BinaryPlist::Value& root);

    std::optional<double> number(std::string_view key) const;
    /// The number, or `fallback`.
    double operator()(std::string_view key, double fallback = 0) const;
    /// Whether the value is true, or a number that stands for it.
    bool isTrue(std::string_view key) const;
    /// The value of any kind; null when there is none.
    const BinaryPlist::Value* value(std::string_view key) const { return parameters_.member(key); }

private:
    BinaryPlist::Value parameters_;
};

/// A number that is finite.
std::optional<double> finiteNumber(const BinaryPlist::Value& value);

/// A point in any form that archives have for it: a dictionary with "x" and "y" or "NS.pointval", a text
/// "{x, y}", an array of two numbers.
std::optional<CurvePoint> pointIn(const BinaryPlist::Value& value);

/// Red, green and blue, with or without alpha: an archived colour with "NSRGB", a text "r g b" (also as
/// data), an array of numbers, a dictionary with "red", "green" and "blue".
std::optional<std::array<double, 3>> colorIn(const BinaryPlist::Value& value);

} // namespace korvo
