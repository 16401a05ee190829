#include "accessdriver/sql/values/convert.h"

#include <array>
#include <cmath>
#include <limits>

#include "accessdriver/jet/utf8.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"
#include "accessdriver/sql/values/valueKind.h"
#include "accessdriver/sql/values/yesNo.h"

namespace sql {

namespace {

using jet::ColumnInfo;
using jet::ColumnType;
using jet::Value;
using Kind = Literal::Kind;

constexpr std::string_view accessTrue = "-1";
constexpr std::string_view accessFalse = "0";

struct Range {
    double least;
    double most;
};

// The range of a Byte, Integer or Long column.
Range rangeOf(ColumnType type) {
    if (type == ColumnType::byte) return {0, 255};
    if (type == ColumnType::integer) {
        return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
    }
    return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
}

std::string inQuotes(std::string_view text) { return "'" + std::string(text) + "'"; }

[[noreturn]] void refuseKind(const ColumnInfo& column) {
    throw Error("07006", "The column " + inQuotes(column.name) + " can't take a value of this kind.");
}

[[noreturn]] void refuseText(const char* state, const Literal& literal, const ColumnInfo& column, const char* wanted) {
    throw Error(state, inQuotes(jet::abbreviated(literal.text)) + " is no " + wanted + ", which the column " +
                           inQuotes(column.name) + " takes.");
}

[[noreturn]] void refuseRange(std::string_view number, const ColumnInfo& column) {
    throw Error("22003", "The number " + jet::abbreviated(number) + " is out of the range of the column " +
                             inQuotes(column.name) + ".");
}

bool isEmptyText(const Literal& literal) { return literal.kind == Kind::text && trimmed(literal.text).empty(); }

Value coerceToBoolean(const Literal& literal, const ColumnInfo& column) {
    if (literal.kind == Kind::null || isEmptyText(literal)) return false;
    if (literal.kind == Kind::boolean) return literal.truth;
    if (literal.kind != Kind::number && literal.kind != Kind::text) refuseKind(column);
    if (const auto number = readNumber(literal.text)) return *number != 0;
    if (const auto truth = readYesNo(trimmed(literal.text))) return *truth;
    refuseText("22018", literal, column, "yes/no value");
}

// The number that the literal means, as text, because some types read it more exactly than a double.
std::string numberText(const Literal& literal, const ColumnInfo& column) {
    switch (literal.kind) {
        case Kind::boolean:
            return std::string(literal.truth ? accessTrue : accessFalse);
        case Kind::date:
            return writeNumber(literal.date.days);
        case Kind::number:
        case Kind::text:
            return std::string(literal.text);
        case Kind::null:
        case Kind::bytes:
            break;
    }
    refuseKind(column);
}

Value coerceToNumber(const Literal& literal, const ColumnInfo& column) {
    const auto given = numberTextOf(literal, column);
    if (!given) return {};
    const std::string& text = *given;
    const auto number = readNumber(text);
    if (column.type == ColumnType::doubleFloat) return *number;
    if (column.type == ColumnType::single) {
        if (std::abs(*number) > std::numeric_limits<float>::max()) refuseRange(text, column);
        return static_cast<double>(static_cast<float>(*number));
    }
    if (column.type == ColumnType::numeric) {
        const auto decimal = readDecimal(text, column.scale);
        if (decimal && digitCount(*decimal) <= column.precision) return storedDecimal(*decimal);
        refuseRange(text, column);
    }
    if (column.type == ColumnType::currency) {
        if (const auto amount = readCurrency(text)) return *amount;
        refuseRange(text, column);
    }
    const double whole = std::nearbyint(*number);
    const Range range = rangeOf(column.type);
    if (whole < range.least || whole > range.most) refuseRange(text, column);
    return static_cast<std::int32_t>(whole);
}

Value coerceToDate(const Literal& literal, const ColumnInfo& column, DateOrder order) {
    switch (literal.kind) {
        case Kind::null:
            return {};
        case Kind::date:
            return literal.date;
        case Kind::number: {
            const auto days = readNumber(literal.text);
            if (!days) refuseRange(literal.text, column);
            const jet::DateTime date{*days};
            toMoment(date);  // refuses what lies outside the calendar
            return date;
        }
        case Kind::text: {
            if (isEmptyText(literal)) return {};
            if (const auto date = readDate(literal.text, order)) return *date;
            refuseText("22007", literal, column, "date");
        }
        case Kind::boolean:
        case Kind::bytes:
            break;
    }
    refuseKind(column);
}

// A number is written without needless digits: 007 and 1.50 become 7 and 1.5.
std::string plainNumber(std::string_view text) {
    const auto number = readNumber(text);
    return number && std::abs(*number) < 1e15 ? writeNumber(*number) : std::string(text);
}

Value coerceToText(const Literal& literal, const ColumnInfo& column) {
    std::string text;
    switch (literal.kind) {
        case Kind::null:
            return {};
        case Kind::text:
        case Kind::bytes:
            text = literal.text;
            break;
        case Kind::number:
            text = plainNumber(literal.text);
            break;
        case Kind::boolean:
            text = literal.truth ? accessTrue : accessFalse;
            break;
        case Kind::date:
            text = writeDate(literal.date);
            break;
    }
    const auto most = static_cast<std::size_t>(column.length);
    if (column.type == ColumnType::text && text.size() > most && utf16Length(text) > most) {
        throw Error("22001", "The text is too long for the column " + inQuotes(column.name) + ": " +
                                 std::to_string(utf16Length(text)) + " characters, at most " + std::to_string(most) +
                                 ".");
    }
    return text;
}

Value coerceToBytes(const Literal& literal, const ColumnInfo& column) {
    if (literal.kind == Kind::null) return {};
    if (literal.kind != Kind::bytes) refuseKind(column);
    return jet::Bytes(literal.text.begin(), literal.text.end());
}

std::string hexadecimal(const jet::Bytes& bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        out += digits[byte >> 4];
        out += digits[byte & 0x0F];
    }
    return out;
}

// The first three groups of a GUID's text are little-endian numbers, the last two plain bytes.
constexpr std::array<std::uint8_t, 16> guidOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

std::string guidText(const jet::Bytes& bytes) {
    jet::Bytes shown;
    for (const std::uint8_t from : guidOrder) shown.push_back(bytes[from]);
    std::string out = hexadecimal(shown);
    for (const std::size_t dash : {8, 13, 18, 23}) out.insert(dash, 1, '-');
    return out;
}

std::optional<jet::Bytes> readGuid(std::string_view text) {
    text = trimmed(text);
    if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
    if (text.size() != 36) return std::nullopt;
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash != (text[i] == '-')) return std::nullopt;
        if (!dash) digits += text[i];
    }
    const auto plain = readHexadecimal(digits);
    if (!plain) return std::nullopt;
    jet::Bytes bytes(guidOrder.size());
    for (std::size_t i = 0; i < guidOrder.size(); ++i) bytes[guidOrder[i]] = (*plain)[i];
    return bytes;
}

Value coerceToGuid(const Literal& literal, const ColumnInfo& column) {
    if (literal.kind == Kind::null || isEmptyText(literal)) return {};
    if (literal.kind == Kind::bytes) return jet::Bytes(literal.text.begin(), literal.text.end());
    if (literal.kind != Kind::text) refuseKind(column);
    if (auto guid = readGuid(literal.text)) return *std::move(guid);
    refuseText("22018", literal, column, "GUID");
}

}  // namespace

std::optional<std::string> numberTextOf(const Literal& literal, const ColumnInfo& column) {
    if (literal.kind == Kind::null || isEmptyText(literal)) return std::nullopt;
    std::string text = numberText(literal, column);
    if (!readNumber(text)) refuseText("22018", literal, column, "number");
    return text;
}

std::optional<jet::Bytes> readHexadecimal(std::string_view digits) {
    const auto value = [](char c) {
        if (c >= '0' && c <= '9') return c - '0';
        if (c >= 'A' && c <= 'F') return c - 'A' + 10;
        if (c >= 'a' && c <= 'f') return c - 'a' + 10;
        return -1;
    };
    if (digits.size() % 2 != 0) return std::nullopt;
    jet::Bytes bytes;
    bytes.reserve(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        const int high = value(digits[i]);
        const int low = value(digits[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    return bytes;
}

jet::Value displayValue(jet::Value stored, const ColumnInfo& column) {
    const auto* const bytes = std::get_if<jet::Bytes>(&stored);
    if (column.type != ColumnType::numeric || bytes == nullptr) return stored;
    return writeDecimal(fromStoredDecimal(*bytes, column.scale));
}

jet::Value coerce(const Literal& literal, const ColumnInfo& column, DateOrder order) {
    switch (column.type) {
        case ColumnType::boolean:
            return coerceToBoolean(literal, column);
        case ColumnType::byte:
        case ColumnType::integer:
        case ColumnType::longInteger:
        case ColumnType::currency:
        case ColumnType::single:
        case ColumnType::doubleFloat:
        case ColumnType::numeric:
            return coerceToNumber(literal, column);
        case ColumnType::guid:
            return coerceToGuid(literal, column);
        case ColumnType::dateTime:
            return coerceToDate(literal, column, order);
        case ColumnType::text:
        case ColumnType::memo:
            return coerceToText(literal, column);
        case ColumnType::binary:
        case ColumnType::ole:
            break;
    }
    return coerceToBytes(literal, column);
}

Literal literalOf(const jet::Value& stored, const ColumnInfo& column, std::string& text) {
    if (std::holds_alternative<std::monostate>(stored)) return {};
    if (const auto* truth = std::get_if<bool>(&stored)) return {.kind = Kind::boolean, .truth = *truth};
    if (const auto* date = std::get_if<jet::DateTime>(&stored)) return {.kind = Kind::date, .date = *date};
    const auto* const bytes = std::get_if<jet::Bytes>(&stored);
    if (bytes != nullptr && kindOf(column.type) == ValueKind::bytes) {
        text.assign(bytes->begin(), bytes->end());
        return {.kind = Kind::bytes, .text = text};
    }
    text = textOf(displayValue(stored, column), column.type);
    return {.kind = kindOf(column.type) == ValueKind::number ? Kind::number : Kind::text, .text = text};
}

std::string textOf(const jet::Value& value, ColumnType type) {
    struct Writer {
        ColumnType type;
        std::string operator()(std::monostate) const { return {}; }
        std::string operator()(bool truth) const { return truth ? "1" : "0"; }
        std::string operator()(std::int32_t number) const { return std::to_string(number); }
        std::string operator()(jet::Currency amount) const { return writeCurrency(amount); }
        std::string operator()(double number) const {
            return type == ColumnType::single ? writeSingle(static_cast<float>(number)) : writeNumber(number);
        }
        std::string operator()(jet::DateTime date) const { return writeDate(date); }
        std::string operator()(const std::string& text) const { return text; }
        std::string operator()(const jet::Bytes& bytes) const {
            return type == ColumnType::guid && bytes.size() == 16 ? guidText(bytes) : hexadecimal(bytes);
        }
    };
    return std::visit(Writer{type}, value);
}

}  // namespace sql
