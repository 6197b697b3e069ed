#include "aperture/ApertureImporter.h"

#include "base/Text.h"

namespace korvo {

std::string summaryLine(const ApertureImporter::Summary& summary)
{
    auto line = counted(summary.masters, "photo");
    const std::pair<std::size_t, const char*> parts[] = {{summary.versions, "extra version"},
        {summary.projects, "project"}, {summary.albums, "album"}, {summary.stacks, "stack"}};
    for (const auto& [count, noun] : parts)
        if (count > 0)
            line += ", " + counted(count, noun);
    return line;
}

std::string summaryText(const ApertureImporter::Summary& summary, Matching matching)
{
    auto text = summaryLine(summary);
    if (matching == Matching::on)
        text += ". Compare mode shows Aperture's own render for every photo";
    text += ". Your Aperture library wasn't modified; Korvo's catalog is beside it.";
    if (summary.missingFiles > 0)
        text += " " + counted(summary.missingFiles, "file")
            + " missing from the bundle (referenced files or files Aperture had already lost).";
    return text;
}

std::vector<std::string> translationNotes(const ApertureTranslator::Report& report)
{
    std::vector<std::string> notes;
    for (const auto& [what, counts] : {std::pair("not translated", &report.unsupported),
             std::pair("translated roughly", &report.approximated)})
        for (const auto& [operation, count] : *counts)
            notes.push_back(
                std::string(what) + ": " + operation + " × " + grouped(static_cast<std::size_t>(count)));
    return notes;
}

} // namespace korvo
