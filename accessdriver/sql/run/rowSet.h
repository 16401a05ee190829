#pragma once

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "accessdriver/sql/plan/resultColumn.h"

namespace sql {

using Row = std::vector<jet::Value>;

/// Gives the rows of a result set one by one, when they are asked for.
class RowSource {
  public:
    virtual ~RowSource() = default;

    /// Puts the next row's values in the place of those there; false at the end.
    virtual bool next(Row& row) = 0;
};

/// The rows of a result set: first those that were copied, packed tightly, then those that a source still gives.
/// What was copied does not change while rows of the table do. A Decimal's value is its digits as text.
class RowSet {
  public:
    explicit RowSet(std::vector<ResultColumn> columns, std::unique_ptr<RowSource> source = nullptr)
        : columns_(std::move(columns)), current_(columns_.size()), source_(std::move(source)) {}

    const std::vector<ResultColumn>& columns() const { return columns_; }

    /// Adds one row, a value for each column.
    void add(const Row& row);

    /// Copies what the source would still give. Throws what the source throws; next() throws the same when it comes to
    /// the rows that could not be copied.
    void keepRest();

    /// Lets go of the source; the rows that it would still have given are lost.
    void dropSource() { source_.reset(); }

    /// Moves to the next row; false at the end.
    bool next();

    /// How many rows are copied.
    std::size_t size() const { return starts_.size(); }

    /// Moves to a copied row, counted from 0.
    void moveTo(std::size_t row);

    /// A value of the row that next() or moveTo() moved to.
    const jet::Value& value(std::size_t column) const { return current_[column]; }

  private:
    struct Place {
        std::uint32_t chunk;
        std::uint32_t offset;
    };

    std::vector<ResultColumn> columns_;
    Row current_;
    std::vector<std::string> chunks_;  // whole rows, packed
    std::vector<Place> starts_;
    std::size_t next_ = 0;
    std::unique_ptr<RowSource> source_;
    std::exception_ptr failure_;  // of copying the rest
};

}  // namespace sql
