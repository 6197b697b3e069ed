#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace korvo {

// Reading and writing straight from and to the disk, past the pages that the system keeps of files: filling
// pages that nobody will look at takes longer than all else that is done with a copy. Not all file systems
// do that, and none for odd places, lengths and addresses; they answer EINVAL.

/// What places and lengths in a direct file are multiples of.
inline constexpr std::size_t directUnit = 4096;

struct FreeDirectBlock {
    void operator()(std::uint8_t* memory) const;
};
/// Memory that direct files are read into and written from.
using DirectBlock = std::unique_ptr<std::uint8_t[], FreeDirectBlock>;

/// `size` is a multiple of directUnit. Throws std::bad_alloc.
DirectBlock makeDirectBlock(std::size_t size);

/// Makes an open file direct, where its file system knows of it.
void goDirect(int descriptor);

/// Back to the pages of the system; false when the file is not direct.
bool leaveDirect(int descriptor);

} // namespace korvo
