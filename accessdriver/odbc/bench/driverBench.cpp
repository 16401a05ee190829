// driver_bench [ROWS]: inserts animals through the driver manager into an Access file, and with the same statements
// into a SQLite file, with one commit and with a commit for each. SQLite keeps its journal and, like the driver, does
// not wait for the disk at each commit.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <sql.h>
#include <sqlcipher/sqlite3.h>
#include <sqlext.h>

#include "accessdriver/jet/making/cavTables.h"

namespace {

namespace fs = std::filesystem;

constexpr int defaultRows = 98999;
constexpr double goalOneCommit = 10;
constexpr double goalCommitEach = 40;

constexpr const char* columns =
    "name,colour,breed,sex,dob,oldId,fatherId,motherId,ps,pd,tag,prefix,suffix,health,cage,notes,customfield1,"
    "customfield2,customfield3,customfield4,customfield5,customfield6,customfield7,customfield8,customfield9,"
    "customfield10,customfield11,customfield12,customfield13,customfield14,customfield15";

std::vector<std::string> statements(int rows) {
    std::vector<std::string> out;
    out.reserve(static_cast<std::size_t>(rows));
    for (int i = 1; i <= rows; ++i) {
        const std::string id = std::to_string(i);
        out.push_back("INSERT INTO tree (" + std::string(columns) + ")VALUES ('Animal " + id +
                      "','Self Black','Rex','" + (i % 2 == 0 ? "male" : "female") + "','20" +
                      std::to_string(10 + i % 14) + "-0" + std::to_string(1 + i % 9) + "-1" + std::to_string(i % 10) +
                      "','" + id + "','" + std::to_string(i / 30 + 1) + "','" + std::to_string(i / 5 + 1) +
                      "','Father " + std::to_string(i / 30) + "','Mother " + std::to_string(i / 5) + "','LE-" + id +
                      "','Prefix','II','healthy','C" + std::to_string(i % 40) +
                      "','Some words about the animal','agouti','smooth','','','','','','','','','','','','','')");
    }
    return out;
}

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct FreeOdbc {
    SQLSMALLINT type;
    void operator()(SQLHANDLE handle) const noexcept {
        if (type == SQL_HANDLE_DBC) SQLDisconnect(handle);
        SQLFreeHandle(type, handle);
    }
};
using OdbcHandle = std::unique_ptr<void, FreeOdbc>;

void check(bool good, const char* what) {
    if (!good) throw std::runtime_error(what);
}

OdbcHandle allocate(SQLSMALLINT type, SQLHANDLE parent) {
    SQLHANDLE raw = nullptr;
    check(SQL_SUCCEEDED(SQLAllocHandle(type, parent, &raw)), "no handle");
    return {raw, FreeOdbc{type}};
}

void* attribute(SQLULEN value) { return reinterpret_cast<void*>(value); }

SQLCHAR* chars(const std::string& text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str())); }

double runDriver(const fs::path& folder, const std::vector<std::string>& texts, bool commitEach) {
    const std::string file = (folder / "bench.cav").string();
    jet::makeCavFile(file, jet::CavColumns::typed);
    const OdbcHandle environment = allocate(SQL_HANDLE_ENV, nullptr);
    SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, attribute(SQL_OV_ODBC3), 0);
    const OdbcHandle connection = allocate(SQL_HANDLE_DBC, environment.get());
    const std::string where =
        "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file + ";UID=;PWD=" + jet::cavPassword + ";";
    check(SQL_SUCCEEDED(SQLDriverConnect(connection.get(), nullptr, chars(where), SQL_NTS, nullptr, 0, nullptr, 0)),
          "connect");
    SQLSetConnectAttr(connection.get(), SQL_ATTR_AUTOCOMMIT, attribute(SQL_AUTOCOMMIT_OFF), 0);
    const OdbcHandle statement = allocate(SQL_HANDLE_STMT, connection.get());
    return seconds([&] {
        for (const std::string& text : texts) {
            check(SQL_SUCCEEDED(SQLExecDirect(statement.get(), chars(text), SQL_NTS)), "insert");
            if (commitEach) check(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection.get(), SQL_COMMIT)), "commit");
        }
        check(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection.get(), SQL_COMMIT)), "commit");
    });
}

struct CloseSqlite {
    void operator()(sqlite3* db) const noexcept { sqlite3_close_v2(db); }
};

double runSqlite(const fs::path& folder, const std::vector<std::string>& texts, bool commitEach) {
    const std::string file = (folder / "bench.db").string();
    fs::remove(file);
    sqlite3* raw = nullptr;
    check(sqlite3_open(file.c_str(), &raw) == SQLITE_OK, "open");
    const std::unique_ptr<sqlite3, CloseSqlite> db(raw);
    const auto run = [&](const std::string& text) {
        check(sqlite3_exec(db.get(), text.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, "sqlite");
    };
    run("PRAGMA synchronous=OFF");
    run("CREATE TABLE tree (id INTEGER PRIMARY KEY AUTOINCREMENT," + std::string(columns) + ")");
    run("CREATE INDEX treeName ON tree (name)");
    return seconds([&] {
        if (!commitEach) run("BEGIN");
        for (const std::string& text : texts) run(text);
        if (!commitEach) run("COMMIT");
    });
}

// A list of drivers for this run alone.
void registerDriver(const fs::path& folder) {
    std::ofstream(folder / "odbcinst.ini") << "[Microsoft Access Driver (*.mdb)]\nDriver = " << DRIVER_LIBRARY << "\n";
    std::ofstream(folder / "odbc.ini") << "";
    setenv("ODBCSYSINI", folder.c_str(), 1);
    setenv("ODBCINI", (folder / "odbc.ini").c_str(), 1);
}

struct Folder {
    fs::path path;
    Folder() {
        std::string name = (fs::temp_directory_path() / "driver_bench_XXXXXX").string();
        check(mkdtemp(name.data()) != nullptr, "no temporary folder");
        path = name;
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }
};

bool compare(const fs::path& folder, const std::vector<std::string>& texts, bool commitEach) {
    const double sqlite = runSqlite(folder, texts, commitEach);
    const double driver = runDriver(folder, texts, commitEach);
    const double goal = commitEach ? goalCommitEach : goalOneCommit;
    std::printf("%-16s %10.3f %10.3f %9.1f %9.0f\n", commitEach ? "a commit each" : "one commit", driver, sqlite,
                driver / sqlite, goal);
    return driver <= goal * sqlite;
}

}  // namespace

int main(int count, char** values) {
    try {
        const auto texts = statements(count > 1 ? std::atoi(values[1]) : defaultRows);
        const Folder folder;
        registerDriver(folder.path);
        std::printf("%zu inserts into tree\n%-16s %10s %10s %9s %9s\n", texts.size(), "", "driver s", "SQLite s",
                    "ratio", "at most");
        const bool one = compare(folder.path, texts, false);
        const bool each = compare(folder.path, texts, true);
        return one && each ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "driver_bench: %s\n", error.what());
        return 2;
    }
}
