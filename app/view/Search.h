#pragma once

#include "app/view/SearchFilter.h"
#include "catalog/store/LibraryStore.h"

namespace korvo {

/// What the list is searched for: the search field and the filter bar show it, and the sidebar's keywords
/// change it too. Used on the main thread.
class Search {
public:
    /// `store` must outlive it.
    explicit Search(LibraryStore& store) : store_(store) { }

    Signal<> changed;

    const SearchFilter& asked() const { return asked_; }
    /// Shows what matches all of it.
    void ask(SearchFilter filter);
    /// Words that are still being typed. They narrow the list with the next ask().
    void type(std::string words) { asked_.words = std::move(words); }

    /// Searches all photos for these words.
    void searchAll(const std::string& words);
    /// Searches no longer, if these are still the words.
    void end(const std::string& words);

private:
    LibraryStore& store_;
    SearchFilter asked_;
};

} // namespace korvo
