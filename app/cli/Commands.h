#pragma once

#include "app/cli/Context.h"
#include "catalog/GridOrder.h"
#include "metadata/Coordinate.h"

#include <string>
#include <vector>

namespace korvo {

/// The commands, each over its parsed arguments. They throw std::exception for what ends them with nothing
/// done.

// The library as a whole (LibraryCommands.cpp)
ExitCode createCommand(Context& context, const std::filesystem::path& folder);
ExitCode libraryCommand(Context& context);
ExitCode addCommand(Context& context, const std::vector<std::string>& paths, bool readCamera);
ExitCode checkCommand(Context& context);

// Photos (PhotoCommands.cpp)
struct ListArguments {
    std::string source = "all";
    std::optional<SortKey> sort;
    std::optional<GridFilter> filter;
};
struct EditsArguments {
    PhotoID photo = 0;
    std::optional<std::string> set; // JSON, or "@" and the name of a file that holds it
    bool clear = false;
};
ExitCode listCommand(Context& context, const ListArguments& arguments);
ExitCode showCommand(Context& context, PhotoID photo);
ExitCode rateCommand(Context& context, int rating, const PhotoArguments& photos);
ExitCode flagCommand(Context& context, bool flagged, const PhotoArguments& photos);
ExitCode labelCommand(Context& context, const std::string& label, const PhotoArguments& photos);
ExitCode setCommand(Context& context, const MetadataChange& change, const PhotoArguments& photos);
ExitCode editsCommand(Context& context, const EditsArguments& arguments);
ExitCode removeCommand(Context& context, const PhotoArguments& photos);

// Pictures (RenderCommands.cpp, AnalysisCommands.cpp)
struct RenderArguments {
    std::string photo; // an id, or a file
    std::string out;
    std::optional<std::string> edits; // JSON, or "@" and the name of a file that holds it
    int size = 0; // pixels of the longer side; 0: all
    int quality = 90;
};
ExitCode renderCommand(Context& context, const RenderArguments& arguments);
struct HistogramArguments {
    std::string photo;
    std::optional<std::string> edits; // JSON, or "@" and the name of a file that holds it
};
ExitCode histogramCommand(Context& context, const HistogramArguments& arguments);
struct EnhanceArguments {
    std::string photo;
    bool apply = false;
};
ExitCode enhanceCommand(Context& context, const EnhanceArguments& arguments);

// What files say and hold (MetadataCommands.cpp)
ExitCode infoCommand(Context& context, const std::filesystem::path& file);
ExitCode readCommand(Context& context);
ExitCode saveCommand(Context& context);
ExitCode shiftDatesCommand(Context& context, double seconds, const PhotoArguments& photos);
/// No position takes the photos' away.
ExitCode locateCommand(
    Context& context, const std::optional<Coordinate>& position, const PhotoArguments& photos);
ExitCode revertCommand(Context& context, const PhotoArguments& photos);

// The tree (TreeCommands.cpp)
using ParentID = std::optional<std::int64_t>;
ExitCode treeCommand(Context& context);
ExitCode createProjectCommand(
    Context& context, const std::string& name, const std::string& kind, ParentID parent);
ExitCode renameProjectCommand(Context& context, std::int64_t project, const std::string& name);
ExitCode deleteProjectCommand(Context& context, std::int64_t project);
/// "none" takes the photos out of their project.
ExitCode assignCommand(Context& context, const std::string& project, const PhotoArguments& photos);
ExitCode gatherCommand(Context& context, const std::string& name);
ExitCode createAlbumCommand(Context& context, const std::string& name, ParentID parent);
ExitCode deleteAlbumCommand(Context& context, std::int64_t album);
ExitCode moveAlbumCommand(Context& context, std::int64_t album, ParentID parent);
ExitCode addToAlbumCommand(Context& context, std::int64_t album, const PhotoArguments& photos);
ExitCode takeFromAlbumCommand(Context& context, std::int64_t album, const PhotoArguments& photos);
ExitCode createKeywordCommand(Context& context, const std::string& name, ParentID parent);
ExitCode deleteKeywordCommand(Context& context, std::int64_t keyword);

// Patterns for file names (NamingCommands.cpp)
ExitCode listNamingCommand(Context& context);
ExitCode expandNamingCommand(Context& context, const std::string& pattern, const PhotoArguments& photos);
ExitCode setNamingCommand(Context& context, const std::filesystem::path& file);
ExitCode restoreNamingCommand(Context& context);

// Cards, drives and cameras (ImportCommands.cpp)
ExitCode volumesCommand(Context& context);
struct ImportArguments {
    std::vector<std::string> sources;
    std::optional<std::string> copyTo; // without one into the user's folder for pictures
    bool reference = false; // leave the files where they are
    std::string pattern = "{name}";
    std::string project; // its name
    bool byDay = false;
    std::string creator, copyright, keywords;
    bool keepDuplicates = false;
    bool eject = false;
    bool dryRun = false; // only list what would be imported
};
ExitCode importCommand(Context& context, const ImportArguments& arguments);

// Models (ModelCommands.cpp)
ExitCode modelStatusCommand(Context& context);
ExitCode fetchModelCommand(Context& context, const std::string& host);
ExitCode removeModelCommand(Context& context);

// Aperture libraries (ApertureCommands.cpp)
struct PlistArguments {
    std::filesystem::path file;
    bool unarchive = false;
};
ExitCode plistCommand(Context& context, const PlistArguments& arguments);
struct ApertureArguments {
    std::filesystem::path bundle;
    std::optional<std::filesystem::path> into;
    bool matchRenders = false;
    std::vector<std::string> volumes; // NAME=DIR
};
ExitCode importApertureCommand(Context& context, const ApertureArguments& arguments);

// Versions, stacks and smart albums (GroupCommands.cpp)
ExitCode createVersionCommand(Context& context, PhotoID photo, const std::optional<std::string>& name);
ExitCode listVersionsCommand(Context& context, PhotoID photo);
ExitCode createStackCommand(Context& context, const PhotoArguments& photos, std::optional<PhotoID> pick);
ExitCode unstackCommand(Context& context, std::int64_t stack);
ExitCode pickCommand(Context& context, std::int64_t stack, PhotoID photo);
ExitCode stackStateCommand(Context& context, std::int64_t stack, StackState state);
ExitCode moveInStackCommand(Context& context, std::int64_t stack, PhotoID photo, std::size_t position);
ExitCode listStacksCommand(Context& context);
struct AutoStackArguments {
    std::string source = "all";
    int interval = autoStackSheet::startInterval; // seconds
    bool dryRun = false; // only say what would be stacked
};
ExitCode autoStackCommand(Context& context, const AutoStackArguments& arguments);
struct SmartAlbumArguments {
    std::int64_t id = 0;
    std::optional<std::string> name;
    std::optional<std::string> rules; // JSON
};
ExitCode createSmartAlbumCommand(Context& context, const SmartAlbumArguments& album);
/// What is not named stays as it is.
ExitCode updateSmartAlbumCommand(Context& context, const SmartAlbumArguments& album);
ExitCode deleteSmartAlbumCommand(Context& context, const SmartAlbumArguments& album);
ExitCode countSmartAlbumCommand(Context& context, const SmartAlbumArguments& album);

} // namespace korvo
