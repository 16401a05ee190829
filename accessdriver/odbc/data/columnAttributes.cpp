#include "accessdriver/odbc/data/columnAttributes.h"

#include <algorithm>

#include "accessdriver/odbc/data/sqlTypes.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

ColumnAttribute columnAttribute(const sql::ResultColumn& column, SQLUSMALLINT field) {
    const SqlType& type = sqlTypeOf(column.type);
    const Extent extent = extentOf(column);
    const auto text = [](const char* value) { return std::string(value == nullptr ? "" : value); };
    const auto number = [](auto value) { return static_cast<SQLLEN>(value); };
    switch (field) {
        case SQL_DESC_NAME:
        case SQL_DESC_LABEL:
        case SQL_COLUMN_NAME:
            return column.name;
        case SQL_DESC_BASE_COLUMN_NAME:
            return column.base;
        case SQL_DESC_TABLE_NAME:
        case SQL_DESC_BASE_TABLE_NAME:
            return column.table;
        case SQL_DESC_CATALOG_NAME:
        case SQL_DESC_SCHEMA_NAME:
            return std::string();
        case SQL_DESC_TYPE_NAME:
        case SQL_DESC_LOCAL_TYPE_NAME:
            return text(type.name);
        case SQL_DESC_LITERAL_PREFIX:
        case SQL_DESC_LITERAL_SUFFIX:
            return text(type.quote);
        case SQL_DESC_CONCISE_TYPE:
            return number(type.sqlType);
        case SQL_DESC_TYPE:
            return number(type.verboseType);
        case SQL_DESC_DATETIME_INTERVAL_CODE:
            return number(column.type == jet::ColumnType::dateTime ? SQL_CODE_TIMESTAMP : 0);
        case SQL_DESC_DATETIME_INTERVAL_PRECISION:
            return number(0);
        case SQL_DESC_PRECISION:
            // Of a date, the digits of its fractions of a second.
            return number(column.type == jet::ColumnType::dateTime ? 0 : extent.size);
        case SQL_DESC_LENGTH:
        case SQL_COLUMN_PRECISION:
            return number(extent.size);
        case SQL_DESC_OCTET_LENGTH:
        case SQL_COLUMN_LENGTH:
            return number(extent.octets);
        case SQL_DESC_DISPLAY_SIZE:
            return number(extent.displaySize);
        case SQL_DESC_SCALE:
        case SQL_COLUMN_SCALE:
            return number(std::max<SQLSMALLINT>(extent.decimals, 0));
        case SQL_DESC_NUM_PREC_RADIX:
            return number(type.radix);
        case SQL_DESC_NULLABLE:
        case SQL_COLUMN_NULLABLE:
            return number(column.nullable ? SQL_NULLABLE : SQL_NO_NULLS);
        case SQL_DESC_UNSIGNED:
            return number(type.isUnsigned);
        case SQL_DESC_FIXED_PREC_SCALE:
            return number(column.type == jet::ColumnType::currency ? SQL_TRUE : SQL_FALSE);
        case SQL_DESC_AUTO_UNIQUE_VALUE:
            return number(column.autoNumber ? SQL_TRUE : SQL_FALSE);
        case SQL_DESC_CASE_SENSITIVE:
            return number(SQL_FALSE);
        case SQL_DESC_SEARCHABLE:
            return number(type.searchable);
        case SQL_DESC_UNNAMED:
            return number(SQL_NAMED);
        case SQL_DESC_ROWVER:
            return number(SQL_FALSE);
        case SQL_DESC_UPDATABLE:
            return number(SQL_ATTR_READONLY);
        default:
            throw sql::Error("HY091", "A column has no field " + std::to_string(field) + ".");
    }
}

}  // namespace odbc
