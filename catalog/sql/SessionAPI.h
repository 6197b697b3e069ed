#pragma once

// The session functions are declared only where both options are; the library has them compiled in. Included
// before anything else that includes sqlite3.h.
#define SQLITE_ENABLE_SESSION 1
#define SQLITE_ENABLE_PREUPDATE_HOOK 1
#include <sqlite3.h>
