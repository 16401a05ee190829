// The driver's functions called directly, as a driver manager that checks nothing would: no handle that is not alive
// may do harm.

#include <array>
#include <dlfcn.h>
#include <memory>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

struct CloseLibrary {
    void operator()(void* library) const noexcept { dlclose(library); }
};

class EntryPoint : public OdbcTest {
  protected:
    EntryPoint() : library_(dlopen(DRIVER_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}

    void SetUp() override { ASSERT_NE(library_, nullptr) << dlerror(); }

    template <class Function>
    Function* find(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(library_.get(), name));
    }

    std::unique_ptr<void, CloseLibrary> library_;
};

TEST_F(EntryPoint, HandlesThatAreNotAliveAreInvalid) {
    auto* const allocate = find<decltype(SQLAllocHandle)>("SQLAllocHandle");
    auto* const release = find<decltype(SQLFreeHandle)>("SQLFreeHandle");
    auto* const fetch = find<decltype(SQLFetch)>("SQLFetch");
    auto* const disconnect = find<decltype(SQLDisconnect)>("SQLDisconnect");
    auto* const record = find<decltype(SQLGetDiagRec)>("SQLGetDiagRec");
    SQLHANDLE environment = nullptr;
    SQLHANDLE connection = nullptr;
    SQLHANDLE statement = nullptr;
    ASSERT_EQ(allocate(SQL_HANDLE_ENV, nullptr, &environment), SQL_SUCCESS);
    ASSERT_EQ(allocate(SQL_HANDLE_DBC, environment, &connection), SQL_SUCCESS);
    ASSERT_EQ(allocate(SQL_HANDLE_STMT, connection, &statement), SQL_SUCCESS);

    int notAHandle = 0;
    for (SQLHANDLE wrong : {SQLHANDLE{nullptr}, SQLHANDLE{&notAHandle}, environment, connection}) {
        EXPECT_EQ(fetch(wrong), SQL_INVALID_HANDLE);
        EXPECT_EQ(release(SQL_HANDLE_STMT, wrong), SQL_INVALID_HANDLE);
        EXPECT_EQ(record(SQL_HANDLE_STMT, wrong, 1, nullptr, nullptr, nullptr, 0, nullptr), SQL_INVALID_HANDLE);
    }
    SQLHANDLE none = nullptr;
    EXPECT_EQ(allocate(SQL_HANDLE_STMT, environment, &none), SQL_INVALID_HANDLE);
    EXPECT_EQ(allocate(SQL_HANDLE_DBC, nullptr, &none), SQL_INVALID_HANDLE);

    // In the wrong order, too: a statement outlives nothing that it needs.
    EXPECT_EQ(disconnect(connection), SQL_ERROR);
    std::array<SQLCHAR, 6> state{};
    EXPECT_EQ(record(SQL_HANDLE_DBC, connection, 1, state.data(), nullptr, nullptr, 0, nullptr), SQL_SUCCESS);
    EXPECT_STREQ(reinterpret_cast<const char*>(state.data()), "08003");
    EXPECT_EQ(record(SQL_HANDLE_DBC, connection, 2, nullptr, nullptr, nullptr, 0, nullptr), SQL_NO_DATA);
    EXPECT_EQ(release(SQL_HANDLE_DBC, connection), SQL_SUCCESS);
    EXPECT_EQ(release(SQL_HANDLE_DBC, connection), SQL_INVALID_HANDLE);
    EXPECT_EQ(fetch(statement), SQL_ERROR);
    EXPECT_EQ(release(SQL_HANDLE_STMT, statement), SQL_SUCCESS);
    EXPECT_EQ(fetch(statement), SQL_INVALID_HANDLE);
    EXPECT_EQ(release(SQL_HANDLE_ENV, environment), SQL_SUCCESS);
}

// Parent and child share the file's locks, and each has pages in memory that it takes for the file's.
TEST_F(EntryPoint, AChildProcessCantUseTheConnectionOfItsParent) {
    auto* const allocate = find<decltype(SQLAllocHandle)>("SQLAllocHandle");
    auto* const connect = find<decltype(SQLDriverConnect)>("SQLDriverConnect");
    auto* const run = find<decltype(SQLExecDirect)>("SQLExecDirect");
    auto* const end = find<decltype(SQLEndTran)>("SQLEndTran");
    SQLHANDLE environment = nullptr, connection = nullptr, statement = nullptr, reading = nullptr;
    allocate(SQL_HANDLE_ENV, nullptr, &environment);
    allocate(SQL_HANDLE_DBC, environment, &connection);
    const std::filesystem::path file = makeCav();
    ASSERT_TRUE(SQL_SUCCEEDED(connect(connection, nullptr, chars("DBQ=" + file.string() + ";PWD=" + jet::cavPassword),
                                      SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)));
    allocate(SQL_HANDLE_STMT, connection, &statement);
    allocate(SQL_HANDLE_STMT, connection, &reading);
    find<decltype(SQLSetConnectAttr)>("SQLSetConnectAttr")(connection, SQL_ATTR_AUTOCOMMIT,
                                                           attribute(SQL_AUTOCOMMIT_OFF), 0);
    const std::string insert = "INSERT INTO tree (name) VALUES ('Ann')";
    ASSERT_EQ(run(statement, chars(insert), SQL_NTS), SQL_SUCCESS);
    ASSERT_EQ(run(reading, chars("SELECT name FROM tree"), SQL_NTS), SQL_SUCCESS);

    const pid_t child = ::fork();
    if (child == 0) {
        auto* const record = find<decltype(SQLGetDiagRec)>("SQLGetDiagRec");
        const auto refused = [&](SQLRETURN result, SQLSMALLINT type, SQLHANDLE handle) {
            std::array<SQLCHAR, 6> state{};
            record(type, handle, 1, state.data(), nullptr, nullptr, 0, nullptr);
            return result == SQL_ERROR && std::string(reinterpret_cast<char*>(state.data())) == "08003";
        };
        auto* const release = find<decltype(SQLFreeHandle)>("SQLFreeHandle");
        bool good = refused(run(statement, chars(insert), SQL_NTS), SQL_HANDLE_STMT, statement);
        good &= refused(find<decltype(SQLFetch)>("SQLFetch")(reading), SQL_HANDLE_STMT, reading);
        good &= refused(end(SQL_HANDLE_DBC, connection, SQL_COMMIT), SQL_HANDLE_DBC, connection);
        good &= refused(find<decltype(SQLDisconnect)>("SQLDisconnect")(connection), SQL_HANDLE_DBC, connection);
        good &= release(SQL_HANDLE_STMT, statement) == SQL_SUCCESS && release(SQL_HANDLE_STMT, reading) == SQL_SUCCESS;
        good &= release(SQL_HANDLE_DBC, connection) == SQL_SUCCESS;
        ::_exit(good ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder() / "a.ldb")) << "the parent's lock file";
    EXPECT_EQ(run(statement, chars(insert), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(end(SQL_HANDLE_DBC, connection, SQL_COMMIT), SQL_SUCCESS);
    for (const auto& [type, handle] : {std::pair{SQL_HANDLE_STMT, statement},
                                       {SQL_HANDLE_STMT, reading},
                                       {SQL_HANDLE_DBC, connection},
                                       {SQL_HANDLE_ENV, environment}}) {
        find<decltype(SQLFreeHandle)>("SQLFreeHandle")(static_cast<SQLSMALLINT>(type), handle);
    }
    ClientConnection other;
    ASSERT_TRUE(SQL_SUCCEEDED(other.open(file)));
    EXPECT_EQ(ClientStatement(other).rows("SELECT name FROM tree"), (Texts{"Ann", "Ann"}));
}

TEST_F(EntryPoint, DescriptorsAreCopiedInBothDirectionsAtOnce) {
    auto* const allocate = find<decltype(SQLAllocHandle)>("SQLAllocHandle");
    auto* const release = find<decltype(SQLFreeHandle)>("SQLFreeHandle");
    auto* const copy = find<decltype(SQLCopyDesc)>("SQLCopyDesc");
    SQLHANDLE environment = nullptr;
    allocate(SQL_HANDLE_ENV, nullptr, &environment);
    std::array<SQLHANDLE, 2> connections{};
    std::array<SQLHANDLE, 2> descriptors{};
    for (std::size_t i = 0; i < 2; ++i) {
        allocate(SQL_HANDLE_DBC, environment, &connections[i]);
        ASSERT_EQ(allocate(SQL_HANDLE_DESC, connections[i], &descriptors[i]), SQL_SUCCESS);
    }
    constexpr int copies = 20000;
    const auto repeat = [&](SQLHANDLE from, SQLHANDLE to) {
        for (int i = 0; i < copies; ++i) ASSERT_EQ(copy(from, to), SQL_SUCCESS);
    };
    std::thread other([&] { repeat(descriptors[0], descriptors[1]); });
    repeat(descriptors[1], descriptors[0]);
    other.join();
    for (SQLHANDLE descriptor : descriptors) release(SQL_HANDLE_DESC, descriptor);
    for (SQLHANDLE connection : connections) release(SQL_HANDLE_DBC, connection);
    release(SQL_HANDLE_ENV, environment);
}

TEST_F(EntryPoint, NothingButOdbcFunctionsLeavesTheLibrary) {
    EXPECT_NE(dlsym(library_.get(), "SQLTablesW"), nullptr);
    EXPECT_EQ(find<void>("_ZN3jet8Database4openERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES8_"), nullptr);
}

}  // namespace
