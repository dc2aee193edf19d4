// SQLite as an extension sees it: each name is a slot in a table that the host hands over when it loads the extension,
// so that nothing of SQLite is linked. extension.cpp holds the pointer to that table.
#pragma once

#include <sqlite3ext.h>

SQLITE_EXTENSION_INIT3
