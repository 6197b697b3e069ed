#include "faces/SelectModelStore.h"

#include <utility>

namespace korvo {

ModelSet selectModels()
{
    return {"object selection model", {}};
}

SelectModelStore::SelectModelStore(
    MainThread& main, Downloader& downloader, std::filesystem::path root, std::string host)
    : ModelStore(main, downloader, selectModels(), std::move(root), std::move(host))
{ }

} // namespace korvo
