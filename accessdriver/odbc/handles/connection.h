#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "accessdriver/odbc/handles/attributes.h"
#include "accessdriver/odbc/handles/handle.h"
#include "accessdriver/sql/run/session.h"

namespace odbc {

class EnvironmentHandle : public Handle {
  public:
    static constexpr SQLSMALLINT handleType = SQL_HANDLE_ENV;

    EnvironmentHandle();

    std::mutex& mutex() override { return mutex_; }

    Attributes attributes;

  private:
    std::mutex mutex_;
};

/// A connection to one Access file. Its statements share its lock, so one of them runs at a time.
class ConnectionHandle : public Handle {
  public:
    static constexpr SQLSMALLINT handleType = SQL_HANDLE_DBC;

    explicit ConnectionHandle(std::shared_ptr<EnvironmentHandle> environment);
    ~ConnectionHandle() override;

    std::mutex& mutex() override { return mutex_; }

    /// Opens the file: for reading only if that is asked for here or by the connection's access mode, or if the file
    /// can't be written and the application has not set the access mode itself.
    /// Throws jet::Error, or sql::Error(08001) without a file's name.
    void open(const std::string& path, const std::string& password, const std::string& source, bool readOnly);

    /// Closes the file. Throws sql::Error(25000) while changes are neither committed nor rolled back.
    void close();

    bool isOpen() const { return session_ != nullptr; }

    /// The open session. Throws sql::Error(08003) if there is none, and as requireOwnProcess() does.
    sql::Session& session() const;

    /// Throws sql::Error(08003) in a child process of the one that opened the connection. Parent and child would share
    /// the file's position and locks, and each would overwrite the other's pages.
    void requireOwnProcess() const;

    /// Throws jet::Error(readOnly) if the application has set SQL_ATTR_ACCESS_MODE to SQL_MODE_READ_ONLY.
    void requireWritable() const;

    const EnvironmentHandle* environment() const { return environment_.get(); }
    const std::string& path() const { return path_; }
    const std::string& source() const { return source_; }

    /// Counts the cursors that get a name from the driver.
    int nextCursorNumber() { return ++cursors_; }

    SQLULEN attribute(SQLINTEGER attribute) const;
    void setAttribute(SQLINTEGER attribute, SQLULEN value);

  private:
    std::shared_ptr<EnvironmentHandle> environment_;
    std::mutex mutex_;
    std::unique_ptr<sql::Session> session_;
    int forksBefore_ = 0;  // as forkCount() was when the file was opened
    Attributes attributes_;
    int cursors_ = 0;
    std::string path_;
    std::string source_;  // the data source's name, empty without one
};

}  // namespace odbc
