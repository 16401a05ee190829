#pragma once

#include <span>

#include "accessdriver/sql/parse/statement.h"

namespace sql {

/// Finds the columns that a statement names in its table.
class ColumnNames {
  public:
    /// alias is the name by which the statement calls the table, empty for its own. Table and alias must outlive this.
    ColumnNames(const jet::TableInfo& table, std::string_view alias) : table_(table), alias_(alias) {}

    const jet::TableInfo& table() const { return table_; }
    const jet::ColumnInfo& operator[](std::size_t at) const { return table_.columns[at]; }

    /// The column's position in the table. Throws Error(42S22) for a column or qualifier that is not known.
    std::size_t find(const Name& name);

    /// Throws Error(42S22) for a qualifier that is neither empty nor the table's name in the statement.
    void requireTable(std::string_view qualifier) const;

  private:
    const jet::TableInfo& table_;
    std::string_view alias_;
    std::size_t next_ = 0;  // lists mostly name the columns in the table's order, so the search starts here
};

/// Finds the columns of a predicate, and the types that its values are compared as. parameters gets the column that
/// each parameter of the predicate is for. Throws Error: 42S22 for an unknown column, 42000 for columns that can't be
/// compared.
void resolve(Predicate& predicate, ColumnNames& columns, std::span<jet::ColumnInfo> parameters);

/// The description of a parameter that is compared with no column.
jet::ColumnInfo unknownColumn();

}  // namespace sql
