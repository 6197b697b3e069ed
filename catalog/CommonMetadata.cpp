#include "catalog/CommonMetadata.h"

#include "catalog/KeywordList.h"

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
        std::erase_if(shared,
            [&](const std::string& entry) { return std::ranges::find(others, entry) == others.end(); });
        keywordsDiffer_ = true;
        common = joinKeywords(shared);
    }
}

} // namespace korvo
