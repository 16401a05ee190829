#include "accessdriver/sql/run/selection.h"

#include <algorithm>
#include <set>

#include "accessdriver/sql/run/aggregate.h"
#include "accessdriver/sql/values/convert.h"

namespace sql {

namespace {

jet::Value valueOf(const Literal& literal, const ResultColumn& column) {
    return coerce(literal, {.name = column.name, .type = column.type, .length = column.length}, DateOrder::monthFirst);
}

// The selected columns of each row that is met, as far as they are wanted.
class SelectedRows : public RowSource {
  public:
    SelectedRows(const Plan& plan, RowIterator rows, const TermValues& values)
        : table_(*plan.table), rows_(std::move(rows)), distinct_(plan.distinct) {
        for (std::size_t i = 0; i < plan.items.size(); ++i) {
            const Plan::Item& item = plan.items[i];
            columns_.push_back(item.column);
            const bool isValue = item.column == Operand::noColumn;
            values_.push_back(isValue ? valueOf(values(item.value), plan.columns[i]) : jet::Value{});
        }
        if (plan.top && plan.streams()) left_ = plan.top->number;
    }

    bool next(Row& row) override {
        while (left_ != 0) {
            row_ = rows_.next();
            if (row_ == nullptr) return false;
            if (distinct_ && !isNew()) continue;
            for (std::size_t i = 0; i < columns_.size(); ++i) {
                const std::size_t at = columns_[i];
                row[i] = at == Operand::noColumn ? values_[i] : displayValue(row_->value(at), table_.columns[at]);
            }
            if (left_) --*left_;
            return true;
        }
        return false;
    }

    /// What the current row is sorted by in one column of the table.
    Key key(std::size_t column) const { return keyOf(row_->value(column), table_.columns[column]); }

  private:
    // Whether no row before had equal values.
    bool isNew() {
        std::string all;
        for (const std::size_t at : columns_) {
            if (at == Operand::noColumn) continue;
            const jet::Value value = row_->value(at);
            const auto* const bytes = std::get_if<jet::Bytes>(&value);
            const std::string one =
                bytes != nullptr ? "b" + std::string(bytes->begin(), bytes->end()) : keyOf(value, table_.columns[at]);
            all += std::to_string(one.size()) + ":" + one;
        }
        return seen_.insert(std::move(all)).second;
    }

    const jet::TableInfo& table_;
    RowIterator rows_;
    std::vector<std::size_t> columns_;
    std::vector<jet::Value> values_;
    std::optional<std::size_t> left_;
    const jet::Cursor* row_ = nullptr;
    bool distinct_;
    std::set<std::string> seen_;
};

// How many of so many rows TOP asks for. A share is rounded up.
std::size_t limitOf(const std::optional<Top>& top, std::size_t rows) {
    if (!top) return rows;
    return std::min(top->percent ? (rows * top->number + 99) / 100 : top->number, rows);
}

std::shared_ptr<RowSet> sortedResult(const Plan& plan, SelectedRows selected) {
    struct Sorted {
        std::vector<Key> keys;
        Row row;
    };
    std::vector<Sorted> all;
    Row row(plan.columns.size());
    while (selected.next(row)) {
        Sorted& one = all.emplace_back();
        one.row = row;
        for (const Plan::Order& order : plan.order) one.keys.push_back(selected.key(order.column));
    }
    std::stable_sort(all.begin(), all.end(), [&](const Sorted& left, const Sorted& right) {
        for (std::size_t i = 0; i < plan.order.size(); ++i) {
            const int order = left.keys[i].compare(right.keys[i]);
            if (order != 0) return plan.order[i].descending ? order > 0 : order < 0;
        }
        return false;
    });
    // As in Access, TOP with ORDER BY gives those as well that are level with the last one.
    std::size_t limit = limitOf(plan.top, all.size());
    while (!plan.order.empty() && limit > 0 && limit < all.size() && all[limit].keys == all[limit - 1].keys) ++limit;
    auto rows = std::make_shared<RowSet>(plan.columns);
    for (std::size_t i = 0; i < limit; ++i) rows->add(all[i].row);
    return rows;
}

std::shared_ptr<RowSet> aggregateResult(const Plan& plan, RowIterator matching) {
    std::vector<Aggregate> aggregates;
    for (std::size_t i = 0; i < plan.items.size(); ++i) {
        aggregates.emplace_back(plan.items[i], *plan.table, plan.columns[i].type);
    }
    while (const jet::Cursor* row = matching.next()) {
        for (Aggregate& aggregate : aggregates) aggregate.add(*row);
    }
    auto rows = std::make_shared<RowSet>(plan.columns);
    Row row;
    for (const Aggregate& aggregate : aggregates) row.push_back(aggregate.result());
    rows->add(row);
    return rows;
}

}  // namespace

std::shared_ptr<RowSet> resultOf(const Plan& plan, RowIterator rows, const TermValues& values) {
    if (plan.aggregates()) return aggregateResult(plan, std::move(rows));
    if (!plan.streams()) return sortedResult(plan, SelectedRows(plan, std::move(rows), values));
    return std::make_shared<RowSet>(plan.columns, std::make_unique<SelectedRows>(plan, std::move(rows), values));
}

std::shared_ptr<RowSet> resultWithoutTable(const Plan& plan, const TermValues& values) {
    auto rows = std::make_shared<RowSet>(plan.columns);
    Row row;
    for (std::size_t i = 0; i < plan.items.size(); ++i) {
        row.push_back(valueOf(values(plan.items[i].value), plan.columns[i]));
    }
    rows->add(row);
    return rows;
}

}  // namespace sql
