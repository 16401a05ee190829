#include "accessdriver/odbc/tests/client.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <unistd.h>

namespace odbctest {

namespace fs = std::filesystem;

namespace {

fs::path makeFolder() {
    std::string name = (fs::temp_directory_path() / "accessodbc_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
}

// The driver manager reads its lists from here for this run alone; what the machine has installed plays no part.
class Registration {
  public:
    Registration() : folder_(makeFolder()) {
        std::ofstream(folder_ / "odbcinst.ini")
            << "[Microsoft Access Driver (*.mdb)]\nDescription = Access files\nDriver = " << DRIVER_LIBRARY << "\n";
        std::ofstream(folder_ / "odbc.ini") << "";
        setenv("ODBCSYSINI", folder_.c_str(), 1);
        setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    const fs::path& folder() const { return folder_; }

  private:
    fs::path folder_;
};

const Registration registration;

}  // namespace

const fs::path& registrationFolder() { return registration.folder(); }

Diagnosis diagnosisOf(SQLSMALLINT type, SQLHANDLE handle) {
    Diagnosis out;
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 1024> message{};
    SQLSMALLINT length = 0;
    if (!SQL_SUCCEEDED(
            SQLGetDiagRec(type, handle, 1, state.data(), &out.native, message.data(), message.size(), &length))) {
        return out;
    }
    out.state = reinterpret_cast<const char*>(state.data());
    out.message = reinterpret_cast<const char*>(message.data());
    return out;
}

ClientConnection::ClientConnection(SQLULEN odbcVersion) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, attribute(odbcVersion), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &handle_);
}

ClientConnection::~ClientConnection() {
    rollback();
    SQLDisconnect(handle_);
    SQLFreeHandle(SQL_HANDLE_DBC, handle_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
}

SQLRETURN ClientConnection::openText(const std::string& text) {
    return SQLDriverConnect(handle_, nullptr, chars(text), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
}

SQLRETURN ClientConnection::open(const fs::path& file, const std::string& password) {
    return openText("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file.string() + ";UID=;PWD=" + password + ";");
}

void ClientConnection::autocommit(bool on) {
    SQLSetConnectAttr(handle_, SQL_ATTR_AUTOCOMMIT, attribute(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), 0);
}

ClientStatement::ClientStatement(const ClientConnection& connection) {
    SQLAllocHandle(SQL_HANDLE_STMT, connection.handle(), &handle_);
}

ClientStatement::~ClientStatement() { SQLFreeHandle(SQL_HANDLE_STMT, handle_); }

std::string ClientStatement::outcome(const std::string& text) {
    SQLFreeStmt(handle_, SQL_CLOSE);
    const SQLRETURN result = run(text);
    if (result == SQL_NO_DATA) return "nothing";
    if (SQL_SUCCEEDED(result)) return "ok";
    const Diagnosis found = diagnosis();
    return found.state + " " + found.message;
}

std::optional<std::string> ClientStatement::text(SQLUSMALLINT column) {
    std::string out;
    std::array<char, 256> piece{};
    for (;;) {
        SQLLEN length = 0;
        const SQLRETURN result = SQLGetData(handle_, column, SQL_C_CHAR, piece.data(), piece.size(), &length);
        if (!SQL_SUCCEEDED(result)) {
            ADD_FAILURE() << diagnosis().message;
            return out;
        }
        if (length == SQL_NULL_DATA) return std::nullopt;
        out += piece.data();
        if (result == SQL_SUCCESS) return out;
    }
}

Texts ClientStatement::rows() {
    Texts out;
    SQLSMALLINT columns = 0;
    SQLNumResultCols(handle_, &columns);
    while (SQL_SUCCEEDED(SQLFetch(handle_))) {
        std::string row;
        for (SQLSMALLINT i = 1; i <= columns; ++i) {
            row += (i > 1 ? "|" : "") + text(static_cast<SQLUSMALLINT>(i)).value_or("Null");
        }
        out.push_back(row);
    }
    SQLFreeStmt(handle_, SQL_CLOSE);
    return out;
}

Texts ClientStatement::rows(const std::string& text) {
    EXPECT_EQ(outcome(text), "ok") << text;
    return rows();
}

SQLLEN ClientStatement::changed() const {
    SQLLEN count = 0;
    SQLRowCount(handle_, &count);
    return count;
}

OdbcTest::OdbcTest() : folder_(makeFolder()) {}

OdbcTest::~OdbcTest() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

fs::path OdbcTest::makeCav(const std::string& name, jet::CavColumns columns, const std::string& password) const {
    const fs::path file = folder_ / name;
    jet::makeCavFile(file.string(), columns, password);
    return file;
}

void ConnectedTest::SetUp() {
    file_ = makeCav();
    openFile();
}

void ConnectedTest::openFile() {
    ASSERT_TRUE(SQL_SUCCEEDED(connection_.open(file_)));
    statement_ = std::make_unique<ClientStatement>(connection_);
    handle_ = statement_->handle();
}

void ConnectedTest::prepare(const std::string& text) {
    ASSERT_EQ(SQLPrepare(handle_, chars(text), SQL_NTS), SQL_SUCCESS) << statement_->diagnosis().message;
}

SQLRETURN ConnectedTest::bindParameter(SQLUSMALLINT number, SQLSMALLINT cType, SQLSMALLINT sqlType, void* variable,
                                       SQLLEN bytes, SQLLEN* indicator) {
    constexpr SQLULEN size = 255;
    return SQLBindParameter(handle_, number, SQL_PARAM_INPUT, cType, sqlType, size, 0, variable, bytes, indicator);
}

}  // namespace odbctest
