// A statement, as it may come from any application, on a small file: it is carried out or refused. Whatever way a
// SELECT finds its rows, it finds those that its condition lets through.

#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/run/filter.h"
#include "accessdriver/sql/run/session.h"
#include "accessdriver/sql/run/tableRules.h"
#include "accessdriver/sql/values/error.h"
#include "tests/fuzz/fuzzTarget.h"

namespace {

namespace fs = std::filesystem;

/// One file for all inputs; what they change is rolled back.
class Herd {
  public:
    Herd() : path_(fs::temp_directory_path() / ("statementFuzz" + std::to_string(getpid()) + ".mdb")) {
        using enum jet::ColumnType;
        const jet::TableSpec tree{
            .name = "tree",
            .columns = {{.name = "id", .type = longInteger, .autoNumber = true},
                        {.name = "name", .type = text, .length = 50},
                        {.name = "born", .type = dateTime},
                        {.name = "price", .type = currency},
                        {.name = "legs", .type = byte},
                        {.name = "tame", .type = boolean},
                        {.name = "notes", .type = memo},
                        {.name = "amount", .type = numeric, .scale = 4}},
            .indexes = {{.name = "PrimaryKey", .columns = {"id"}, .primaryKey = true, .descending = {}},
                        {.name = "name", .columns = {"name"}, .descending = {true}},
                        {.name = "born", .columns = {"born", "legs"}, .descending = {}},
                        {.name = "price", .columns = {"price"}, .descending = {}}}};
        jet::makeFile(path_, {.password = "", .tables = {tree}});
        session_ = std::make_unique<sql::Session>(jet::Database::open(path_, ""), sql::DateOrder::dayFirst);
        session_->setAutocommit(false);
        for (const char* values :
             {"'Ann',#2020-02-29#,1.5,4,True,'x',12345678901234.5678", "'ann',#1890-01-01 18:00#,-2,4,False,,-2",
              "'Zoë',#1890-01-01 06:00#,0,2,True,'y',0", ",,,,,,", "'O''Brien',#1899-12-30#,1.5,,True,'%',1.5",
              "'İßΣ ',#1899-12-29 23:59:59#,-0.5,255,False,'[a',-0.0001"}) {
            run(std::string("INSERT INTO tree (name,born,price,legs,tame,notes,amount) VALUES (") + values + ")");
        }
        session_->commit();
    }
    Herd(const Herd&) = delete;
    Herd& operator=(const Herd&) = delete;
    ~Herd() {
        session_.reset();
        std::error_code ignored;
        fs::remove(path_, ignored);
    }

    void run(std::string_view text) {
        const sql::Statement statement = sql::parse(text);
        const sql::Plan plan = session_->prepare(statement);
        const std::vector<sql::Literal> parameters(plan.parameters.size(),
                                                   {.kind = sql::Literal::Kind::text, .text = "1"});
        const sql::Outcome outcome = session_->run(plan, parameters);
        std::size_t rows = 0;
        while (outcome.rows && outcome.rows->next()) ++rows;
        if (!plan.where || !plan.returnsRows() || plan.aggregates() || plan.distinct || plan.top) return;
        const sql::Filter filter(*plan.where, *plan.table, {parameters, sql::DateOrder::dayFirst, "0"});
        std::size_t met = 0;
        for (auto cursor = session_->database().scan(*plan.table); cursor->next();)
            met += filter.holds(*cursor) ? 1 : 0;
        fuzz::demand(rows == met, "an index finds what a table scan finds");
    }

    /// The text as it may stand in a file as a column's default and rule.
    static void applyAsRule(const std::string& text) {
        const jet::TableInfo table = {.name = "t",
                                      .columns = {{.name = "c",
                                                   .type = jet::ColumnType::longInteger,
                                                   .defaultValue = text,
                                                   .validationRule = text}},
                                      .indexes = {}};
        const sql::TermValues values({}, sql::DateOrder::dayFirst, "0");
        std::vector<jet::Assignment> row;
        const sql::TableRules rules(table);
        rules.addDefaults(row, values);
        rules.check(row, true, values);
    }

    void rollback() { session_->rollback(); }

  private:
    fs::path path_;
    std::unique_ptr<sql::Session> session_;
};

template <class Call>
void attempt(Call call) {
    try {
        call();
    } catch (const sql::Error& error) {
        fuzz::demand(std::string_view(error.state()).size() == 5 && *error.what() != '\0', "a refusal is a sentence");
    } catch (const jet::Error&) {
        // The file may refuse a value as well.
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Herd herd;
    const std::string text(fuzz::textOf(data, size));
    attempt([&] { Herd::applyAsRule(text); });
    attempt([&] { herd.run(text); });
    herd.rollback();
    return 0;
}
