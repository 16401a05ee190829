#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/sqliteStatement.h"

/// New texts for single columns of a table's rows, gathered as a loop comes to the rows and written many rows at a
/// time. One UPDATE of 200 rows takes two thirds of the time that 200 UPDATEs take, and a record set that walks the
/// same table is disturbed that much less often.
///
/// A gathered text is in the table after write() only, and goes with the object if that is not called.
class SQLiteRowUpdates {
  public:
    /// The table's `id` is its row number. Raises DatabaseFailure if the table or a column is missing.
    SQLiteRowUpdates(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view table,
                     const std::vector<std::string>& columns);

    /// Gathers a text for a column, numbered from 0 in the order given to the constructor. Cheapest where rows, and
    /// columns within a row, come in ascending order. May write what was gathered before.
    void set(std::int64_t row, int column, std::string_view text);

    /// Writes what was gathered; a row that holds its new texts already is left alone. Opens a transaction if none is
    /// open. Raises DatabaseFailure if the database refuses; the gathered texts are forgotten then, too.
    void write();

    /// The text gathered for a column of a row; null if there is none.
    const std::string* find(std::int64_t row, int column) const;

  private:
    struct Update {
        std::int64_t row;
        int column;
        std::string text;
    };

    std::shared_ptr<detail::SQLiteConnection> connection_;
    SQLiteStatement statement_;
    std::vector<Update> updates_;  ///< in order of rows and columns; the first size_ are in use
    std::size_t size_ = 0;
};
