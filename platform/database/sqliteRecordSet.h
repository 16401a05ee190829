#pragma once

#include <memory>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/sqliteStatement.h"

namespace detail {

/// Returns the record set of a select that has been stepped once; `atEnd` is true if that gave no row.
std::shared_ptr<RecordSet> makeRecordSet(std::shared_ptr<SQLiteConnection> connection, StatementHandle statement,
                                         std::string_view sql, bool atEnd);

}  // namespace detail
