#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/sql/run/session.h"

namespace sqltest {

using Texts = std::vector<std::string>;

/// A session on a file of its own, with the table
///
///     animals(id AutoNumber and primary key, name Text(10), oldId Text(50), dob Date, weight Double, litter Byte,
///             price Currency, deceased Yes/No, notes Memo, tag Text(20) unique, amount Decimal(9,2), code GUID,
///             ratio Single, legs Integer), with an index on dob, deceased and legs each
class SessionTest : public testing::Test {
  protected:
    SessionTest();
    ~SessionTest() override;

    /// Another session on the same file.
    std::unique_ptr<sql::Session> openSession() const;

    sql::Outcome run(const std::string& text, const std::vector<sql::Literal>& parameters = {});
    std::int64_t changed(const std::string& text) { return run(text).changed; }

    /// The rows of a result set, values joined by '|'.
    Texts rows(const std::string& text) { return rows(run(text)); }
    static Texts rows(const sql::Outcome& outcome);

    /// What the statement is refused with: an SQLSTATE and a message, or "jet" and a message of the file.
    std::string refusal(const std::string& text);

    std::string file() const { return (folder_ / "herd.mdb").string(); }

    std::filesystem::path folder_;
    std::unique_ptr<sql::Session> session_;
};

/// A property of a column that is a text, as DefaultValue is.
jet::Property textProperty(const char* name, std::string_view value);

}  // namespace sqltest
