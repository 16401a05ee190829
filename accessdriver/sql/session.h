#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/lookup.h"
#include "accessdriver/sql/plan.h"
#include "accessdriver/sql/rowSet.h"

namespace sql {

/// What a statement gave: rows, or the number of rows that it changed.
struct Outcome {
    std::shared_ptr<RowSet> rows = nullptr;
    std::int64_t changed = -1;
};

/// Runs statements on one connection and keeps its transaction.
/// A statement takes effect as a whole or not at all: one that fails half-way is undone.
class Session {
  public:
    explicit Session(std::unique_ptr<jet::Database> database, DateOrder order = localeDateOrder())
        : database_(std::move(database)), lookups_(*database_), order_(order) {}

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
    struct Condition {
        std::size_t column;
        Key key;
    };

    std::int64_t insert(const Plan& plan, std::span<const Literal> parameters);
    std::int64_t update(const Plan& plan, std::span<const Literal> parameters);
    std::shared_ptr<RowSet> select(const Plan& plan, std::span<const Literal> parameters);
    std::shared_ptr<RowSet> count(const Plan& plan, std::span<const Literal> parameters);

    std::vector<jet::Assignment> assignments(const Plan& plan, std::span<const Literal> parameters) const;
    template <class Visit>
    void eachMatch(const Plan& plan, std::span<const Literal> parameters, const Visit& visit);
    const Condition& rarest(const jet::TableInfo& table, const std::vector<Condition>& conditions);
    void settle();

    std::unique_ptr<jet::Database> database_;
    Lookups lookups_;
    DateOrder order_;
    bool autocommit_ = true;
    bool open_ = false;
};

}  // namespace sql
