#include "accessdriver/odbc/data/transfer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "accessdriver/jet/utf8.h"
#include "accessdriver/odbc/data/sqlTypes.h"
#include "accessdriver/odbc/data/text.h"
#include "accessdriver/odbc/data/variable.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/key.h"
#include "accessdriver/sql/values/numbers.h"

namespace odbc {

namespace {

using jet::Value;

[[noreturn]] void refuseConversion() { throw sql::Error("07006", "The column can't be converted to this C type."); }
[[noreturn]] void refuseRange() { throw sql::Error("22003", "The number is out of the range of the C type."); }

constexpr const char* truncatedText = "The text was cut to the size of the buffer.";

// A value on its way into a plain variable.
struct Conversion {
    const Value& value;
    const sql::ResultColumn& column;
    const Target& target;
    Diagnostics& diagnostics;

    template <class T>
    void put(const T& out) const {
        storeAt(target.buffer, out);
        putLength(sizeof out);
    }

    void putLength(std::size_t bytes) const {
        storeAt(target.indicator, SQLLEN{0});
        storeAt(target.length, static_cast<SQLLEN>(bytes));
    }

    void warnOfLoss(const char* what) const { diagnostics.warn("01S07", what); }
};

struct Number {
    double real = 0;
    std::int64_t whole = 0;  // without the fraction; valid if fits
    bool fits = true;        // in 64 bits
    bool hasFraction = false;
};

Number numberFrom(double real) {
    Number out{real};
    const double whole = std::trunc(real);
    out.fits = whole >= -0x1p63 && whole < 0x1p63;
    out.hasFraction = whole != real;
    if (out.fits) out.whole = static_cast<std::int64_t>(whole);
    return out;
}

Number numberFrom(std::int64_t whole) { return {static_cast<double>(whole), whole}; }

// Of a Decimal too; whole numbers have more digits there than a double keeps.
Number numberFromText(const std::string& text) {
    const auto real = sql::readNumber(text);
    if (!real) throw sql::Error("22018", "The text '" + jet::abbreviated(text) + "' is no number.");
    Number out = numberFrom(*real);
    std::string_view digits = sql::trimmed(text);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), out.whole);
    const std::string_view rest(end, static_cast<std::size_t>(digits.data() + digits.size() - end));
    const bool isPlain = rest.empty() || (rest.front() == '.' && rest.find_first_of("eE") == std::string_view::npos);
    if (error != std::errc() || !isPlain) return numberFrom(*real);
    out.fits = true;
    out.hasFraction = rest.find_first_not_of(".0") != std::string_view::npos;
    return out;
}

Number numberFrom(const Value& value) {
    struct Maker {
        Number operator()(bool truth) const { return numberFrom(std::int64_t{truth}); }
        Number operator()(std::int32_t number) const { return numberFrom(std::int64_t{number}); }
        Number operator()(double number) const { return numberFrom(number); }
        Number operator()(jet::Currency amount) const {
            return {static_cast<double>(amount.tenThousandths) / 10000, amount.tenThousandths / 10000, true,
                    amount.tenThousandths % 10000 != 0};
        }
        Number operator()(const std::string& text) const { return numberFromText(text); }
        Number operator()(std::monostate) const { refuseConversion(); }
        Number operator()(jet::DateTime) const { refuseConversion(); }
        Number operator()(const jet::Bytes&) const { refuseConversion(); }
    };
    return std::visit(Maker(), value);
}

template <class T>
void putWhole(const Conversion& job) {
    const Number number = numberFrom(job.value);
    if (!number.fits || !std::in_range<T>(number.whole)) refuseRange();
    if (number.hasFraction) job.warnOfLoss("The fraction of a number was cut off.");
    job.put(static_cast<T>(number.whole));
}

void putBit(const Conversion& job) {
    const Number number = numberFrom(job.value);
    if (number.real < 0 || number.real >= 2) refuseRange();
    if (number.hasFraction) job.warnOfLoss("The fraction of a number was cut off.");
    job.put(static_cast<SQLCHAR>(number.whole));
}

void putDouble(const Conversion& job) { job.put(numberFrom(job.value).real); }

void putFloat(const Conversion& job) {
    const double real = numberFrom(job.value).real;
    if (std::abs(real) > std::numeric_limits<float>::max()) refuseRange();
    job.put(static_cast<SQLREAL>(real));
}

sql::Moment momentFrom(const Value& value) {
    if (const auto* date = std::get_if<jet::DateTime>(&value)) return sql::toMoment(*date);
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) refuseConversion();
    const auto date = sql::readDate(*text, sql::localeDateOrder());
    if (!date) throw sql::Error("22007", "The text '" + jet::abbreviated(*text) + "' is no date.");
    return sql::toMoment(*date);
}

void putDate(const Conversion& job) {
    const sql::Moment m = momentFrom(job.value);
    if (m.hour != 0 || m.minute != 0 || m.second != 0) job.warnOfLoss("The time of a date was cut off.");
    job.put(SQL_DATE_STRUCT{static_cast<SQLSMALLINT>(m.year), static_cast<SQLUSMALLINT>(m.month),
                            static_cast<SQLUSMALLINT>(m.day)});
}

void putTime(const Conversion& job) {
    const sql::Moment m = momentFrom(job.value);
    job.put(SQL_TIME_STRUCT{static_cast<SQLUSMALLINT>(m.hour), static_cast<SQLUSMALLINT>(m.minute),
                            static_cast<SQLUSMALLINT>(m.second)});
}

void putTimestamp(const Conversion& job) {
    const sql::Moment m = momentFrom(job.value);
    job.put(SQL_TIMESTAMP_STRUCT{static_cast<SQLSMALLINT>(m.year), static_cast<SQLUSMALLINT>(m.month),
                                 static_cast<SQLUSMALLINT>(m.day), static_cast<SQLUSMALLINT>(m.hour),
                                 static_cast<SQLUSMALLINT>(m.minute), static_cast<SQLUSMALLINT>(m.second), 0});
}

// The digits of a number as text, exactly.
std::string digitsFrom(const Conversion& job) {
    if (const auto* text = std::get_if<std::string>(&job.value)) return *text;
    numberFrom(job.value);  // refuses what is none
    return sql::textOf(job.value, job.column.type);
}

void putNumeric(const Conversion& job) {
    const int own =
        job.column.type == jet::ColumnType::numeric ? job.column.scale : sqlTypeOf(job.column.type).decimals;
    const std::string digits = digitsFrom(job);
    if (!sql::readNumber(digits))
        throw sql::Error("22018", "The text '" + jet::abbreviated(digits) + "' is no number.");
    constexpr int mostDecimals = 15;  // of a floating-point number or a text
    const auto exact = sql::readDecimal(digits, own < 0 ? mostDecimals : own);
    const auto decimal = job.target.scale ? sql::readDecimal(digits, *job.target.scale) : exact;
    if (!decimal || !exact) refuseRange();
    if (decimal->scale < exact->scale && *sql::readNumber(sql::writeDecimal(*decimal)) != *sql::readNumber(digits)) {
        job.warnOfLoss("The fraction of a number was cut off.");
    }
    constexpr SQLCHAR precision = 38;
    SQL_NUMERIC_STRUCT out{
        precision, static_cast<SQLSCHAR>(decimal->scale), static_cast<SQLCHAR>(decimal->negative ? 0 : 1), {}};
    std::copy(decimal->magnitude.begin(), decimal->magnitude.end(), std::begin(out.val));
    job.put(out);
}

void putGuid(const Conversion& job) {
    jet::Value value = job.value;
    if (const auto* text = std::get_if<std::string>(&value)) {
        const jet::ColumnInfo guid{.name = job.column.name, .type = jet::ColumnType::guid};
        value = sql::coerce({.kind = sql::Literal::Kind::text, .text = *text}, guid, sql::localeDateOrder());
    }
    const auto* const bytes = std::get_if<jet::Bytes>(&value);
    if (bytes == nullptr || bytes->size() != sizeof(SQLGUID)) refuseConversion();
    SQLGUID out{};
    std::memcpy(&out, bytes->data(), sizeof out);
    job.put(out);
}

struct Writer {
    SQLSMALLINT cType;
    void (*put)(const Conversion&);
};

constexpr std::array<Writer, 22> writers = {{
    {SQL_C_BIT, putBit},
    {SQL_C_TINYINT, putWhole<SQLSCHAR>},
    {SQL_C_STINYINT, putWhole<SQLSCHAR>},
    {SQL_C_UTINYINT, putWhole<SQLCHAR>},
    {SQL_C_SHORT, putWhole<SQLSMALLINT>},
    {SQL_C_SSHORT, putWhole<SQLSMALLINT>},
    {SQL_C_USHORT, putWhole<SQLUSMALLINT>},
    {SQL_C_LONG, putWhole<SQLINTEGER>},
    {SQL_C_SLONG, putWhole<SQLINTEGER>},
    {SQL_C_ULONG, putWhole<SQLUINTEGER>},
    {SQL_C_SBIGINT, putWhole<std::int64_t>},
    {SQL_C_UBIGINT, putWhole<std::uint64_t>},
    {SQL_C_FLOAT, putFloat},
    {SQL_C_DOUBLE, putDouble},
    {SQL_C_NUMERIC, putNumeric},
    {SQL_C_GUID, putGuid},
    {SQL_C_DATE, putDate},
    {SQL_C_TYPE_DATE, putDate},
    {SQL_C_TIME, putTime},
    {SQL_C_TYPE_TIME, putTime},
    {SQL_C_TIMESTAMP, putTimestamp},
    {SQL_C_TYPE_TIMESTAMP, putTimestamp},
}};

const Writer* writerOf(SQLSMALLINT cType) {
    const auto* const found = std::find_if(writers.begin(), writers.end(), [&](auto& p) { return p.cType == cType; });
    return found == writers.end() ? nullptr : found;
}

bool isPiecewise(SQLSMALLINT cType) { return cType == SQL_C_CHAR || cType == SQL_C_WCHAR || cType == SQL_C_BINARY; }

std::string bytesFor(SQLSMALLINT cType, const Value& value, jet::ColumnType type) {
    if (cType != SQL_C_BINARY) {
        return encoded(sql::textOf(value, type), cType == SQL_C_WCHAR ? Width::wide : Width::narrow);
    }
    if (const auto* bytes = std::get_if<jet::Bytes>(&value)) return {bytes->begin(), bytes->end()};
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    refuseConversion();
}

// How many characters of a number, date or yes/no have to fit in the buffer: those before the decimals. Texts and bytes
// may be cut anywhere.
std::size_t leastCharacters(const Value& value, jet::ColumnType type) {
    const auto kind = sql::kindOf(type);
    if (kind != sql::ValueKind::number && kind != sql::ValueKind::date) return 0;
    const std::string text = sql::textOf(value, type);
    const bool hasDecimals = text.find_first_of("e:") == std::string::npos;
    return hasDecimals ? std::min(text.find('.'), text.size()) : text.size();
}

SQLRETURN putPiece(SQLSMALLINT cType, const Conversion& job, jet::ColumnType type, Progress& progress) {
    if (!progress.bytes) progress.bytes = bytesFor(cType, job.value, type);
    const std::string_view rest = std::string_view(*progress.bytes).substr(progress.given);
    job.putLength(rest.size());
    if (job.target.buffer == nullptr) return SQL_SUCCESS;  // asks for the length alone
    const std::size_t unit = cType == SQL_C_WCHAR ? sizeof(SQLWCHAR) : 1;
    const std::size_t zero = cType == SQL_C_BINARY ? 0 : unit;
    const auto room = static_cast<std::size_t>(job.target.capacity) / unit;
    const bool isCut = room * unit < rest.size() + zero && progress.given == 0 && zero > 0;
    // A buffer of no bytes at all asks for the length.
    if (isCut && job.target.capacity > 0) {
        const std::size_t least = leastCharacters(job.value, type);
        if (least > 0 && room <= least) refuseRange();
    }
    const Copied copied = copyBytesOut(rest, unit, zero, job.target.buffer, job.target.capacity);
    progress.given += copied.bytes;
    progress.finished = !copied.truncated;
    if (copied.truncated) job.diagnostics.warn("01004", truncatedText);
    return SQL_SUCCESS;
}

}  // namespace

SQLSMALLINT resolvedType(SQLSMALLINT cType, const sql::ResultColumn& column) {
    return cType == SQL_C_DEFAULT ? sqlTypeOf(column.type).cType : cType;
}

bool isTargetType(SQLSMALLINT cType) {
    return cType == SQL_C_DEFAULT || isPiecewise(cType) || writerOf(cType) != nullptr;
}

SQLRETURN transfer(const Value& value, const sql::ResultColumn& column, const Target& target, Progress& progress,
                   Diagnostics& diagnostics) {
    if (progress.finished) return SQL_NO_DATA;
    if (std::holds_alternative<std::monostate>(value)) {
        if (target.indicator == nullptr)
            throw sql::Error("22002", "The value is Null and there is no indicator for it.");
        storeAt(target.indicator, SQLLEN{SQL_NULL_DATA});
        progress.finished = true;
        return SQL_SUCCESS;
    }
    const SQLSMALLINT cType = resolvedType(target.cType, column);
    const Conversion job{value, column, target, diagnostics};
    if (isPiecewise(cType)) return putPiece(cType, job, column.type, progress);
    const Writer* const writer = writerOf(cType);
    if (writer == nullptr) throw sql::Error("HY003", "The driver does not offer this C type.");
    writer->put(job);
    progress.finished = true;
    return SQL_SUCCESS;
}

}  // namespace odbc
