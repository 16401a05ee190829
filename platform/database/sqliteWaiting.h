#pragma once

struct sqlite3;

namespace detail {

/// Whether the connection waits for a file that is locked before it takes that for a refusal.
void setPatient(sqlite3* handle, bool patient);

}  // namespace detail
