// The connection class by itself: what record sets make of a driver's results.

#include <gtest/gtest.h>

#include "platform/database/odbcConnection.h"
#include "platform/values/failure.h"
#include "tests/recordingdriver/recorder.h"

namespace {

using recording::Kind;

class OdbcConnectionTest : public testing::Test {
  protected:
    void SetUp() override {
        connection.setDataSource("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=x;");
        ASSERT_TRUE(connection.connect());
    }
    recording::Recorder recorder;
    OdbcConnection connection;
};

TEST_F(OdbcConnectionTest, ValuesComeWholeInAnyOrderOfColumns) {
    for (const std::size_t size : {0, 1, 4094, 4095, 4096, 8190, 8191, 70000}) {
        const std::string value(size, 'x');
        recorder.answer("SELECT", {"first", "Long", "third"}, {{"1", value, std::nullopt}, {"7 mice", "", "-2"}});
        const auto records = connection.select("SELECT * FROM t");
        ASSERT_NE(records, nullptr);
        EXPECT_EQ(records->requiredField("THIRD").text(), "");
        EXPECT_EQ(records->requiredField("long").text(), value);
        const std::string_view first = records->requiredField("first").text();
        EXPECT_EQ(records->requiredField("long").text(), value);
        EXPECT_EQ(first, "1");
        records->moveNext();
        EXPECT_EQ(records->requiredField("first").integer(), 7);
        EXPECT_EQ(records->requiredField("third").integer(), -2);
        EXPECT_FALSE(records->field("fourth").has_value());
    }
}

TEST_F(OdbcConnectionTest, GoingBackAsksAgainOnlyIfRowsAreReadAgain) {
    recorder.answer("SELECT", {"name"}, {{"Ada"}, {"Bob"}});
    const auto records = connection.select("SELECT name FROM t");
    records->moveFirst();
    EXPECT_EQ(records->requiredField("name").text(), "Ada");
    records->moveNext();
    records->moveNext();
    EXPECT_TRUE(records->atEnd());
    EXPECT_EQ(records->requiredField("name").text(), "");
    records->moveFirst();
    EXPECT_FALSE(records->atEnd());
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 1U);
    EXPECT_EQ(records->requiredField("name").text(), "Ada");
    records->moveFirst();
    records->moveNext();
    EXPECT_EQ(records->requiredField("name").text(), "Bob");
    records->moveFirst();
    records->moveNext();
    EXPECT_EQ(records->requiredField("name").text(), "Bob");
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 3U);
}

TEST_F(OdbcConnectionTest, ResultWithoutRowsReadsEmptyAndIsNotAskedForAgain) {
    recorder.answer("SELECT", {"name"});
    const auto records = connection.select("SELECT name FROM t");
    records->moveFirst();
    records->moveNext();
    records->moveFirst();
    EXPECT_TRUE(records->atEnd());
    EXPECT_EQ(records->requiredField("name").text(), "");
    EXPECT_EQ(records->requiredField("name").integer(), 0);
}

TEST_F(OdbcConnectionTest, AFailedReadIsNotTheEndOfTheRows) {
    recorder.answer("SELECT", {"name"}, {{"Ada"}, {"Bob"}});
    recorder.refuseFetch(2);
    const auto records = connection.select("SELECT name FROM t");
    ASSERT_NE(records, nullptr);
    EXPECT_THROW(records->moveNext(), DatabaseFailure);
    EXPECT_TRUE(records->atEnd());
    recorder.refuseFetch(3);
    EXPECT_EQ(connection.select("SELECT name FROM t"), nullptr);
    EXPECT_EQ(connection.errorMessage(), "The page cannot be read");
}

TEST_F(OdbcConnectionTest, CloseRollsBackAndRecordSetsReportTheirEnd) {
    recorder.answer("SELECT", {"name"}, {{"Ada"}, {"Bob"}});
    const auto records = connection.select("SELECT name FROM t");
    connection.execute("UPDATE t SET name = 'Cid'");
    connection.close();
    EXPECT_TRUE(records->atEnd());
    EXPECT_EQ(records->requiredField("name").text(), "");
    records->moveNext();
    records->moveFirst();
    EXPECT_TRUE(records->atEnd());
    EXPECT_EQ(connection.select("SELECT name FROM t"), nullptr);
    connection.execute("UPDATE t SET name = 'Cid'");
    connection.commit();
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 2U);
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 0U);
    EXPECT_EQ(recorder.texts(Kind::rollback).size(), 1U);
    EXPECT_EQ(recorder.texts(Kind::disconnect).size(), 1U);
}

TEST_F(OdbcConnectionTest, RefusalsSetCodeAndMessage) {
    recorder.refuseStatementsWith("bad", {-3100, "Syntax error"});
    connection.execute("bad");
    EXPECT_EQ(connection.errorCode(), -3100);
    EXPECT_NE(connection.errorMessage().find("Syntax error"), std::string::npos);
    EXPECT_EQ(connection.select("SELECT bad"), nullptr);
    EXPECT_TRUE(connection.connect());
}

TEST_F(OdbcConnectionTest, CommitBetweenRowsLeavesTheResultReadable) {
    recorder.answer("SELECT", {"name"}, {{"Ada"}, {"Bob"}, {"Cid"}});
    const auto records = connection.select("SELECT name FROM t");
    std::string names;
    for (; !records->atEnd(); records->moveNext()) {
        names += records->requiredField("name").text();
        connection.execute("UPDATE t SET sex = 'male'");
        connection.commit();
    }
    EXPECT_EQ(names, "AdaBobCid");
}

}  // namespace
