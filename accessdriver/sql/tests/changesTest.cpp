// INSERT, UPDATE and DELETE over a file, and their transactions.

#include <csignal>
#include <sys/resource.h>

#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/tests/sessionFixture.h"

namespace {

using sqltest::textProperty;
using sqltest::Texts;

class ChangesTest : public sqltest::SessionTest {};

TEST_F(ChangesTest, ValuesAreCoercedToTheirColumns) {
    EXPECT_EQ(changed("INSERT INTO Animals (NAME,dob,[oldId],weight,price,deceased,notes,amount,code,ratio)VALUES "
                      "('Zoë','2020-01-31',,'1.5','2','Yes','a''b',1.5,'{00112233-4455-6677-8899-aabbccddeeff}',0.1)"),
              1);
    EXPECT_EQ(rows("SELECT * FROM ANIMALS"), Texts{"1|Zoë|Null|2020-01-31 00:00:00|1.5|Null|2.0000|1|a'b|Null|1.50|"
                                                   "00112233-4455-6677-8899-AABBCCDDEEFF|0.1|Null"});
}

TEST_F(ChangesTest, RefusedStatementsChangeNothing) {
    changed("INSERT INTO animals (name,tag) VALUES ('a','t1')");
    changed("INSERT INTO animals (name,tag) VALUES ('a','t2')");
    const Texts before = rows("SELECT * FROM animals");
    const std::pair<const char*, const char*> cases[] = {
        {"INSERT INTO animals (name,oldId) VALUES ('a')", "21S01 The statement names 2 columns and gives 1 values."},
        {"INSERT INTO animals (name) VALUES ('a','b')", "21S01 The statement names 1 columns and gives 2 values."},
        {"INSERT INTO animal (name) VALUES ('a')", "42S02 There is no table 'animal'."},
        {"INSERT INTO animals (nom) VALUES ('a')", "42S22 The table 'animals' has no column 'nom'."},
        {"INSERT INTO animals (name,NAME) VALUES ('a','b')", "42000 The column 'NAME' is set twice."},
        {"UPDATE animals SET name='b' WHERE nom='a'", "42S22 The table 'animals' has no column 'nom'."},
        {"UPDATE animals SET dob='never' WHERE name='a'", "22007 'never' is no date, which the column 'dob' takes."},
        {"INSERT INTO animals (name) VALUES ('12345678901')",
         "22001 The text is too long for the column 'name': 11 characters, at most 10."},
        {"INSERT INTO animals (name) VALUES (?)", "07002 The statement has 1 parameters, and 0 are bound."},
        {"UPDATE animals SET litter=id+1000", "22003 The number 1001 is out of the range of the column 'litter'."},
        {"UPDATE animals SET litter=name+1", "42000 The column 'name' is of a type that can't be added."},
        {"UPDATE animals SET amount='12345678.9'",
         "22003 The number 12345678.9 is out of the range of the column 'amount'."},
    };
    for (const auto& [text, wanted] : cases) EXPECT_EQ(refusal(text), wanted) << text;
    const std::string longText(100000, 'x');
    EXPECT_LT(refusal("INSERT INTO animals (dob) VALUES ('" + longText + "')").size(), 200U);
    // The first row could be updated, the second one not.
    for (const bool autocommit : {true, false}) {
        session_->setAutocommit(autocommit);
        EXPECT_NE(refusal("INSERT INTO animals (tag) VALUES ('T1')").find("jet "), std::string::npos);
        EXPECT_NE(refusal("UPDATE animals SET tag='same', name='z'").find("jet "), std::string::npos);
        EXPECT_NE(refusal("UPDATE animals SET id=9, name=oldId").find("jet "), std::string::npos);
        EXPECT_EQ(rows("SELECT * FROM animals"), before);
        EXPECT_EQ(rows("SELECT name FROM animals WHERE tag='same'"), Texts{});
        EXPECT_FALSE(session_->hasOpenChanges());
    }
}

TEST_F(ChangesTest, ADuplicateOnAnotherLeafOfAUniqueIndexIsRefused) {
    session_->setAutocommit(false);
    constexpr int animals = 2000;  // some ten leaves
    for (int i = 0; i < animals; ++i) changed("INSERT INTO animals (tag) VALUES ('tag " + std::to_string(i) + "')");
    for (int i = 0; i < animals; i += 7) {
        const std::string tag = std::to_string(i);
        EXPECT_NE(refusal("INSERT INTO animals (tag) VALUES ('TAG " + tag + "')"), "accepted") << tag;
        EXPECT_NE(refusal("UPDATE animals SET tag='Tag " + tag + "' WHERE id=1000 AND tag<>'tag " + tag + "'"),
                  i == 999 ? "" : "accepted")
            << tag;
    }
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE tag LIKE 'tag *'"), Texts{std::to_string(animals)});
}

TEST_F(ChangesTest, SetTakesColumnsAndSums) {
    changed(
        "INSERT INTO animals (name,litter,price,amount,weight,dob,legs,ratio) VALUES "
        "('a',3,922337203685470,1234567.89,0.5,#2020-02-28#,7,0.25)");
    changed("INSERT INTO animals (name) VALUES ('b')");
    EXPECT_EQ(changed("UPDATE animals SET litter=litter+1, price=price+0.0001-(0.0002), amount=amount-1234567.9, "
                      "weight=1+weight, dob=dob+2, oldId=name, notes=price, legs=legs+litter, ratio=ratio+1e1"),
              2);
    EXPECT_EQ(rows("SELECT litter,price,amount,weight,dob,oldId,notes,legs,ratio FROM animals"),
              (Texts{"4|922337203685469.9999|-0.01|1.5|2020-03-01 00:00:00|a|922337203685470|10|10.25",
                     "Null|Null|Null|Null|Null|b|Null|Null|Null"}));
    EXPECT_EQ(
        changed(
            "UPDATE animals SET legs=dob-#2020-02-28#, notes=dob-#2020-02-27#, amount=0.01-amount-0.02 WHERE litter=4"),
        1);
    EXPECT_EQ(rows("SELECT legs,notes,amount FROM animals WHERE legs=2"), Texts{"2|3|0.00"}) << "indexes follow";
    EXPECT_EQ(refusal("UPDATE animals SET amount=amount+99999999999999999999999999999999999999.5"),
              "22003 The sum for the column 'amount' is out of its range.");
}

TEST_F(ChangesTest, IdentityIsTheLastAutoNumber) {
    EXPECT_EQ(rows("SELECT @@IDENTITY"), Texts{"0"});
    for (int i = 0; i < 3; ++i) changed("INSERT INTO animals (name) VALUES ('a')");
    EXPECT_EQ(rows("SELECT @@identity AS last"), Texts{"3"});
    changed("INSERT INTO animals (id) VALUES (70)");
    changed("DELETE FROM animals");
    EXPECT_EQ(rows("SELECT @@IDENTITY"), Texts{"70"}) << "also when the row is gone";
    session_->setAutocommit(false);
    changed("INSERT INTO animals (name) VALUES ('a')");
    session_->rollback();
    EXPECT_EQ(rows("SELECT @@IDENTITY"), Texts{"71"});
    EXPECT_EQ(changed("INSERT INTO animals (legs, oldId) VALUES (@@IDENTITY, 'child')"), 1);
    EXPECT_EQ(rows("SELECT legs FROM animals"), Texts{"71"});
}

TEST_F(ChangesTest, DefaultsAndRulesAreReadAsStatementsRead) {
    session_.reset();
    using enum jet::ColumnType;
    struct Case {
        const char* name;
        jet::ColumnType type;
        const char* defaultValue;
        const char* wanted;     // in a row that names no columns
        const char* rule = "";  // whose refusal of one value and taking of another is tried
        const char* refused = "";
        const char* taken = "Null";
    };
    const Case cases[] = {
        {"a", dateTime, "#10:30:00 AM#", "1899-12-30 10:30:00", "<> #1/31/20#", "#1/31/2020#", "#1/30/2020#"},
        {"b", longInteger, "2.5", "2", "Between 10 And 1 Or 77", "11", "77"},
        {"c", numeric, "=1.5", "1.50", "<=1.5", "1.51"},
        {"d", dateTime, "#1/31/20#", "2020-01-31 00:00:00", "<= Date()", "#1/1/2999#", "Date()"},
        {"e", text, "\"un\"\"known\"", "un\"known", "<> 'none' And Not Like \"x*\"", "'NONE'"},
        {"f", boolean, "Yes", "1"},
        {"g", currency, "-1e-2", "-0.0100", "In (-0.01, (5))", "4"},
        {"h", text, "", "x", "Is Not Null", "Null", "'x'"},
        {"i", memo, "Environ(\"HOME\")", "Null", "Len([i])>2", "", "'x'"},
        {"j", dateTime, " = Date() ", "today", "[b] > 2", ""},
        {"k", byte, "True", "refused", "[k] < 5", "5", "4"},
        {"l", longInteger, "'12'", "12", "'x'", ""},
    };
    jet::TableSpec spec{.name = "t", .columns = {}, .indexes = {}};
    for (const Case& c : cases) {
        spec.columns.push_back({.name = c.name, .type = c.type, .length = 20, .precision = 9, .scale = 2});
        spec.properties.push_back(
            {c.name, {textProperty("DefaultValue", c.defaultValue), textProperty("ValidationRule", c.rule)}});
    }
    jet::makeFile(file(), {.password = "", .tables = {spec}});
    session_ = openSession();
    EXPECT_EQ(refusal("INSERT INTO t (a) VALUES (Null)"), "22003 The number -1 is out of the range of the column 'k'.");
    EXPECT_EQ(refusal("INSERT INTO t (k) VALUES (Null)").substr(0, 23), "23000 The column h of t");
    EXPECT_EQ(changed("INSERT INTO t (k,h) VALUES (Null,'x')"), 1);
    for (const Case& c : cases) {
        const std::string column = c.name;
        if (std::string_view(c.wanted) == "today") {
            EXPECT_EQ(rows("SELECT COUNT(*) FROM t WHERE j = Date()"), Texts{"1"});
        } else if (std::string_view(c.wanted) != "refused") {
            EXPECT_EQ(rows("SELECT " + column + " FROM t"), Texts{c.wanted}) << c.defaultValue;
        }
        if (*c.refused != '\0') {
            const std::string wanted =
                "23000 The column " + column + " of the table t takes only values that are " + c.rule + ".";
            EXPECT_EQ(refusal("UPDATE t SET " + column + "=" + c.refused), wanted);
            EXPECT_EQ(refusal("UPDATE t SET " + column + "=" + c.refused + ", f=f").substr(0, 5), "23000")
                << "by a sum's way";
        }
        EXPECT_EQ(refusal("UPDATE t SET " + column + "=" + c.taken), "accepted") << c.rule;
    }
    EXPECT_EQ(rows("SELECT COUNT(*) FROM t"), Texts{"1"});
}

TEST_F(ChangesTest, AutocommitCommitsEachStatementAndManualModeOnlyOnDemand) {
    const auto other = openSession();
    const auto committed = [&] {
        const sql::Statement statement = sql::parse("SELECT name FROM animals");
        return rows(other->run(other->prepare(statement), {}));
    };
    changed("INSERT INTO animals (name) VALUES ('a')");
    EXPECT_EQ(committed(), Texts{"a"});
    EXPECT_FALSE(session_->hasOpenChanges());
    session_->setAutocommit(false);
    changed("INSERT INTO animals (name) VALUES ('b')");
    changed("UPDATE animals SET name='c' WHERE name='b'");
    EXPECT_TRUE(session_->hasOpenChanges());
    session_->rollback();
    EXPECT_EQ(rows("SELECT name FROM animals"), Texts{"a"});
    changed("INSERT INTO animals (name) VALUES ('d')");
    session_->setAutocommit(true);
    EXPECT_EQ(committed(), (Texts{"a", "d"})) << "switching on commits what is open";
}

// The limit on a file's size stands for a full disk.
TEST_F(ChangesTest, ACommitThatFailsIsUndone) {
    changed("INSERT INTO animals (name) VALUES ('a')");
    const auto bytes = std::filesystem::file_size(file());
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit full = usual;
    full.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string refused = refusal("INSERT INTO animals (notes) VALUES ('" + std::string(100000, 'x') + "')");
    setrlimit(RLIMIT_FSIZE, &usual);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(refused.substr(0, 4), "jet ");
    EXPECT_FALSE(session_->hasOpenChanges());
    EXPECT_EQ(rows("SELECT name FROM animals"), Texts{"a"});
    session_ = openSession();
    EXPECT_EQ(rows("SELECT name FROM animals"), Texts{"a"});
}

}  // namespace
