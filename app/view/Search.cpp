#include "app/view/Search.h"

namespace korvo {

void Search::ask(SearchFilter filter)
{
    asked_ = std::move(filter);
    store_.narrow(rulesOf(asked_));
    changed.emit();
}

void Search::searchAll(const std::string& words)
{
    if (store_.source())
        store_.chooseSource(std::nullopt);
    auto filter = asked_;
    filter.words = words;
    ask(std::move(filter));
}

void Search::end(const std::string& words)
{
    if (asked_.words == words)
        searchAll({});
}

} // namespace korvo
