#include "app/cli/Context.h"

#include "app/Libraries.h"
#include "app/cli/StandardInput.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <unordered_set>

namespace korvo {

namespace {

/// File names may hold what a terminal takes for orders.
std::string printableLines(std::string_view text)
{
    std::string lines;
    for (const auto line : split(text, '\n'))
        (lines += lines.empty() && line.data() == text.data() ? "" : "\n") += printable(line);
    return lines;
}

std::vector<PhotoID> listedIDs(const std::vector<std::string>& texts, const std::stop_token& stop)
{
    std::vector<PhotoID> ids;
    for (const auto& text : texts) {
        if (text != "-") {
            ids.push_back(idOf(text, "photo"));
            continue;
        }
        const auto input = readStandardInput(stop);
        for (const auto line : split(input, '\n'))
            if (const auto id = trimmed(line); !id.empty())
                ids.push_back(idOf(id, "photo"));
    }
    return ids;
}

} // namespace

std::int64_t idOf(std::string_view text, std::string_view noun)
{
    if (const auto id = wholeNumber<std::int64_t>(text))
        return *id;
    throw std::invalid_argument(fmt::format("\"{}\" is no {} id", text, noun));
}

void printError(std::string_view message)
{
    std::fprintf(stderr, "%s\n", printableLines(message).c_str());
}

Context::Context(GlobalOptions options, Defaults& defaults, const Clock& clock, std::stop_token stop)
    : options_(std::move(options)), defaults_(defaults), clock_(clock), stop_(std::move(stop))
{ }

std::optional<std::filesystem::path> Context::namedFolder() const
{
    if (options_.library)
        return *options_.library;
    const char* const named = std::getenv("KORVO_LIBRARY");
    return named && *named ? std::optional<std::filesystem::path>(named) : std::nullopt;
}

std::optional<std::filesystem::path> Context::chosenFolder() const
{
    const auto named = namedFolder();
    return named ? named : lastLibrary(defaults_);
}

std::filesystem::path Context::libraryFolder() const
{
    if (const auto folder = chosenFolder())
        return *folder;
    throw std::runtime_error(
        "no library yet: make one with \"korvo create DIR\", or name one with --library DIR");
}

Catalog& Context::library()
{
    if (!library_) {
        const auto folder = libraryFolder();
        if (!std::filesystem::exists(folder / "catalog.sqlite"))
            throw std::runtime_error(
                "no library in " + folder.string() + ": make one with \"korvo create DIR\"");
        library_ = openLibrary(folder, clock_, defaults_);
    }
    return *library_;
}

Catalog* Context::libraryIfAny()
{
    const auto folder = chosenFolder();
    return folder && std::filesystem::exists(*folder / "catalog.sqlite") ? &library() : nullptr;
}

std::optional<std::filesystem::path> Context::awayLibrary() const
{
    const auto named = namedFolder();
    if (!named)
        return missingLibrary(defaults_);
    return holdsCatalog(*named) ? std::nullopt : named;
}

std::optional<LibrarySource> Context::existingSource(const std::string& text)
{
    auto source = parseSource(text);
    if (source)
        library().requireSource(*source);
    return source;
}

std::vector<PhotoID> Context::photos(const PhotoArguments& arguments)
{
    std::unordered_set<PhotoID> seen;
    std::vector<PhotoID> known;
    for (const PhotoID id : listedIDs(arguments.ids, stop_)) {
        if (!seen.insert(id).second)
            continue;
        if (library().contains(id))
            known.push_back(id);
        else
            fail("no photo with the id " + std::to_string(id));
    }
    if (!arguments.source.empty())
        library().forEachPhoto(existingSource(arguments.source), [&](PhotoItem&& item) {
            if (seen.insert(item.id).second)
                known.push_back(item.id);
            return !isStopped();
        });
    if (isStopped())
        throw Interrupted();
    return known;
}

Progress::Mode Context::progressMode() const
{
    return options_.quiet ? Progress::Mode::quiet : Progress::Mode::shown;
}

void Context::print(const std::string& line) const
{
    const auto text = options_.json ? line : printableLines(line);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

void Context::printMade(std::int64_t id) const
{
    print(options_.json ? "{\"id\":" + std::to_string(id) + "}" : std::to_string(id));
}

ExitCode Context::finish(std::size_t worked, Ended ended)
{
    if (worked == 0 && !failures_.empty()) {
        const auto others
            = failures_.size() == 1 ? std::string() : " (and " + grouped(failures_.size() - 1) + " more)";
        printError("korvo: " + failures_.front() + others);
    } else if (!failures_.empty()) {
        for (const auto& failure : failures_)
            printError(failure);
        printError(grouped(failures_.size()) + " failed");
    }
    if (ended == Ended::early)
        return ExitCode::interrupted;
    if (failures_.empty())
        return ExitCode::done;
    return worked ? ExitCode::part : ExitCode::nothing;
}

} // namespace korvo
