#pragma once

#include <string>
#include <vector>

#include "tests/recordingdriver/script.h"

namespace recording {

/// The name under which the recording driver is registered: that of the driver which the program asks for.
inline constexpr const char* driverName = "Microsoft Access Driver (*.mdb)";

/// Replaces the real driver by the recording driver, sets what it refuses and answers, and reads its record.
///
/// The first recorder of a process writes a driver manager configuration of its own to a temporary folder and names it
/// in ODBCSYSINI and ODBCINSTINI; the folder is removed when the process ends. The driver manager keeps its first
/// configuration, so that recorder must come before the process's first ODBC call.
///
/// Each recorder starts with an empty script, no events and all counts at nothing; one lives at a time. All numbers
/// count from 1, over all connections of the process. A refusal's message reaches the application as it was given.
class Recorder {
  public:
    /// Throws std::runtime_error if the configuration can't be written or the driver can't be loaded.
    Recorder();
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Refuses one connect, or those from `first` to `last`, with SQLSTATE 08001.
    Recorder& refuseConnect(int number, const Refusal& refusal = {});
    Recorder& refuseConnects(int first, int last, const Refusal& refusal = {});
    /// From then on the connection reports itself dead when asked, and refuses statements until the next connect.
    Recorder& dieAfterConnect(int number);
    Recorder& dieAfterStatement(int number);
    /// Refuses a statement with SQLSTATE HY000; refused statements count too.
    Recorder& refuseStatement(int number, const Refusal& refusal = {});
    Recorder& refuseStatementsWith(const std::string& part, const Refusal& refusal = {});
    /// Refuses a fetch with SQLSTATE HY000.
    Recorder& refuseFetch(int number);
    /// Answers all statements that begin with `start`; the latest matching answer counts. A SELECT
    /// without an answer is refused with SQLSTATE 42S02. Throws std::invalid_argument for a row of the wrong width.
    Recorder& answer(const std::string& start, std::vector<std::string> columns, std::vector<Row> rows = {});

    /// Returns all calls so far, in order. A statement on a connection that was left in autocommit mode
    /// is followed by a commit of its own.
    const std::vector<Event>& events() const { return script_.events; }
    /// Returns the texts of the events of one kind.
    std::vector<std::string> texts(Kind kind) const;

  private:
    Script& script_;
};

}  // namespace recording
