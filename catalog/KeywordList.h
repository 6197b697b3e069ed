#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvo {

// Keywords as the catalog holds them and people type them: a text with commas.

/// The entries of a keyword list: the text cut at commas, each entry trimmed, empty ones dropped.
std::vector<std::string> splitKeywords(std::string_view text);

/// Keywords as the catalog holds them: joined with ", ".
std::string joinKeywords(const std::vector<std::string>& keywords);

/// A change of a keyword list that fits photos with different ones.
struct KeywordEdit {
    std::vector<std::string> added, removed;

    bool empty() const { return added.empty() && removed.empty(); }
    /// The list afterwards, as one text.
    std::string appliedTo(std::string_view keywords) const;
};

/// What was added to a list and what was taken from it. Entries are told apart with their case.
KeywordEdit keywordEdit(std::string_view before, std::string_view after);

/// The list as the catalog holds it: entries trimmed, none empty, none twice.
std::string tidyKeywordText(std::string_view text);

} // namespace korvo
