// The ODBC entry points: each converts its arguments and hands over to the classes behind the handles.
#include <algorithm>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include <sql.h>
#include <sqlext.h>

#include "tests/recordingdriver/handles.h"

using recording::Connection;
using recording::Environment;
using recording::Failure;
using recording::Handle;
using recording::Statement;

namespace {

/// Runs `body` on the object behind `handle`. A failure becomes that object's diagnostic record and SQL_ERROR.
template <typename Object, typename Body>
SQLRETURN with(SQLHANDLE handle, Body body) {
    auto* object = static_cast<Object*>(static_cast<Handle*>(handle));
    if (object == nullptr) return SQL_INVALID_HANDLE;
    object->diagnostic.reset();
    try {
        return body(*object);
    } catch (const Failure& failure) {
        object->diagnostic = failure;
    } catch (const std::exception& error) {
        object->diagnostic.emplace("HY000", recording::Refusal{0, error.what()});
    }
    return SQL_ERROR;
}

std::string textOf(const SQLCHAR* text, SQLINTEGER length) {
    const auto* bytes = reinterpret_cast<const char*>(text);
    return length == SQL_NTS ? std::string(bytes) : std::string(bytes, static_cast<std::size_t>(length));
}

/// Copies what fits of `text`, with its end mark, to a buffer of `capacity` bytes; gives the number of bytes copied.
std::size_t copyText(std::string_view text, void* buffer, std::size_t capacity) {
    if (buffer == nullptr || capacity == 0) return 0;
    const std::size_t length = std::min(text.size(), capacity - 1);
    std::memcpy(buffer, text.data(), length);
    static_cast<char*>(buffer)[length] = '\0';
    return length;
}

/// Fills a name or message buffer whose length goes back as a SQLSMALLINT.
SQLRETURN giveText(std::string_view text, SQLCHAR* buffer, SQLSMALLINT capacity, SQLSMALLINT* length) {
    if (length != nullptr) *length = static_cast<SQLSMALLINT>(text.size());
    const auto room = static_cast<std::size_t>(std::max<SQLSMALLINT>(capacity, 0));
    const bool whole = buffer == nullptr || copyText(text, buffer, room) == text.size();
    return whole ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

/// The driver manager owns a handle from here until it gives it back to SQLFreeHandle.
SQLRETURN handOut(std::unique_ptr<Handle> handle, SQLHANDLE* output) {
    *output = handle.release();
    return SQL_SUCCESS;
}

}  // namespace

extern "C" {

recording::Script* recordingDriverScript() { return &recording::script(); }

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output) {
    switch (type) {
        case SQL_HANDLE_ENV:
            return handOut(std::make_unique<Environment>(), output);
        case SQL_HANDLE_DBC:
            return handOut(std::make_unique<Connection>(), output);
        case SQL_HANDLE_STMT:
            return with<Connection>(input, [&](Connection& connection) {
                return handOut(std::make_unique<Statement>(connection), output);
            });
        default:
            return SQL_ERROR;
    }
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT /*type*/, SQLHANDLE handle) {
    std::unique_ptr<Handle>(static_cast<Handle*>(handle)).reset();
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV /*environment*/, SQLINTEGER /*attribute*/, SQLPOINTER /*value*/,
                                SQLINTEGER /*length*/) {
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDriverConnect(SQLHDBC handle, SQLHWND /*window*/, SQLCHAR* input, SQLSMALLINT inputLength,
                                   SQLCHAR* output, SQLSMALLINT capacity, SQLSMALLINT* outputLength,
                                   SQLUSMALLINT /*completion*/) {
    return with<Connection>(handle, [&](Connection& connection) {
        const std::string text = textOf(input, inputLength);
        connection.connect(text);
        return giveText(text, output, capacity, outputLength);
    });
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle) {
    return with<Connection>(handle, [](Connection& connection) {
        connection.disconnect();
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER /*length*/) {
    return with<Connection>(handle, [&](Connection& connection) {
        if (attribute == SQL_ATTR_AUTOCOMMIT) {
            connection.setAutocommit(reinterpret_cast<SQLULEN>(value) == SQL_AUTOCOMMIT_ON);
        }
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLGetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER /*capacity*/,
                                    SQLINTEGER* /*length*/) {
    return with<Connection>(handle, [&](const Connection& connection) {
        if (attribute != SQL_ATTR_CONNECTION_DEAD) throw Failure("HYC00", {0, "This attribute is not kept"});
        const SQLUINTEGER answer = connection.isDead() ? SQL_CD_TRUE : SQL_CD_FALSE;
        std::memcpy(value, &answer, sizeof answer);
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT type, SQLHANDLE handle, SQLSMALLINT completion) {
    if (type != SQL_HANDLE_DBC) return SQL_ERROR;
    return with<Connection>(handle, [&](Connection& connection) {
        connection.endTransaction(completion == SQL_COMMIT);
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length) {
    return with<Statement>(handle, [&](Statement& statement) {
        statement.execute(textOf(text, length));
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
    return with<Statement>(handle, [&](const Statement& statement) {
        *count = static_cast<SQLSMALLINT>(statement.columns().size());
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT handle, SQLUSMALLINT column, SQLCHAR* name, SQLSMALLINT capacity,
                                 SQLSMALLINT* nameLength, SQLSMALLINT* type, SQLULEN* size, SQLSMALLINT* digits,
                                 SQLSMALLINT* nullable) {
    return with<Statement>(handle, [&](const Statement& statement) {
        if (column == 0 || column > statement.columns().size()) throw Failure("07009", {0, "There is no such column"});
        if (type != nullptr) *type = SQL_VARCHAR;
        if (size != nullptr) *size = 255;
        if (digits != nullptr) *digits = 0;
        if (nullable != nullptr) *nullable = SQL_NULLABLE;
        return giveText(statement.columns()[column - 1U], name, capacity, nameLength);
    });
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
    return with<Statement>(handle, [](Statement& statement) { return statement.fetch() ? SQL_SUCCESS : SQL_NO_DATA; });
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER buffer, SQLLEN capacity,
                             SQLLEN* length) {
    return with<Statement>(handle, [&](Statement& statement) {
        if (type != SQL_C_CHAR) throw Failure("HYC00", {0, "Values are delivered as SQL_C_CHAR alone"});
        const Statement::Piece piece = statement.piece(column);
        if (piece.finished) return SQL_NO_DATA;
        if (!piece.rest) {
            if (length == nullptr) throw Failure("22002", {0, "A NULL needs an indicator"});
            *length = SQL_NULL_DATA;
            statement.advance(0, true);
            return SQL_SUCCESS;
        }
        if (length != nullptr) *length = static_cast<SQLLEN>(piece.rest->size());
        const std::size_t copied =
            copyText(*piece.rest, buffer, static_cast<std::size_t>(std::max<SQLLEN>(capacity, 0)));
        const bool whole = copied == piece.rest->size();
        statement.advance(copied, whole);
        if (whole) return SQL_SUCCESS;
        statement.diagnostic.emplace("01004", recording::Refusal{0, "The value goes on"});
        return SQL_SUCCESS_WITH_INFO;
    });
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
    return with<Statement>(handle, [&](Statement& statement) {
        if (option == SQL_CLOSE) statement.closeCursor();
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLCloseCursor(SQLHSTMT handle) {
    return with<Statement>(handle, [](Statement& statement) {
        statement.closeCursor();
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT /*type*/, SQLHANDLE handle, SQLSMALLINT number, SQLCHAR* state,
                                SQLINTEGER* nativeCode, SQLCHAR* message, SQLSMALLINT capacity, SQLSMALLINT* length) {
    // Not through `with`: reading a diagnostic record must leave it where it is.
    const auto* object = static_cast<const Handle*>(handle);
    if (object == nullptr) return SQL_INVALID_HANDLE;
    if (number != 1 || !object->diagnostic) return SQL_NO_DATA;
    const Failure& failure = *object->diagnostic;
    if (state != nullptr) copyText(failure.sqlState, state, SQL_SQLSTATE_SIZE + 1);
    if (nativeCode != nullptr) *nativeCode = failure.nativeCode;
    return giveText(failure.what(), message, capacity, length);
}

/// The driver manager reads no record of a driver that lacks this function. All but the number of
/// records is refused: it takes the rest from SQLGetDiagRec.
SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT /*type*/, SQLHANDLE handle, SQLSMALLINT /*number*/, SQLSMALLINT field,
                                  SQLPOINTER value, SQLSMALLINT /*capacity*/, SQLSMALLINT* /*length*/) {
    const auto* object = static_cast<const Handle*>(handle);
    if (object == nullptr) return SQL_INVALID_HANDLE;
    if (field != SQL_DIAG_NUMBER) return SQL_ERROR;
    const SQLINTEGER count = object->diagnostic ? 1 : 0;
    std::memcpy(value, &count, sizeof count);
    return SQL_SUCCESS;
}

}  // extern "C"
