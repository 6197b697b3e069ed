#include "imports/ImportFolder.h"

#include "imports/ImportCopy.h"
#include "platform/FileSync.h"

#include <fcntl.h>

#include <system_error>

namespace korvo {

ImportFolder::ImportFolder(const std::filesystem::path& folder)
{
    makeFolders(folder);
    path_ = std::filesystem::canonical(folder);
    held_ = openFile(path_, O_RDONLY | O_DIRECTORY);
    if (!held_)
        throwFileError("open", path_);
    removeHalfWritten(path_);
}

void ImportFolder::requireThere() const
{
    if (!isNamed(held_, path_))
        throwFileError("reach", path_, std::make_error_code(std::errc::no_such_device));
}

} // namespace korvo
