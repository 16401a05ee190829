#include "accessdriver/sql/run/rowIterator.h"

namespace sql {

RowIterator::RowIterator(jet::Database& database, const jet::TableInfo& table, std::optional<Filter> filter,
                         std::optional<std::vector<jet::RowId>> candidates)
    : database_(database), table_(table), filter_(std::move(filter)), candidates_(std::move(candidates)) {
    if (!candidates_) cursor_ = database_.scan(table_);
}

const jet::Cursor* RowIterator::next() {
    if (!candidates_) {
        while (cursor_->next()) {
            if (!filter_ || filter_->holds(*cursor_)) return cursor_.get();
        }
        return nullptr;
    }
    while (at_ < candidates_->size()) {
        cursor_ = database_.fetch(table_, (*candidates_)[at_++]);
        if (cursor_ && (!filter_ || filter_->holds(*cursor_))) return cursor_.get();
    }
    return nullptr;
}

}  // namespace sql
