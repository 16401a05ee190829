#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "accessdriver/odbc/data/transfer.h"
#include "accessdriver/odbc/handles/connection.h"
#include "accessdriver/odbc/handles/descriptor.h"
#include "accessdriver/odbc/handles/parameters.h"
#include "accessdriver/odbc/handles/rowsetCursor.h"
#include "accessdriver/odbc/handles/statementAttributes.h"
#include "accessdriver/sql/run/session.h"

namespace odbc {

/// A statement of a connection, with its descriptors and its open result.
class StatementHandle : public Handle {
  public:
    static constexpr SQLSMALLINT handleType = SQL_HANDLE_STMT;

    explicit StatementHandle(std::shared_ptr<ConnectionHandle> connection);
    ~StatementHandle() override;

    std::mutex& mutex() override { return connection_->mutex(); }
    ConnectionHandle& connection() const { return *connection_; }

    /// Parses the text and finds its names. Throws sql::Error for a statement that is refused.
    void prepare(std::string text);

    /// Runs the prepared statement for each set of parameters. SQL_NEED_DATA if data of parameters is still to come.
    /// SQL_NO_DATA if it was an UPDATE or DELETE that met no row, which applications of ODBC 2 get as a success.
    SQLRETURN execute();

    /// Asks for the data of the next parameter: SQL_NEED_DATA and the parameter's token. Runs the statement once all is
    /// there. Throws sql::Error(HY010) if no data is awaited.
    SQLRETURN parameterData(SQLPOINTER* token);
    void putData(const void* data, SQLLEN length);

    /// Gives up an execution that waits for data.
    void cancel() { waitingForData_.reset(); }

    /// Makes the rows the statement's result set, as the catalog functions do.
    void setResult(sql::RowSet rows);

    /// A rowset as the application asks for it: its number of rows, and the addresses of the row statuses and of the
    /// number of rows that were fetched.
    struct Rowset {
        SQLULEN size;
        SQLUSMALLINT* status;
        SQLULEN* fetched;
    };

    /// The rowset that the statement's attributes describe.
    Rowset rowset() const;

    /// Moves as SQLFetchScroll does and fills the bound columns; SQL_NO_DATA where there are no rows.
    SQLRETURN fetch(SQLSMALLINT orientation, SQLLEN offset, const Rowset& wanted);

    /// Makes one of the rowset's rows, from 1, the one that getData reads.
    void setPosition(SQLULEN row);

    /// One column of the current row, the next piece of it if a part was given before. Columns count from 1.
    SQLRETURN getData(SQLUSMALLINT column, Target target);

    /// Throws sql::Error(24000) if there is no result.
    void closeCursor();
    void dropResult();

    void bindColumn(SQLUSMALLINT column, const Target& target);
    void unbindColumns() { rowDescriptor().records.clear(); }
    void bindParameter(SQLUSMALLINT number, const DescriptorRecord& variable, const DescriptorRecord& described);
    void unbindParameters() { parameterDescriptor().records.clear(); }

    /// The columns of the result, of a prepared SELECT also before it runs.
    const std::vector<sql::ResultColumn>& columns() const;

    /// Throws sql::Error(07009) for a number outside 1 to the number of columns.
    const sql::ResultColumn& column(SQLUSMALLINT number) const;

    bool isPrepared() const { return plan_.has_value(); }

    /// Throws sql::Error(HY010) if nothing is prepared.
    const sql::Plan& plan() const;

    std::int64_t rowCount() const { return rowCount_; }

    /// Throws sql::Error: 34000 for a name that can't be one, 3C000 for that of another statement.
    void setCursorName(const std::string& name);
    const std::string& cursorName();

    DescriptorHandle& descriptor(DescriptorSide side) const;

    SQLULEN attribute(SQLINTEGER attribute) const;
    void setAttribute(SQLINTEGER attribute, SQLULEN value);

  private:
    DescriptorHandle& rowDescriptor() const;
    DescriptorHandle& parameterDescriptor() const;
    void useDescriptor(std::shared_ptr<DescriptorHandle>& place, SQLULEN handle);
    bool isScrollable() const;
    void reset();
    SQLRETURN requestDataOrRun(SQLPOINTER* token);
    SQLRETURN run(const ParameterSets& parameters);
    void runSets(const ParameterSets& parameters);
    void open(std::shared_ptr<sql::RowSet> rows);
    void fillBoundColumns(SQLULEN row);

    std::shared_ptr<ConnectionHandle> connection_;
    Attributes attributes_;
    std::shared_ptr<DescriptorHandle> ard_, apd_, ipd_, ird_;            // the statement's own
    std::shared_ptr<DescriptorHandle> applicationArd_, applicationApd_;  // the application's, in the place of those

    std::string text_;
    sql::Statement parsed_;
    std::optional<sql::Plan> plan_;
    std::optional<ParameterSets> waitingForData_;

    std::optional<RowsetCursor> cursor_;
    std::string cursorName_;
    std::int64_t rowCount_ = -1;
    SQLULEN rowsetSize_ = 0;  // as it was fetched last

    SQLUSMALLINT getDataColumn_ = 0;  // the column that getData gave last
    SQLSMALLINT getDataType_ = 0;
    Progress getDataProgress_;
};

}  // namespace odbc
