#include "accessdriver/jet/records/valueCodec.h"

#include <cmath>
#include <limits>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/text.h"

namespace jet {

namespace {

[[noreturn]] void fail(Fault fault, const TableDefinition& table, const Column& column, const std::string& what) {
    throw Error(fault, "The value for the column " + column.name + " of the table " + table.name + " " + what + ".");
}

template <class Wanted>
const Wanted& require(const TableDefinition& table, const Column& column, const Value& value, const char* what) {
    if (const Wanted* wanted = std::get_if<Wanted>(&value)) return *wanted;
    fail(Fault::badValue, table, column, what);
}

void appendLittle(std::vector<std::uint8_t>& to, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void encodeInteger(const TableDefinition& table, const Column& column, const Value& value,
                   std::vector<std::uint8_t>& to) {
    const std::int32_t number = require<std::int32_t>(table, column, value, "is no whole number");
    const bool fits = column.type == ColumnType::byte      ? number >= 0 && number <= 0xFF
                      : column.type == ColumnType::integer ? number >= -0x8000 && number <= 0x7FFF
                                                           : true;
    if (!fits) fail(Fault::badValue, table, column, "(" + std::to_string(number) + ") is out of its range");
    appendLittle(to, static_cast<std::uint32_t>(number), sizeOfType(column.type));
}

void encodeFloat(const TableDefinition& table, const Column& column, double number, std::vector<std::uint8_t>& to) {
    if (!std::isfinite(number)) fail(Fault::badValue, table, column, "is no finite number");
    if (column.type == ColumnType::single) {
        if (std::abs(number) > std::numeric_limits<float>::max())
            fail(Fault::badValue, table, column, "is out of its range");
        appendLittle(to, std::bit_cast<std::uint32_t>(static_cast<float>(number)), 4);
        return;
    }
    if (column.type == ColumnType::dateTime && !isInCalendar({number})) {
        fail(Fault::badValue, table, column, "is no date from the years 100 to 9999");
    }
    appendLittle(to, std::bit_cast<std::uint64_t>(number), 8);
}

void encodeString(const TableDefinition& table, const Column& column, const Value& value,
                  std::vector<std::uint8_t>& to) {
    const std::string& text = require<std::string>(table, column, value, "is no text");
    const std::size_t at = to.size();
    try {
        std::u16string units = utf16FromUtf8(text);
        const std::size_t most = column.length / 2;
        if (column.type == ColumnType::text && units.size() > most) {
            fail(Fault::tooLong, table, column,
                 "has " + std::to_string(units.size()) + " characters, but only " + std::to_string(most) + " fit");
        }
        // A text of fixed size is filled up with blanks.
        if (column.fixed) units.resize(most, u' ');
        encodeText(units, column.compressed && !column.fixed, to);
    } catch (const Error& error) {
        to.resize(at);
        if (error.fault() != Fault::badValue) throw;
        fail(Fault::badValue, table, column, std::string("can't be stored: ") + error.what());
    }
}

void encodeBytes(const TableDefinition& table, const Column& column, const Value& value,
                 std::vector<std::uint8_t>& to) {
    const Bytes& bytes = require<Bytes>(table, column, value, "is no sequence of bytes");
    const bool exact = column.fixed || sizeOfType(column.type) > 0;
    if (!column.longValue() && bytes.size() > column.length) {
        fail(Fault::tooLong, table, column, "has more than " + std::to_string(column.length) + " bytes");
    }
    if (exact && bytes.size() != column.length) {
        fail(Fault::badValue, table, column, "needs " + std::to_string(column.length) + " bytes");
    }
    to.insert(to.end(), bytes.begin(), bytes.end());
}

}  // namespace

void encodeValue(const TableDefinition& table, const Column& column, const Value& value,
                 std::vector<std::uint8_t>& to) {
    switch (column.type) {
        case ColumnType::byte:
        case ColumnType::integer:
        case ColumnType::longInteger:
            return encodeInteger(table, column, value, to);
        case ColumnType::single:
        case ColumnType::doubleFloat:
            return encodeFloat(table, column, require<double>(table, column, value, "is no number"), to);
        case ColumnType::dateTime:
            return encodeFloat(table, column, require<DateTime>(table, column, value, "is no date").days, to);
        case ColumnType::currency:
            return appendLittle(to,
                                static_cast<std::uint64_t>(
                                    require<Currency>(table, column, value, "is no amount of money").tenThousandths),
                                8);
        case ColumnType::text:
        case ColumnType::memo:
            return encodeString(table, column, value, to);
        case ColumnType::binary:
        case ColumnType::ole:
        case ColumnType::guid:
        case ColumnType::numeric:
            return encodeBytes(table, column, value, to);
        case ColumnType::boolean:
            break;  // its value is its bit in the null mask
    }
}

Value decodeValue(const Column& column, ByteSpan stored) {
    switch (column.type) {
        case ColumnType::byte:
            return std::int32_t{stored[0]};
        case ColumnType::integer:
            return std::int32_t{static_cast<std::int16_t>(getU16(stored, 0))};
        case ColumnType::longInteger:
            return static_cast<std::int32_t>(getU32(stored, 0));
        case ColumnType::currency:
            return Currency{static_cast<std::int64_t>(getU64(stored, 0))};
        case ColumnType::single:
            return double{std::bit_cast<float>(getU32(stored, 0))};
        case ColumnType::doubleFloat:
            return getF64(stored, 0);
        case ColumnType::dateTime:
            return DateTime{getF64(stored, 0)};
        case ColumnType::text:
        case ColumnType::memo:
            return decodeTextToUtf8(stored);
        case ColumnType::boolean:
        case ColumnType::binary:
        case ColumnType::ole:
        case ColumnType::guid:
        case ColumnType::numeric:
            break;
    }
    return Bytes(stored.begin(), stored.end());
}

}  // namespace jet
