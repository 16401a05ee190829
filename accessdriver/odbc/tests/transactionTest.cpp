// Autocommit, commit and rollback.

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

#include "accessdriver/odbc/tests/client.h"

namespace {

bool diskRefuses = false;

}  // namespace

#ifdef __linux__
// The driver finds this one before that of the system.
extern "C" int fsync(int descriptor) {
    if (!diskRefuses) return static_cast<int>(syscall(SYS_fsync, descriptor));
    errno = EIO;
    return -1;
}
#endif

namespace {

using namespace odbctest;

class TransactionTest : public ConnectedTest {
  protected:
    // The rows that another connection reads.
    Texts seen() const {
        ClientConnection other;
        EXPECT_TRUE(SQL_SUCCEEDED(other.open(file_)));
        return ClientStatement(other).rows("SELECT name FROM tree");
    }
};

TEST_F(TransactionTest, WithoutAutocommitNothingStaysUntilItIsCommitted) {
    ClientStatement& statement = *statement_;
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('auto')"), "ok");
    EXPECT_EQ(seen(), Texts{"auto"});
    connection_.autocommit(false);
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('undone')"), "ok");
    EXPECT_EQ(statement.outcome("UPDATE tree SET name='changed' WHERE name='auto'"), "ok");
    EXPECT_EQ(statement.rows("SELECT name FROM tree"), (Texts{"changed", "undone"}));
    EXPECT_EQ(connection_.rollback(), SQL_SUCCESS);
    EXPECT_EQ(statement.rows("SELECT name FROM tree"), Texts{"auto"});
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('kept')"), "ok");
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name,dob) VALUES ('bad','x')").substr(0, 5), "22007");
    EXPECT_EQ(connection_.commit(), SQL_SUCCESS);
    EXPECT_EQ(seen(), (Texts{"auto", "kept"}));
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('switched')"), "ok");
    connection_.autocommit(true);
    EXPECT_EQ(seen().size(), 3U) << "switching autocommit on commits";
}

TEST_F(TransactionTest, DisconnectingWithAnOpenTransactionIsRefused) {
    connection_.autocommit(false);
    EXPECT_EQ(statement_->outcome("INSERT INTO tree (name) VALUES ('open')"), "ok");
    statement_.reset();
    EXPECT_EQ(SQLDisconnect(connection_.handle()), SQL_ERROR);
    EXPECT_EQ(connection_.diagnosis().state, "25000");
    connection_.rollback();
    EXPECT_EQ(SQLDisconnect(connection_.handle()), SQL_SUCCESS);
    EXPECT_EQ(seen(), Texts{});
}

#ifdef __linux__
TEST_F(TransactionTest, ADiskThatRefusesIsToldWhenTheConnectionIsClosed) {
    statement_->outcome("INSERT INTO tree (name) VALUES ('kept')");
    statement_.reset();
    diskRefuses = true;
    EXPECT_EQ(SQLDisconnect(connection_.handle()), SQL_SUCCESS_WITH_INFO);
    diskRefuses = false;
    EXPECT_EQ(connection_.diagnosis().state, "01002");
    EXPECT_NE(connection_.diagnosis().message.find("disk"), std::string::npos) << connection_.diagnosis().message;
    EXPECT_EQ(seen(), Texts{"kept"}) << "the commit had reached the file";
}
#endif

TEST_F(TransactionTest, AnotherConnectionMayNotWriteIntoAnOpenTransaction) {
    connection_.autocommit(false);
    ClientStatement& statement = *statement_;
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('mine')"), "ok");
    ClientConnection other;
    ASSERT_TRUE(SQL_SUCCEEDED(other.open(file_)));
    ClientStatement theirs(other);
    EXPECT_EQ(theirs.outcome("INSERT INTO tree (name) VALUES ('theirs')").substr(0, 5), "40001");
    EXPECT_EQ(connection_.commit(), SQL_SUCCESS);
    EXPECT_EQ(theirs.outcome("INSERT INTO tree (name) VALUES ('theirs')"), "ok");
    EXPECT_EQ(theirs.rows("SELECT name FROM tree"), (Texts{"mine", "theirs"}));
}

TEST_F(TransactionTest, AutocommitSwitchedOffBeforeConnecting) {
    ClientConnection connection;
    connection.autocommit(false);
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(file_)));
    EXPECT_EQ(ClientStatement(connection).outcome("INSERT INTO tree (name) VALUES ('open')"), "ok");
    EXPECT_EQ(connection.rollback(), SQL_SUCCESS);
    EXPECT_EQ(seen(), Texts{});
}

}  // namespace
