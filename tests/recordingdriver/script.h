#pragma once

#include <array>
#include <limits>
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

/// The kinds of calls that rules apply to, each counted from 1 over all connections of the process.
enum Call { connectCall, statementCall, fetchCall };

/// What happens to the calls with these numbers whose text contains `part`.
struct Rule {
    Call call;
    int first = 1;
    int last = std::numeric_limits<int>::max();
    std::string part;
    std::optional<Refusal> refusal;  ///< without one, the call succeeds and the connection is dead afterwards
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
    std::vector<Rule> rules;
    std::vector<Answer> answers;

    std::vector<Event> events;
    std::array<int, 3> counts{};
};

}  // namespace recording
