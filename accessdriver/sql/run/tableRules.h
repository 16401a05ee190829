#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "accessdriver/sql/parse/statement.h"
#include "accessdriver/sql/run/termValues.h"

namespace sql {

/// The default values and validation rules of a table's columns, which the file has as texts. They are read as values
/// and conditions of statements are; an expression that no statement could have is left to Access.
class TableRules {
  public:
    /// The table must outlive this.
    explicit TableRules(const jet::TableInfo& table);

    /// Adds the default of each column that has one and no value. Throws Error as coerce() does.
    void addDefaults(std::vector<jet::Assignment>& values, const TermValues& terms) const;

    /// Throws Error(23000) for a value that breaks its column's rule. Null breaks a rule only if the rule asks for it.
    /// In a new row a column without a value is Null.
    void check(std::span<const jet::Assignment> values, bool newRow, const TermValues& terms) const;

  private:
    struct Default {
        std::size_t column;
        Term term;
    };
    struct Rule {
        std::size_t column;
        Predicate predicate;
    };

    void readDefault(std::size_t column);
    void readRule(std::size_t column);

    const jet::TableInfo& table_;
    Statement texts_;  // owns what the terms point to
    std::vector<Default> defaults_;
    std::vector<Rule> rules_;
};

}  // namespace sql
