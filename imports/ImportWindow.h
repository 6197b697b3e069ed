#pragma once

#include "imports/ImportPlan.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvo {

// What the import window shows and says.

namespace importWindow {

struct Section {
    std::string_view title;
    std::string_view emptyText;
};
inline constexpr std::array<Section, 3> sections = {{
    {"Cards & Drives", "Insert a card or connect a drive"},
    {"Cameras", "Connect a camera by USB and switch it on"},
    {"Files & Folders", "Choose folders, photos or videos"},
}};

inline constexpr std::string_view nothingChosen = "Choose a card, drive or folder on the left.";
inline constexpr std::string_view listing = "Looking for photos…";
inline constexpr std::string_view nothingFound = "No photos or videos found there.";
inline constexpr std::string_view nothingImportable = "Nothing importable was found."; // when it was to start

inline constexpr std::string_view keepNames = "Keep Original Names";
inline constexpr std::string_view rename = "Rename";
inline constexpr std::string_view defaultPattern = "{name}";
inline constexpr std::string_view copyIntoFolder = "Copy into a folder";
inline constexpr std::string_view cardsAreCopied
    = "A card's photos are always copied — the card goes back in the camera";
inline constexpr std::string_view filesStay = "Files stay where they are; the library references them there.";
inline constexpr std::string_view leaveOutDuplicates = "Don't import duplicates";
inline constexpr std::string_view ejectAfterwards = "Eject after import";
inline constexpr std::array<std::string_view, 4> projects
    = {"No project", "New project", "One project per day", "Selected"};
inline constexpr std::string_view pickAll = "Pick All";
inline constexpr std::string_view pickNone = "Pick None";
inline constexpr std::string_view creator = "Creator";
inline constexpr std::string_view copyright = "Copyright";
inline constexpr std::string_view keywords = "Keywords";
inline constexpr std::string_view keywordsHint = "comma, separated";

inline constexpr std::string_view inLibrary = "In Library";
inline constexpr std::string_view willImport = "Will import";
inline constexpr std::string_view wontImport = "Won't import";

inline constexpr std::string_view destinationName = "Korvo Imports"; // in the user's folder for pictures

} // namespace importWindow

/// What the main pane says instead of a list; nothing when there is one to show.
enum class ListingState { nothingChosen, listing, listed };
std::optional<std::string_view> paneText(ListingState state, const ImportListing& listing);

/// "Will import" or "Won't import".
std::string_view rowText(const Candidate& candidate);

/// "IMG_0001.JPG, 2000000 bytes", and ", already in the library" for a duplicate.
std::string summary(const Candidate& candidate);

/// The line above the candidates: "24 of 30 photos will be imported, 6 are already in the library".
std::string pickedText(const ImportListing& listing);
/// How many are picked.
std::size_t pickedCount(const ImportListing& listing);

/// "Copying 1 file…", "Copying 300 files…".
std::string statusText(std::size_t files);

/// "Copying 5 of 300 from EOS_DIGITAL".
std::string progressText(std::size_t index, std::size_t total, std::string_view sourceName);

/// "EOS_DIGITAL ejected.", or "Couldn't eject EOS_DIGITAL: " and why.
std::string ejectText(std::string_view name, const std::optional<std::string>& failure);

} // namespace korvo
