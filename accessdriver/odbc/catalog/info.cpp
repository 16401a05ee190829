#include "accessdriver/odbc/catalog/info.h"

#include <algorithm>
#include <array>

#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

template <class T>
struct Row {
    SQLUSMALLINT type;
    T value;
};

constexpr std::array<Row<const char*>, 34> texts = {{
    {SQL_ACCESSIBLE_PROCEDURES, "N"},
    {SQL_ACCESSIBLE_TABLES, "Y"},
    {SQL_CATALOG_NAME, "N"},
    {SQL_CATALOG_NAME_SEPARATOR, ""},
    {SQL_CATALOG_TERM, ""},
    {SQL_COLLATION_SEQ, ""},
    {SQL_COLUMN_ALIAS, "Y"},
    {SQL_DBMS_NAME, "ACCESS"},
    {SQL_DBMS_VER, "04.00.0000"},
    {SQL_DESCRIBE_PARAMETER, "Y"},
    {SQL_DRIVER_NAME, "libtolvarisaccess.so"},
    {SQL_DRIVER_ODBC_VER, "03.52"},
    {SQL_DRIVER_VER, DRIVER_VERSION},
    {SQL_EXPRESSIONS_IN_ORDERBY, "N"},
    {SQL_IDENTIFIER_QUOTE_CHAR, "`"},
    {SQL_INTEGRITY, "N"},
    {SQL_KEYWORDS, ""},
    {SQL_LIKE_ESCAPE_CLAUSE, "N"},
    {SQL_MAX_ROW_SIZE_INCLUDES_LONG, "N"},
    {SQL_MULT_RESULT_SETS, "N"},
    {SQL_MULTIPLE_ACTIVE_TXN, "Y"},
    {SQL_NEED_LONG_DATA_LEN, "N"},
    {SQL_ORDER_BY_COLUMNS_IN_SELECT, "N"},
    {SQL_OUTER_JOINS, "N"},
    {SQL_PROCEDURE_TERM, ""},
    {SQL_PROCEDURES, "N"},
    {SQL_ROW_UPDATES, "N"},
    {SQL_SCHEMA_TERM, ""},
    {SQL_SEARCH_PATTERN_ESCAPE, "\\"},
    {SQL_SERVER_NAME, ""},
    {SQL_SPECIAL_CHARACTERS, " !@#$%&*()-+=|\\{}:;'<,>?/~"},
    {SQL_TABLE_TERM, "TABLE"},
    {SQL_USER_NAME, "admin"},
    {SQL_XOPEN_CLI_YEAR, "1995"},
}};

constexpr std::array<Row<SQLUSMALLINT>, 31> shorts = {{
    {SQL_ACTIVE_ENVIRONMENTS, 0},
    {SQL_CATALOG_LOCATION, 0},
    {SQL_CONCAT_NULL_BEHAVIOR, SQL_CB_NULL},
    {SQL_CORRELATION_NAME, SQL_CN_ANY},
    {SQL_CURSOR_COMMIT_BEHAVIOR, SQL_CB_PRESERVE},
    {SQL_CURSOR_ROLLBACK_BEHAVIOR, SQL_CB_PRESERVE},
    {SQL_FILE_USAGE, SQL_FILE_CATALOG},
    {SQL_GROUP_BY, SQL_GB_NOT_SUPPORTED},
    {SQL_IDENTIFIER_CASE, SQL_IC_MIXED},
    {SQL_MAX_CATALOG_NAME_LEN, 0},
    {SQL_MAX_COLUMN_NAME_LEN, 64},
    {SQL_MAX_COLUMNS_IN_GROUP_BY, 0},
    {SQL_MAX_COLUMNS_IN_INDEX, 10},
    {SQL_MAX_COLUMNS_IN_ORDER_BY, 0},
    {SQL_MAX_COLUMNS_IN_SELECT, 255},
    {SQL_MAX_COLUMNS_IN_TABLE, 255},
    {SQL_MAX_CONCURRENT_ACTIVITIES, 0},
    {SQL_MAX_CURSOR_NAME_LEN, 64},
    {SQL_MAX_DRIVER_CONNECTIONS, 0},
    {SQL_MAX_IDENTIFIER_LEN, 64},
    {SQL_MAX_PROCEDURE_NAME_LEN, 0},
    {SQL_MAX_SCHEMA_NAME_LEN, 0},
    {SQL_MAX_TABLE_NAME_LEN, 64},
    {SQL_MAX_TABLES_IN_SELECT, 1},
    {SQL_MAX_USER_NAME_LEN, 0},
    {SQL_ODBC_API_CONFORMANCE, SQL_OAC_LEVEL1},
    {SQL_ODBC_SAG_CLI_CONFORMANCE, SQL_OSCC_COMPLIANT},
    {SQL_ODBC_SQL_CONFORMANCE, SQL_OSC_MINIMUM},
    {SQL_NULL_COLLATION, SQL_NC_LOW},
    {SQL_QUOTED_IDENTIFIER_CASE, SQL_IC_MIXED},
    {SQL_TXN_CAPABLE, SQL_TC_DML},
}};

constexpr SQLUINTEGER forwardOnly = SQL_CA1_NEXT;

// A statement may be of any length, and the file's format limits a row to one page of 4096 bytes.
constexpr std::array<Row<SQLUINTEGER>, 23> numbers = {{
    {SQL_AGGREGATE_FUNCTIONS, SQL_AF_COUNT | SQL_AF_MIN | SQL_AF_MAX | SQL_AF_SUM | SQL_AF_AVG},
    {SQL_ASYNC_MODE, SQL_AM_NONE},
    {SQL_CURSOR_SENSITIVITY, SQL_INSENSITIVE},
    {SQL_DATETIME_LITERALS, SQL_DL_SQL92_DATE | SQL_DL_SQL92_TIME | SQL_DL_SQL92_TIMESTAMP},
    {SQL_DEFAULT_TXN_ISOLATION, SQL_TXN_READ_COMMITTED},
    {SQL_FETCH_DIRECTION, SQL_FD_FETCH_NEXT | SQL_FD_FETCH_FIRST | SQL_FD_FETCH_LAST | SQL_FD_FETCH_PRIOR |
                              SQL_FD_FETCH_ABSOLUTE | SQL_FD_FETCH_RELATIVE},
    {SQL_FORWARD_ONLY_CURSOR_ATTRIBUTES1, forwardOnly},
    {SQL_FORWARD_ONLY_CURSOR_ATTRIBUTES2, SQL_CA2_READ_ONLY_CONCURRENCY | SQL_CA2_MAX_ROWS_SELECT},
    {SQL_GETDATA_EXTENSIONS, SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BOUND | SQL_GD_BLOCK},
    {SQL_INDEX_KEYWORDS, SQL_IK_NONE},
    {SQL_INSERT_STATEMENT, SQL_IS_INSERT_LITERALS},
    {SQL_MAX_ROW_SIZE, 4096},
    {SQL_NON_NULLABLE_COLUMNS, SQL_NNC_NON_NULL},
    {SQL_ODBC_INTERFACE_CONFORMANCE, SQL_OIC_CORE},
    {SQL_PARAM_ARRAY_ROW_COUNTS, SQL_PARC_NO_BATCH},
    {SQL_PARAM_ARRAY_SELECTS, SQL_PAS_NO_SELECT},
    {SQL_SCROLL_OPTIONS, SQL_SO_FORWARD_ONLY | SQL_SO_STATIC},
    {SQL_SQL92_PREDICATES,
     SQL_SP_COMPARISON | SQL_SP_IN | SQL_SP_BETWEEN | SQL_SP_LIKE | SQL_SP_ISNULL | SQL_SP_ISNOTNULL},
    {SQL_STATIC_CURSOR_ATTRIBUTES1, SQL_CA1_NEXT | SQL_CA1_ABSOLUTE | SQL_CA1_RELATIVE | SQL_CA1_POS_POSITION},
    {SQL_STATIC_CURSOR_ATTRIBUTES2, SQL_CA2_READ_ONLY_CONCURRENCY | SQL_CA2_MAX_ROWS_SELECT | SQL_CA2_CRC_EXACT},
    {SQL_TXN_ISOLATION_OPTION, SQL_TXN_READ_COMMITTED},
    {SQL_POS_OPERATIONS, SQL_POS_POSITION},
    {SQL_STANDARD_CLI_CONFORMANCE, SQL_SCC_ISO92_CLI},
}};

// What the driver has nothing of, and lengths that have no limit.
constexpr std::array<SQLUSMALLINT, 64> zeroes = {SQL_ALTER_TABLE,
                                                 SQL_ASYNC_DBC_FUNCTIONS,
                                                 SQL_BATCH_ROW_COUNT,
                                                 SQL_BATCH_SUPPORT,
                                                 SQL_BOOKMARK_PERSISTENCE,
                                                 SQL_CATALOG_USAGE,
                                                 SQL_CONVERT_FUNCTIONS,
                                                 SQL_CONVERT_GUID,
                                                 SQL_CONVERT_INTERVAL_DAY_TIME,
                                                 SQL_CONVERT_INTERVAL_YEAR_MONTH,
                                                 SQL_CONVERT_WCHAR,
                                                 SQL_CONVERT_WLONGVARCHAR,
                                                 SQL_CONVERT_WVARCHAR,
                                                 SQL_CREATE_ASSERTION,
                                                 SQL_CREATE_CHARACTER_SET,
                                                 SQL_CREATE_COLLATION,
                                                 SQL_CREATE_DOMAIN,
                                                 SQL_CREATE_SCHEMA,
                                                 SQL_CREATE_TABLE,
                                                 SQL_CREATE_TRANSLATION,
                                                 SQL_CREATE_VIEW,
                                                 SQL_DDL_INDEX,
                                                 SQL_DROP_ASSERTION,
                                                 SQL_DROP_CHARACTER_SET,
                                                 SQL_DROP_COLLATION,
                                                 SQL_DROP_DOMAIN,
                                                 SQL_DROP_SCHEMA,
                                                 SQL_DROP_TABLE,
                                                 SQL_DROP_TRANSLATION,
                                                 SQL_DROP_VIEW,
                                                 SQL_DYNAMIC_CURSOR_ATTRIBUTES1,
                                                 SQL_DYNAMIC_CURSOR_ATTRIBUTES2,
                                                 SQL_INFO_SCHEMA_VIEWS,
                                                 SQL_KEYSET_CURSOR_ATTRIBUTES1,
                                                 SQL_KEYSET_CURSOR_ATTRIBUTES2,
                                                 SQL_LOCK_TYPES,
                                                 SQL_MAX_ASYNC_CONCURRENT_STATEMENTS,
                                                 SQL_MAX_BINARY_LITERAL_LEN,
                                                 SQL_MAX_CHAR_LITERAL_LEN,
                                                 SQL_MAX_INDEX_SIZE,
                                                 SQL_MAX_STATEMENT_LEN,
                                                 SQL_NUMERIC_FUNCTIONS,
                                                 SQL_OJ_CAPABILITIES,
                                                 SQL_POSITIONED_STATEMENTS,
                                                 SQL_SCHEMA_USAGE,
                                                 SQL_SQL92_DATETIME_FUNCTIONS,
                                                 SQL_SQL92_FOREIGN_KEY_DELETE_RULE,
                                                 SQL_SQL92_FOREIGN_KEY_UPDATE_RULE,
                                                 SQL_SQL92_GRANT,
                                                 SQL_SQL92_NUMERIC_VALUE_FUNCTIONS,
                                                 SQL_SQL92_RELATIONAL_JOIN_OPERATORS,
                                                 SQL_SQL92_REVOKE,
                                                 SQL_SQL92_ROW_VALUE_CONSTRUCTOR,
                                                 SQL_SQL92_STRING_FUNCTIONS,
                                                 SQL_SQL92_VALUE_EXPRESSIONS,
                                                 SQL_SQL_CONFORMANCE,
                                                 SQL_STATIC_SENSITIVITY,
                                                 SQL_STRING_FUNCTIONS,
                                                 SQL_SUBQUERIES,
                                                 SQL_SYSTEM_FUNCTIONS,
                                                 SQL_TIMEDATE_ADD_INTERVALS,
                                                 SQL_TIMEDATE_DIFF_INTERVALS,
                                                 SQL_TIMEDATE_FUNCTIONS,
                                                 SQL_UNION};

constexpr std::array<SQLUSMALLINT, 57> functions = {SQL_API_SQLALLOCHANDLE,
                                                    SQL_API_SQLBINDCOL,
                                                    SQL_API_SQLBINDPARAMETER,
                                                    SQL_API_SQLCANCEL,
                                                    SQL_API_SQLCLOSECURSOR,
                                                    SQL_API_SQLCOLATTRIBUTE,
                                                    SQL_API_SQLCOLUMNPRIVILEGES,
                                                    SQL_API_SQLCOLUMNS,
                                                    SQL_API_SQLCONNECT,
                                                    SQL_API_SQLCOPYDESC,
                                                    SQL_API_SQLDESCRIBECOL,
                                                    SQL_API_SQLDESCRIBEPARAM,
                                                    SQL_API_SQLDISCONNECT,
                                                    SQL_API_SQLDRIVERCONNECT,
                                                    SQL_API_SQLENDTRAN,
                                                    SQL_API_SQLEXECDIRECT,
                                                    SQL_API_SQLEXECUTE,
                                                    SQL_API_SQLEXTENDEDFETCH,
                                                    SQL_API_SQLFETCH,
                                                    SQL_API_SQLFETCHSCROLL,
                                                    SQL_API_SQLFOREIGNKEYS,
                                                    SQL_API_SQLFREEHANDLE,
                                                    SQL_API_SQLFREESTMT,
                                                    SQL_API_SQLGETCONNECTATTR,
                                                    SQL_API_SQLGETCURSORNAME,
                                                    SQL_API_SQLGETDATA,
                                                    SQL_API_SQLGETDESCFIELD,
                                                    SQL_API_SQLGETDESCREC,
                                                    SQL_API_SQLGETDIAGFIELD,
                                                    SQL_API_SQLGETDIAGREC,
                                                    SQL_API_SQLGETENVATTR,
                                                    SQL_API_SQLGETFUNCTIONS,
                                                    SQL_API_SQLGETINFO,
                                                    SQL_API_SQLGETSTMTATTR,
                                                    SQL_API_SQLGETTYPEINFO,
                                                    SQL_API_SQLMORERESULTS,
                                                    SQL_API_SQLNATIVESQL,
                                                    SQL_API_SQLNUMPARAMS,
                                                    SQL_API_SQLNUMRESULTCOLS,
                                                    SQL_API_SQLPARAMDATA,
                                                    SQL_API_SQLPREPARE,
                                                    SQL_API_SQLPRIMARYKEYS,
                                                    SQL_API_SQLPROCEDURECOLUMNS,
                                                    SQL_API_SQLPROCEDURES,
                                                    SQL_API_SQLPUTDATA,
                                                    SQL_API_SQLROWCOUNT,
                                                    SQL_API_SQLSETCONNECTATTR,
                                                    SQL_API_SQLSETCURSORNAME,
                                                    SQL_API_SQLSETDESCFIELD,
                                                    SQL_API_SQLSETDESCREC,
                                                    SQL_API_SQLSETENVATTR,
                                                    SQL_API_SQLSETPOS,
                                                    SQL_API_SQLSETSTMTATTR,
                                                    SQL_API_SQLSPECIALCOLUMNS,
                                                    SQL_API_SQLSTATISTICS,
                                                    SQL_API_SQLTABLEPRIVILEGES,
                                                    SQL_API_SQLTABLES};

template <class Table>
const auto* find(const Table& table, SQLUSMALLINT type) {
    const auto* const found =
        std::find_if(table.begin(), table.end(), [&](const auto& row) { return row.type == type; });
    return found == table.end() ? nullptr : found;
}

}  // namespace

Info infoValue(const ConnectionHandle& connection, SQLUSMALLINT type) {
    if (type == SQL_DATA_SOURCE_NAME) return connection.source();
    if (type == SQL_DATABASE_NAME) return connection.path();
    if (type == SQL_DATA_SOURCE_READ_ONLY) {
        return std::string(connection.attribute(SQL_ATTR_ACCESS_MODE) == SQL_MODE_READ_ONLY ? "Y" : "N");
    }
    if (const auto* text = find(texts, type)) return std::string(text->value);
    if (const auto* number = find(shorts, type)) return number->value;
    if (const auto* number = find(numbers, type)) return number->value;
    if (std::find(zeroes.begin(), zeroes.end(), type) != zeroes.end()) return SQLUINTEGER{0};
    // None of the scalar conversions is offered.
    if (type >= SQL_CONVERT_BIGINT && type <= SQL_CONVERT_LONGVARBINARY) return SQLUINTEGER{0};
    throw sql::Error("HY096", "The driver has no information of type " + std::to_string(type) + ".");
}

std::span<const SQLUSMALLINT> offeredFunctions() { return functions; }

}  // namespace odbc
