#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstddef>
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
    /// The same where no file grows beyond so many bytes, as on a disk that becomes full.
    Outcome runWithin(std::size_t bytes, const std::string& arguments) const;
    std::string json(const std::string& arguments) const { return run("--json " + arguments).out; }

    /// Runs it beside the test. Returns its process id.
    int start(const std::string& arguments) const;

    TemporaryFolder folder;

private:
    Outcome outcome(const std::string& command) const;
    std::string command(const std::string& arguments) const;
};

} // namespace korvo
