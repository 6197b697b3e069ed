#include "base/UserError.h"

#include <filesystem>

namespace korvo {

std::string textForUser(const std::exception& error)
{
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&error))
        return file->path1().string() + ": " + file->code().message();
    const auto* const failed = dynamic_cast<const UserError*>(&error);
    return failed ? failed->textForUser() : error.what();
}

} // namespace korvo
