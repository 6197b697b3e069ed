#include "aperture/AdjustmentParameters.h"

#include "base/Bytes.h"

#include <charconv>
#include <cmath>

namespace korvo {

namespace {

using Value = BinaryPlist::Value;

/// As many numbers as a point or a colour has.
constexpr std::size_t mostNumbers = 4;

/// No text of a point or a colour is longer. A small archive can name one long text thousands of times.
constexpr std::size_t longestText = 256;

/// The numbers of "{0.5, 1}" or "0.6 0.45 0.3"; none of a text that holds anything else.
std::vector<double> numbersOfText(std::string_view text)
{
    using namespace std::string_view_literals;
    if (text.size() > longestText)
        return {};
    constexpr auto separators = " \t\r\n,;(){}[]\0"sv;
    std::vector<double> numbers;
    for (auto at = text.find_first_not_of(separators); at != text.npos;
         at = text.find_first_not_of(separators)) {
        text.remove_prefix(at);
        double number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || !std::isfinite(number) || numbers.size() == mostNumbers)
            return {};
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    }
    return numbers;
}

std::vector<double> numbersOf(const Value& value)
{
    if (const auto text = value.text())
        return numbersOfText(*text);
    if (value.kind() == Value::Kind::data)
        return numbersOfText(Bytes(value.data()).text());
    std::vector<double> numbers;
    if (value.elements().size() <= mostNumbers)
        for (const auto& element : value.elements())
            if (const auto number = finiteNumber(element))
                numbers.push_back(*number);
    return numbers.size() == value.elements().size() ? numbers : std::vector<double>();
}

/// The numbers under these keys of a dictionary, if all of them are there.
template <std::size_t Count>
std::optional<std::array<double, Count>> members(
    const Value& dict, const std::array<std::string_view, Count>& keys)
{
    std::array<double, Count> numbers;
    for (std::size_t i = 0; i < Count; ++i) {
        const auto* const found = dict.member(keys[i]);
        const auto number = found ? finiteNumber(*found) : std::nullopt;
        if (!number)
            return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

} // namespace

AdjustmentParameters::AdjustmentParameters(const Value& root) : parameters_(root)
{
    if (const auto* const inner = root.member("inputKeys"); inner && inner->kind() == Value::Kind::dict)
        parameters_ = *inner;
}

std::optional<double> AdjustmentParameters::number(std::string_view key) const
{
    const auto* const found = value(key);
    return found ? finiteNumber(*found) : std::nullopt;
}

double AdjustmentParameters::operator()(std::string_view key, double fallback) const
{
    return number(key).value_or(fallback);
}

bool AdjustmentParameters::isTrue(std::string_view key) const
{
    const auto* const found = value(key);
    return found && (found->boolean() == true || finiteNumber(*found).value_or(0) != 0);
}

std::optional<double> finiteNumber(const Value& value)
{
    const auto number = value.number();
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<CurvePoint> pointIn(const Value& value)
{
    if (const auto numbers = numbersOf(value); numbers.size() == 2)
        return CurvePoint{numbers[0], numbers[1]};
    if (const auto* const wrapped = value.member("NS.pointval"))
        return pointIn(*wrapped);
    const auto point = members<2>(value, {"x", "y"});
    return point ? std::optional(CurvePoint{(*point)[0], (*point)[1]}) : std::nullopt;
}

std::optional<std::array<double, 3>> colorIn(const Value& value)
{
    if (const auto numbers = numbersOf(value); numbers.size() >= 3)
        return std::array{numbers[0], numbers[1], numbers[2]};
    if (const auto* const components = value.member("NSRGB"))
        return colorIn(*components);
    return members<3>(value, {"red", "green", "blue"});
}

} // namespace korvo
