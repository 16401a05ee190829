#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/run/hashIndex.h"
#include "accessdriver/sql/run/rowIterator.h"
#include "accessdriver/sql/run/rowSet.h"

namespace sql {

/// What a statement gave: rows, or the number of rows that it changed.
struct Outcome {
    std::shared_ptr<RowSet> rows = nullptr;
    std::int64_t changed = -1;
};

/// Runs statements on one connection and keeps its transaction.
/// A statement takes effect as a whole or not at all: one that fails half-way is undone.
/// Rows are read from the file while they are asked for; before this connection changes what an open answer reads, the
/// answer gets copies of its rows.
class Session {
  public:
    explicit Session(std::unique_ptr<jet::Database> database, DateOrder order = localeDateOrder())
        : database_(std::move(database)), hashIndexes_(*database_), order_(order) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Answers that were not read to their end end here.
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

    /// Whether there are changes that neither commit() nor rollback() has settled.
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
    /// An answer whose rows are still being read from the file.
    struct Stream {
        std::weak_ptr<RowSet> rows;
        const jet::TableInfo* table = nullptr;
        std::vector<std::size_t> columns = {};  ///< that it reads
    };

    std::int64_t insert(const Plan& plan, std::span<const Literal> parameters);
    std::int64_t update(const Plan& plan, std::span<const Literal> parameters);
    std::int64_t remove(const Plan& plan, std::span<const Literal> parameters);
    std::shared_ptr<RowSet> select(const Plan& plan, std::span<const Literal> parameters);

    std::vector<jet::Assignment> assignments(const Plan& plan, std::span<const Literal> parameters) const;
    RowIterator matches(const Plan& plan, std::span<const Literal> parameters);
    std::optional<std::vector<jet::RowId>> candidates(const Plan& plan, const Filter& filter);
    bool isFirstSearch(const Plan& plan, std::size_t column);
    std::optional<std::vector<jet::RowId>> fromIndex(const jet::TableInfo& table, const Filter::Demand& demand);
    void keepRowsThatMayChange(const Plan& change);
    void keepAllRows();
    void settle();

    std::unique_ptr<jet::Database> database_;
    HashIndexes hashIndexes_;
    DateOrder order_;
    using Place = std::pair<const jet::TableInfo*, std::size_t>;
    std::map<Place, int> indexSearches_;  // by column
    std::set<Place> searched_;            // columns that were walked through for a value
    std::vector<Stream> streams_;
    bool autocommit_ = true;
    bool open_ = false;
};

}  // namespace sql
