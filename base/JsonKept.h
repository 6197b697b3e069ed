#pragma once

#include "base/JsonDecoding.h"

namespace korvo {

/// What was kept of a record, by this version or another: a field that is missing there, or cannot be read,
/// is as in `usual`, and so are all when the text is no object.
template <Record T>
T fromKeptJson(std::string_view text, T usual)
{
    static constexpr auto names = fieldNames<T>();
    std::array<JsonValue, names.size()> found;
    try {
        const JsonDocument document(text);
        document.root().members(names, found);
        std::size_t at = 0;
        forEachField<T>([&](const auto& field) {
            const auto value = found[at++];
            auto read = usual.*field.member;
            try {
                readJsonMember(value, read);
                usual.*field.member = std::move(read);
            } catch (const JsonError&) { // its usual value stands
            }
        });
    } catch (const JsonError&) { // the same for all
    }
    return usual;
}

} // namespace korvo
