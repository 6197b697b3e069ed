#pragma once

#include "app/cli/Context.h"

namespace korvo {

/// What a command on a picture works on: a photo of the library, named by its id, or any file.
struct PhotoOrFile {
    std::optional<PhotoID> photo;
    std::filesystem::path file;
    PhotoEdits edits; ///< of the photo, unless others are given
};

/// `edits` is JSON, or "@" and the name of a file that holds it. Only a photo opens the library: a text of
/// digits alone is its id. Throws std::runtime_error for a photo that is not there.
PhotoOrFile photoOrFile(Context& context, const std::string& text, const std::optional<std::string>& edits);

/// The photo of an id. Throws std::runtime_error when the library does not hold it.
PhotoItem existingPhoto(Context& context, PhotoID id);

/// The text itself, or the contents of the file that "@" and its name stand for.
std::string textOrFile(const std::string& text);

} // namespace korvo
