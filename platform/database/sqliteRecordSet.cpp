#include "platform/database/sqliteRecordSet.h"

#include <vector>

#include "platform/database/sqliteConnection.h"
#include "platform/values/failure.h"

namespace detail {
namespace {

class SQLiteRecordSet : public RecordSet {
  public:
    SQLiteRecordSet(std::shared_ptr<SQLiteConnection> connection, StatementHandle statement, std::string_view sql,
                    bool atEnd)
        : connection_(std::move(connection)), statement_(std::move(statement)), sql_(sql), atEnd_(atEnd) {
        std::vector<std::string> names(static_cast<std::size_t>(sqlite3_column_count(statement_.get())));
        for (std::size_t i = 0; i < names.size(); ++i) {
            const char* name = sqlite3_column_name(statement_.get(), static_cast<int>(i));
            if (name == nullptr) throw DatabaseFailure(sqlite3_errstr(SQLITE_NOMEM));
            names[i] = name;
        }
        setColumns(names);
    }

    bool atEnd() const override { return atEnd_ || !connection_->isOpen(); }

    void moveFirst() override {
        sqlite3_reset(statement_.get());
        atEnd_ = false;
        moveNext();
    }

    void moveNext() override {
        changes_.clear();
        if (atEnd()) return;
        // Also where the rows can't be read on.
        atEnd_ = true;
        atEnd_ = !connection_->stepToRow(statement_.get());
    }

    std::int64_t recordCount() override {
        if (count_ < 0) {
            // count(*) would be one instruction of the library, during which no progress handler is called.
            auto counter = connection_->prepare("SELECT count(1) FROM (" + sql_ + "\n)");
            const bool counted = counter && connection_->step(counter.get()) == SQLITE_ROW;
            count_ = counted ? sqlite3_column_int64(counter.get(), 0) : 0;
        }
        return count_;
    }

    void edit() override { changes_.clear(); }

    void update() override {
        for (const auto& [column, value] : changes_) updateColumn(column, value);
        changes_.clear();
    }

  protected:
    std::string_view columnText(int column) override {
        return atEnd() ? std::string_view{} : columnOf(statement_.get(), column);
    }

    std::int64_t columnInteger(int column) override {
        const bool isInteger = !atEnd() && sqlite3_column_type(statement_.get(), column) == SQLITE_INTEGER;
        return isInteger ? sqlite3_column_int64(statement_.get(), column) : RecordSet::columnInteger(column);
    }

    void setColumnText(int column, std::string_view value) override { changes_.emplace_back(column, value); }

  private:
    void updateColumn(int column, const std::string& value) {
        const char* table = sqlite3_column_table_name(statement_.get(), column);
        const char* name = sqlite3_column_origin_name(statement_.get(), column);
        if (atEnd() || table == nullptr || name == nullptr) throw DatabaseFailure("There is no row to change.");
        if (!writer_ || writtenColumn_ != column) {
            writer_ = std::make_unique<SQLiteStatement>(
                connection_, "UPDATE " + quoted(table) + " SET " + quoted(name) + " = ?1 WHERE id = ?2");
            writtenColumn_ = column;
        }
        writer_->bind(1, value);
        writer_->bind(2, requiredField("id").integer());
        writer_->run();
    }

    std::shared_ptr<SQLiteConnection> connection_;
    StatementHandle statement_;
    std::string sql_;
    bool atEnd_;
    std::int64_t count_ = -1;
    std::vector<std::pair<int, std::string>> changes_;
    std::unique_ptr<SQLiteStatement> writer_;
    int writtenColumn_ = -1;
};

}  // namespace

std::shared_ptr<RecordSet> makeRecordSet(std::shared_ptr<SQLiteConnection> connection, StatementHandle statement,
                                         std::string_view sql, bool atEnd) {
    return std::make_shared<SQLiteRecordSet>(std::move(connection), std::move(statement), sql, atEnd);
}

}  // namespace detail
