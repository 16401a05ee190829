#include "accessdriver/sql/tests/sessionFixture.h"

#include <cstdlib>
#include <stdexcept>

#include "accessdriver/jet/records/text.h"
#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"

namespace sqltest {

namespace {

std::filesystem::path makeFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "accesssql_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return name;
}

jet::TableSpec animals() {
    using enum jet::ColumnType;
    return {.name = "animals",
            .columns = {{.name = "id", .type = longInteger, .autoNumber = true},
                        {.name = "name", .type = text, .length = 10},
                        {.name = "oldId", .type = text, .length = 50},
                        {.name = "dob", .type = dateTime},
                        {.name = "weight", .type = doubleFloat},
                        {.name = "litter", .type = byte},
                        {.name = "price", .type = currency},
                        {.name = "deceased", .type = boolean},
                        {.name = "notes", .type = memo},
                        {.name = "tag", .type = text, .length = 20},
                        {.name = "amount", .type = numeric, .precision = 9, .scale = 2},
                        {.name = "code", .type = guid},
                        {.name = "ratio", .type = single},
                        {.name = "legs", .type = integer}},
            .indexes = {{.name = "PrimaryKey", .columns = {"id"}, .primaryKey = true, .descending = {}},
                        {.name = "tag", .columns = {"tag"}, .unique = true, .descending = {}},
                        {.name = "legs", .columns = {"legs"}, .descending = {}},
                        {.name = "deceased", .columns = {"deceased"}, .descending = {}},
                        {.name = "dob", .columns = {"dob"}, .descending = {}}}};
}

}  // namespace

SessionTest::SessionTest() : folder_(makeFolder()) {
    jet::makeFile(file(), {.password = "", .tables = {animals()}});
    session_ = openSession();
}

SessionTest::~SessionTest() {
    session_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::unique_ptr<sql::Session> SessionTest::openSession() const {
    return std::make_unique<sql::Session>(jet::Database::open(file(), ""), sql::DateOrder::monthFirst);
}

sql::Outcome SessionTest::run(const std::string& text, const std::vector<sql::Literal>& parameters) {
    const sql::Statement statement = sql::parse(text);
    return session_->run(session_->prepare(statement), parameters);
}

Texts SessionTest::rows(const sql::Outcome& outcome) {
    Texts out;
    while (outcome.rows->next()) {
        std::string row;
        for (std::size_t i = 0; i < outcome.rows->columns().size(); ++i) {
            const jet::Value& value = outcome.rows->value(i);
            const bool null = std::holds_alternative<std::monostate>(value);
            row += (i > 0 ? "|" : "") + (null ? "Null" : sql::textOf(value, outcome.rows->columns()[i].type));
        }
        out.push_back(row);
    }
    return out;
}

std::string SessionTest::refusal(const std::string& text) {
    try {
        run(text);
    } catch (const sql::Error& error) {
        return std::string(error.state()) + " " + error.what();
    } catch (const jet::Error& error) {
        return std::string("jet ") + error.what();
    }
    return "accepted";
}

jet::Property textProperty(const char* name, std::string_view value) {
    jet::Property property{name, jet::ColumnType::memo, {}};
    jet::encodeText(jet::utf16FromUtf8(value), false, property.value);
    return property;
}

}  // namespace sqltest
