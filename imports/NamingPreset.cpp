#include "imports/NamingPreset.h"

#include "base/Json.h"

namespace korvo {

namespace {

constexpr auto presetsKey = "korvo_naming_presets";

} // namespace

NamingPreset NamingPreset::make(std::string name, std::string pattern)
{
    return {Uuid::random(), std::move(name), std::move(pattern)};
}

std::vector<NamingPreset> NamingPreset::defaults()
{
    return {make("Original Name", "{name}"), make("Web", "{name}-web"), make("Sequence", "{seq}-{name}"),
        make("Date + Name", "{date} {name}"), make("Title", "{title}")};
}

std::vector<NamingPreset> NamingPreset::load(const Defaults& store)
{
    try {
        auto presets = fromJson<std::vector<NamingPreset>>(store.get(presetsKey).value_or("[]"));
        return presets.empty() ? defaults() : presets;
    } catch (const JsonError&) {
        return defaults(); // what is stored stays until the user saves presets of their own
    }
}

void NamingPreset::save(const std::vector<NamingPreset>& presets, Defaults& store)
{
    store.set(presetsKey, toJson(presets));
}

} // namespace korvo
