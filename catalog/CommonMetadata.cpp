#include "catalog/CommonMetadata.h"

#include "base/Text.h"

#include <algorithm>

namespace korvo {

namespace {

using Metadata = PhotoMetadata;
using Change = MetadataChange;

constexpr std::array<MetadataField, 6> fields{{
    {"Title", &Metadata::title, &Change::title, "Change Title"},
    {"Caption", &Metadata::caption, &Change::caption, "Change Caption"},
    {"Keywords", &Metadata::keywords, &Change::keywords, "Change Keywords"},
    {"Creator", &Metadata::creator, &Change::creator, "Change Creator"},
    {"Copyright", &Metadata::copyright, &Change::copyright, "Change Copyright"},
    {"ALT Text", &Metadata::altText, &Change::altText, "Change ALT Text"},
}};
static_assert(fields[keywordsField].value == &Metadata::keywords);

bool holds(const std::vector<std::string>& list, const std::string& entry)
{
    return std::find(list.begin(), list.end(), entry) != list.end();
}

std::vector<std::string> without(std::vector<std::string> list, const std::vector<std::string>& others)
{
    std::erase_if(list, [&](const std::string& entry) { return holds(others, entry); });
    return list;
}

std::vector<std::string> onceEach(std::vector<std::string> list)
{
    std::vector<std::string> once;
    for (auto& entry : list)
        if (!holds(once, entry))
            once.push_back(std::move(entry));
    return once;
}

} // namespace

std::span<const MetadataField, 6> metadataFields()
{
    return fields;
}

void CommonMetadata::add(const PhotoMetadata& metadata)
{
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const SharedText& value = metadata.*fields[i].value;
        if (isFirst_)
            texts_[i] = value;
        else if (i == keywordsField)
            addKeywords(value);
        else if (texts_[i] && *texts_[i] != value)
            texts_[i].reset();
    }
    lastKeywords_ = metadata.keywords;
    isFirst_ = false;
}

void CommonMetadata::addKeywords(const SharedText& keywords)
{
    auto& common = texts_[keywordsField];
    if (keywords == lastKeywords_ || keywords == *common)
        keywordsDiffer_ |= keywords != *common;
    else {
        const auto others = splitKeywords(keywords);
        auto shared = splitKeywords(*common);
        std::erase_if(shared, [&](const std::string& entry) { return !holds(others, entry); });
        keywordsDiffer_ = true;
        common = joinKeywords(shared);
    }
}

std::string KeywordEdit::appliedTo(std::string_view keywords) const
{
    auto list = without(splitKeywords(keywords), removed);
    list.insert(list.end(), added.begin(), added.end());
    return joinKeywords(onceEach(std::move(list)));
}

KeywordEdit keywordEdit(std::string_view before, std::string_view after)
{
    const auto old = splitKeywords(before);
    const auto now = splitKeywords(after);
    return {onceEach(without(now, old)), without(old, now)};
}

std::string tidyKeywordText(std::string_view text)
{
    return joinKeywords(onceEach(splitKeywords(text)));
}

} // namespace korvo
