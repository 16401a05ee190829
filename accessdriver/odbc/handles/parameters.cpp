#include "accessdriver/odbc/handles/parameters.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "accessdriver/odbc/data/text.h"
#include "accessdriver/odbc/data/variable.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"

namespace odbc {

namespace {

using sql::Literal;

// Where a variable lies; it may be at any address.
struct Source {
    const char* data;
    SQLLEN length;  // bytes, or SQL_NTS

    template <class T>
    T as() const {
        return loadFrom<T>(data);
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

// The scale is the structure's own: applications rarely set that of the descriptor.
Literal readNumeric(const Source& source, Texts& texts) {
    const auto given = source.as<SQL_NUMERIC_STRUCT>();
    sql::Decimal decimal{.negative = given.sign == 0, .scale = given.scale};
    std::copy(std::begin(given.val), std::end(given.val), decimal.magnitude.begin());
    return number(sql::writeDecimal(decimal), texts);
}

Literal readGuid(const Source& source, Texts& texts) {
    const jet::Bytes bytes(source.data, source.data + sizeof(SQLGUID));
    return {.kind = Literal::Kind::text, .text = texts.emplace_back(sql::textOf(bytes, jet::ColumnType::guid))};
}

// A text for a binary parameter holds two hexadecimal digits for each byte.
Literal bytesFromDigits(const Literal& text, Texts& texts) {
    const auto bytes = sql::readHexadecimal(text.text);
    if (!bytes) throw sql::Error("22018", "The text of a binary parameter is no row of hexadecimal digits.");
    return {.kind = Literal::Kind::bytes, .text = texts.emplace_back(bytes->begin(), bytes->end())};
}

bool isBinary(SQLSMALLINT sqlType) {
    return sqlType == SQL_BINARY || sqlType == SQL_VARBINARY || sqlType == SQL_LONGVARBINARY;
}

struct Reader {
    SQLSMALLINT cType;
    Literal (*read)(const Source&, Texts&);
};

constexpr std::array<Reader, 26> readers = {{
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
    {SQL_C_NUMERIC, readNumeric},
    {SQL_C_GUID, readGuid},
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

// The C type that SQL_C_DEFAULT means for each SQL type, by the ODBC reference.
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

bool isVarying(SQLSMALLINT cType) { return cType == SQL_C_CHAR || cType == SQL_C_WCHAR || cType == SQL_C_BINARY; }

}  // namespace

bool isParameterType(SQLSMALLINT cType) { return cType == SQL_C_DEFAULT || readerOf(cType) != nullptr; }

ParameterSets::ParameterSets(const DescriptorHandle& application, const DescriptorHandle& implementation,
                             std::size_t parameters)
    : application_(&application), implementation_(&implementation), parameters_(parameters) {
    for (std::size_t number = 1; number <= parameters; ++number) {
        if (application.isBound(number)) continue;
        throw sql::Error("07002", "Nothing is bound to parameter " + std::to_string(number) + ".");
    }
}

bool ParameterSets::isIgnored(SQLULEN set) const {
    return application_->arrayStatus != nullptr &&
           loadFrom<SQLUSMALLINT>(application_->arrayStatus + set) == SQL_PARAM_IGNORE;
}

SQLSMALLINT ParameterSets::cTypeOf(std::size_t parameter) const {
    const SQLSMALLINT given = application_->records[parameter].type;
    if (given != SQL_C_DEFAULT) return given;
    const bool described = parameter < implementation_->records.size();
    return defaultCType(described ? implementation_->records[parameter].type : SQLSMALLINT{SQL_VARCHAR});
}

// In bytes, or one of the codes.
SQLLEN ParameterSets::lengthOf(const ParameterPosition& place) const {
    const DescriptorRecord& record = application_->records[place.parameter];
    const auto at = [&](SQLLEN* base) { return application_->element(base, place.set, sizeof(SQLLEN)); };
    const SQLLEN* const indicator = at(record.indicatorAddress);
    if (indicator != nullptr && loadFrom<SQLLEN>(indicator) == SQL_NULL_DATA) return SQL_NULL_DATA;
    const SQLLEN* const length = at(record.lengthAddress);
    return length == nullptr ? SQLLEN{SQL_NTS} : loadFrom<SQLLEN>(length);
}

const char* ParameterSets::dataOf(const ParameterPosition& place) const {
    const DescriptorRecord& record = application_->records[place.parameter];
    const SQLULEN bytes = sizeOfVariable(cTypeOf(place.parameter), record.octetLength);
    return application_->element(static_cast<const char*>(record.data), place.set, bytes);
}

std::optional<ParameterPosition> ParameterSets::nextDataAtExecution() {
    ParameterPosition at = position_.value_or(ParameterPosition{});
    if (started_) ++at.parameter;
    started_ = true;
    position_.reset();
    for (; at.set < sets(); at = {at.set + 1, 0}) {
        if (isIgnored(at.set)) continue;
        for (; at.parameter < parameters_; ++at.parameter) {
            const SQLLEN length = lengthOf(at);
            if (length != SQL_DATA_AT_EXEC && length > SQL_LEN_DATA_AT_EXEC_OFFSET) continue;
            dataAtExecution_.try_emplace(at);
            position_ = at;
            return at;
        }
    }
    return std::nullopt;
}

SQLPOINTER ParameterSets::token(const ParameterPosition& place) const {
    return const_cast<char*>(dataOf(place));  // NOLINT: handed back as it was given
}

void ParameterSets::put(const void* data, SQLLEN length) {
    if (!position_) throw sql::Error("HY010", "No parameter waits for its data.");
    Pieces& pieces = dataAtExecution_[*position_];
    const SQLSMALLINT cType = cTypeOf(position_->parameter);
    if (pieces.null) throw sql::Error("HY020", "A value that is Null has no further pieces.");
    if (pieces.begun && !isVarying(cType)) throw sql::Error("HY019", "Only texts and bytes come in pieces.");
    if (length == SQL_NULL_DATA) {
        if (pieces.begun) throw sql::Error("HY020", "A value that has pieces can't become Null.");
        pieces.null = true;
        return;
    }
    pieces.begun = true;
    const char* const bytes = static_cast<const char*>(data);
    if (!isVarying(cType)) length = static_cast<SQLLEN>(sizeOfVariable(cType, 0));
    if (length == SQL_NTS && cType == SQL_C_CHAR) length = static_cast<SQLLEN>(std::strlen(bytes));
    if (length == SQL_NTS && cType == SQL_C_WCHAR) {
        length = 0;
        while (bytes[length] != 0 || bytes[length + 1] != 0) length += 2;
    }
    if (length < 0) throw sql::Error("HY090", "A piece of a parameter has a negative length.");
    if (bytes == nullptr && length > 0) throw sql::Error("HY009", "A piece of a parameter has no address.");
    if (length > 0) pieces.bytes.append(bytes, static_cast<std::size_t>(length));
}

std::vector<Literal> ParameterSets::values(SQLULEN set, Texts& texts) const {
    std::vector<Literal> out;
    out.reserve(parameters_);
    for (ParameterPosition at{set, 0}; at.parameter < parameters_; ++at.parameter) {
        const Reader* const reader = readerOf(cTypeOf(at.parameter));
        if (reader == nullptr) throw sql::Error("HY003", "The driver does not read parameters of this C type.");
        Source source{dataOf(at), lengthOf(at)};
        if (const auto given = dataAtExecution_.find(at); given != dataAtExecution_.end()) {
            const Pieces& pieces = given->second;
            if (!pieces.null && !pieces.begun && !isVarying(reader->cType)) {
                throw sql::Error("HY010", "A parameter did not get its data.");
            }
            source = {pieces.bytes.data(),
                      pieces.null ? SQLLEN{SQL_NULL_DATA} : static_cast<SQLLEN>(pieces.bytes.size())};
        }
        if (source.length == SQL_NULL_DATA) {
            out.emplace_back();
            continue;
        }
        if (source.length == SQL_DEFAULT_PARAM) throw sql::Error("07S01", "A statement has no default parameters.");
        if (source.data == nullptr && source.length != 0) throw sql::Error("HY009", "A parameter has no buffer.");
        out.push_back(reader->read(source, texts));
        const bool described = at.parameter < implementation_->records.size();
        if (described && isBinary(implementation_->records[at.parameter].type) &&
            out.back().kind == Literal::Kind::text) {
            out.back() = bytesFromDigits(out.back(), texts);
        }
    }
    return out;
}

}  // namespace odbc
