#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/database/database.h"

namespace detail {
class OdbcLink;
}

/// A connection through the ODBC driver manager, by a full connection string, with manual commit: what was not
/// committed when the connection goes away is rolled back. Texts go to the driver and come from it as they stand
/// (UTF-8). Record sets of such a connection do not know their count: recordCount() is 0.
class OdbcConnection : public Database {
  public:
    OdbcConnection();
    ~OdbcConnection() override;

    void setDataSource(std::string connectionString) { connectionString_ = std::move(connectionString); }

    /// The first call connects. A later one asks the driver whether the connection is dead, and connects anew if so.
    bool connect() override;

    std::shared_ptr<RecordSet> select(std::string_view sql) override;
    void execute(std::string_view sql) override;
    void commit() override;

    /// The driver's native code of the last failure; 0 if there was none.
    int errorCode() const override { return errorCode_; }
    std::string errorMessage() const override { return errorMessage_; }

    void close() override;

  private:
    std::string connectionString_;
    std::shared_ptr<detail::OdbcLink> link_;
    int errorCode_ = 0;
    std::string errorMessage_;
};
