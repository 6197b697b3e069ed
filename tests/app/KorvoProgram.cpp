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
    const int status = std::system(command(arguments).c_str());
    return {WEXITSTATUS(status), readFile(folder / "out"), readFile(folder / "err")};
}

int KorvoProgram::start(const std::string& arguments) const
{
    folder.write("in", "");
    (void)std::system((command(arguments) + " & echo $! >'" + (folder / "id").string() + "'").c_str());
    return std::stoi(readFile(folder / "id"));
}

} // namespace korvo
