#include "tests/aperture/Described.h"

#include <fmt/format.h>

namespace korvo {

std::string described(const BinaryPlist::Value& value)
{
    using Kind = BinaryPlist::Value::Kind;
    std::string text;
    switch (value.kind()) {
    case Kind::boolean:
        return *value.boolean() ? "true" : "false";
    case Kind::integer:
        return fmt::format("{}", *value.integer());
    case Kind::real:
        return fmt::format("{}", *value.real());
    case Kind::date:
        return fmt::format("date {}", *value.date());
    case Kind::data:
        for (const auto byte : value.data())
            text += fmt::format("{:02x}", byte);
        return "data " + text;
    case Kind::string:
        return fmt::format("'{}'", *value.text());
    case Kind::uid:
        return fmt::format("uid {}", *value.uid());
    case Kind::array:
        for (const auto& element : value.elements())
            text += (text.empty() ? "" : ", ") + described(element);
        return "[" + text + "]";
    case Kind::dict:
        for (const auto& member : value.members())
            text += (text.empty() ? "" : ", ") + described(member.key) + ": " + described(member.value);
        return "{" + text + "}";
    case Kind::null:
        return "null";
    }
    return text;
}

} // namespace korvo
