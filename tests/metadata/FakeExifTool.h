#pragma once

#include "metadata/exiftool/ExifTool.h"
#include "tests/support/FakeProcessLauncher.h"

#include <condition_variable>

namespace korvo {

/// An exiftool that never runs: files hold the title "found" for it, writing to those whose path ends with
/// `failing` fails, and while it is held every call waits.
class FakeExifTool {
public:
    FakeExifTool()
    {
        launcher.answer = [this](const auto& command, const auto& stop) { return call(command, stop); };
    }

    void hold() { setHeld(true); }
    void letGo() { setHeld(false); }

    /// The calls so far, each as its operation ("read", or its first assignment) and its last file's name.
    std::vector<std::string> calls() const
    {
        std::vector<std::string> calls;
        for (const auto& command : launcher.commands())
            calls.push_back(
                operationOf(command) + " " + std::filesystem::path(command.back()).filename().string());
        return calls;
    }

    std::string failing;
    FakeProcessLauncher launcher;
    ExifTool tool{launcher, {.bundled = "/bin/true", .installed = {}, .searchPath = ""}};

private:
    using Command = FakeProcessLauncher::Command;

    static std::string operationOf(const Command& command)
    {
        if (command[1] == "-j")
            return "read";
        for (const auto& argument : command)
            if (argument.find('=') != argument.npos && argument != "iptc=utf8"
                && argument != "-codedcharacterset=utf8")
                return argument;
        return "";
    }

    ProcessOutput call(const Command& command, const std::stop_token& stop)
    {
        {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, stop, [&] { return !held_; });
        }
        if (stop.stop_requested())
            throw ProcessError(ProcessError::Case::stopped, "The program was stopped.");
        if (command[1] == "-j")
            return {.out = read(command)};
        if (!failing.empty() && command.back().ends_with(failing))
            return {.err = "Error: no", .status = 1};
        return {};
    }

    static std::string read(const Command& command)
    {
        std::string json;
        for (const auto& argument : command)
            if (argument.starts_with('/') && argument != command.front())
                json += (json.empty() ? "[{" : ",{") + ("\"SourceFile\":\"" + argument)
                    + "\",\"XMP-dc:Title\":\"found\"}";
        return json + "]";
    }

    void setHeld(bool held)
    {
        {
            const std::lock_guard lock(mutex_);
            held_ = held;
        }
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    bool held_ = false;
};

} // namespace korvo
