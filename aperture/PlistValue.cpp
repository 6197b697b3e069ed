#include "aperture/BinaryPlist.h"

#include <algorithm>

namespace korvo {

using Value = BinaryPlist::Value;

Value::Value(Array value) : storage_(std::make_shared<const Array>(std::move(value))) { }

Value::Value(Dict value) : storage_(std::make_shared<const Dict>(std::move(value))) { }

std::optional<double> Value::number() const
{
    if (const auto whole = integer())
        return static_cast<double>(*whole);
    return real();
}

std::optional<double> Value::date() const
{
    const auto value = plain<Date>();
    return value ? std::optional(value->seconds) : std::nullopt;
}

std::optional<std::int64_t> Value::uid() const
{
    const auto value = plain<Uid>();
    return value ? std::optional(value->index) : std::nullopt;
}

std::optional<std::string_view> Value::text() const
{
    const auto* const value = std::get_if<SharedText>(&storage_);
    return value ? std::optional(value->view()) : std::nullopt;
}

template <typename T>
std::span<const T> Value::shared() const
{
    const auto* const value = std::get_if<std::shared_ptr<const std::vector<T>>>(&storage_);
    return value ? std::span<const T>(**value) : std::span<const T>();
}

std::span<const std::uint8_t> Value::data() const
{
    return shared<std::uint8_t>();
}

std::span<const Value> Value::elements() const
{
    return shared<Value>();
}

std::span<const BinaryPlist::Member> Value::members() const
{
    return shared<Member>();
}

const Value* Value::member(std::string_view key) const
{
    const auto all = members();
    const auto found = std::find_if(
        all.rbegin(), all.rend(), [&](const Member& member) { return member.key.text() == key; });
    return found == all.rend() ? nullptr : &found->value;
}

} // namespace korvo
