// Connecting through the driver manager, and every way in which that is refused.

#include <array>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <unistd.h>

#include "accessdriver/odbc/handles/connectString.h"
#include "accessdriver/odbc/tests/client.h"
#include "accessdriver/sql/values/error.h"

namespace {

using namespace odbctest;
namespace fs = std::filesystem;

// "ok", or SQLSTATE and native code of the refusal.
std::string connecting(const fs::path& file, const std::string& password = jet::cavPassword) {
    ClientConnection connection;
    if (SQL_SUCCEEDED(connection.open(file, password))) return "ok";
    const Diagnosis found = connection.diagnosis();
    EXPECT_GT(found.message.size(), 40U) << "a sentence for the user";
    EXPECT_NE(found.message.find("[Tolvaris][Access Driver] "), std::string::npos) << found.message;
    return found.state + " " + std::to_string(found.native);
}

void patch(const fs::path& file, std::streamoff at, const std::string& bytes) {
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(at);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The administrator, whom permissions do not bind, becomes an ordinary user while this lives.
class OrdinaryUser {
  public:
    OrdinaryUser() : before_(::geteuid()) {
        constexpr uid_t nobody = 65534;
        EXPECT_EQ(::seteuid(before_ == 0 ? nobody : before_), 0);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(::seteuid(before_), 0); }

  private:
    uid_t before_;
};

class ConnectTest : public OdbcTest {};

// Offsets of the header by the published format notes.
constexpr std::streamoff versionAt = 0x14;
constexpr std::streamoff pageKeyAt = 0x3E;
constexpr std::streamoff nameAt = 0x04;

TEST_F(ConnectTest, EachRefusalHasItsOwnCode) {
    EXPECT_EQ(connecting(makeCav()), "ok");
    EXPECT_EQ(connecting(makeCav("open.cav", jet::CavColumns::typed, "")), "ok") << "a password for a file without one";
    EXPECT_EQ(connecting(makeCav(), "wrong"), "28000 -1008");
    EXPECT_EQ(connecting(makeCav(), ""), "28000 -1008");
    EXPECT_EQ(connecting(folder() / "nothing.cav"), "08001 -1001");
    EXPECT_EQ(connecting(""), "08001 -1200") << "as after a cancelled file dialog";
    EXPECT_EQ(connecting(folder()), "08001 -1004");

    std::ofstream(folder() / "text.cav") << std::string(10000, 'x');
    EXPECT_EQ(connecting(folder() / "text.cav"), "08001 -1004");
    std::ofstream(folder() / "empty.cav") << "";
    EXPECT_EQ(connecting(folder() / "empty.cav"), "08001 -1004");

    const fs::path old = makeCav("old.cav");
    patch(old, versionAt, std::string(1, '\0'));
    EXPECT_EQ(connecting(old), "08001 -1005");
    const fs::path later = makeCav("later.cav");
    patch(later, nameAt, "Standard ACE DB");
    EXPECT_EQ(connecting(later), "08001 -1006");
    const fs::path encoded = makeCav("encoded.cav");
    patch(encoded, pageKeyAt, "\x01\x02\x03\x04");
    EXPECT_EQ(connecting(encoded), "08001 -1007");
}

TEST_F(ConnectTest, AFileInUseIsRefusedAndOpensAfterwards) {
    const fs::path file = makeCav();
    {
        std::ofstream(folder() / "a.ldb") << "x";
        EXPECT_EQ(connecting(file), "08004 -1003") << "a lock file lies beside it";
        fs::remove(folder() / "a.ldb");
    }
    const int other = ::open(file.c_str(), O_RDWR);
    ASSERT_GE(other, 0);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(connecting(file), "08004 -1003") << "another program holds it";
    ::close(other);
    EXPECT_EQ(connecting(file), "ok");
}

TEST_F(ConnectTest, AFileWithoutPermissionIsRefused) {
    const fs::path file = makeCav();
    fs::permissions(file, fs::perms::none);
    fs::permissions(folder(), fs::perms::all);
    fs::permissions(registrationFolder(), fs::perms::all);
    const OrdinaryUser user;
    if (::eaccess(DRIVER_LIBRARY, R_OK) != 0) GTEST_SKIP() << "an ordinary user can't load the driver here";
    EXPECT_EQ(connecting(file), "08001 -1002");
}

// A file that can't be written opens for reading, but not for an application that has asked for writing.
TEST_F(ConnectTest, ReadOnlyFilesAndConnections) {
    const fs::path file = makeCav();
    const std::string where =
        "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file.string() + ";PWD=" + jet::cavPassword;
    const auto expectReading = [](ClientConnection& connection) {
        ClientStatement statement(connection);
        EXPECT_EQ(statement.rows("SELECT id FROM cavyUser"), Texts{"1"});
        EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('Ann')").substr(0, 5), "HY000");
    };
    {
        ClientConnection asked;
        ASSERT_TRUE(SQL_SUCCEEDED(asked.openText(where + ";ReadOnly=1")));
        expectReading(asked);
        ClientConnection mode;
        SQLSetConnectAttr(mode.handle(), SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_ONLY), 0);
        ASSERT_TRUE(SQL_SUCCEEDED(mode.openText(where)));
        expectReading(mode);
        EXPECT_EQ(SQLSetConnectAttr(mode.handle(), SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_WRITE), 0),
                  SQL_SUCCESS_WITH_INFO);
        expectReading(mode);
        const int other = ::open(file.c_str(), O_RDWR);
        EXPECT_EQ(::flock(other, LOCK_SH | LOCK_NB), 0) << "other programs may read beside them";
        ::close(other);
    }
    {
        ClientConnection later;
        ASSERT_TRUE(SQL_SUCCEEDED(later.openText(where)));
        SQLSetConnectAttr(later.handle(), SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_ONLY), 0);
        expectReading(later);
        SQLSetConnectAttr(later.handle(), SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_WRITE), 0);
        EXPECT_EQ(ClientStatement(later).outcome("UPDATE tree SET name='x'"), "nothing");
    }
    fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    fs::permissions(folder(), fs::perms::all);
    fs::permissions(registrationFolder(), fs::perms::all);
    const OrdinaryUser user;
    if (::eaccess(DRIVER_LIBRARY, R_OK) != 0) GTEST_SKIP() << "an ordinary user can't load the driver here";
    ClientConnection usual;
    ASSERT_TRUE(SQL_SUCCEEDED(usual.openText(where)));
    expectReading(usual);
    ClientConnection writer;
    SQLSetConnectAttr(writer.handle(), SQL_ATTR_ACCESS_MODE, attribute(SQL_MODE_READ_WRITE), 0);
    EXPECT_FALSE(SQL_SUCCEEDED(writer.openText(where)));
    EXPECT_EQ(writer.diagnosis().native, -1002);
}

TEST_F(ConnectTest, TwoConnectionsOfOneProgramShareTheFile) {
    const fs::path file = makeCav();
    ClientConnection first;
    ClientConnection second;
    ASSERT_TRUE(SQL_SUCCEEDED(first.open(file)));
    ASSERT_TRUE(SQL_SUCCEEDED(second.open(file)));
    ClientStatement writer(first);
    ClientStatement reader(second);
    EXPECT_EQ(writer.outcome("INSERT INTO tree (name) VALUES ('Ann')"), "ok");
    EXPECT_EQ(reader.rows("SELECT name FROM tree"), Texts{"Ann"});
    EXPECT_EQ(reader.rows("SELECT name FROM tree WHERE name='Ann'"), Texts{"Ann"});
    EXPECT_EQ(writer.outcome("UPDATE tree SET name='Bea' WHERE name='Ann'"), "ok");
    EXPECT_EQ(reader.rows("SELECT name FROM tree WHERE name='Ann'"), Texts{})
        << "the other's commit outdates the lookup";
}

TEST_F(ConnectTest, ADataSourceOfTheListWorksAsWell) {
    const fs::path file = makeCav();
    std::ofstream(registrationFolder() / "odbc.ini")
        << "[Herd]\nDriver = Microsoft Access Driver (*.mdb)\nDatabase = " << file.string() << "\n"
        << "[HerdWithPassword]\nDriver = Microsoft Access Driver (*.mdb)\nDBQ = " << file.string()
        << "\nPWD = " << jet::cavPassword << "\n";
    const auto connect = [](const std::string& source, const std::string& password) {
        const ClientConnection connection;
        const SQLRETURN result =
            SQLConnect(connection.handle(), chars(source), SQL_NTS, chars(""), SQL_NTS, chars(password), SQL_NTS);
        return SQL_SUCCEEDED(result) ? "ok" : connection.diagnosis().state;
    };
    EXPECT_EQ(connect("Herd", jet::cavPassword), "ok");
    EXPECT_EQ(connect("Herd", "no"), "28000");
    EXPECT_EQ(connect("HerdWithPassword", ""), "ok");
    ClientConnection byText;
    EXPECT_TRUE(SQL_SUCCEEDED(byText.openText("DSN=HerdWithPassword;")));
}

TEST_F(ConnectTest, TheConnectionTellsWhetherItIsAlive) {
    const fs::path file = makeCav();
    ClientConnection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(file)));
    SQLUINTEGER dead = SQL_CD_TRUE;
    EXPECT_EQ(SQLGetConnectAttr(connection.handle(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr),
              SQL_SUCCESS);
    EXPECT_EQ(dead, SQLUINTEGER{SQL_CD_FALSE});
    fs::remove(file);
    SQLGetConnectAttr(connection.handle(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
    EXPECT_EQ(dead, SQLUINTEGER{SQL_CD_FALSE}) << "only the path is gone";
}

TEST(ConnectString, TakesBracesBlanksAndTheFirstOfTwo) {
    const odbc::ConnectString text(" Driver = {a;b}}c} ;DBQ=/x/y z.cav;UID=;pwd={p;=};PWD=second;;");
    EXPECT_EQ(text.value("DRIVER"), "a;b}c");
    EXPECT_EQ(text.value("dbq"), "/x/y z.cav");
    EXPECT_EQ(text.value("UID"), "");
    EXPECT_EQ(text.value("PWD"), "p;=");
    EXPECT_EQ(text.value("none"), "");
    for (const char* broken : {"DBQ", "DBQ={x", "A=1;piece;B=2"}) {
        EXPECT_THROW(odbc::ConnectString{broken}, sql::Error) << broken;
    }
}

}  // namespace
