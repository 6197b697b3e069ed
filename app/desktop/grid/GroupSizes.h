#pragma once

#include "catalog/LibraryStore.h"

#include <unordered_map>

namespace korvo {

/// How many versions and stack members the photos have, for their badges.
class GroupSizes {
public:
    void read(Catalog& catalog)
    {
        versions_ = catalog.versionCounts();
        stacks_.clear();
        for (const auto& stack : catalog.stacks())
            stacks_[stack.id] = static_cast<int>(stack.members.size());
    }

    /// Of the photo, itself left out.
    int versions(PhotoID id) const
    {
        const auto found = versions_.find(id);
        return found == versions_.end() ? 0 : static_cast<int>(found->second);
    }

    int stackSize(const PhotoItem& item) const
    {
        const auto found = item.stackID ? stacks_.find(*item.stackID) : stacks_.end();
        return found == stacks_.end() ? 0 : found->second;
    }

private:
    std::unordered_map<PhotoID, std::int64_t> versions_;
    std::unordered_map<std::int64_t, int> stacks_;
};

} // namespace korvo
