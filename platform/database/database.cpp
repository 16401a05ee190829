#include "platform/database/database.h"

#include <charconv>

#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace {

unsigned char asciiLower(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + 32) : byte;
}

std::size_t hashOf(std::string_view name) {
    std::size_t hash = 5381;
    for (const char c : name) hash = hash * 33 + asciiLower(c);
    return hash;
}

}  // namespace

std::string_view Field::text() const { return records_->columnText(column_); }

std::int64_t Field::integer() const { return records_->columnInteger(column_); }

std::optional<Date> Field::date() const {
    const auto date = dates::parseSql(text());
    return date ? date : dates::parse(text());
}

void Field::setText(std::string_view value) { records_->setColumnText(column_, value); }

std::optional<Field> RecordSet::field(std::string_view name) {
    constexpr std::size_t mostAsked = 100;
    if (turn_ == asked_.size() && turn_ > 0 && (asked_.front().name == name || turn_ == mostAsked)) turn_ = 0;
    if (turn_ == asked_.size()) asked_.emplace_back();
    Slot& asked = asked_[turn_++];
    if (asked.name != name || name.empty()) asked = {std::string(name), findColumn(name)};
    return asked.column < 0 ? std::nullopt : std::optional(Field(*this, asked.column));
}

/// -1 if there is no column of that name.
int RecordSet::findColumn(std::string_view name) const {
    if (slots_.empty()) return -1;
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t at = hashOf(name) & mask; slots_[at].column >= 0; at = (at + 1) & mask) {
        if (text::equals(slots_[at].name, name)) return slots_[at].column;
    }
    return -1;
}

Field RecordSet::requiredField(std::string_view name) {
    const auto found = field(name);
    if (!found) throw NullReference("the column " + std::string(name));
    return *found;
}

void RecordSet::setColumns(const std::vector<std::string>& names) {
    std::size_t size = 8;
    while (size < names.size() * 2) size *= 2;
    slots_.assign(size, Slot{});
    for (std::size_t column = 0; column < names.size(); ++column) {
        std::size_t at = hashOf(names[column]) & (size - 1);
        while (slots_[at].column >= 0 && !text::equals(slots_[at].name, names[column])) at = (at + 1) & (size - 1);
        if (slots_[at].column < 0) slots_[at] = Slot{names[column], static_cast<int>(column)};
    }
}

std::int64_t RecordSet::columnInteger(int column) {
    const std::string_view value = columnText(column);
    std::int64_t number = 0;
    std::from_chars(value.data(), value.data() + value.size(), number);
    return number;
}

void RecordSet::edit() { throw DatabaseFailure("The rows of this result cannot be changed."); }

void RecordSet::update() { throw DatabaseFailure("The rows of this result cannot be changed."); }

void RecordSet::setColumnText(int, std::string_view) {
    throw DatabaseFailure("The rows of this result cannot be changed.");
}
