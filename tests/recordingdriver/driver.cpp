// The recording ODBC driver: the entry points that the driver manager needs for what the program calls.

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <strings.h>
#include <utility>

#include <sql.h>
#include <sqlext.h>

#include "tests/recordingdriver/script.h"

namespace {

using namespace recording;

/// The one script of the process.
Script script;

/// A failed call: becomes the diagnostic record of its handle.
struct Failure {
    std::string sqlState;
    Refusal reason;
};

/// The object behind an ODBC handle, with the diagnostic record of the last call, if there is one.
struct Handle {
    virtual ~Handle() = default;

    std::optional<Failure> diagnostic;
};

/// A connection. It enforces two rules of the ODBC reference: no statement on a dead connection, no disconnect within a
/// transaction.
struct Connection : Handle {
    void note(Kind kind, const std::string& text = {}) const { script.events.push_back({kind, text, number}); }

    /// Counts a call and applies the script's rules to it. Throws `Failure` if one of them refuses it.
    void apply(Call call, const std::string& text, const char* sqlState) {
        const int count = ++script.counts[call];
        if (dead && call == statementCall) throw Failure{"08S01", {0, "The connection is dead"}};
        for (const Rule& rule : script.rules) {
            const bool applies = rule.call == call && rule.first <= count && count <= rule.last;
            if (!applies || text.find(rule.part) == std::string::npos) continue;
            if (rule.refusal) throw Failure{sqlState, *rule.refusal};
            dies = true;
        }
    }

    int number = 0;
    bool autocommit = true;
    bool dead = false;
    bool dies = false;  ///< after the call at work
    bool inTransaction = false;
};

/// A statement and the cursor on its result.
struct Statement : Handle {
    explicit Statement(Connection& owner) : connection(owner) {}

    Connection& connection;
    Answer answer;
    std::size_t row = 0;  ///< number of the current row, from 1; 0 before the first
    int column = 0;       ///< number of the column being read, from 1
    std::size_t delivered = 0;
    bool finished = false;  ///< the end of the value has been delivered
};

/// Runs `body` on the object behind `handle`. A failure becomes that object's diagnostic record and SQL_ERROR.
template <typename Object, typename Body>
SQLRETURN with(SQLHANDLE handle, Body body) {
    auto& object = *static_cast<Object*>(static_cast<Handle*>(handle));
    object.diagnostic.reset();
    try {
        return body(object);
    } catch (const Failure& failure) {
        object.diagnostic = failure;
        return SQL_ERROR;
    }
}

std::string textOf(const SQLCHAR* text, SQLINTEGER length) {
    const auto* bytes = reinterpret_cast<const char*>(text);
    return length == SQL_NTS ? std::string(bytes) : std::string(bytes, static_cast<std::size_t>(length));
}

bool isSelect(const std::string& statement) { return strncasecmp(statement.c_str(), "select", 6) == 0; }

/// Copies what fits of `text`, with its end mark, to a buffer of `capacity` bytes; returns the number of bytes copied.
std::size_t copyText(std::string_view text, void* buffer, SQLLEN capacity) {
    if (buffer == nullptr || capacity <= 0) return 0;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(capacity) - 1);
    std::memcpy(buffer, text.data(), length);
    static_cast<char*>(buffer)[length] = '\0';
    return length;
}

/// Fills a name or message buffer whose length is reported as a SQLSMALLINT.
SQLRETURN copyOut(std::string_view text, SQLCHAR* buffer, SQLSMALLINT capacity, SQLSMALLINT* length) {
    if (length != nullptr) *length = static_cast<SQLSMALLINT>(text.size());
    return buffer == nullptr || copyText(text, buffer, capacity) == text.size() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

}  // namespace

extern "C" {

Script* recordingDriverScript() { return &script; }

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE input, SQLHANDLE* output) {
    std::unique_ptr<Handle> handle;
    if (type == SQL_HANDLE_ENV) handle = std::make_unique<Handle>();
    if (type == SQL_HANDLE_DBC) handle = std::make_unique<Connection>();
    if (type == SQL_HANDLE_STMT) {
        handle = std::make_unique<Statement>(*static_cast<Connection*>(static_cast<Handle*>(input)));
    }
    // The driver manager owns a handle until it gives it back to SQLFreeHandle.
    *output = handle.release();
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT /*type*/, SQLHANDLE handle) {
    std::unique_ptr<Handle>(static_cast<Handle*>(handle)).reset();
    return SQL_SUCCESS;
}

SQLRETURN SQL_API SQLDriverConnect(SQLHDBC handle, SQLHWND /*window*/, SQLCHAR* input, SQLSMALLINT inputLength,
                                   SQLCHAR* output, SQLSMALLINT capacity, SQLSMALLINT* outputLength,
                                   SQLUSMALLINT /*completion*/) {
    return with<Connection>(handle, [&](Connection& connection) {
        const std::string text = textOf(input, inputLength);
        connection.number = script.counts[connectCall] + 1;
        try {
            connection.apply(connectCall, text, "08001");
        } catch (const Failure&) {
            connection.note(Kind::refusedConnect, text);
            throw;
        }
        connection.note(Kind::connect, text);
        connection.dead = std::exchange(connection.dies, false);
        connection.inTransaction = false;
        return copyOut(text, output, capacity, outputLength);
    });
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC handle) {
    return with<Connection>(handle, [](Connection& connection) {
        if (connection.inTransaction && !connection.dead) throw Failure{"25000", {0, "A transaction is still open"}};
        connection.note(Kind::disconnect);
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER /*length*/) {
    return with<Connection>(handle, [&](Connection& connection) {
        if (attribute == SQL_ATTR_AUTOCOMMIT) {
            connection.autocommit = reinterpret_cast<SQLULEN>(value) == SQL_AUTOCOMMIT_ON;
        }
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLGetConnectAttr(SQLHDBC handle, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER /*capacity*/,
                                    SQLINTEGER* /*length*/) {
    return with<Connection>(handle, [&](const Connection& connection) {
        if (attribute != SQL_ATTR_CONNECTION_DEAD) throw Failure{"HYC00", {0, "This attribute is not kept"}};
        const SQLUINTEGER answer = connection.dead ? SQL_CD_TRUE : SQL_CD_FALSE;
        std::memcpy(value, &answer, sizeof answer);
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT /*type*/, SQLHANDLE handle, SQLSMALLINT completion) {
    return with<Connection>(handle, [&](Connection& connection) {
        if (connection.dead) throw Failure{"08S01", {0, "The connection is dead"}};
        connection.note(completion == SQL_COMMIT ? Kind::commit : Kind::rollback);
        connection.inTransaction = false;
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* input, SQLINTEGER length) {
    return with<Statement>(handle, [&](Statement& statement) {
        Connection& connection = statement.connection;
        const std::string text = textOf(input, length);
        // The latest answer wins, so that a test can override what its fixture gave.
        const auto found = std::find_if(script.answers.rbegin(), script.answers.rend(),
                                        [&](const Answer& answer) { return text.starts_with(answer.start); });
        const bool isAnswered = found != script.answers.rend();
        try {
            connection.apply(statementCall, text, "HY000");
            if (isSelect(text) && !isAnswered) throw Failure{"42S02", {0, "The script has no answer to this"}};
        } catch (const Failure&) {
            connection.note(Kind::refusedStatement, text);
            throw;
        }
        connection.note(Kind::statement, text);
        connection.inTransaction = !connection.autocommit && (connection.inTransaction || !isSelect(text));
        if (connection.autocommit) connection.note(Kind::commit);
        connection.dead = std::exchange(connection.dies, false);
        statement.answer = isAnswered ? *found : Answer{};
        statement.row = 0;
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT handle, SQLSMALLINT* count) {
    return with<Statement>(handle, [&](const Statement& statement) {
        *count = static_cast<SQLSMALLINT>(statement.answer.columns.size());
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT handle, SQLUSMALLINT column, SQLCHAR* name, SQLSMALLINT capacity,
                                 SQLSMALLINT* nameLength, SQLSMALLINT* /*type*/, SQLULEN* /*size*/,
                                 SQLSMALLINT* /*digits*/, SQLSMALLINT* /*nullable*/) {
    return with<Statement>(handle, [&](const Statement& statement) {
        return copyOut(statement.answer.columns.at(column - 1U), name, capacity, nameLength);
    });
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT handle) {
    return with<Statement>(handle, [](Statement& statement) {
        if (statement.answer.columns.empty()) throw Failure{"24000", {0, "There is no open cursor"}};
        statement.column = 0;
        statement.connection.apply(fetchCall, {}, "HY000");
        if (statement.row <= statement.answer.rows.size()) ++statement.row;
        return statement.row <= statement.answer.rows.size() ? SQL_SUCCESS : SQL_NO_DATA;
    });
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT handle, SQLUSMALLINT column, SQLSMALLINT type, SQLPOINTER buffer, SQLLEN capacity,
                             SQLLEN* length) {
    return with<Statement>(handle, [&](Statement& statement) -> SQLRETURN {
        if (type != SQL_C_CHAR) throw Failure{"HYC00", {0, "Values are delivered as SQL_C_CHAR alone"}};
        if (statement.row == 0 || statement.row > statement.answer.rows.size()) {
            throw Failure{"24000", {0, "The cursor is on no row"}};
        }
        if (column != statement.column) {
            statement.column = column;
            statement.delivered = 0;
            statement.finished = false;
        }
        if (statement.finished) return SQL_NO_DATA;
        const auto& value = statement.answer.rows[statement.row - 1].at(column - 1U);
        const std::string_view rest = value ? std::string_view(*value).substr(statement.delivered) : "";
        *length = value ? static_cast<SQLLEN>(rest.size()) : SQL_NULL_DATA;
        const std::size_t copied = value ? copyText(rest, buffer, capacity) : 0;
        statement.delivered += copied;
        statement.finished = copied == rest.size();
        if (statement.finished) return SQL_SUCCESS;
        statement.diagnostic = Failure{"01004", {0, "The value goes on"}};
        return SQL_SUCCESS_WITH_INFO;
    });
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT handle, SQLUSMALLINT option) {
    return with<Statement>(handle, [&](Statement& statement) {
        if (option == SQL_CLOSE) statement.answer = {};
        return SQL_SUCCESS;
    });
}

SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT /*type*/, SQLHANDLE handle, SQLSMALLINT number, SQLCHAR* state,
                                SQLINTEGER* nativeCode, SQLCHAR* message, SQLSMALLINT capacity, SQLSMALLINT* length) {
    // Not through `with`: reading a diagnostic record must leave it where it is.
    const auto& diagnostic = static_cast<const Handle*>(handle)->diagnostic;
    if (number != 1 || !diagnostic) return SQL_NO_DATA;
    copyText(diagnostic->sqlState, state, SQL_SQLSTATE_SIZE + 1);
    if (nativeCode != nullptr) *nativeCode = diagnostic->reason.nativeCode;
    return copyOut(diagnostic->reason.message, message, capacity, length);
}

/// The driver manager reads no record of a driver that lacks this function. All but the number of
/// records is refused: it takes the rest from SQLGetDiagRec.
SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT /*type*/, SQLHANDLE handle, SQLSMALLINT /*number*/, SQLSMALLINT field,
                                  SQLPOINTER value, SQLSMALLINT /*capacity*/, SQLSMALLINT* /*length*/) {
    if (field != SQL_DIAG_NUMBER) return SQL_ERROR;
    const SQLINTEGER count = static_cast<const Handle*>(handle)->diagnostic ? 1 : 0;
    std::memcpy(value, &count, sizeof count);
    return SQL_SUCCESS;
}

}  // extern "C"
