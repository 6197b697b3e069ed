#pragma once

#include "catalog/PhotoItem.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// What counts of a photo that may be stacked.
struct AutoStackShot {
    double time = 0; // Unix time
    PhotoID id = 0;
    std::uint32_t place = 0; // among the shots as given: of several made at one time the first comes first
    std::int32_t rating = 0;
};

/// The shots of those of the photos that are masters, in no stack, and have a shot time after 1970 (the
/// capture date, else the file's), in the order of the positions.
std::vector<AutoStackShot> autoStackShots(
    const std::vector<PhotoItem>& items, std::span<const std::uint32_t> positions);
void sortByTime(std::vector<AutoStackShot>& shots);

/// The stacks that photos shot close together would become: what the sheet previews.
class AutoStackPlan {
public:
    struct Group {
        std::size_t first; // among the plan's photos
        std::size_t count; // two or more
        PhotoID pick;
    };

    /// Of shots sorted by time, one made at most `interval` seconds after the one before belongs to its
    /// stack. The pick is the highest rated one, of several the earliest.
    AutoStackPlan(std::span<const AutoStackShot> sorted, double interval);
    AutoStackPlan(
        const std::vector<PhotoItem>& items, std::span<const std::uint32_t> positions, double interval);

    const std::vector<Group>& groups() const { return groups_; }
    /// The photos of a group in order of time.
    std::span<const PhotoID> photos(const Group& group) const
    {
        return std::span(photos_).subspan(group.first, group.count);
    }
    /// How many photos all groups hold together.
    std::size_t photoCount() const { return photos_.size(); }

private:
    std::vector<PhotoID> photos_;
    std::vector<Group> groups_;
};

/// The texts and bounds of the sheet.
namespace autoStackSheet {

inline constexpr std::string_view title = "Auto-Stack";
inline constexpr std::string_view explanation
    = "Photos shot within the interval of each other become a stack; the highest-rated one is the pick.";
inline constexpr std::string_view interval = "Interval in seconds";
inline constexpr std::string_view shortest = "1 s";
inline constexpr std::string_view longest = "60 s";
inline constexpr std::string_view cancel = "Cancel";
inline constexpr std::string_view stack = "Stack";
inline constexpr int shortestInterval = 1; // seconds, in steps of 1
inline constexpr int longestInterval = 60;
inline constexpr int startInterval = 10;

} // namespace autoStackSheet

/// "Within 10 seconds: 3 stacks from 9 photos", "Within 1 second: No stack".
std::string autoStackText(const AutoStackPlan& plan, int interval);

} // namespace korvo
