#include "aperture/BinaryPlist.h"

#include <algorithm>
#include <new>

namespace korvo {

using Value = BinaryPlist::Value;

namespace {

constexpr Value nothing{};

} // namespace

BinaryPlist::BinaryPlist() : root_(&nothing) { }

BinaryPlist::BinaryPlist(std::shared_ptr<Memory> memory, const Value& root)
    : root_(new (memory->allocate(sizeof(Value), alignof(Value))) Value(root))
{
    memory_ = std::move(memory);
}

Value::Value(Dict value) : Value(value.data(), value.size(), Kind::dict) { }

std::optional<double> Value::number() const
{
    if (const auto whole = integer())
        return static_cast<double>(*whole);
    return real();
}

std::optional<std::string_view> Value::text() const
{
    if (!is(Kind::string))
        return std::nullopt;
    return std::string_view(static_cast<const char*>(held_), count_);
}

BinaryPlist::Value::Dict Value::members() const
{
    return held<Member>(Kind::dict);
}

const Value* Value::member(std::string_view key) const
{
    const auto all = members();
    const auto found = std::find_if(
        all.rbegin(), all.rend(), [&](const Member& member) { return member.key.text() == key; });
    return found == all.rend() ? nullptr : &found->value;
}

} // namespace korvo
