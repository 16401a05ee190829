#include "accessdriver/odbc/handles/connection.h"

#include <array>
#include <atomic>
#include <chrono>
#include <pthread.h>

#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

using Takes = AttributeRule::Takes;

constexpr std::array<AttributeRule, 4> environmentRules = {{
    {SQL_ATTR_ODBC_VERSION, SQL_OV_ODBC3, Takes::any},
    {SQL_ATTR_CONNECTION_POOLING, SQL_CP_OFF, Takes::any},
    {SQL_ATTR_CP_MATCH, SQL_CP_STRICT_MATCH, Takes::any},
    {SQL_ATTR_OUTPUT_NTS, SQL_TRUE, Takes::onlyInitial},
}};

// The timeout of the login is the time to wait for a file that is in use; others are taken and never used.
constexpr std::array<AttributeRule, 12> connectionRules = {{
    {SQL_ATTR_AUTOCOMMIT, SQL_AUTOCOMMIT_ON, Takes::any},
    {SQL_ATTR_ACCESS_MODE, SQL_MODE_READ_WRITE, Takes::any},
    {SQL_ATTR_LOGIN_TIMEOUT, 0, Takes::any},
    {SQL_ATTR_CONNECTION_TIMEOUT, 0, Takes::any},
    {SQL_ATTR_METADATA_ID, SQL_FALSE, Takes::any},
    {SQL_ATTR_ANSI_APP, SQL_AA_TRUE, Takes::any},
    {SQL_ATTR_QUIET_MODE, 0, Takes::any},
    {SQL_ATTR_PACKET_SIZE, 0, Takes::substitutesInitial},
    {SQL_ATTR_TXN_ISOLATION, SQL_TXN_READ_COMMITTED, Takes::onlyInitial},
    {SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_OFF, Takes::onlyInitial},
    {SQL_ATTR_AUTO_IPD, SQL_FALSE, Takes::nothing},
    {SQL_ATTR_CONNECTION_DEAD, SQL_CD_TRUE, Takes::nothing},
}};

// How many forks lie between the process that loaded the driver and this one.
int forkCount() {
    static std::atomic<int> forks = 0;
    [[maybe_unused]] static const int registered = pthread_atfork(nullptr, nullptr, [] { ++forks; });
    return forks;
}

// Another program's commit is over sooner than that.
constexpr std::chrono::seconds usualWait{3};

}  // namespace

EnvironmentHandle::EnvironmentHandle() : Handle(SQL_HANDLE_ENV), attributes(environmentRules) {}

ConnectionHandle::ConnectionHandle(std::shared_ptr<EnvironmentHandle> environment)
    : Handle(SQL_HANDLE_DBC), environment_(std::move(environment)), attributes_(connectionRules) {}

// In a child process the session is left as it is: closing it would undo the parent's open transaction in the file.
ConnectionHandle::~ConnectionHandle() {
    if (session_ && forksBefore_ != forkCount()) static_cast<void>(session_.release());
}

void ConnectionHandle::open(const std::string& path, const std::string& password, const std::string& source,
                            bool readOnly) {
    if (session_) throw sql::Error("08002", "The connection is open already.");
    if (path.empty()) throw sql::Error("08001", "The connection string names no file: DBQ is missing or empty.");
    using Access = jet::OpenOptions::Access;
    const bool modeGiven = attributes_.isSet(SQL_ATTR_ACCESS_MODE);
    jet::OpenOptions options;
    options.wait = usualWait;
    if (const SQLULEN seconds = attributes_.get(SQL_ATTR_LOGIN_TIMEOUT); seconds > 0) {
        options.wait = std::chrono::seconds(seconds);
    }
    options.access = modeGiven ? Access::write : Access::writeIfAllowed;
    if (readOnly || attributes_.get(SQL_ATTR_ACCESS_MODE) == SQL_MODE_READ_ONLY) options.access = Access::read;
    session_ = std::make_unique<sql::Session>(jet::Database::open(path, password, options));
    attributes_.set(SQL_ATTR_ACCESS_MODE, session_->database().readOnly() ? SQL_MODE_READ_ONLY : SQL_MODE_READ_WRITE);
    session_->setAutocommit(attributes_.get(SQL_ATTR_AUTOCOMMIT) == SQL_AUTOCOMMIT_ON);
    forksBefore_ = forkCount();
    path_ = path;
    source_ = source;
}

void ConnectionHandle::close() {
    if (session().hasOpenChanges()) {
        throw sql::Error("25000", "There are changes that are neither committed nor rolled back.");
    }
    try {
        session_->database().sync();
    } catch (const jet::Error& error) {
        diagnostics.warn("01002", error.what());
    }
    session_.reset();
}

sql::Session& ConnectionHandle::session() const {
    if (!session_) throw sql::Error("08003", "The connection is not open.");
    requireOwnProcess();
    return *session_;
}

void ConnectionHandle::requireOwnProcess() const {
    if (forksBefore_ == forkCount()) return;
    throw sql::Error("08003",
                     "The connection belongs to the parent process. A child process opens a connection of its own.");
}

void ConnectionHandle::requireWritable() const {
    if (attributes_.get(SQL_ATTR_ACCESS_MODE) != SQL_MODE_READ_ONLY) return;
    throw jet::Error(jet::Fault::readOnly, "The connection is set to reading only (SQL_ATTR_ACCESS_MODE).");
}

SQLULEN ConnectionHandle::attribute(SQLINTEGER attribute) const {
    if (attribute == SQL_ATTR_CONNECTION_DEAD) {
        const bool alive = session_ && forksBefore_ == forkCount() && session_->database().alive();
        return alive ? SQL_CD_FALSE : SQL_CD_TRUE;
    }
    return attributes_.get(attribute);
}

void ConnectionHandle::setAttribute(SQLINTEGER attribute, SQLULEN value) {
    if (attribute == SQL_ATTR_ACCESS_MODE && session_ && value != SQL_MODE_READ_ONLY &&
        session_->database().readOnly()) {
        return diagnostics.warn("01S02", "The file stays open for reading only.");
    }
    if (attribute == SQL_ATTR_AUTOCOMMIT) {
        if (value != SQL_AUTOCOMMIT_ON && value != SQL_AUTOCOMMIT_OFF) {
            throw sql::Error("HY024", "Autocommit is on or off.");
        }
        if (session_) session().setAutocommit(value == SQL_AUTOCOMMIT_ON);
    }
    if (!attributes_.set(attribute, value)) diagnostics.warn("01S02", "The attribute keeps its value.");
}

}  // namespace odbc
