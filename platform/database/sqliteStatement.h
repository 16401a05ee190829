#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

struct sqlite3_stmt;

namespace detail {

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const noexcept;
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

class SQLiteConnection;

}  // namespace detail

/// A statement with parameters, prepared once and run many times. It keeps its connection alive. After its connection
/// was closed it yields no rows and changes nothing.
class SQLiteStatement {
  public:
    SQLiteStatement(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view sql);

    enum class Type { integer, real, text, blob, null };

    /// Parameters are numbered from 1. A text must stay in place until the next step; one that is longer than the
    /// library takes (1 GB) raises DatabaseFailure.
    void bind(int parameter, std::string_view text);
    void bind(int parameter, std::int64_t number);
    void bindNull(int parameter);

    /// Runs up to the next row; false at the end. Raises DatabaseFailure if the rows can't be read on.
    bool step();

    /// Runs a statement without rows from its start. A change of rows opens a transaction if none is open. Raises
    /// DatabaseFailure if the database refuses.
    void run();

    /// Makes the statement ready to run again.
    void reset();

    /// Columns are numbered from 0. The view is good until the next step or reset.
    std::string_view text(int column);
    std::int64_t integer(int column);
    double real(int column);
    Type type(int column);

  private:
    std::shared_ptr<detail::SQLiteConnection> connection_;
    detail::StatementHandle statement_;
};
