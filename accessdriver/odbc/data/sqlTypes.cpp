#include "accessdriver/odbc/data/sqlTypes.h"

#include <algorithm>
#include <array>

namespace odbc {

namespace {

using jet::ColumnType;

constexpr SQLINTEGER longText = 0x3FFFFFFF;    // characters of a memo
constexpr SQLINTEGER longBinary = 0x3FFFFFFF;  // bytes of an OLE object
constexpr SQLINTEGER mostText = 255;
constexpr SQLSMALLINT none = -1;
constexpr SQLSMALLINT all = SQL_PRED_SEARCHABLE;

// Sizes, display sizes and octet lengths by the ODBC reference's appendix on data types; but the shortest text of a
// REAL that reads back as the same number has up to nine digits: -1.00051195e-36.
constexpr std::array<SqlType, 14> types = {{
    {ColumnType::guid, "GUID", SQL_GUID, SQL_GUID, SQL_C_GUID, 36, 36, 16, none, 0, SQL_TRUE, SQL_PRED_NONE, "'",
     nullptr},
    {ColumnType::memo, "LONGCHAR", SQL_WLONGVARCHAR, SQL_WLONGVARCHAR, SQL_C_WCHAR, longText, longText, 2 * longText,
     none, 0, SQL_TRUE, all, "'", nullptr},
    {ColumnType::text, "VARCHAR", SQL_WVARCHAR, SQL_WVARCHAR, SQL_C_WCHAR, mostText, mostText, 2 * mostText, none, 0,
     SQL_TRUE, all, "'", "MAX LENGTH"},
    {ColumnType::boolean, "BIT", SQL_BIT, SQL_BIT, SQL_C_BIT, 1, 1, 1, none, 0, SQL_TRUE, all, nullptr, nullptr},
    {ColumnType::byte, "BYTE", SQL_TINYINT, SQL_TINYINT, SQL_C_UTINYINT, 3, 3, 1, 0, 10, SQL_TRUE, all, nullptr,
     nullptr},
    {ColumnType::ole, "LONGBINARY", SQL_LONGVARBINARY, SQL_LONGVARBINARY, SQL_C_BINARY, longBinary, 2 * longBinary,
     longBinary, none, 0, SQL_TRUE, SQL_PRED_NONE, nullptr, nullptr},
    {ColumnType::binary, "VARBINARY", SQL_VARBINARY, SQL_VARBINARY, SQL_C_BINARY, mostText, 2 * mostText, mostText,
     none, 0, SQL_TRUE, SQL_PRED_NONE, nullptr, "MAX LENGTH"},
    {ColumnType::currency, "CURRENCY", SQL_NUMERIC, SQL_NUMERIC, SQL_C_CHAR, 19, 21, 21, 4, 10, SQL_FALSE, all, nullptr,
     nullptr},
    {ColumnType::numeric, "DECIMAL", SQL_DECIMAL, SQL_DECIMAL, SQL_C_CHAR, 28, 30, 30, 0, 10, SQL_FALSE, all, nullptr,
     "PRECISION,SCALE"},
    {ColumnType::longInteger, "INTEGER", SQL_INTEGER, SQL_INTEGER, SQL_C_SLONG, 10, 11, 4, 0, 10, SQL_FALSE, all,
     nullptr, nullptr},
    {ColumnType::integer, "SMALLINT", SQL_SMALLINT, SQL_SMALLINT, SQL_C_SSHORT, 5, 6, 2, 0, 10, SQL_FALSE, all, nullptr,
     nullptr},
    {ColumnType::single, "REAL", SQL_REAL, SQL_REAL, SQL_C_FLOAT, 24, 15, 4, none, 2, SQL_FALSE, all, nullptr, nullptr},
    {ColumnType::doubleFloat, "DOUBLE", SQL_DOUBLE, SQL_DOUBLE, SQL_C_DOUBLE, 53, 24, 8, none, 2, SQL_FALSE, all,
     nullptr, nullptr},
    {ColumnType::dateTime, "DATETIME", SQL_TYPE_TIMESTAMP, SQL_DATETIME, SQL_C_TYPE_TIMESTAMP, 19, 19, 16, 0, 0,
     SQL_TRUE, all, "#", nullptr},
}};

static_assert(std::is_sorted(types.begin(), types.end(),
                             [](const auto& a, const auto& b) { return a.sqlType < b.sqlType; }));

}  // namespace

std::span<const SqlType> sqlTypes() { return types; }

const SqlType& sqlTypeOf(ColumnType type) {
    return *std::find_if(types.begin(), types.end(), [&](const SqlType& t) { return t.type == type; });
}

Extent extentOf(ColumnType type, int length, int precision, int scale) {
    const SqlType& known = sqlTypeOf(type);
    if (type == ColumnType::text && length > 0) return {length, length, 2 * length, none};
    if (type == ColumnType::binary && length > 0) return {length, 2 * length, length, none};
    // A sign and a point, and a zero before the point where all digits are behind it.
    if (type == ColumnType::numeric && precision > 0) {
        const int characters = precision + (scale == precision ? 3 : 2);
        return {precision, characters, characters, static_cast<SQLSMALLINT>(scale)};
    }
    return {known.size, known.displaySize, known.octets, known.decimals};
}

}  // namespace odbc
