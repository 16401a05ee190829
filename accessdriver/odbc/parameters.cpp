#include "accessdriver/odbc/parameters.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "accessdriver/odbc/moved.h"
#include "accessdriver/odbc/text.h"
#include "accessdriver/sql/calendar.h"
#include "accessdriver/sql/error.h"
#include "accessdriver/sql/numbers.h"

namespace odbc {

namespace {

using sql::Literal;

// Where a variable lies; it may be at any address.
struct Source {
    const char* data;
    SQLLEN length;  // bytes, or SQL_NTS

    template <class T>
    T as() const {
        T value;
        std::memcpy(&value, data, sizeof value);
        return value;
    }
};

using Texts = std::deque<std::string>;

Literal number(std::string text, Texts& texts) {
    return {.kind = Literal::Kind::number, .text = texts.emplace_back(std::move(text))};
}

template <class T>
Literal readWhole(const Source& source, Texts& texts) {
    return number(std::to_string(source.as<T>()), texts);
}

template <class T>
Literal readReal(const Source& source, Texts& texts) {
    return number(sql::writeNumber(source.as<T>()), texts);
}

Literal readBit(const Source& source, Texts&) {
    return {.kind = Literal::Kind::boolean, .truth = source.as<SQLCHAR>() != 0};
}

Literal readNarrow(const Source& source, Texts& texts) {
    std::string text = utf8From(reinterpret_cast<const SQLCHAR*>(source.data), source.length);
    return {.kind = Literal::Kind::text, .text = texts.emplace_back(std::move(text))};
}

// The units are copied first: a wide buffer need not lie at an even address.
Literal readWide(const Source& source, Texts& texts) {
    if (source.length < 0 && source.length != SQL_NTS) throw sql::Error("HY090", "The length of a text is negative.");
    std::u16string units;
    for (SQLLEN at = 0; source.length == SQL_NTS || at + 1 < source.length; at += 2) {
        const auto unit = Source{source.data + at, 0}.as<char16_t>();
        if (source.length == SQL_NTS && unit == 0) break;
        units += unit;
    }
    std::string text = utf8From(reinterpret_cast<const SQLWCHAR*>(units.data()), static_cast<SQLLEN>(units.size()));
    return {.kind = Literal::Kind::text, .text = texts.emplace_back(std::move(text))};
}

Literal readBytes(const Source& source, Texts& texts) {
    if (source.length < 0) throw sql::Error("HY090", "A binary parameter has no length.");
    return {.kind = Literal::Kind::bytes,
            .text = texts.emplace_back(source.data, static_cast<std::size_t>(source.length))};
}

Literal date(const sql::Moment& moment) {
    if (!sql::isReal(moment)) throw sql::Error("22007", "A date parameter holds no real date.");
    return {.kind = Literal::Kind::date, .date = sql::toDateTime(moment)};
}

Literal readDate(const Source& source, Texts&) {
    const auto day = source.as<SQL_DATE_STRUCT>();
    return date({.year = day.year, .month = day.month, .day = day.day});
}

Literal readTime(const Source& source, Texts&) {
    const auto time = source.as<SQL_TIME_STRUCT>();
    return date({.hour = time.hour, .minute = time.minute, .second = time.second});
}

Literal readTimestamp(const Source& source, Texts&) {
    const auto stamp = source.as<SQL_TIMESTAMP_STRUCT>();
    return date({stamp.year, stamp.month, stamp.day, stamp.hour, stamp.minute, stamp.second});
}

struct Reader {
    SQLSMALLINT cType;
    Literal (*read)(const Source&, Texts&);
};

constexpr std::array<Reader, 24> readers = {{
    {SQL_C_CHAR, readNarrow},
    {SQL_C_WCHAR, readWide},
    {SQL_C_BINARY, readBytes},
    {SQL_C_BIT, readBit},
    {SQL_C_TINYINT, readWhole<SQLSCHAR>},
    {SQL_C_STINYINT, readWhole<SQLSCHAR>},
    {SQL_C_UTINYINT, readWhole<SQLCHAR>},
    {SQL_C_SHORT, readWhole<SQLSMALLINT>},
    {SQL_C_SSHORT, readWhole<SQLSMALLINT>},
    {SQL_C_USHORT, readWhole<SQLUSMALLINT>},
    {SQL_C_LONG, readWhole<SQLINTEGER>},
    {SQL_C_SLONG, readWhole<SQLINTEGER>},
    {SQL_C_ULONG, readWhole<SQLUINTEGER>},
    {SQL_C_SBIGINT, readWhole<SQLBIGINT>},
    {SQL_C_UBIGINT, readWhole<SQLUBIGINT>},
    {SQL_BIGINT, readWhole<SQLBIGINT>},
    {SQL_C_FLOAT, readReal<SQLREAL>},
    {SQL_C_DOUBLE, readReal<SQLDOUBLE>},
    {SQL_C_DATE, readDate},
    {SQL_C_TYPE_DATE, readDate},
    {SQL_C_TIME, readTime},
    {SQL_C_TYPE_TIME, readTime},
    {SQL_C_TIMESTAMP, readTimestamp},
    {SQL_C_TYPE_TIMESTAMP, readTimestamp},
}};

const Reader* readerOf(SQLSMALLINT cType) {
    const auto* const found = std::find_if(readers.begin(), readers.end(), [&](auto& r) { return r.cType == cType; });
    return found == readers.end() ? nullptr : found;
}

// The C type that the ODBC reference gives to SQL_C_DEFAULT for each SQL type.
SQLSMALLINT defaultCType(SQLSMALLINT sqlType) {
    switch (sqlType) {
        case SQL_WCHAR:
        case SQL_WVARCHAR:
        case SQL_WLONGVARCHAR:
            return SQL_C_WCHAR;
        case SQL_BINARY:
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            return SQL_C_BINARY;
        case SQL_FLOAT:
            return SQL_C_DOUBLE;
        case SQL_DECIMAL:
        case SQL_NUMERIC:
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
            return SQL_C_CHAR;
        default:
            return sqlType;  // for the others both lists have the same numbers
    }
}

}  // namespace

bool isParameterType(SQLSMALLINT cType) { return cType == SQL_C_DEFAULT || readerOf(cType) != nullptr; }

Literal literalFrom(const BoundParameter& parameter, SQLULEN offset, Texts& texts) {
    const SQLLEN* indicator = moved(parameter.indicator, offset);
    const SQLLEN length = indicator == nullptr ? SQL_NTS : *indicator;
    if (length == SQL_NULL_DATA) return {};
    if (length == SQL_DATA_AT_EXEC || length <= SQL_LEN_DATA_AT_EXEC_OFFSET) {
        throw sql::Error("HYC00", "The driver does not take parameter data at execution.");
    }
    if (length == SQL_DEFAULT_PARAM) throw sql::Error("07S01", "A statement has no default parameters.");
    const char* buffer = static_cast<const char*>(parameter.buffer);
    if (buffer == nullptr) throw sql::Error("HY009", "A parameter has no buffer.");
    const SQLSMALLINT cType = parameter.cType == SQL_C_DEFAULT ? defaultCType(parameter.sqlType) : parameter.cType;
    const Reader* const reader = readerOf(cType);
    if (reader == nullptr) throw sql::Error("HY003", "The driver does not read parameters of this C type.");
    return reader->read({moved(buffer, offset), length}, texts);
}

}  // namespace odbc
