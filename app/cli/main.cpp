#include "app/cli/CommandLine.h"
#include "app/cli/Interrupt.h"
#include "base/UserError.h"
#include "platform/AppFolders.h"
#include "platform/FileDefaults.h"

#include <clocale>
#include <cstdio>
#include <stdexcept>

int main(int argc, char** argv)
{
    using namespace korvo;
    std::setlocale(LC_CTYPE, "");
    const auto parsed = parseCommandLine(argc, argv);
    if (!parsed.command)
        return static_cast<int>(parsed.exitCode);
    const Interrupt interrupt;
    try {
        FileDefaults defaults(userDefaultsFolder());
        const SystemClock clock;
        Context context(parsed.command->options, defaults, clock, interrupt.token());
        const auto code = parsed.command->run(context);
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            throw std::runtime_error("the output could not be written");
        return static_cast<int>(code);
    } catch (const Interrupted&) {
        return static_cast<int>(ExitCode::interrupted);
    } catch (const std::invalid_argument& error) { // a value that no command takes
        printError(std::string("korvo: ") + error.what() + "\n" + parsed.usage);
        return static_cast<int>(ExitCode::usage);
    } catch (const std::exception& error) {
        printError("korvo: " + textForUser(error));
        return static_cast<int>(ExitCode::nothing);
    }
}
