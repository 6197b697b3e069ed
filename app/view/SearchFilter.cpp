#include "app/view/SearchFilter.h"

#include "base/Text.h"

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;

SmartAlbumRules anyOf(std::vector<SmartAlbumRule> rules)
{
    return {std::move(rules), false};
}

SmartAlbumRules word(std::string_view text)
{
    std::vector<SmartAlbumRule> rules;
    for (const auto field : {Field::text, Field::filename, Field::camera, Field::lens, Field::person})
        rules.push_back({field, Op::contains, std::string(text)});
    return anyOf(std::move(rules));
}

} // namespace

std::vector<SmartAlbumRules> rulesOf(const SearchFilter& filter)
{
    std::vector<SmartAlbumRules> rules;
    std::vector<SmartAlbumRule> all;
    if (filter.leastStars > 0)
        all.push_back({Field::rating, Op::atLeast, std::to_string(filter.leastStars)});
    if (filter.flaggedOnly)
        all.push_back({Field::flagged, Op::is, "true"});
    if (filter.kind != SearchFilter::Kind::any)
        all.push_back({Field::kind, Op::is, filter.kind == SearchFilter::Kind::videos ? "video" : "photo"});
    if (!all.empty())
        rules.push_back({std::move(all), true});
    std::vector<SmartAlbumRule> labels;
    for (const auto label : filter.labels)
        labels.push_back({Field::label, Op::is, std::to_string(static_cast<int>(label))});
    if (!labels.empty())
        rules.push_back(anyOf(std::move(labels)));
    for (const auto piece : split(filter.words, ' '))
        if (const auto text = trimmed(piece); !text.empty())
            rules.push_back(word(text));
    return rules;
}

} // namespace korvo
