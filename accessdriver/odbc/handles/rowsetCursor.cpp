#include "accessdriver/odbc/handles/rowsetCursor.h"

#include <algorithm>

#include "accessdriver/sql/values/error.h"

namespace odbc {

RowsetCursor::RowsetCursor(std::shared_ptr<sql::RowSet> rows, bool scrollable, SQLULEN most)
    : rows_(std::move(rows)), scrollable_(scrollable), most_(most) {
    if (scrollable_) rows_->keepRest();
}

SQLLEN RowsetCursor::rowCount() const {
    const SQLULEN count = rows_->size();
    return static_cast<SQLLEN>(most_ == 0 ? count : std::min(count, most_));
}

// The rules of SQLFetchScroll in the ODBC reference, for a result that does not change.
SQLLEN RowsetCursor::startFor(SQLSMALLINT orientation, SQLLEN offset, SQLLEN size, bool& cut) const {
    const SQLLEN count = rowCount();
    const auto notBeforeFirst = [&](SQLLEN start, bool mayCut) {
        if (start >= 1) return start;
        cut = mayCut;
        return mayCut ? SQLLEN{1} : SQLLEN{0};
    };
    switch (orientation) {
        case SQL_FETCH_NEXT:
            return start_ == 0 ? 1 : start_ + size_;
        case SQL_FETCH_PRIOR:
            return start_ <= 1 ? 0 : notBeforeFirst(std::min(start_, count + 1) - size, true);
        case SQL_FETCH_FIRST:
            return 1;
        case SQL_FETCH_LAST:
            return std::max<SQLLEN>(count - size + 1, 1);
        case SQL_FETCH_ABSOLUTE:
            if (offset >= 0) return offset;
            return notBeforeFirst(count + offset + 1, -offset <= size);
        case SQL_FETCH_RELATIVE:
            if (start_ == 0) return offset > 0 ? offset : 0;
            return notBeforeFirst(std::min(start_, count + 1) + offset, start_ > 1 && -offset <= size);
        default:
            throw sql::Error("HY106", "The driver has no bookmarks.");
    }
}

bool RowsetCursor::move(SQLSMALLINT orientation, SQLLEN offset, SQLULEN size, bool& cut) {
    if (!scrollable_ && orientation != SQL_FETCH_NEXT) {
        throw sql::Error("HY106", "A forward-only result is read from first to last.");
    }
    // No result is longer, and sums of such numbers stay in their range.
    constexpr SQLLEN most = SQLLEN{1} << 60;
    const auto wanted = static_cast<SQLLEN>(std::min<SQLULEN>(size, most));
    start_ = startFor(orientation, std::clamp(offset, -most, most), wanted, cut);
    size_ = wanted;
    rowNumber_ = 0;
    if (!scrollable_) return true;
    start_ = std::min(start_, rowCount() + 1);
    return start_ >= 1 && start_ <= rowCount();
}

bool RowsetCursor::moveToRow(SQLULEN row) {
    const SQLULEN number = static_cast<SQLULEN>(start_) + row;
    if (scrollable_) {
        if (number > static_cast<SQLULEN>(rowCount())) return false;
        rows_->moveTo(number - 1);
    } else if ((most_ != 0 && number > most_) || !rows_->next()) {
        return false;
    }
    rowNumber_ = number;
    return true;
}

}  // namespace odbc
