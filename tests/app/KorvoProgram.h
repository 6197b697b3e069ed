#pragma once

#include "tests/support/TemporaryFolder.h"

#include <string>

namespace korvo {

/// The program as users call it, with preferences and a folder of its own.
class KorvoProgram {
public:
    struct Outcome {
        int exitCode;
        std::string out;
        std::string err;
    };

    /// Runs "korvo" with arguments as a shell would split them.
    Outcome run(const std::string& arguments, const std::string& input = {}) const;
    std::string json(const std::string& arguments) const { return run("--json " + arguments).out; }

    /// Runs it beside the test. Returns its process id.
    int start(const std::string& arguments) const;

    TemporaryFolder folder;

private:
    std::string command(const std::string& arguments) const;
};

} // namespace korvo
