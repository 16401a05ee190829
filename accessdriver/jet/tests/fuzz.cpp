// jet_fuzz SEED ITERATIONS [FILE...]: damages files and works on them with all of the driver but its entry points. The
// driver may refuse whatever it likes; it must not crash, hang, or read outside of a buffer, which the sanitizers of a
// debug build report. Without files it makes its own. Blobs of properties are damaged as well, ten times as often.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "accessdriver/jet/checking/check.h"
#include "accessdriver/jet/making/cavTables.h"
#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/bytes.h"
#include "accessdriver/jet/tables/columnRules.h"
#include "accessdriver/jet/tests/fixture.h"
#include "accessdriver/odbc/catalog/catalog.h"
#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/run/session.h"
#include "accessdriver/sql/values/error.h"

namespace jet::test {
namespace {

std::vector<PropertyList> properties() {
    const auto text = [](const char* name, const char* value) {
        Property property{name, ColumnType::memo, {}};
        encodeText(utf16FromUtf8(value), false, property.value);
        return property;
    };
    return {
        {"whole", {text("DefaultValue", "5"), text("ValidationRule", "<>-1"), {"Required", ColumnType::boolean, {0}}}},
        {"word", {text("DefaultValue", "\"a\"\"b\""), text("ValidationRule", ">= 'a'")}},
        {"day", {text("DefaultValue", "=#12/31/1999#"), text("ValidationRule", "<#2100-01-01#")}}};
}

std::string madeFile(const TempFolder& folder) {
    const std::string path = folder.file("seed.mdb");
    TableSpec table = everyType();
    table.properties = properties();
    makeFile(path, {"", {table}});
    const auto database = Database::open(path, "");
    for (int n = 0; n < 120; ++n) {
        Row row = everyTypeRow(n);
        if (n % 20 == 0) row[11] = longText(9000, n);
        insert(*database, "everything", row);
    }
    // Moved rows, deleted pieces of long values.
    const TableInfo& info = database->table("everything");
    std::vector<RowId> ids;
    for (auto cursor = database->scan(info); cursor->next();) ids.push_back(cursor->rowId());
    for (std::size_t i = 0; i < ids.size(); i += 3) {
        const std::vector<Assignment> change = {{9, longText(100, 1)}, {10, longText(100, 2)}, {11, longText(500, 3)}};
        update(*database, info, ids[i], change);
    }
    database->commit();
    return readWhole(path);
}

// Numbers that lie on edges are likelier to hurt than others.
void damage(std::string& bytes, std::mt19937& random) {
    const auto pick = [&](std::size_t below) { return static_cast<std::size_t>(random() % below); };
    const std::size_t times = 1 + pick(6);
    for (std::size_t i = 0; i < times; ++i) {
        const std::size_t page = pick(bytes.size() / pageSize) * pageSize;
        // Heads of pages and tables of slots more often than their bodies.
        const std::size_t at = page + (pick(3) == 0 ? pick(pageSize) : pick(3) == 0 ? pick(512) : pick(64));
        static constexpr std::uint8_t edges[] = {0x00, 0x01, 0x7F, 0x80, 0xFF, 0x10, 0x40, 0xC0};
        switch (pick(5)) {
            case 0:
                bytes[at] = static_cast<char>(random());
                break;
            case 1:
                bytes[at] = static_cast<char>(edges[pick(std::size(edges))]);
                break;
            case 2:
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << pick(8)));
                break;
            case 3:
                bytes.replace(at, std::min<std::size_t>(4, bytes.size() - at), 4, static_cast<char>(edges[pick(4)]));
                break;
            default:
                bytes.replace(page, pageSize, bytes.substr(pick(bytes.size() / pageSize) * pageSize, pageSize));
                break;
        }
    }
    if (pick(20) == 0) bytes.resize(pick(bytes.size() / pageSize + 1) * pageSize);
}

template <class Call>
void attempt(Call call) {
    try {
        call();
    } catch (const Error&) {
        // A damaged file may be refused anywhere.
    } catch (const sql::Error&) {
        // As above, by the layer of statements.
    }
}

void changeSomeRows(Database& database, const TableInfo& info) {
    std::vector<RowId> ids;
    attempt([&] {
        for (auto cursor = database.scan(info); cursor->next() && ids.size() < 1000;) {
            ids.push_back(cursor->rowId());
            for (std::size_t i = 0; i < info.columns.size(); ++i) attempt([&] { (void)cursor->value(i); });
        }
    });
    for (std::size_t n = 0; n < 12; ++n) {
        Row row(info.columns.size());
        for (std::size_t i = 1; i < row.size(); ++i) {
            const ColumnType type = info.columns[i].type;
            if (type == ColumnType::text) row[i] = longText(n * 9 % 60, 1);
            if (type == ColumnType::memo) row[i] = longText(n * 700, 1);
            if (type == ColumnType::longInteger) row[i] = static_cast<std::int32_t>(n * 1000);
            if (type == ColumnType::boolean) row[i] = n % 2 == 0;
            if (type == ColumnType::dateTime) row[i] = DateTime{static_cast<double>(n)};
        }
        const std::vector<Assignment> values = assignmentsOf(row);
        attempt([&] { database.insert(info, values); });
        if (!ids.empty()) attempt([&] { update(database, info, ids[n * 17 % ids.size()], values); });
        if (n == 7) attempt([&] { database.commit(); });
    }
}

void work(const std::string& path) {
    attempt([&] {
        const auto database = Database::open(path, cavPassword);
        attempt([&] { (void)checkFile(*database); });
        for (const std::string& name : database->tableNames()) {
            attempt([&] { changeSomeRows(*database, database->table(name)); });
        }
        attempt([&] { database->commit(); });
        attempt([&] { (void)checkFile(*database); });
    });
}

void fetchAll(sql::RowSet& rows) {
    while (rows.next()) {
        for (std::size_t i = 0; i < rows.columns().size(); ++i) (void)rows.value(i);
    }
}

// The same through statements and the catalog functions, which trust what a definition says.
void workThroughStatements(const std::string& path) {
    attempt([&] {
        sql::Session session(Database::open(path, cavPassword));
        Database& database = session.database();
        attempt([&] { odbc::columnsResult(database, std::nullopt, std::nullopt, false); });
        attempt([&] { odbc::foreignKeysResult(database, "everything", ""); });
        for (const std::string& name : database.tableNames()) {
            attempt([&] { odbc::statisticsResult(database, name, false); });
            attempt([&] { odbc::primaryKeysResult(database, name); });
            const std::string table = "[" + name + "]";
            for (const std::string& text :
                 {"SELECT * FROM " + table, "SELECT DISTINCT * FROM " + table + " ORDER BY 1, 2 DESC",
                  "SELECT COUNT(*), MIN(id), MAX(word) FROM " + table + " WHERE whole > 0 OR word LIKE 'a*'",
                  "INSERT INTO " + table + " (word, whole) VALUES ('a word', 5)",
                  "UPDATE " + table + " SET whole = whole + 1, story = 'once' WHERE id BETWEEN 3 AND 20",
                  "DELETE FROM " + table + " WHERE id > 100 OR yes"}) {
                attempt([&] {
                    const sql::Statement statement = sql::parse(text);
                    const sql::Outcome outcome = session.run(session.prepare(statement), {});
                    if (outcome.rows) fetchAll(*outcome.rows);
                });
            }
        }
    });
}

void damageProperties(std::mt19937& random) {
    std::vector<std::uint8_t> blob = propertyBlob(properties());
    for (unsigned times = 1 + random() % 4; times > 0; --times) {
        blob[random() % blob.size()] = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : random() % 40);
        if (random() % 8 == 0) blob.resize(1 + random() % blob.size());
    }
    attempt([&] {
        for (const PropertyList& list : readProperties(blob)) {
            for (const ColumnType type : {ColumnType::longInteger, ColumnType::text, ColumnType::dateTime}) {
                Column column;
                column.type = type;
                const ColumnRules rules(column, list.properties);
                attempt([&] { rules.require("t", column, std::string()); });
            }
        }
    });
}

int run(unsigned seed, unsigned long iterations, const std::vector<std::string>& files) {
    const TempFolder folder;
    std::vector<std::string> seeds = {madeFile(folder)};
    for (const std::string& file : files) seeds.push_back(readWhole(file));
    const std::string path = folder.file("fuzzed.mdb");
    double slowest = 0;
    for (unsigned long i = 0; i < iterations; ++i) {
        std::mt19937 random(seed + static_cast<unsigned>(i));
        for (int blob = 0; blob < 10; ++blob) damageProperties(random);
        std::string bytes = seeds[random() % seeds.size()];
        damage(bytes, random);
        writeWhole(path, bytes);
        const auto start = std::chrono::steady_clock::now();
        work(path);
        writeWhole(path, bytes);
        std::filesystem::remove(path + "-jetjournal");
        workThroughStatements(path);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (seconds > slowest) {
            slowest = seconds;
            std::printf("iteration with seed %u: %.2f s\n", seed + static_cast<unsigned>(i), seconds);
            std::fflush(stdout);
        }
        constexpr double tooSlow = 20;
        if (seconds > tooSlow) {
            std::printf("that is too slow\n");
            return 1;
        }
    }
    std::printf("%lu files, nothing found\n", iterations);
    return 0;
}

}  // namespace
}  // namespace jet::test

int main(int count, char** values) {
    const unsigned seed = count > 1 ? static_cast<unsigned>(std::strtoul(values[1], nullptr, 10)) : 1;
    const unsigned long iterations = count > 2 ? std::strtoul(values[2], nullptr, 10) : 200;
    return jet::test::run(seed, iterations, std::vector<std::string>(values + std::min(count, 3), values + count));
}
