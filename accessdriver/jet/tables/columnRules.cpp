#include "accessdriver/jet/tables/columnRules.h"

#include "accessdriver/jet/failure.h"

namespace jet {

ColumnRules::ColumnRules(const Column& column, const std::vector<Property>& properties)
    : required_(yesNoOf(find(properties, "Required"), false)),
      emptyAllowed_(!column.text() || yesNoOf(find(properties, "AllowZeroLength"), true)) {}

void ColumnRules::require(const std::string& table, const Column& column, const Value& value) const {
    const std::string place = "The column " + column.name + " of the table " + table;
    if (std::holds_alternative<std::monostate>(value)) {
        if (required_ && !column.autoNumber && column.type != ColumnType::boolean) {
            throw Error(Fault::nullNotAllowed, place + " needs a value.");
        }
        return;
    }
    const auto* text = std::get_if<std::string>(&value);
    if (!emptyAllowed_ && text && text->empty()) throw Error(Fault::ruleBroken, place + " takes no empty text.");
}

}  // namespace jet
