#include "base/JsonDocument.h"

#include "base/JsonError.h"

#include <algorithm>
#include <bit>
#include <new>
#include <simdjson.h>
#include <vector>

namespace korvo {

namespace dom = simdjson::dom;

using Case = JsonError::Case;

namespace {

/// The parser's own view of a place on its tape, and back: both are the document and an index.
template <typename Place>
Place tapePlace(JsonValue value)
{
    static_assert(sizeof(Place) == sizeof(JsonValue));
    return std::bit_cast<Place>(value);
}

template <typename Place>
JsonValue valueAt(Place place)
{
    return std::bit_cast<JsonValue>(place);
}

/// The value as `Type`, or the error that it "is not" one.
template <typename Type>
Type as(JsonValue value, std::string_view fault)
{
    Type result;
    if (tapePlace<dom::element>(value).get<Type>().get(result) != simdjson::SUCCESS)
        throw JsonError(Case::wrongKind, fault);
    return result;
}

[[noreturn]] void throwParserError(simdjson::error_code code)
{
    switch (code) {
    case simdjson::MEMALLOC:
        throw std::bad_alloc();
    case simdjson::DEPTH_ERROR:
        throw JsonError(Case::tooDeep, "is nested too deeply");
    case simdjson::UTF8_ERROR:
        throw JsonError(Case::notUtf8, "is not UTF-8");
    default:
        throw JsonError(Case::syntax, "is not well-formed");
    }
}

/// The deepest nesting of arrays and objects in well-formed JSON text.
std::size_t nesting(std::string_view json)
{
    std::size_t depth = 0, deepest = 0;
    bool inText = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (c == '"')
            inText = !inText;
        else if (inText)
            i += c == '\\';
        else if (c == '[' || c == '{')
            deepest = std::max(deepest, ++depth);
        else if ((c == ']' || c == '}') && depth > 0)
            --depth;
    }
    return deepest;
}

/// Where `name` stands among the names, looking from `from` on and then from the start; names.size() if
/// nowhere.
std::size_t indexOf(std::span<const std::string_view> names, std::string_view name, std::size_t from)
{
    const auto first = names.begin(), middle = first + static_cast<std::ptrdiff_t>(from), end = names.end();
    auto at = std::find(middle, end, name);
    if (at == end && (at = std::find(first, middle, name)) == middle)
        at = end;
    return static_cast<std::size_t>(at - first);
}

} // namespace

JsonValue::Kind JsonValue::kind() const
{
    switch (tapePlace<dom::element>(*this).type()) {
    case dom::element_type::ARRAY:
        return Kind::array;
    case dom::element_type::OBJECT:
        return Kind::object;
    case dom::element_type::INT64:
        return Kind::integer;
    case dom::element_type::UINT64:
    case dom::element_type::DOUBLE:
        return Kind::number;
    case dom::element_type::STRING:
        return Kind::text;
    case dom::element_type::BOOL:
        return Kind::boolean;
    case dom::element_type::NULL_VALUE:
        break;
    }
    return Kind::null;
}

bool JsonValue::boolean() const
{
    return as<bool>(*this, "is not true or false");
}

double JsonValue::number() const
{
    return as<double>(*this, "is not a number");
}

std::int64_t JsonValue::integer() const
{
    if (kind() == Kind::integer)
        return as<std::int64_t>(*this, "is not a number");
    constexpr double limit = 9223372036854775808.0; // 2^63
    const double value = number();
    // Comparing this way round refuses numbers of more than 63 bits, which a cast could not take.
    if (!(value >= -limit && value < limit) || value != static_cast<double>(static_cast<std::int64_t>(value)))
        throw JsonError(Case::wrongNumber, "is not a whole number of at most 64 bits");
    return static_cast<std::int64_t>(value);
}

std::string_view JsonValue::text() const
{
    return as<std::string_view>(*this, "is not text");
}

JsonRange<JsonValue> JsonValue::elements() const
{
    const auto array = as<dom::array>(*this, "is not a list");
    return {valueAt(array.begin()), valueAt(array.end())};
}

JsonRange<JsonMember> JsonValue::members() const
{
    const auto object = as<dom::object>(*this, "is not an object");
    return {valueAt(object.begin()), valueAt(object.end())};
}

JsonValue JsonValue::member(std::string_view name) const
{
    JsonValue found;
    members({&name, 1}, {&found, 1});
    return found;
}

void JsonValue::members(std::span<const std::string_view> names, std::span<JsonValue> found) const
{
    const auto object = as<dom::object>(*this, "is not an object");
    std::size_t next = 0;
    for (auto member = object.begin(), end = object.end(); member != end; ++member) {
        const auto index = indexOf(names, member.key(), next);
        if (index == names.size())
            continue;
        found[index] = valueAt(member.value());
        next = index + 1;
    }
}

template <>
JsonRange<JsonValue>::Iterator& JsonRange<JsonValue>::Iterator::operator++()
{
    place_ = valueAt(++tapePlace<dom::array::iterator>(place_));
    return *this;
}

template <>
JsonValue JsonRange<JsonValue>::Iterator::operator*() const
{
    return place_;
}

template <>
JsonRange<JsonMember>::Iterator& JsonRange<JsonMember>::Iterator::operator++()
{
    place_ = valueAt(++tapePlace<dom::object::iterator>(place_));
    return *this;
}

template <>
JsonMember JsonRange<JsonMember>::Iterator::operator*() const
{
    const auto member = tapePlace<dom::object::iterator>(place_);
    return {member.key(), valueAt(member.value())};
}

/// simdjson's parser and the padded copy of the text that it wants.
struct JsonDocument::Parser {
    dom::parser dom;
    std::vector<std::uint8_t> padded;
    dom::element root;

    simdjson::error_code parse(std::string_view text, std::size_t depth)
    {
        if (const auto error = dom.allocate(std::max(dom.capacity(), text.size()), depth))
            return error;
        return dom.parse(padded.data(), text.size(), false).get(root);
    }

    void parse(std::string_view text)
    {
        if (text.size() > maxLength)
            throw JsonError(Case::tooLong, "is too long");
        padded.resize(std::max(padded.size(), text.size() + simdjson::SIMDJSON_PADDING));
        std::copy(text.begin(), text.end(), padded.begin());
        auto error = parse(text, maxDepth);
        // The parser's limit is one short for anything but an empty innermost array.
        if (error == simdjson::DEPTH_ERROR && nesting(text) <= maxDepth)
            error = parse(text, maxDepth + 1);
        if (error != simdjson::SUCCESS)
            throwParserError(error);
    }

    /// The thread's parser for its next document; making one costs more than parsing a small text.
    static std::unique_ptr<Parser>& spare()
    {
        thread_local std::unique_ptr<Parser> parser;
        return parser;
    }
};

JsonDocument::JsonDocument(std::string_view text)
    : parser_(Parser::spare() ? std::move(Parser::spare()) : std::make_unique<Parser>())
{
    parser_->parse(text);
}

JsonDocument::JsonDocument(JsonDocument&&) noexcept = default;
JsonDocument& JsonDocument::operator=(JsonDocument&&) noexcept = default;

JsonDocument::~JsonDocument()
{
    constexpr std::size_t keptCapacity = std::size_t(1) << 18; // a parser holds some 15 times its capacity
    if (parser_ && parser_->dom.capacity() <= keptCapacity)
        Parser::spare() = std::move(parser_);
}

JsonValue JsonDocument::root() const
{
    return valueAt(parser_->root);
}

} // namespace korvo
