// The recording driver through the real driver manager, used as the program's connection class uses a driver.
#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include "tests/recordingdriver/recorder.h"

namespace {

using recording::Event;
using recording::Kind;
using recording::Recorder;

const std::string connectionText =
    "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=/tmp/O'Brien & Söhne.cav;UID=;PWD=secret;";

SQLCHAR* chars(const std::string& text) {
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));  // the ODBC functions take text as mutable
}

struct Diagnostic {
    std::string state;
    int nativeCode = 0;
    std::string message;
};

/// An application's environment, connection and statement; the calls return what ODBC returned.
class Application {
  public:
    Application() {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
        SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    }
    ~Application() {
        freeStatement();
        SQLDisconnect(connection_);
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    }
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    SQLRETURN connect() {
        const SQLRETURN result = SQLDriverConnect(connection_, nullptr, chars(connectionText), SQL_NTS, nullptr, 0,
                                                  nullptr, SQL_DRIVER_NOPROMPT);
        if (SQL_SUCCEEDED(result)) {
            SQLSetConnectAttr(connection_, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0);
        }
        return result;
    }
    SQLRETURN disconnect() {
        freeStatement();
        return SQLDisconnect(connection_);
    }
    SQLRETURN end(SQLSMALLINT completion) { return SQLEndTran(SQL_HANDLE_DBC, connection_, completion); }
    bool isDead() {
        SQLUINTEGER dead = SQL_CD_FALSE;
        EXPECT_TRUE(SQL_SUCCEEDED(SQLGetConnectAttr(connection_, SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr)));
        return dead == SQL_CD_TRUE;
    }
    SQLRETURN execute(const std::string& text) {
        freeStatement();
        SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement_);
        return SQLExecDirect(statement_, chars(text), SQL_NTS);
    }
    SQLHSTMT statement() const { return statement_; }
    Diagnostic connectionDiagnostic() const { return diagnostic(SQL_HANDLE_DBC, connection_); }
    Diagnostic statementDiagnostic() const { return diagnostic(SQL_HANDLE_STMT, statement_); }

    std::string columnName(SQLUSMALLINT column) const {
        std::array<SQLCHAR, 64> name{};
        SQLSMALLINT length = 0;
        SQLDescribeCol(statement_, column, name.data(), name.size(), &length, nullptr, nullptr, nullptr, nullptr);
        return {reinterpret_cast<const char*>(name.data()), static_cast<std::size_t>(length)};
    }
    /// Reads a value in pieces of a few bytes, as a caller with a small buffer would.
    std::optional<std::string> value(SQLUSMALLINT column) const {
        std::string text;
        std::array<char, 5> piece{};
        SQLLEN length = 0;
        while (SQL_SUCCEEDED(SQLGetData(statement_, column, SQL_C_CHAR, piece.data(), piece.size(), &length))) {
            if (length == SQL_NULL_DATA) return std::nullopt;
            text += piece.data();
        }
        return text;
    }

  private:
    void freeStatement() {
        if (statement_ != nullptr) SQLFreeHandle(SQL_HANDLE_STMT, statement_);
        statement_ = nullptr;
    }
    static Diagnostic diagnostic(SQLSMALLINT type, SQLHANDLE handle) {
        std::array<SQLCHAR, 6> state{};
        std::array<SQLCHAR, 200> message{};
        SQLINTEGER native = 0;
        SQLGetDiagRec(type, handle, 1, state.data(), &native, message.data(), message.size(), nullptr);
        return {reinterpret_cast<const char*>(state.data()), native, reinterpret_cast<const char*>(message.data())};
    }

    SQLHENV environment_ = nullptr;
    SQLHDBC connection_ = nullptr;
    SQLHSTMT statement_ = nullptr;
};

TEST(RecordingDriver, NotesWhatWasAskedInOrderAndByteForByte) {
    Recorder recorder;
    const std::string insert = "INSERT INTO tree (name)VALUES ('Ann\xE9\t\"A, B\"\n')";  // Latin-1, no valid UTF-8
    {
        Application application;
        ASSERT_EQ(application.connect(), SQL_SUCCESS);
        EXPECT_FALSE(application.isDead());
        ASSERT_EQ(application.execute(insert), SQL_SUCCESS);
        ASSERT_EQ(application.end(SQL_COMMIT), SQL_SUCCESS);
        ASSERT_EQ(application.execute("UPDATE tree SET ps = ''"), SQL_SUCCESS);
        ASSERT_EQ(application.end(SQL_ROLLBACK), SQL_SUCCESS);
    }
    const std::vector<Event> expected{
        {Kind::connect, connectionText, 1},
        {Kind::statement, insert, 1},
        {Kind::commit, {}, 1},
        {Kind::statement, "UPDATE tree SET ps = ''", 1},
        {Kind::rollback, {}, 1},
        {Kind::disconnect, {}, 1},
    };
    EXPECT_EQ(recorder.events(), expected);
}

TEST(RecordingDriver, RefusesTheConnectsItWasToldTo) {
    Recorder recorder;
    recorder.refuseConnects(1, 2, {-1905, "Not a valid password."});
    Application application;
    for (int attempt = 0; attempt < 2; ++attempt) {
        ASSERT_EQ(application.connect(), SQL_ERROR);
        const Diagnostic diagnostic = application.connectionDiagnostic();
        EXPECT_EQ(diagnostic.state, "08001");
        EXPECT_EQ(diagnostic.nativeCode, -1905);
        EXPECT_EQ(diagnostic.message, "Not a valid password.");
    }
    EXPECT_EQ(application.connect(), SQL_SUCCESS);
    EXPECT_EQ(recorder.texts(Kind::refusedConnect).size(), 2U);
    EXPECT_EQ(recorder.texts(Kind::connect).size(), 1U);
}

TEST(RecordingDriver, DiesWhenToldAndLivesAgainAfterAReconnect) {
    Recorder recorder;
    recorder.dieAfterStatement(1).refuseConnect(2).dieAfterConnect(3);
    Application application;
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    ASSERT_EQ(application.execute("INSERT 1"), SQL_SUCCESS);
    EXPECT_TRUE(application.isDead());
    EXPECT_EQ(application.end(SQL_COMMIT), SQL_ERROR);
    EXPECT_EQ(application.execute("INSERT 2"), SQL_ERROR);
    EXPECT_EQ(application.statementDiagnostic().state, "08S01");

    ASSERT_EQ(application.disconnect(), SQL_SUCCESS);
    EXPECT_EQ(application.connect(), SQL_ERROR);
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    EXPECT_TRUE(application.isDead());
    ASSERT_EQ(application.disconnect(), SQL_SUCCESS);
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    EXPECT_FALSE(application.isDead());
    EXPECT_EQ(application.execute("INSERT 3"), SQL_SUCCESS);
    EXPECT_EQ(application.end(SQL_COMMIT), SQL_SUCCESS);
    EXPECT_EQ(recorder.events().back(), (Event{Kind::commit, {}, 4}));
    EXPECT_EQ(recorder.texts(Kind::refusedStatement), std::vector<std::string>{"INSERT 2"});
}

TEST(RecordingDriver, RefusesStatementsByNumberAndByText) {
    Recorder recorder;
    recorder.refuseStatement(2, {-3502, "Syntax error."}).refuseStatementsWith("matings", {-1305, "No such table."});
    Application application;
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    EXPECT_EQ(application.execute("INSERT a"), SQL_SUCCESS);
    EXPECT_EQ(application.execute("INSERT b"), SQL_ERROR);
    EXPECT_EQ(application.statementDiagnostic().nativeCode, -3502);
    EXPECT_EQ(application.execute("INSERT c"), SQL_SUCCESS);
    EXPECT_EQ(application.execute("INSERT INTO matings"), SQL_ERROR);
    EXPECT_EQ(application.statementDiagnostic().message, "No such table.");
    EXPECT_EQ(application.end(SQL_COMMIT), SQL_SUCCESS);
    EXPECT_EQ(recorder.texts(Kind::statement), (std::vector<std::string>{"INSERT a", "INSERT c"}));
    EXPECT_EQ(recorder.texts(Kind::refusedStatement), (std::vector<std::string>{"INSERT b", "INSERT INTO matings"}));
}

TEST(RecordingDriver, AnswersSelectsFromTheRowsItWasGiven) {
    Recorder recorder;
    recorder.answer("SELECT * FROM cavyUser", {"id", "fldCustomName1"}, {{"7", "old"}});
    recorder.answer("SELECT * FROM", {"id", "name", "ps"},
                    {{"1", "Fluffy of the long name", std::nullopt}, {"2", "", "x"}});
    Application application;
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    ASSERT_EQ(application.execute("SELECT * FROM cavyUser"), SQL_SUCCESS);
    SQLSMALLINT count = 0;
    ASSERT_EQ(SQLNumResultCols(application.statement(), &count), SQL_SUCCESS);
    EXPECT_EQ(count, 3) << "the latest fitting answer counts";
    EXPECT_EQ(application.columnName(2), "name");

    ASSERT_EQ(SQLFetch(application.statement()), SQL_SUCCESS);
    EXPECT_EQ(application.value(1), "1");
    EXPECT_EQ(application.value(2), "Fluffy of the long name");
    EXPECT_EQ(application.value(3), std::nullopt);
    ASSERT_EQ(SQLFetch(application.statement()), SQL_SUCCESS);
    EXPECT_EQ(application.value(2), "");
    EXPECT_EQ(application.value(3), "x");
    EXPECT_EQ(SQLFetch(application.statement()), SQL_NO_DATA);

    EXPECT_EQ(application.execute("SELECT id FROM tree"), SQL_ERROR);
    EXPECT_EQ(application.statementDiagnostic().state, "42S02");
    EXPECT_THROW(recorder.answer("SELECT", {"a", "b"}, {{"1"}}), std::invalid_argument);
}

TEST(RecordingDriver, ShowsTheFaultsOfTransactionsThatAnApplicationCouldMake) {
    Recorder recorder;
    Application application;
    ASSERT_EQ(application.connect(), SQL_SUCCESS);
    ASSERT_EQ(application.execute("INSERT 1"), SQL_SUCCESS);
    EXPECT_EQ(application.disconnect(), SQL_ERROR);
    EXPECT_EQ(application.connectionDiagnostic().state, "25000");
    ASSERT_EQ(application.end(SQL_ROLLBACK), SQL_SUCCESS);
    EXPECT_EQ(application.disconnect(), SQL_SUCCESS);

    SQLHDBC automatic = nullptr;
    SQLHENV environment = nullptr;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &automatic);
    SQLDriverConnect(automatic, nullptr, chars(connectionText), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    SQLHSTMT statement = nullptr;
    SQLAllocHandle(SQL_HANDLE_STMT, automatic, &statement);
    EXPECT_EQ(SQLExecDirect(statement, chars("INSERT 2"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(recorder.events().back(), (Event{Kind::commit, {}, 2}));
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    SQLDisconnect(automatic);
    SQLFreeHandle(SQL_HANDLE_DBC, automatic);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
}

TEST(RecordingDriver, EachRecorderStartsAfresh) {
    {
        Recorder first;
        first.refuseConnect(1);
        Application application;
        EXPECT_EQ(application.connect(), SQL_ERROR);
    }
    Recorder second;
    EXPECT_TRUE(second.events().empty());
    Application application;
    EXPECT_EQ(application.connect(), SQL_SUCCESS);
    EXPECT_EQ(second.events().front().connection, 1);
}

}  // namespace
