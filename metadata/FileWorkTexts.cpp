#include "metadata/FileWorkTexts.h"

#include "base/Text.h"

#include <fmt/format.h>

namespace korvo {

namespace {

std::string partly(const char* verb, const FilesWritten& result)
{
    return fmt::format(
        "{} {}, failed {} — see marked photos.", verb, grouped(result.done), grouped(result.failures.size()));
}

} // namespace

std::string saveSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Saved metadata into " + counted(result.done, "file") + "."
                                   : partly("Saved", result);
}

std::string revertSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Reverted metadata on " + counted(result.done, "photo") + "."
                                   : partly("Reverted", result);
}

std::string shiftSummary(const FilesWritten& result)
{
    return result.failures.empty() ? "Moved the dates of " + counted(result.done, "photo") + "."
                                   : partly("Moved", result);
}

std::string positionSummary(const FilesWritten& result, const std::optional<Coordinate>& position)
{
    if (!result.failures.empty())
        return partly(position ? "Located" : "Cleared", result);
    return (position ? "Located " : "Took the position from ") + counted(result.done, "photo") + ".";
}

std::string takenBackSummary(const FilesWritten& result, const std::string& title)
{
    return result.failures.empty() ? "Took back “" + title + "” for " + counted(result.done, "photo") + "."
                                   : partly("Took back", result);
}

std::string revertQuestion(std::size_t photos)
{
    return "Restores ALT text, title, caption, keywords, creator, and copyright on "
        + counted(photos, "photo")
        + " to what the file held when Korvo found it. Unsaved edits are discarded too. Adjustments are not "
          "affected.";
}

} // namespace korvo
