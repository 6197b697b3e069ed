#pragma once

#include "app/Browser.h"

#include <string>

namespace korvo {

/// The marks that a key gives to photos. Each acts on all of the photos alike: a mark that can be taken back
/// is taken back only when all of them have it.
enum class Mark {
    pick, ///< flagged, and rejected no longer
    reject, ///< rejected and not flagged; taken back when all are rejected, which brings their stars back
    clear, ///< neither
    flag, ///< as a pick
    toggleFlag, ///< taken back when all are flagged
    oneStarMore, ///< brings a rejected photo's stars back
    oneStarLess
};

/// The stars of a photo, 0 to 5: a rejected one's are those it had before.
int starsOf(const PhotoItem& item);

/// The rating stored for a photo that is rejected: any negative one is, and this one remembers the stars.
constexpr int rejectedWith(int stars)
{
    return rejectedRating - stars;
}

/// Marks photos of the list as one step of undo. Returns what was done ("Reject"), which depends on what they
/// were. Throws DatabaseError.
std::string setMark(LibraryStore& store, std::span<const PhotoID> ids, Mark mark);

/// What the Delete key does: takes photos out of the album that is shown, or else rejects them. Returns a
/// sentence that says so. Throws DatabaseError.
std::string removeOrReject(LibraryStore& store, std::span<const PhotoID> ids);

/// Number of photos above which a line offers to take back what one key did.
inline constexpr std::size_t photosBeforeUndoIsOffered = 20;

} // namespace korvo
