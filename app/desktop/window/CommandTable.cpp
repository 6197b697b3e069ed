#include "app/desktop/window/Commands.h"

namespace korvo {

namespace {

using C = Command;
using M = CommandMenu;
using N = CommandNeeds;
using enum CommandKeysIn;
constexpr auto advances = MarksPhotos::advances;
constexpr auto plain = MarksPhotos::no;

constexpr CommandInfo line(CommandMenu menu, const char* submenu = nullptr)
{
    return {C::count, menu, submenu, nullptr, ""};
}

// clang-format off
constexpr CommandInfo table[] = {
    {C::newLibrary, M::file, nullptr, "New Library…", "Ctrl+Shift+N"},
    {C::openLibrary, M::file, nullptr, "Open Library…", "Ctrl+O"},
    {C::openRecent, M::file, nullptr, "Open Recent", ""},
    line(M::file),
    {C::addFolder, M::file, nullptr, "Add Folder…", "Ctrl+Shift+O"},
    {C::importPhotos, M::file, nullptr, "Import…", "Ctrl+I"},
    {C::importAperture, M::file, nullptr, "Import Aperture Library…", ""},
    {C::exportPhotos, M::file, nullptr, "Export…", "Ctrl+Shift+E", N::photos},
    line(M::file),
    {C::newProject, M::file, nullptr, "New Project…", ""},
    {C::newAlbum, M::file, nullptr, "New Album…", "Ctrl+N"},
    {C::newSmartAlbum, M::file, nullptr, "New Smart Album…", "Ctrl+Alt+N"},
    {C::editSmartAlbum, M::file, nullptr, "Edit Smart Album…", ""},
    {C::newKeyword, M::file, nullptr, "New Keyword…", ""},
    line(M::file),
    {C::saveMetadata, M::file, nullptr, "Write Metadata to Files", "Ctrl+S"},
    {C::revertMetadata, M::file, nullptr, "Revert Metadata to As-Found…", "", N::photos},
    {C::namingPresets, M::file, nullptr, "Naming Presets…", ""},
    {C::settings, M::file, nullptr, "Settings…", "Ctrl+,"},
    line(M::file),
    {C::quit, M::file, nullptr, "Quit", "Ctrl+Q"},

    {C::undo, M::edit, nullptr, "Undo", "Ctrl+Z", N::undo},
    {C::redo, M::edit, nullptr, "Redo", "Ctrl+Shift+Z Ctrl+Y", N::redo},
    line(M::edit),
    {C::copyAdjustments, M::edit, nullptr, "Copy Adjustments", "Ctrl+Shift+C", N::photos},
    {C::pasteAdjustments, M::edit, nullptr, "Paste Adjustments", "Ctrl+Shift+V", N::photos},
    line(M::edit),
    {C::selectAll, M::edit, nullptr, "Select All", "Ctrl+A", N::shown},
    {C::selectNone, M::edit, nullptr, "Select None", "Ctrl+D", N::photos},
    {C::find, M::edit, nullptr, "Search", "Ctrl+F"},
    {C::clearFilters, M::edit, nullptr, "Clear Search and Filters", "Ctrl+Shift+F"},
    line(M::edit),
    {C::rename, M::edit, nullptr, "Rename", "F2"},
    {C::remove, M::edit, nullptr, "Remove from Album or Reject", "Del", N::photos},
    {C::removeFromLibrary, M::edit, nullptr, "Remove from Library…", "Ctrl+Del", N::photos},

    {C::rate0, M::photo, "Rating", "No Stars", "0", N::photos, window, advances},
    {C::rate1, M::photo, "Rating", "1 Star", "1", N::photos, window, advances},
    {C::rate2, M::photo, "Rating", "2 Stars", "2", N::photos, window, advances},
    {C::rate3, M::photo, "Rating", "3 Stars", "3", N::photos, window, advances},
    {C::rate4, M::photo, "Rating", "4 Stars", "4", N::photos, window, advances},
    {C::rate5, M::photo, "Rating", "5 Stars", "5", N::photos, window, advances},
    line(M::photo, "Rating"),
    {C::rateUp, M::photo, "Rating", "One Star More", "]", N::photos, window, advances},
    {C::rateDown, M::photo, "Rating", "One Star Less", "[", N::photos, window, advances},
    {C::labelRed, M::photo, "Label", "Red", "6 Ctrl+1", N::photos, window, advances},
    {C::labelOrange, M::photo, "Label", "Orange", "Ctrl+2", N::photos, window, advances},
    {C::labelYellow, M::photo, "Label", "Yellow", "7 Ctrl+3", N::photos, window, advances},
    {C::labelGreen, M::photo, "Label", "Green", "8 Ctrl+4", N::photos, window, advances},
    {C::labelBlue, M::photo, "Label", "Blue", "9 Ctrl+5", N::photos, window, advances},
    {C::labelPurple, M::photo, "Label", "Purple", "Ctrl+6", N::photos, window, advances},
    {C::labelGray, M::photo, "Label", "Gray", "Ctrl+7", N::photos, window, advances},
    {C::labelNone, M::photo, "Label", "No Label", "Ctrl+0", N::photos, window, advances},
    {C::pick, M::photo, nullptr, "Pick", "P", N::photos, window, advances},
    {C::reject, M::photo, nullptr, "Reject", "X", N::photos, window, advances},
    {C::clearMarks, M::photo, nullptr, "Neither Picked nor Rejected", "U", N::photos, window, advances},
    // Shift and this key are "?" on many keyboards, which shows the list of keys.
    {C::toggleFlag, M::photo, nullptr, "Flag or Remove Flag", "/", N::photos, window,
        MarksPhotos::advancesUnderCapsLock},
    line(M::photo),
    {C::rotateLeft, M::photo, nullptr, "Rotate Left", "Ctrl+[", N::photos},
    {C::rotateRight, M::photo, nullptr, "Rotate Right", "Ctrl+]", N::photos},
    {C::autoAdjust, M::photo, nullptr, "Auto Enhance", "", N::photos},
    {C::resetAdjustments, M::photo, nullptr, "Reset Adjustments", "", N::photos},
    {C::newVersion, M::photo, nullptr, "New Version", "Ctrl+'", N::photos},
    {C::showVersions, M::photo, nullptr, "Show Versions", "W", N::photos},
    line(M::photo),
    {C::addTo, M::photo, nullptr, "Add to", "", N::photos},
    {C::moveEarlier, M::photo, "Place in the Album", "One Place Earlier", "Alt+Left", N::photos, centre},
    {C::moveLater, M::photo, "Place in the Album", "One Place Later", "Alt+Right", N::photos, centre},
    line(M::photo),
    {C::stack, M::photo, "Stack", "Stack", "Ctrl+G", N::several},
    {C::unstack, M::photo, "Stack", "Unstack", "Ctrl+Shift+G", N::stacked},
    {C::toggleStack, M::photo, "Stack", "Collapse or Expand", "S", N::stacked},
    {C::setPick, M::photo, "Stack", "Make the Pick", "", N::stacked},
    {C::earlierInStack, M::photo, "Stack", "One Place Earlier in the Stack", "Alt+PgUp", N::stacked, centre},
    {C::laterInStack, M::photo, "Stack", "One Place Later in the Stack", "Alt+PgDown", N::stacked, centre},
    {C::autoStack, M::photo, "Stack", "Auto-Stack…", "", N::shown},
    line(M::photo),
    {C::shiftDates, M::photo, nullptr, "Shift Capture Dates…", "", N::photos},
    {C::setPosition, M::photo, nullptr, "Set Position…", "", N::photos},
    {C::clearPosition, M::photo, nullptr, "Clear Position", "", N::photos},
    line(M::photo),
    {C::showInFolder, M::photo, nullptr, "Show in Folder", "", N::photos},

    {C::grid, M::view, nullptr, "Grid", "G"},
    {C::viewer, M::view, nullptr, "Viewer", "E", N::shown},
    {C::viewer, M::none, nullptr, nullptr, "Return Enter", N::shown, centre},
    {C::space, M::none, nullptr, "Open, or Switch between Fit and 100 %", "Space", N::shown, centre},
    {C::cycle, M::view, nullptr, "Next View", "V", N::shown},
    {C::compare, M::view, nullptr, "Compare", "C", N::shown},
    {C::survey, M::view, nullptr, "Survey the Selected", "N", N::photos},
    line(M::view),
    {C::actualSize, M::view, nullptr, "100 %", "Z", N::shown},
    {C::zoomIn, M::view, nullptr, "Zoom In", "+ =", N::shown},
    {C::zoomOut, M::view, nullptr, "Zoom Out", "-", N::shown},
    {C::loupe, M::view, nullptr, "Loupe", "`", N::shown},
    {C::beforeAfter, M::view, nullptr, "Before and After", "\\ M", N::shown},
    line(M::view),
    {C::nextPhoto, M::view, nullptr, "Next Photo", "", N::shown},
    {C::previousPhoto, M::view, nullptr, "Previous Photo", "", N::shown},
    {C::largerThumbnails, M::view, nullptr, "Larger Thumbnails", "Ctrl++ Ctrl+="},
    {C::smallerThumbnails, M::view, nullptr, "Smaller Thumbnails", "Ctrl+-"},
    line(M::view),
    {C::fullScreenPhoto, M::view, nullptr, "Full Screen Photo", "F", N::shown},
    {C::fullScreenWindow, M::view, nullptr, "Full Screen Window", "F11"},
    line(M::view),
    {C::sidebar, M::view, nullptr, "Sidebar", "F7"},
    {C::inspector, M::view, nullptr, "Inspector", "F8"},
    {C::filmstrip, M::view, nullptr, "Filmstrip", "F6"},
    {C::hideSides, M::view, nullptr, "Hide Both Sides", "Tab", N::nothing, centre},
    {C::escape, M::none, nullptr, "Back to the Grid; Leave a Field", "Esc"},

    {C::keys, M::help, nullptr, "List of Keys", "? Ctrl+/"},
    {C::about, M::help, nullptr, "About Korvo", ""},
};
// clang-format on

} // namespace

std::span<const CommandInfo> commandTable()
{
    return table;
}

} // namespace korvo
