// The catalog functions. Catalogs and schemas, which an Access file has not, are taken and left aside.

#include "accessdriver/odbc/catalog/catalog.h"

#include "accessdriver/odbc/data/text.h"
#include "accessdriver/odbc/handles/statement.h"

using namespace odbc;

namespace {

// Runs a catalog function: `catalogResult` returns its rows for the database; the second argument says whether names
// are identifiers instead of patterns.
template <class AnswerOf>
SQLRETURN runCatalogFunction(SQLHSTMT raw, const AnswerOf& catalogResult) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        const bool exact = statement.attribute(SQL_ATTR_METADATA_ID) == SQL_TRUE ||
                           statement.connection().attribute(SQL_ATTR_METADATA_ID) == SQL_TRUE;
        statement.setResult(catalogResult(statement.connection().session().database(), exact));
    });
}

template <class Char>
SQLRETURN tables(SQLHSTMT raw, const Char* catalog, SQLSMALLINT catalogLength, const Char* schema,
                 SQLSMALLINT schemaLength, const Char* table, SQLSMALLINT tableLength, const Char* types,
                 SQLSMALLINT typesLength) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool exact) {
        return tablesResult(database, optionalUtf8From(catalog, catalogLength), optionalUtf8From(schema, schemaLength),
                            optionalUtf8From(table, tableLength), optionalUtf8From(types, typesLength), exact);
    });
}

template <class Char>
SQLRETURN columns(SQLHSTMT raw, const Char* table, SQLSMALLINT tableLength, const Char* column,
                  SQLSMALLINT columnLength) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool exact) {
        return columnsResult(database, optionalUtf8From(table, tableLength), optionalUtf8From(column, columnLength),
                             exact);
    });
}

template <class Char>
SQLRETURN primaryKeys(SQLHSTMT raw, const Char* table, SQLSMALLINT length) {
    return runCatalogFunction(
        raw, [&](jet::Database& database, bool) { return primaryKeysResult(database, utf8From(table, length)); });
}

template <class Char>
SQLRETURN statistics(SQLHSTMT raw, const Char* table, SQLSMALLINT length, SQLUSMALLINT unique) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool) {
        return statisticsResult(database, utf8From(table, length), unique == SQL_INDEX_UNIQUE);
    });
}

template <class Char>
SQLRETURN specialColumns(SQLHSTMT raw, SQLUSMALLINT kind, const Char* table, SQLSMALLINT length) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool) {
        return specialColumnsResult(database, kind, utf8From(table, length));
    });
}

template <class Char>
SQLRETURN foreignKeys(SQLHSTMT raw, const Char* table, SQLSMALLINT length, const Char* foreignTable,
                      SQLSMALLINT foreignLength) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool) {
        return foreignKeysResult(database, utf8From(table, length), utf8From(foreignTable, foreignLength));
    });
}

template <class Char>
SQLRETURN tablePrivileges(SQLHSTMT raw, const Char* table, SQLSMALLINT length) {
    return runCatalogFunction(raw, [&](jet::Database& database, bool exact) {
        return tablePrivilegesResult(database, optionalUtf8From(table, length), exact);
    });
}

// The same empty result for all arguments.
SQLRETURN returnEmptyResult(SQLHSTMT raw, sql::RowSet (*answer)()) {
    return runCatalogFunction(raw, [&](jet::Database&, bool) { return answer(); });
}

SQLRETURN typeInfo(SQLHSTMT raw, SQLSMALLINT type) {
    return withHandle<StatementHandle>(raw,
                                       [&](StatementHandle& statement) { statement.setResult(typeInfoResult(type)); });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLTables(SQLHSTMT raw, SQLCHAR* catalog, SQLSMALLINT catalogLength, SQLCHAR* schema,
                            SQLSMALLINT schemaLength, SQLCHAR* table, SQLSMALLINT tableLength, SQLCHAR* types,
                            SQLSMALLINT typesLength) {
    return tables(raw, catalog, catalogLength, schema, schemaLength, table, tableLength, types, typesLength);
}

SQLRETURN SQL_API SQLTablesW(SQLHSTMT raw, SQLWCHAR* catalog, SQLSMALLINT catalogLength, SQLWCHAR* schema,
                             SQLSMALLINT schemaLength, SQLWCHAR* table, SQLSMALLINT tableLength, SQLWCHAR* types,
                             SQLSMALLINT typesLength) {
    return tables(raw, catalog, catalogLength, schema, schemaLength, table, tableLength, types, typesLength);
}

SQLRETURN SQL_API SQLColumns(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR* table,
                             SQLSMALLINT tableLength, SQLCHAR* column, SQLSMALLINT columnLength) {
    return columns(raw, table, tableLength, column, columnLength);
}

SQLRETURN SQL_API SQLColumnsW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                              SQLSMALLINT tableLength, SQLWCHAR* column, SQLSMALLINT columnLength) {
    return columns(raw, table, tableLength, column, columnLength);
}

SQLRETURN SQL_API SQLPrimaryKeys(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR* table,
                                 SQLSMALLINT length) {
    return primaryKeys(raw, table, length);
}

SQLRETURN SQL_API SQLPrimaryKeysW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                                  SQLSMALLINT length) {
    return primaryKeys(raw, table, length);
}

SQLRETURN SQL_API SQLStatistics(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR* table,
                                SQLSMALLINT length, SQLUSMALLINT unique, SQLUSMALLINT) {
    return statistics(raw, table, length, unique);
}

SQLRETURN SQL_API SQLStatisticsW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                                 SQLSMALLINT length, SQLUSMALLINT unique, SQLUSMALLINT) {
    return statistics(raw, table, length, unique);
}

SQLRETURN SQL_API SQLSpecialColumns(SQLHSTMT raw, SQLUSMALLINT kind, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                                    SQLCHAR* table, SQLSMALLINT length, SQLUSMALLINT, SQLUSMALLINT) {
    return specialColumns(raw, kind, table, length);
}

SQLRETURN SQL_API SQLSpecialColumnsW(SQLHSTMT raw, SQLUSMALLINT kind, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                                     SQLWCHAR* table, SQLSMALLINT length, SQLUSMALLINT, SQLUSMALLINT) {
    return specialColumns(raw, kind, table, length);
}

SQLRETURN SQL_API SQLGetTypeInfo(SQLHSTMT raw, SQLSMALLINT type) { return typeInfo(raw, type); }

SQLRETURN SQL_API SQLGetTypeInfoW(SQLHSTMT raw, SQLSMALLINT type) { return typeInfo(raw, type); }

SQLRETURN SQL_API SQLForeignKeys(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR* table,
                                 SQLSMALLINT length, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                                 SQLCHAR* foreignTable, SQLSMALLINT foreignLength) {
    return foreignKeys(raw, table, length, foreignTable, foreignLength);
}

SQLRETURN SQL_API SQLForeignKeysW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                                  SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                                  SQLWCHAR* foreignTable, SQLSMALLINT foreignLength) {
    return foreignKeys(raw, table, length, foreignTable, foreignLength);
}

SQLRETURN SQL_API SQLProcedures(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, proceduresResult);
}

SQLRETURN SQL_API SQLProceduresW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, proceduresResult);
}

SQLRETURN SQL_API SQLProcedureColumns(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                                      SQLCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, procedureColumnsResult);
}

SQLRETURN SQL_API SQLProcedureColumnsW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                                       SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, procedureColumnsResult);
}

SQLRETURN SQL_API SQLColumnPrivileges(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                                      SQLCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, columnPrivilegesResult);
}

SQLRETURN SQL_API SQLColumnPrivilegesW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                                       SQLSMALLINT, SQLWCHAR*, SQLSMALLINT) {
    return returnEmptyResult(raw, columnPrivilegesResult);
}

SQLRETURN SQL_API SQLTablePrivileges(SQLHSTMT raw, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR* table,
                                     SQLSMALLINT length) {
    return tablePrivileges(raw, table, length);
}

SQLRETURN SQL_API SQLTablePrivilegesW(SQLHSTMT raw, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR* table,
                                      SQLSMALLINT length) {
    return tablePrivileges(raw, table, length);
}

}  // extern "C"
