#pragma once

#include <optional>
#include <string>
#include <vector>

namespace recording {

/// A call of the application. Refused connects and statements are recorded as kinds of their own.
enum class Kind { connect, refusedConnect, statement, refusedStatement, commit, rollback, disconnect };

/// One call of the application.
struct Event {
    Kind kind;
    std::string text;  ///< the connection string or the statement, byte for byte; else empty
    int connection;    ///< number of the connect that it belongs to, refused ones counted; the first is 1

    bool operator==(const Event&) const = default;
};

/// The diagnostic record of a refusal, without its SQLSTATE.
struct Refusal {
    int nativeCode = 0;
    std::string message = "refused by the script";
};

/// A row of an answer; an absent value is NULL.
using Row = std::vector<std::optional<std::string>>;

/// Connects `first` to `last`, counted from 1, are refused.
struct ConnectRefusal {
    int first;
    int last;
    Refusal refusal;
};

/// A statement is refused if it is the `number`-th of all, or if its text contains `part`, unless that is empty.
struct StatementRefusal {
    int number;
    std::string part;
    Refusal refusal;
};

/// The result of the statements that begin with `start`.
struct Answer {
    std::string start;
    std::vector<std::string> columns;
    std::vector<Row> rows;
};

/// The driver's instructions and its record. The object belongs to the driver library, which exports it through
/// `recordingDriverScript`; the test uses it in the same process.
struct Script {
    std::vector<ConnectRefusal> connectRefusals;
    std::vector<StatementRefusal> statementRefusals;
    std::vector<int> deathsAfterConnect;
    std::vector<int> deathsAfterStatement;
    std::vector<Answer> answers;
    int fetchRefusal = 0;

    std::vector<Event> events;
    int connects = 0;
    int statements = 0;
    int fetches = 0;
};

/// Type and name of the exported function that returns the driver's script.
using ScriptAccessor = Script* (*)();
inline constexpr const char* scriptAccessorName = "recordingDriverScript";

}  // namespace recording
