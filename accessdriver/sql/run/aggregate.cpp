#include "accessdriver/sql/run/aggregate.h"

#include <cstdlib>
#include <limits>

#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/key.h"

namespace sql {

using Kind = SelectItem::Kind;

void Aggregate::add(const jet::Cursor& row) {
    if (kind_ == Kind::countAll) {
        ++count_;
        return;
    }
    jet::Value value = row.value(column_);
    if (std::holds_alternative<std::monostate>(value)) return;
    ++count_;
    if (kind_ == Kind::count) return;
    const jet::ColumnInfo& column = table_.columns[column_];
    if (kind_ == Kind::sum || kind_ == Kind::average) {
        if (const auto* amount = std::get_if<jet::Currency>(&value)) return addCurrency(*amount);
        sum_ += numberOf(value, column);
        return;
    }
    Key key = keyOf(value, column);
    const bool first = std::holds_alternative<std::monostate>(extreme_);
    if (!first && (kind_ == Kind::least ? key >= extremeKey_ : key <= extremeKey_)) return;
    extreme_ = displayValue(std::move(value), column);
    extremeKey_ = std::move(key);
}

void Aggregate::addCurrency(jet::Currency amount) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::int64_t more = amount.tenThousandths;
    if (more > 0 ? units_ > Limits::max() - more : units_ < Limits::min() - more) {
        throw Error("22003", "The sum of the column '" + table_.columns[column_].name + "' is out of its range.");
    }
    units_ += more;
}

jet::Value Aggregate::result() const {
    if (kind_ == Kind::count || kind_ == Kind::countAll) return static_cast<std::int32_t>(count_);
    if (count_ == 0) return {};
    if (kind_ == Kind::least || kind_ == Kind::greatest) return extreme_;
    const bool average = kind_ == Kind::average;
    if (type_ != jet::ColumnType::currency) return average ? sum_ / static_cast<double>(count_) : sum_;
    if (!average) return jet::Currency{units_};
    // Rounded half to even.
    const std::int64_t whole = units_ / count_;
    const std::int64_t rest = std::abs(units_ % count_);
    const bool up = rest > count_ - rest || (rest == count_ - rest && whole % 2 != 0);
    return jet::Currency{up ? whole + (units_ < 0 ? -1 : 1) : whole};
}

}  // namespace sql
