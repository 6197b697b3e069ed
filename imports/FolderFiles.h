#pragma once

#include "platform/FileSource.h"

#include <vector>

namespace korvo {

/// Folders, with all that lies in them, and files as a source of an import: a card, a drive, or what the user
/// chose. With a file named by itself comes the ".xmp" beside it.
class FolderFiles : public FileSource {
public:
    explicit FolderFiles(std::vector<std::filesystem::path> paths) : paths_(std::move(paths)) { }

    SourceListing list(Admits admits, const std::stop_token& stop) override;
    void read(
        const SourceFile& file, const std::function<void(Bytes)>& use, const std::stop_token& stop) override;

private:
    std::vector<std::filesystem::path> paths_;
};

} // namespace korvo
