#pragma once

#include "faces/ModelStore.h"

namespace korvo {

/// The models that object selection needs (Segment Anything). Which files they are is not decided yet, so
/// there are none: the store says `missing`, and a fetch says that there is nothing to download.
ModelSet selectModels();

/// The store of the object-selection models.
class SelectModelStore : public ModelStore {
public:
    SelectModelStore(MainThread& main, Downloader& downloader, std::filesystem::path root,
        std::string host = defaultModelHost);
};

} // namespace korvo
