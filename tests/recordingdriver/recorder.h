#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/recordingdriver/script.h"

namespace recording {

/// Registers the recording driver in place of the one that the program asks for, sets what it refuses and answers, and
/// reads its record.
///
/// The first recorder of a process writes a driver manager configuration of its own to a temporary folder and names it
/// in ODBCSYSINI and ODBCINSTINI; the folder is removed when the process ends. The driver manager keeps its first
/// configuration, so that recorder must come before the process's first ODBC call.
///
/// Each recorder starts with an empty script, no events and all counts at zero; one lives at a time. All numbers
/// count from 1, over all connections of the process. A refusal's message reaches the application as it was given.
class Recorder {
  public:
    /// Throws std::runtime_error if the configuration can't be written or the driver can't be loaded.
    Recorder();
    ~Recorder() { script_ = {}; }
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Refuses one connect, or those from `first` to `last`, with SQLSTATE 08001.
    Recorder& refuseConnect(int number, const Refusal& refusal = {}) { return refuseConnects(number, number, refusal); }
    Recorder& refuseConnects(int first, int last, const Refusal& refusal = {}) {
        return add({connectCall, first, last, {}, refusal});
    }
    /// From then on the connection reports itself dead when asked, and refuses statements until the next connect.
    Recorder& dieAfterConnect(int number) { return add({connectCall, number, number, {}, {}}); }
    Recorder& dieAfterStatement(int number) { return add({statementCall, number, number, {}, {}}); }
    /// Refuses a statement with SQLSTATE HY000; refused statements count too.
    Recorder& refuseStatement(int number, const Refusal& refusal = {}) {
        return add({statementCall, number, number, {}, refusal});
    }
    Recorder& refuseStatementsWith(const std::string& part, const Refusal& refusal = {}) {
        return add({.call = statementCall, .part = part, .refusal = refusal});
    }
    /// Refuses a fetch with SQLSTATE HY000.
    Recorder& refuseFetch(int number) {
        return add({fetchCall, number, number, {}, Refusal{1, "The page cannot be read"}});
    }
    /// Answers all statements that begin with `start`; the latest matching answer counts. A SELECT without an answer is
    /// refused with SQLSTATE 42S02. Each row has a value for each column.
    Recorder& answer(const std::string& start, std::vector<std::string> columns, std::vector<Row> rows = {}) {
        script_.answers.push_back({start, std::move(columns), std::move(rows)});
        return *this;
    }

    /// Returns all calls so far, in order. A statement on a connection that was left in autocommit mode
    /// is followed by a commit of its own.
    const std::vector<Event>& events() const { return script_.events; }
    /// Returns the texts of the events of one kind.
    std::vector<std::string> texts(Kind kind) const;

  private:
    Recorder& add(Rule rule) {
        script_.rules.push_back(std::move(rule));
        return *this;
    }

    Script& script_;
};

}  // namespace recording
