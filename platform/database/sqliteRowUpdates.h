#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/sqliteStatement.h"

/// Writes new texts to columns of a table, many rows with one statement. A row is decoded and encoded as a whole even
/// if only one of its columns changes, so all columns of a row are written at once; one UPDATE of 200 rows takes two
/// thirds of the time of 200 UPDATEs.
class SQLiteRowUpdates {
  public:
    /// Returns the new text of a column in the row whose `id` is given, valid until the next call; nothing if the
    /// column keeps its value. Columns are numbered from 0, in the order given to the constructor. Raises nothing.
    using NewText = std::function<std::optional<std::string_view>(std::int64_t row, int column)>;

    /// Raises DatabaseFailure if the table, its `id` or a column is missing.
    SQLiteRowUpdates(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view table,
                     const std::vector<std::string>& columns, NewText newText);

    /// Writes the rows from `first` to `last` that have a new text. Opens a transaction if none is open. Raises
    /// DatabaseFailure if the database refuses; these rows keep their values then.
    void write(std::int64_t first, std::int64_t last);

  private:
    friend struct NewTextFunction;

    std::shared_ptr<detail::SQLiteConnection> connection_;
    int width_;
    NewText newText_;
    SQLiteStatement statement_;
};
