#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/run/hashIndex.h"
#include "accessdriver/sql/run/rowIterator.h"
#include "accessdriver/sql/run/rowSet.h"
#include "accessdriver/sql/run/tableRules.h"
#include "accessdriver/sql/run/termValues.h"

namespace sql {

/// The result of a statement: rows, or the number of rows that it changed.
struct Outcome {
    std::shared_ptr<RowSet> rows = nullptr;
    std::int64_t changed = -1;
};

/// Runs statements on one connection and keeps its transaction.
/// A statement takes effect as a whole or not at all: one that fails half-way is undone.
/// Rows are read from the file while they are asked for. Before this connection changes what an open result set reads,
/// the result set gets copies of its rows.
class Session {
  public:
    explicit Session(std::unique_ptr<jet::Database> database, DateOrder order = localeDateOrder())
        : database_(std::move(database)), hashIndexes_(*database_), order_(order) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Result sets that were not read to their end end here.
    ~Session();

    /// Finds the names of a parsed statement; see makePlan.
    Plan prepare(const Statement& statement) const { return makePlan(statement, *database_); }

    /// Runs the plan with a value for each of its parameters. Throws Error, or jet::Error from the file.
    Outcome run(const Plan& plan, std::span<const Literal> parameters);

    /// On at first: each statement is committed by itself. Switching it on commits what is open.
    void setAutocommit(bool on);
    bool autocommit() const { return autocommit_; }

    void commit();
    void rollback();

    /// Whether there are changes that were neither committed nor rolled back.
    bool hasOpenChanges() const { return open_; }

    /// Makes one statement of all that run while it lives: under autocommit they are committed by finish(), and undone
    /// without it.
    class Group {
      public:
        explicit Group(Session& session) : session_(session), autocommit_(session.autocommit_) {
            session_.autocommit_ = false;
        }
        Group(const Group&) = delete;
        Group& operator=(const Group&) = delete;
        ~Group();
        void finish();

      private:
        Session& session_;
        bool autocommit_;
        bool finished_ = false;
    };

    jet::Database& database() const { return *database_; }

  private:
    /// A result set whose rows are still being read from the file.
    struct Stream {
        std::weak_ptr<RowSet> rows;
        const jet::TableInfo* table = nullptr;
        std::vector<std::size_t> columns = {};  ///< that it reads
    };

    /// The AutoNumber of a row.
    struct Identity {
        const jet::TableInfo* table;
        std::size_t column;
        jet::RowId row;
    };

    std::int64_t insert(const Plan& plan, const TermValues& values);
    std::int64_t update(const Plan& plan, const TermValues& values);
    std::int64_t updateWithSums(const Plan& plan, const TermValues& values);
    std::int64_t remove(const Plan& plan, const TermValues& values);
    std::shared_ptr<RowSet> select(const Plan& plan, const TermValues& values);

    const TableRules& rules(const jet::TableInfo& table);
    void noteInsert(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values);
    template <class Note>
    void noteInIndexes(const Note& note);
    void readIdentity();
    RowIterator matchingRows(const Plan& plan, const TermValues& values);
    std::optional<std::vector<jet::RowId>> candidates(const Plan& plan, const Filter& filter);
    bool isFirstSearch(const Plan& plan, std::size_t column);
    std::optional<std::vector<jet::RowId>> fromIndex(const jet::TableInfo& table, const KeyRange& range);
    void copyStreamsOver(const Plan& change);
    void copyAllStreams();
    void commitIfAutomatic();

    std::unique_ptr<jet::Database> database_;
    HashIndexes hashIndexes_;
    DateOrder order_;
    using TableColumn = std::pair<const jet::TableInfo*, std::size_t>;
    std::map<TableColumn, int> indexSearches_;
    std::set<TableColumn> scanned_;  // columns that a table was scanned for
    std::map<const jet::TableInfo*, TableRules> rules_;
    std::vector<Stream> streams_;
    std::optional<Identity> lastInserted_;  // not read from its row yet
    std::string identity_ = "0";
    bool autocommit_ = true;
    bool open_ = false;
};

}  // namespace sql
