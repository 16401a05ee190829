#include "accessdriver/sql/run/selection.h"

#include <algorithm>
#include <set>

#include "accessdriver/sql/run/aggregate.h"
#include "accessdriver/sql/values/convert.h"

namespace sql {

namespace {

jet::Value valueOf(const Literal& literal, const ResultColumn& column) {
    return fit(literal, {.name = column.name, .type = column.type, .length = column.length}, DateOrder::monthFirst);
}

// The selected columns of each row that is met, as far as they are wanted.
class SelectedRows : public RowSource {
  public:
    SelectedRows(const Plan& plan, RowIterator matches)
        : table_(*plan.table), matches_(std::move(matches)), distinct_(plan.distinct) {
        for (std::size_t i = 0; i < plan.items.size(); ++i) {
            const Plan::Item& item = plan.items[i];
            columns_.push_back(item.column);
            values_.push_back(item.column == Plan::noColumn ? valueOf(item.value, plan.columns[i]) : jet::Value{});
        }
        if (plan.order.empty()) left_ = plan.top;
    }

    bool next(Row& row) override {
        while (left_ != 0) {
            row_ = matches_.next();
            if (row_ == nullptr) return false;
            if (distinct_ && !isNew()) continue;
            for (std::size_t i = 0; i < columns_.size(); ++i) {
                const std::size_t at = columns_[i];
                row[i] = at == Plan::noColumn ? values_[i] : shown(row_->value(at), table_.columns[at]);
            }
            if (left_) --*left_;
            return true;
        }
        return false;
    }

    /// What the current row is sorted by in one column of the table.
    std::string order(std::size_t column) const { return sortable(keyOf(row_->value(column), table_.columns[column])); }

  private:
    // Whether no row before had the same values, letter case aside.
    bool isNew() {
        std::string all;
        for (const std::size_t at : columns_) {
            if (at == Plan::noColumn) continue;
            const jet::Value value = row_->value(at);
            const auto* const bytes = std::get_if<jet::Bytes>(&value);
            const std::string one = bytes != nullptr ? "b" + std::string(bytes->begin(), bytes->end())
                                                     : sortable(keyOf(value, table_.columns[at]));
            all += std::to_string(one.size()) + ":" + one;
        }
        return seen_.insert(std::move(all)).second;
    }

    const jet::TableInfo& table_;
    RowIterator matches_;
    std::vector<std::size_t> columns_;
    std::vector<jet::Value> values_;
    std::optional<std::size_t> left_;
    const jet::Cursor* row_ = nullptr;
    bool distinct_;
    std::set<std::string> seen_;
};

std::shared_ptr<RowSet> sortedAnswer(const Plan& plan, SelectedRows selected) {
    struct Sorted {
        std::vector<std::string> keys;
        Row row;
    };
    std::vector<Sorted> all;
    Row row(plan.columns.size());
    while (selected.next(row)) {
        Sorted& one = all.emplace_back();
        one.row = row;
        for (const Plan::Order& order : plan.order) one.keys.push_back(selected.order(order.column));
    }
    std::stable_sort(all.begin(), all.end(), [&](const Sorted& left, const Sorted& right) {
        for (std::size_t i = 0; i < plan.order.size(); ++i) {
            const int order = left.keys[i].compare(right.keys[i]);
            if (order != 0) return plan.order[i].descending ? order > 0 : order < 0;
        }
        return false;
    });
    auto rows = std::make_shared<RowSet>(plan.columns);
    for (std::size_t i = 0; i < all.size(); ++i) {
        // As in Access, TOP gives those as well that are level with the last one.
        if (plan.top && i >= *plan.top && all[i].keys != all[*plan.top - 1].keys) break;
        rows->add(all[i].row);
    }
    return rows;
}

std::shared_ptr<RowSet> aggregateAnswer(const Plan& plan, RowIterator matches) {
    std::vector<Aggregate> aggregates;
    for (std::size_t i = 0; i < plan.items.size(); ++i) {
        aggregates.emplace_back(plan.items[i], *plan.table, plan.columns[i].type);
    }
    while (const jet::Cursor* row = matches.next()) {
        for (Aggregate& aggregate : aggregates) aggregate.add(*row);
    }
    auto rows = std::make_shared<RowSet>(plan.columns);
    Row row;
    for (const Aggregate& aggregate : aggregates) row.push_back(aggregate.result());
    rows->add(row);
    return rows;
}

}  // namespace

std::shared_ptr<RowSet> answerOf(const Plan& plan, RowIterator matches) {
    if (plan.aggregates()) return aggregateAnswer(plan, std::move(matches));
    if (!plan.order.empty()) return sortedAnswer(plan, SelectedRows(plan, std::move(matches)));
    return std::make_shared<RowSet>(plan.columns, std::make_unique<SelectedRows>(plan, std::move(matches)));
}

std::shared_ptr<RowSet> plainAnswer(const Plan& plan) {
    auto rows = std::make_shared<RowSet>(plan.columns);
    Row row;
    for (std::size_t i = 0; i < plan.items.size(); ++i) row.push_back(valueOf(plan.items[i].value, plan.columns[i]));
    rows->add(row);
    return rows;
}

}  // namespace sql
