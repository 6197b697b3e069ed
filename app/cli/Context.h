#pragma once

#include "app/cli/Progress.h"
#include "base/Json.h"
#include "catalog/Catalog.h"
#include "platform/Defaults.h"

#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace korvo {

/// Ends a command that was asked to stop before it had done anything.
class Interrupted : public std::exception {
public:
    const char* what() const noexcept override { return "interrupted"; }
};

/// How a command ended, as scripts see it.
enum class ExitCode { done = 0, nothing = 1, usage = 2, part = 3, interrupted = 130 };

/// Whether a command did all it was asked for, or was stopped on the way.
enum class Ended { whole, early };

/// The id that a text is. Throws std::invalid_argument, which says what it is no id of.
std::int64_t idOf(std::string_view text, std::string_view noun);

/// What stands before the command.
struct GlobalOptions {
    std::optional<std::filesystem::path> library;
    bool json = false;
    bool quiet = false;
};

/// The photos a command takes: ids, "-" for ids from standard input, or a source.
struct PhotoArguments {
    std::vector<std::string> ids;
    std::string source;
};

/// Writes a message for a person to standard error.
void printError(std::string_view message);

/// What a command works with: the library, where its output goes, and what failed on the way.
class Context {
public:
    /// `defaults`, `clock` and `stop` must outlive the context.
    Context(GlobalOptions options, Defaults& defaults, const Clock& clock, std::stop_token stop);

    const GlobalOptions& options() const { return options_; }
    Defaults& defaults() const { return defaults_; }
    const Clock& clock() const { return clock_; }
    const std::stop_token& stop() const { return stop_; }
    bool isStopped() const { return stop_.stop_requested(); }

    /// The folder of the library in use: the option's, $KORVO_LIBRARY's or the last one. Throws
    /// std::runtime_error when there is none.
    std::filesystem::path libraryFolder() const;
    /// The library in use, opened at the first call; never made. Throws also DatabaseError, and
    /// std::filesystem::filesystem_error for a folder that cannot be looked into.
    Catalog& library();
    /// The same, or null when there is none.
    Catalog* libraryIfAny();
    /// Where the library would be that is named or was opened last, but cannot be seen: its disk may be away.
    std::optional<std::filesystem::path> awayLibrary() const;

    /// The photos of the arguments, each once, in their order. Ids that the library does not hold are
    /// failures. Throws std::invalid_argument for what is no id and no source, and Interrupted.
    std::vector<PhotoID> photos(const PhotoArguments& arguments);

    Progress::Mode progressMode() const;
    /// The source that a text names. Throws std::invalid_argument, and NotFoundError for one that does not
    /// exist.
    std::optional<LibrarySource> existingSource(const std::string& text);

    /// Writes a line, or several, to standard output; for people without control characters.
    void print(const std::string& line) const;
    /// Prints a result: as an object, or as the text for people.
    template <Record T>
    void print(const T& result, const std::string& text) const
    {
        print(options_.json ? toJson(result) : text);
    }
    /// Prints the id of something made: by itself, or as an object.
    void printMade(std::int64_t id) const;

    /// Notes something that went wrong; the rest goes on.
    void fail(std::string message) { failures_.push_back(std::move(message)); }
    /// Lists the failures on standard error. `worked` tells whether anything was done. Without `ended` a
    /// command counts as cut short once it was asked to stop.
    ExitCode finish(std::size_t worked) { return finish(worked, isStopped() ? Ended::early : Ended::whole); }
    ExitCode finish(std::size_t worked, Ended ended);
    bool hasFailures() const { return !failures_.empty(); }

private:
    std::optional<std::filesystem::path> namedFolder() const;
    std::optional<std::filesystem::path> chosenFolder() const;

    GlobalOptions options_;
    Defaults& defaults_;
    const Clock& clock_;
    std::stop_token stop_;
    std::unique_ptr<Catalog> library_;
    std::vector<std::string> failures_;
};

/// Applies a change that cannot be stopped on its way to the photos of the arguments that exist.
template <typename Change>
ExitCode changePhotos(Context& context, const PhotoArguments& arguments, Change apply)
{
    const auto ids = context.photos(arguments);
    if (!ids.empty())
        apply(ids);
    return context.finish(ids.size(), Ended::whole);
}

} // namespace korvo
