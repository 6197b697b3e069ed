#pragma once

#include <cstdlib>
#include <list>
#include <optional>
#include <string>
#include <utility>

namespace korvo {

/// Sets a variable of the environment, or takes it away, until the end of the scope. Not while other threads
/// run.
class ScopedVariable {
public:
    ScopedVariable(std::string name, const std::optional<std::string>& value) : name_(std::move(name))
    {
        if (const char* const before = std::getenv(name_.c_str()))
            before_ = before;
        assign(value);
    }
    ~ScopedVariable() { assign(before_); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    void assign(const std::optional<std::string>& value) const
    {
        if (value)
            setenv(name_.c_str(), value->c_str(), 1);
        else
            unsetenv(name_.c_str());
    }

    std::string name_;
    std::optional<std::string> before_;
};

/// Takes the variables away that would send requests to the loopback through a proxy.
inline std::list<ScopedVariable> withoutProxies()
{
    std::list<ScopedVariable> removed;
    for (const char* name :
        {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy", "NO_PROXY"})
        removed.emplace_back(name, std::nullopt);
    return removed;
}

} // namespace korvo
