#include "metadata/exiftool/KeptExifTool.h"

#include <charconv>

namespace korvo {

namespace {

/// The exit status that stands behind the mark at the end of the text, which is cut off with it; nothing
/// when the text does not end so.
std::optional<int> takeStatus(std::string& text, const std::string& mark)
{
    const auto at = text.rfind(mark);
    if (at == text.npos || !text.ends_with('\n'))
        return std::nullopt;
    int status = 0;
    const char* const begin = text.data() + at + mark.size();
    const char* const end = text.data() + text.size() - 1;
    if (begin == end || std::from_chars(begin, end, status).ptr != end)
        return std::nullopt;
    text.resize(at);
    return status;
}

bool endsWithLineOf(const std::string& text, const std::string& mark)
{
    return text.ends_with('\n') && text.rfind(mark) != text.npos;
}

} // namespace

std::string KeptExifTool::run(const ExifToolArguments& arguments, const std::stop_token& stop)
{
    if (const auto lines = died_ ? std::nullopt : argumentLines(arguments))
        if (const auto output = ask(*lines, stop))
            return resultOf(*output);
    return tool_.run(arguments, stop);
}

std::optional<ProcessOutput> KeptExifTool::ask(const std::string& lines, const std::stop_token& stop)
try {
    if (!process_)
        process_ = tool_.launcher().start({tool_.path(), "-stay_open", "True", "-@", "-"});
    // The tool says nothing of the end of a quiet call by itself, and the status only in these texts.
    const auto mark = "{korvo " + std::to_string(++calls_) + "}";
    const auto ends = "-echo3\n" + mark + "${status}\n-echo4\n" + mark + "${status}\n-execute\n";
    auto output = process_->ask(
        lines + ends,
        [&](const ProcessOutput& sofar) {
            return endsWithLineOf(sofar.out, mark) && endsWithLineOf(sofar.err, mark);
        },
        stop);
    const auto status = takeStatus(output.out, mark);
    if (!status || takeStatus(output.err, mark) != status)
        throw ProcessError(ProcessError::Case::ended, "The program does not answer as it should.");
    output.status = *status;
    return output;
} catch (const ProcessError& error) {
    process_ = nullptr;
    died_ = true;
    if (error.which() == ProcessError::Case::stopped)
        throw ExifToolError::failed(error.what());
    return std::nullopt; // each call gets its own process from now on, which says what is wrong
}

} // namespace korvo
