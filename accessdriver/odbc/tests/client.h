#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include "accessdriver/jet/making/cavTables.h"

namespace odbctest {

/// The first diagnostic record of a handle; all empty if there is none.
struct Diagnosis {
    std::string state;
    SQLINTEGER native = 0;
    std::string message;
};

Diagnosis diagnosisOf(SQLSMALLINT type, SQLHANDLE handle);

inline SQLCHAR* chars(const std::string& text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str())); }

inline SQLPOINTER attribute(SQLULEN value) { return reinterpret_cast<SQLPOINTER>(value); }

/// A connection through the driver manager, in an environment of its own.
class ClientConnection {
  public:
    explicit ClientConnection(SQLULEN odbcVersion = SQL_OV_ODBC3);
    ~ClientConnection();
    ClientConnection(const ClientConnection&) = delete;
    ClientConnection& operator=(const ClientConnection&) = delete;

    SQLRETURN openText(const std::string& connectionString);
    SQLRETURN open(const std::filesystem::path& file, const std::string& password = jet::cavPassword);

    SQLRETURN commit() { return SQLEndTran(SQL_HANDLE_DBC, handle_, SQL_COMMIT); }
    SQLRETURN rollback() { return SQLEndTran(SQL_HANDLE_DBC, handle_, SQL_ROLLBACK); }
    void autocommit(bool on);

    Diagnosis diagnosis() const { return diagnosisOf(SQL_HANDLE_DBC, handle_); }
    SQLHDBC handle() const { return handle_; }

  private:
    SQLHENV environment_ = nullptr;
    SQLHDBC handle_ = nullptr;
};

using Texts = std::vector<std::string>;

class ClientStatement {
  public:
    explicit ClientStatement(const ClientConnection& connection);
    ~ClientStatement();
    ClientStatement(const ClientStatement&) = delete;
    ClientStatement& operator=(const ClientStatement&) = delete;

    SQLRETURN run(const std::string& text) { return SQLExecDirect(handle_, chars(text), SQL_NTS); }

    /// "ok", "nothing" where no row was met, or SQLSTATE and message of the refusal.
    std::string outcome(const std::string& text);

    /// The open result: values joined by '|', a row to an element; Null as "Null".
    Texts rows();
    Texts rows(const std::string& text);

    /// One column of the current row as text; nothing for Null.
    std::optional<std::string> text(SQLUSMALLINT column);

    SQLLEN changed() const;
    Diagnosis diagnosis() const { return diagnosisOf(SQL_HANDLE_STMT, handle_); }
    SQLHSTMT handle() const { return handle_; }

  private:
    SQLHSTMT handle_ = nullptr;
};

/// A test with a folder of its own, in which it makes its Access files.
class OdbcTest : public testing::Test {
  protected:
    OdbcTest();
    ~OdbcTest() override;

    /// An empty CAV file.
    std::filesystem::path makeCav(const std::string& name = "a.cav", jet::CavColumns columns = jet::CavColumns::typed,
                                  const std::string& password = jet::cavPassword) const;

    const std::filesystem::path& folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
};

/// A test with an open connection to an empty CAV file, and a statement on it.
class ConnectedTest : public OdbcTest {
  protected:
    void SetUp() override;

    /// Opens file_ again after a disconnect, with a new statement.
    void openFile();

    void TearDown() override { statement_.reset(); }

    /// Sets an attribute of the statement: a number, or a pointer to a variable.
    template <class Value>
    SQLRETURN set(SQLINTEGER name, Value value) {
        if constexpr (std::is_pointer_v<Value>)
            return SQLSetStmtAttr(handle_, name, value, 0);
        else
            return SQLSetStmtAttr(handle_, name, attribute(static_cast<SQLULEN>(value)), 0);
    }

    void prepare(const std::string& text);
    SQLRETURN bindParameter(SQLUSMALLINT number, SQLSMALLINT cType, SQLSMALLINT sqlType, void* variable,
                            SQLLEN bytes = 0, SQLLEN* indicator = nullptr);

    /// The rows of another statement on the connection.
    Texts rowsOf(const std::string& text) const { return ClientStatement(connection_).rows(text); }

    std::filesystem::path file_;
    ClientConnection connection_;
    std::unique_ptr<ClientStatement> statement_;
    SQLHSTMT handle_ = nullptr;
};

/// Where the drivers and data sources of this run are listed.
const std::filesystem::path& registrationFolder();

}  // namespace odbctest
