#pragma once

#include "tests/support/ScopedVariable.h"

#include <ctime>

namespace korvo {

/// Gives the process another local time until the end of the scope: "CET-1CEST,M3.5.0,M10.5.0/3", as tzset(3)
/// has it, which needs no table of zones. Not while other threads run.
struct TimeZone {
    explicit TimeZone(const char* rule) : variable("TZ", rule) { tzset(); }
    struct Reset {
        ~Reset() { tzset(); }
    } reset; // before the variable, so that it goes behind it
    ScopedVariable variable;
};

} // namespace korvo
