// driver_bench [ROWS]: inserts animals through the driver manager into an Access file, and with the same statements
// into a SQLite file, with one commit and with a commit for each; then reads four columns of all of them, and the first
// row of such an answer. SQLite keeps its journal and, like the driver, does not wait for the disk at each commit.

#include <array>
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
constexpr double goalSelect = 10;
constexpr const char* selected = "SELECT name,dob,oldId,notes FROM tree";
constexpr int selectedColumns = 4;

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

// A connection to the Access file of the bench.
class Driver {
  public:
    explicit Driver(const fs::path& file)
        : environment_(allocate(SQL_HANDLE_ENV, nullptr)), connection_(connect(environment_.get(), file)) {}

    OdbcHandle statement() const { return allocate(SQL_HANDLE_STMT, connection_.get()); }
    void commit() const { check(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_.get(), SQL_COMMIT)), "commit"); }

  private:
    static OdbcHandle connect(SQLHENV environment, const fs::path& file) {
        SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, attribute(SQL_OV_ODBC3), 0);
        OdbcHandle connection = allocate(SQL_HANDLE_DBC, environment);
        const std::string where =
            "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file.string() + ";UID=;PWD=" + jet::cavPassword + ";";
        check(SQL_SUCCEEDED(SQLDriverConnect(connection.get(), nullptr, chars(where), SQL_NTS, nullptr, 0, nullptr, 0)),
              "connect");
        SQLSetConnectAttr(connection.get(), SQL_ATTR_AUTOCOMMIT, attribute(SQL_AUTOCOMMIT_OFF), 0);
        return connection;
    }

    OdbcHandle environment_;
    OdbcHandle connection_;
};

double runDriver(const fs::path& folder, const std::vector<std::string>& texts, bool commitEach) {
    const fs::path file = folder / "bench.cav";
    jet::makeCavFile(file.string(), jet::CavColumns::typed);
    const Driver driver(file);
    const OdbcHandle statement = driver.statement();
    return seconds([&] {
        for (const std::string& text : texts) {
            check(SQL_SUCCEEDED(SQLExecDirect(statement.get(), chars(text), SQL_NTS)), "insert");
            if (commitEach) driver.commit();
        }
        driver.commit();
    });
}

// Reads so many rows of the answer, each column as text.
double selectDriver(const fs::path& folder, std::size_t rows) {
    const Driver driver(folder / "bench.cav");
    const OdbcHandle statement = driver.statement();
    return seconds([&] {
        check(SQL_SUCCEEDED(SQLExecDirect(statement.get(), chars(selected), SQL_NTS)), "select");
        std::array<char, 300> value{};
        SQLLEN length = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            check(SQL_SUCCEEDED(SQLFetch(statement.get())), "fetch");
            for (SQLUSMALLINT column = 1; column <= selectedColumns; ++column) {
                check(
                    SQL_SUCCEEDED(SQLGetData(statement.get(), column, SQL_C_CHAR, value.data(), value.size(), &length)),
                    "read");
            }
        }
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

double selectSqlite(const fs::path& folder, std::size_t rows) {
    sqlite3* raw = nullptr;
    check(sqlite3_open((folder / "bench.db").c_str(), &raw) == SQLITE_OK, "open");
    const std::unique_ptr<sqlite3, CloseSqlite> db(raw);
    return seconds([&] {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(db.get(), selected, -1, &statement, nullptr) == SQLITE_OK, "select");
        const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, &sqlite3_finalize);
        for (std::size_t row = 0; row < rows; ++row) {
            check(sqlite3_step(statement) == SQLITE_ROW, "step");
            for (int column = 0; column < selectedColumns; ++column) {
                check(sqlite3_column_text(statement, column) != nullptr, "read");
            }
        }
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

bool tell(const char* what, double driver, double sqlite, double goal) {
    std::printf("%-16s %10.4f %10.4f %9.1f %9.0f\n", what, driver, sqlite, driver / sqlite, goal);
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
        bool good = true;
        for (const bool commitEach : {false, true}) {
            const double sqlite = runSqlite(folder.path, texts, commitEach);
            const double driver = runDriver(folder.path, texts, commitEach);
            good = tell(commitEach ? "a commit each" : "one commit", driver, sqlite,
                        commitEach ? goalCommitEach : goalOneCommit) &&
                   good;
        }
        const double all = selectSqlite(folder.path, texts.size());
        good = tell("select all", selectDriver(folder.path, texts.size()), all, goalSelect) && good;
        std::printf("%-16s %10.4f\n", "its first row", selectDriver(folder.path, 1));
        return good ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "driver_bench: %s\n", error.what());
        return 2;
    }
}
