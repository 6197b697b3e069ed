#pragma once

#include "app/view/Browser.h"

#include <string>

namespace korvo {

/// The marks that a key gives to photos. Each acts on all of the photos alike: a mark that can be taken back
/// is taken back only when all of them have it.
enum class Mark {
    pick, ///< flagged, and rejected no longer
    reject, ///< rejected and not flagged; taken back when all are rejected, which brings their stars back
    clear, ///< neither
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

/// Marks photos of the list as one step of undo. Its title says what was done ("Reject"), which depends on
/// what they were. Throws DatabaseError.
void setMark(LibraryStore& store, std::span<const PhotoID> ids, Mark mark);

/// What can be clicked of a photo's marks. A photo that is rejected has a cross in place of its flag.
struct MarkPart {
    enum class Kind { star, flag, cross, label };
    Kind kind;
    int stars = 0; // for a star, 1 to 5

    bool operator==(const MarkPart&) const = default;
};

/// Picks photos, whether they are listed or not: they may have just been added.
void flag(LibraryStore& store, std::span<const PhotoID> ids);

/// What a click on a mark of one of these photos means for all of them, as one step of undo: so many stars,
/// or none when all have just these; the flag, or none when all are flagged; at a cross, no rejection. A
/// label is chosen from a list instead, so that nothing happens. Throws DatabaseError.
void clickMark(LibraryStore& store, std::span<const PhotoID> ids, const MarkPart& part);

/// What the Delete key does: takes photos out of the album that is shown, or else rejects them. Returns a
/// sentence that says so. Throws DatabaseError.
std::string removeOrReject(LibraryStore& store, std::span<const PhotoID> ids);

} // namespace korvo
