#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/values/date.h"

class RecordSet;

/// One column of a record set's current row. Without a row, every value is empty. A text view is valid until the record
/// set moves.
class Field {
  public:
    Field(RecordSet& records, int column) : records_(&records), column_(column) {}

    /// The value as text; NULL reads as the empty text.
    std::string_view text() const;

    /// The value as an integer; 0 for NULL and for text that begins with no number.
    std::int64_t integer() const;

    /// The value as a date: the SQL form with or without a time, else what the date reader makes of it.
    std::optional<Date> date() const;

    /// Sets the value in a row that is in edit mode.
    void setText(std::string_view value);

  private:
    RecordSet* records_;
    int column_;
};

/// The rows of one select, read as they are needed. A record set keeps its connection alive, also when the connection
/// object was dropped; when that connection is closed under it, it reports its end.
class RecordSet {
  public:
    virtual ~RecordSet() = default;
    RecordSet(const RecordSet&) = delete;
    RecordSet& operator=(const RecordSet&) = delete;

    virtual bool atEnd() const = 0;
    virtual void moveFirst() = 0;

    /// Raises DatabaseFailure if the store can't read on; the record set is at its end then.
    virtual void moveNext() = 0;

    /// Returns the number of rows of the whole result; 0 if the store has no count or counting failed.
    virtual std::int64_t recordCount() = 0;

    /// The column of that name, in any letter case; nothing if the result has no such column.
    std::optional<Field> field(std::string_view name);

    /// The same for a column that must be there: raises NullReference if it is not.
    Field requiredField(std::string_view name);

    /// Makes the current row writable through Field::setText. Raises DatabaseFailure where the store cannot do that.
    virtual void edit();

    /// Writes the changed columns of the current row. Raises DatabaseFailure if the store refuses.
    virtual void update();

  protected:
    RecordSet() = default;

    /// Called once, when the columns are known.
    void setColumns(const std::vector<std::string>& names);

    virtual std::string_view columnText(int column) = 0;
    /// Overridden by a store that holds numbers, to save the conversion through text.
    virtual std::int64_t columnInteger(int column);
    virtual void setColumnText(int column, std::string_view value);

  private:
    friend class Field;

    struct Slot {
        std::string name;
        int column = -1;
    };
    int findColumn(std::string_view name) const;

    /// Hash table with open addressing over lower-cased names; the first of two columns of one name wins.
    std::vector<Slot> slots_;

    /// The names that field() was asked for, in order, and what it found: callers that walk over rows ask for the same
    /// columns in the same order.
    std::vector<Slot> asked_;
    std::size_t turn_ = 0;
};

/// A connection to a store, over SQLite or ODBC. A statement that the store refuses raises nothing. It sets the error
/// code and message, and a select then returns no record set.
class Database {
  public:
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Opens the connection and returns whether that succeeded; if it is open already, returns whether it is still
    /// usable.
    virtual bool connect() = 0;

    /// Positioned on the first row; null if the statement is refused or there is no connection.
    virtual std::shared_ptr<RecordSet> select(std::string_view sql) = 0;

    virtual void execute(std::string_view sql) = 0;

    /// Commits the open transaction, if there is one.
    virtual void commit() = 0;

    virtual int errorCode() const = 0;
    virtual std::string errorMessage() const = 0;

    virtual void close() = 0;

  protected:
    Database() = default;
};

/// Named text values for one new row of a table.
class DatabaseRecord {
  public:
    DatabaseRecord() { columns_.reserve(usualColumns); }

    void setColumn(std::string name, std::string value) { columns_.emplace_back(std::move(name), std::move(value)); }
    const std::vector<std::pair<std::string, std::string>>& columns() const { return columns_; }

  private:
    static constexpr std::size_t usualColumns = 36;

    std::vector<std::pair<std::string, std::string>> columns_;
};
