// The driver's functions called directly, as a driver manager that checks nothing would: no handle that is not alive
// may do harm.

#include <array>
#include <dlfcn.h>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

namespace {

struct CloseLibrary {
    void operator()(void* library) const noexcept { dlclose(library); }
};

class EntryPoint : public testing::Test {
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

TEST_F(EntryPoint, NothingButOdbcFunctionsLeavesTheLibrary) {
    EXPECT_NE(dlsym(library_.get(), "SQLTablesW"), nullptr);
    EXPECT_EQ(find<void>("_ZN3jet8Database4openERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES8_"), nullptr);
}

}  // namespace
