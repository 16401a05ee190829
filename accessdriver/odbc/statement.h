#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "accessdriver/odbc/connection.h"
#include "accessdriver/odbc/parameters.h"
#include "accessdriver/odbc/transfer.h"
#include "accessdriver/sql/session.h"

namespace odbc {

/// A statement of a connection, with its bound parameters and columns and its open result.
class Statement : public Handle {
  public:
    static constexpr SQLSMALLINT handleType = SQL_HANDLE_STMT;

    explicit Statement(std::shared_ptr<Connection> connection);

    std::mutex& mutex() override { return connection_->mutex(); }
    Connection& connection() const { return *connection_; }

    /// Parses the text and finds its names. Throws sql::Error for a statement that is refused.
    void prepare(std::string text);

    /// Runs the prepared statement. SQL_NO_DATA if it was an UPDATE that met no row.
    SQLRETURN execute();

    /// Makes the rows the statement's result, as the catalog functions do.
    void answer(sql::RowSet rows);

    /// Moves to the next row and fills the bound columns; SQL_NO_DATA at the end.
    SQLRETURN fetch();

    /// One column of the current row, the next piece of it if a part was given before. Columns count from 1.
    SQLRETURN getData(SQLUSMALLINT column, const Target& target);

    /// Throws sql::Error(24000) if there is no result.
    void closeCursor();
    void dropResult();

    void bindColumn(SQLUSMALLINT column, const Target& target);
    void unbindColumns() { boundColumns_.clear(); }
    void bindParameter(SQLUSMALLINT number, const BoundParameter& parameter);
    void unbindParameters() { boundParameters_.clear(); }

    /// The columns of the result, of a prepared SELECT also before it runs.
    const std::vector<sql::ResultColumn>& columns() const;

    /// Throws sql::Error(07009) for a number outside 1 to the number of columns.
    const sql::ResultColumn& column(SQLUSMALLINT number) const;

    /// Throws sql::Error(HY010) if nothing is prepared.
    const sql::Plan& plan() const;

    std::int64_t rowCount() const { return rowCount_; }

    SQLULEN attribute(SQLINTEGER attribute) const;
    void setAttribute(SQLINTEGER attribute, SQLULEN value);

  private:
    void reset();
    void fillBoundColumns();
    void report(SQLULEN rows, SQLUSMALLINT status) const;

    std::shared_ptr<Connection> connection_;
    Attributes attributes_;

    std::string text_;
    sql::Statement parsed_;
    std::optional<sql::Plan> plan_;

    std::map<SQLUSMALLINT, BoundParameter> boundParameters_;
    std::map<SQLUSMALLINT, Target> boundColumns_;

    std::vector<sql::ResultColumn> columns_;
    std::optional<sql::RowSet> rows_;
    std::int64_t rowCount_ = -1;
    SQLULEN fetched_ = 0;
    bool onRow_ = false;

    SQLUSMALLINT partColumn_ = 0;  // the column that getData gave last
    SQLSMALLINT partType_ = 0;
    Progress part_;
};

}  // namespace odbc
