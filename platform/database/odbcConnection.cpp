#include "platform/database/odbcConnection.h"

#include <array>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

#include <sql.h>
#include <sqlext.h>

#include "platform/values/failure.h"

namespace detail {
namespace {

template <SQLSMALLINT Type>
struct FreeHandle {
    void operator()(void* handle) const noexcept { SQLFreeHandle(Type, handle); }
};
template <SQLSMALLINT Type>
using Handle = std::unique_ptr<void, FreeHandle<Type>>;

/// A new handle under its parent; null if the driver manager gives none.
template <SQLSMALLINT Type>
Handle<Type> allocate(SQLHANDLE parent) {
    SQLHANDLE raw = SQL_NULL_HANDLE;
    SQLAllocHandle(Type, parent, &raw);
    return Handle<Type>(raw);
}

SQLCHAR* sqlText(std::string_view text) {
    // The ODBC interface takes its input texts without const.
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.data()));
}

struct Diagnosis {
    int code = 0;
    std::string message;
};

/// The first diagnostic record of a handle.
Diagnosis diagnose(SQLSMALLINT type, SQLHANDLE handle) {
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 1024> message{};
    SQLINTEGER native = 0;
    SQLSMALLINT size = 0;
    const SQLRETURN result = SQLGetDiagRec(type, handle, 1, state.data(), &native, message.data(),
                                           static_cast<SQLSMALLINT>(message.size()), &size);
    if (!SQL_SUCCEEDED(result)) return {-1, "The driver gives no reason."};
    return {native, reinterpret_cast<const char*>(message.data())};
}

}  // namespace

/// One live connection, shared with the record sets that read from it.
class OdbcLink {
  public:
    struct FreeStatement {
        OdbcLink* link;
        void operator()(void* statement) const noexcept { link->free(statement); }
    };
    /// Good only while the link lives.
    using Statement = std::unique_ptr<void, FreeStatement>;

    OdbcLink() : environment_(allocate<SQL_HANDLE_ENV>(SQL_NULL_HANDLE)) {
        // An integer attribute travels in the pointer argument (ODBC reference, SQLSetEnvAttr).
        SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        connection_ = allocate<SQL_HANDLE_DBC>(environment_.get());
    }
    OdbcLink(const OdbcLink&) = delete;
    OdbcLink& operator=(const OdbcLink&) = delete;
    ~OdbcLink() { close(); }

    /// What went wrong, or nothing.
    std::optional<Diagnosis> open(const std::string& connectionString) {
        // Asked for by name, for a driver may open a file that can't be written for reading, and every row be refused.
        SQLSetConnectAttr(connection_.get(), SQL_ATTR_ACCESS_MODE, reinterpret_cast<SQLPOINTER>(SQL_MODE_READ_WRITE),
                          0);
        SQLSMALLINT completed = 0;
        std::array<SQLCHAR, 1024> out{};
        const SQLRETURN result =
            SQLDriverConnect(connection_.get(), nullptr, sqlText(connectionString), SQL_NTS, out.data(),
                             static_cast<SQLSMALLINT>(out.size()), &completed, SQL_DRIVER_NOPROMPT);
        if (!SQL_SUCCEEDED(result)) return diagnose(SQL_HANDLE_DBC, connection_.get());
        open_ = true;
        SQLSetConnectAttr(connection_.get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0);
        return std::nullopt;
    }

    bool isOpen() const { return open_; }

    bool isDead() const {
        SQLUINTEGER dead = SQL_CD_FALSE;
        const SQLRETURN result = SQLGetConnectAttr(connection_.get(), SQL_ATTR_CONNECTION_DEAD, &dead, 0, nullptr);
        return SQL_SUCCEEDED(result) && dead == SQL_CD_TRUE;
    }

    Statement statement() {
        auto handle = allocate<SQL_HANDLE_STMT>(connection_.get());
        if (handle) statements_.insert(handle.get());
        return {handle.release(), FreeStatement{this}};
    }

    /// Runs a statement that gives no rows. They come by the ten thousand, and a handle of its own for each would take
    /// the driver manager as long as the statement takes the driver.
    std::optional<Diagnosis> execute(std::string_view sql) {
        if (!executing_) executing_ = allocate<SQL_HANDLE_STMT>(connection_.get());
        const SQLRETURN result = SQLExecDirect(executing_.get(), sqlText(sql), static_cast<SQLINTEGER>(sql.size()));
        std::optional<Diagnosis> failure;
        if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) failure = diagnose(SQL_HANDLE_STMT, executing_.get());
        SQLFreeStmt(executing_.get(), SQL_CLOSE);
        return failure;
    }

    std::optional<Diagnosis> end(SQLSMALLINT completion) const {
        if (SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_.get(), completion))) return std::nullopt;
        return diagnose(SQL_HANDLE_DBC, connection_.get());
    }

    void close() {
        if (!open_) return;
        open_ = false;
        // A disconnect frees the statements that are left, after which their handles may be anything.
        for (void* statement : std::exchange(statements_, {})) SQLFreeHandle(SQL_HANDLE_STMT, statement);
        executing_.reset();
        end(SQL_ROLLBACK);
        SQLDisconnect(connection_.get());
    }

  private:
    void free(void* statement) noexcept {
        if (statements_.erase(statement) > 0) SQLFreeHandle(SQL_HANDLE_STMT, statement);
    }

    Handle<SQL_HANDLE_ENV> environment_;
    Handle<SQL_HANDLE_DBC> connection_;
    Handle<SQL_HANDLE_STMT> executing_;
    std::unordered_set<void*> statements_;
    bool open_ = false;
};

namespace {

class OdbcRecordSet final : public RecordSet {
  public:
    OdbcRecordSet(std::shared_ptr<OdbcLink> link, OdbcLink::Statement statement, std::string sql)
        : link_(std::move(link)), statement_(std::move(statement)), sql_(std::move(sql)) {
        SQLSMALLINT count = 0;
        SQLNumResultCols(statement_.get(), &count);
        std::vector<std::string> names;
        for (SQLSMALLINT i = 1; i <= count; ++i) {
            std::array<SQLCHAR, 256> name{};
            SQLDescribeCol(statement_.get(), static_cast<SQLUSMALLINT>(i), name.data(),
                           static_cast<SQLSMALLINT>(name.size()), nullptr, nullptr, nullptr, nullptr, nullptr);
            names.emplace_back(reinterpret_cast<const char*>(name.data()));
        }
        setColumns(names);
        // Texts that were handed out must stay where they are while columns further right are read.
        values_.reserve(names.size());
        fetch();
        empty_ = atEnd_;
    }

    bool atEnd() const override { return (rewound_ ? empty_ : atEnd_) || !link_->isOpen(); }

    /// A result is read forward only, so the first row is reached by asking again; but not before a row is wanted, for
    /// a walk that only counts ends with going back.
    void moveFirst() override { rewound_ = rewound_ || !onFirst_; }

    void moveNext() override {
        reopenIfRewound();
        onFirst_ = false;
        fetch();
    }

    std::int64_t recordCount() override { return 0; }

  protected:
    /// Read when asked for and kept until the next row, as a driver may give a column's data but once, and only from
    /// left to right.
    std::string_view columnText(int column) override {
        reopenIfRewound();
        if (atEnd()) return {};
        while (values_.size() <= static_cast<std::size_t>(column)) {
            values_.push_back(read(static_cast<SQLUSMALLINT>(values_.size() + 1)));
        }
        return values_[static_cast<std::size_t>(column)];
    }

  private:
    void fetch() {
        values_.clear();
        if (atEnd()) return;
        const SQLRETURN result = SQLFetch(statement_.get());
        atEnd_ = !SQL_SUCCEEDED(result);
        if (atEnd_ && result != SQL_NO_DATA) fail();
    }

    [[noreturn]] void fail() { throw DatabaseFailure(diagnose(SQL_HANDLE_STMT, statement_.get()).message); }

    void reopenIfRewound() {
        if (!rewound_ || !link_->isOpen()) return;
        rewound_ = false;
        SQLFreeStmt(statement_.get(), SQL_CLOSE);
        const SQLRETURN result = SQLExecDirect(statement_.get(), sqlText(sql_), static_cast<SQLINTEGER>(sql_.size()));
        atEnd_ = !SQL_SUCCEEDED(result);
        onFirst_ = true;
        if (atEnd_) fail();
        fetch();
    }

    std::string read(SQLUSMALLINT column) {
        std::string value;
        for (;;) {
            std::array<char, 4096> piece{};
            SQLLEN size = 0;
            const SQLRETURN result = SQLGetData(statement_.get(), column, SQL_C_CHAR, piece.data(),
                                                static_cast<SQLLEN>(piece.size()), &size);
            if (result == SQL_NO_DATA || (SQL_SUCCEEDED(result) && size == SQL_NULL_DATA)) return value;
            if (!SQL_SUCCEEDED(result)) fail();
            const auto room = static_cast<SQLLEN>(piece.size() - 1);
            const bool more = size == SQL_NO_TOTAL || size > room;
            value.append(piece.data(), static_cast<std::size_t>(more ? room : size));
            if (!more) return value;
        }
    }

    std::shared_ptr<OdbcLink> link_;
    OdbcLink::Statement statement_;
    std::string sql_;
    std::vector<std::string> values_;
    bool atEnd_ = false;
    bool empty_ = false;
    bool onFirst_ = true;
    bool rewound_ = false;
};

}  // namespace
}  // namespace detail

OdbcConnection::OdbcConnection() = default;
OdbcConnection::~OdbcConnection() = default;

bool OdbcConnection::connect() {
    if (link_ && link_->isOpen() && !link_->isDead()) return true;
    link_ = std::make_shared<detail::OdbcLink>();
    const auto failure = link_->open(connectionString_);
    errorCode_ = failure ? failure->code : 0;
    errorMessage_ = failure ? failure->message : std::string();
    return !failure;
}

std::shared_ptr<RecordSet> OdbcConnection::select(std::string_view sql) {
    if (!link_ || !link_->isOpen()) return nullptr;
    auto statement = link_->statement();
    std::string text(sql);
    if (!SQL_SUCCEEDED(SQLExecDirect(statement.get(), detail::sqlText(text), static_cast<SQLINTEGER>(text.size())))) {
        const auto failure = detail::diagnose(SQL_HANDLE_STMT, statement.get());
        errorCode_ = failure.code;
        errorMessage_ = failure.message;
        return nullptr;
    }
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement.get(), &columns);
    if (columns == 0) return nullptr;
    try {
        return std::make_shared<detail::OdbcRecordSet>(link_, std::move(statement), std::move(text));
    } catch (const DatabaseFailure& failure) {
        errorCode_ = -1;
        errorMessage_ = failure.what();
        return nullptr;
    }
}

void OdbcConnection::execute(std::string_view sql) {
    if (!link_ || !link_->isOpen()) return;
    if (const auto failure = link_->execute(sql)) {
        errorCode_ = failure->code;
        errorMessage_ = failure->message;
    }
}

void OdbcConnection::commit() {
    if (!link_ || !link_->isOpen()) return;
    if (const auto failure = link_->end(SQL_COMMIT)) {
        errorCode_ = failure->code;
        errorMessage_ = failure->message;
    }
}

void OdbcConnection::close() {
    if (link_) link_->close();
}
