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

class TransactionTest : public OdbcTest {
  protected:
    void SetUp() override {
        file_ = makeCav();
        ASSERT_TRUE(SQL_SUCCEEDED(connection_.open(file_)));
    }

    // What another connection sees.
    Texts seen(const std::string& text = "SELECT name FROM tree") const {
        Connection other;
        EXPECT_TRUE(SQL_SUCCEEDED(other.open(file_)));
        Statement statement(other);
        return statement.rows(text);
    }

    std::filesystem::path file_;
    Connection connection_;
};

TEST_F(TransactionTest, WithoutAutocommitNothingStaysUntilItIsCommitted) {
    Statement statement(connection_);
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
    {
        Statement statement(connection_);
        EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('open')"), "ok");
    }
    EXPECT_EQ(SQLDisconnect(connection_.handle()), SQL_ERROR);
    EXPECT_EQ(connection_.diagnosis().state, "25000");
    connection_.rollback();
    EXPECT_EQ(SQLDisconnect(connection_.handle()), SQL_SUCCESS);
    EXPECT_EQ(seen(), Texts{});
}

#ifdef __linux__
TEST_F(TransactionTest, ADiskThatRefusesIsToldWhenTheConnectionIsClosed) {
    Statement(connection_).outcome("INSERT INTO tree (name) VALUES ('kept')");
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
    Statement statement(connection_);
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name) VALUES ('mine')"), "ok");
    Connection other;
    ASSERT_TRUE(SQL_SUCCEEDED(other.open(file_)));
    Statement theirs(other);
    EXPECT_EQ(theirs.outcome("INSERT INTO tree (name) VALUES ('theirs')").substr(0, 5), "40001");
    EXPECT_EQ(connection_.commit(), SQL_SUCCESS);
    EXPECT_EQ(theirs.outcome("INSERT INTO tree (name) VALUES ('theirs')"), "ok");
    EXPECT_EQ(theirs.rows("SELECT name FROM tree"), (Texts{"mine", "theirs"}));
}

// The second row's key is refused by the index, and the first row is put back.
TEST_F(TransactionTest, AnUpdateThatAnIndexRefusesHalfWayLeavesNoTrace) {
    for (const bool autocommit : {true, false}) {
        connection_.autocommit(autocommit);
        Statement statement(connection_);
        statement.outcome("INSERT INTO tree (name) VALUES ('a')");
        statement.outcome("INSERT INTO tree (name) VALUES ('b')");
        const Texts before = statement.rows("SELECT id,name FROM tree");
        EXPECT_EQ(statement.outcome("UPDATE tree SET name='z', id=99").substr(0, 5), "23000");
        EXPECT_EQ(statement.rows("SELECT id,name FROM tree"), before);
        EXPECT_EQ(connection_.commit(), SQL_SUCCESS);
        EXPECT_EQ(seen("SELECT id,name FROM tree"), before);
    }
}

}  // namespace
