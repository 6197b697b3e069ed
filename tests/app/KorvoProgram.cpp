#include "tests/app/KorvoProgram.h"

#include <sys/wait.h>

#include <cstdlib>

namespace korvo {

std::string KorvoProgram::command(const std::string& arguments) const
{
    const auto at = [&](const char* name) { return "'" + (folder / name).string() + "'"; };
    return "env -u KORVO_LIBRARY KORVO_CONFIG=" + at("config") + " " + KORVO_PROGRAM + " " + arguments + " <"
        + at("in") + " >" + at("out") + " 2>" + at("err");
}

KorvoProgram::Outcome KorvoProgram::run(const std::string& arguments, const std::string& input) const
{
    folder.write("in", input);
    return outcome(command(arguments));
}

KorvoProgram::Outcome KorvoProgram::runWithin(std::size_t bytes, const std::string& arguments) const
{
    folder.write("in", "");
    // Ignored, the signal leaves it to the failing write to tell.
    return outcome("trap '' XFSZ; ulimit -f " + std::to_string(bytes / 512) + "; " + command(arguments));
}

KorvoProgram::Outcome KorvoProgram::outcome(const std::string& command) const
{
    const int status = std::system(command.c_str());
    return {WEXITSTATUS(status), readFile(folder / "out"), readFile(folder / "err")};
}

int KorvoProgram::start(const std::string& arguments) const
{
    folder.write("in", "");
    (void)std::system((command(arguments) + " & echo $! >'" + (folder / "id").string() + "'").c_str());
    return std::stoi(readFile(folder / "id"));
}

} // namespace korvo
