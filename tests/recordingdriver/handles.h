#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/recordingdriver/script.h"

namespace recording {

/// The one script of the process.
Script& script();

/// A failed call: becomes the diagnostic record of its handle.
class Failure : public std::runtime_error {
  public:
    Failure(std::string state, const Refusal& refusal)
        : std::runtime_error(refusal.message), sqlState(std::move(state)), nativeCode(refusal.nativeCode) {}

    std::string sqlState;
    int nativeCode;
};

/// The object behind an ODBC handle, with the diagnostic record of the last call, if there is one.
class Handle {
  public:
    virtual ~Handle() = default;

    std::optional<Failure> diagnostic;
};

class Environment : public Handle {};

/// A connection. It enforces two rules of the ODBC reference: no statement on a dead connection, no disconnect within a
/// transaction.
class Connection : public Handle {
  public:
    /// Throws `Failure` 08001 if the script refuses this connect.
    void connect(const std::string& connectionString);
    /// Throws `Failure` 25000 if statements were executed that were neither committed nor rolled back.
    void disconnect();
    void endTransaction(bool commit);
    void setAutocommit(bool on) { autocommit_ = on; }
    bool isDead() const { return dead_; }

    /// Records the statement. Throws `Failure` 08S01 on a dead connection, HY000 if the script refuses the statement.
    /// Returns its answer, null for a statement without a result.
    const Answer* execute(const std::string& statement);

  private:
    void note(Kind kind, const std::string& text = {}) const;
    void refuse(const std::string& statement) const;

    int number_ = 0;
    bool autocommit_ = true;
    bool dead_ = false;
    bool inTransaction_ = false;
};

/// A statement and the cursor on its result.
class Statement : public Handle {
  public:
    explicit Statement(Connection& connection) : connection_(connection) {}

    void execute(const std::string& text);
    void closeCursor();
    const std::vector<std::string>& columns() const { return columns_; }
    /// Moves to the next row; false behind the last one.
    bool fetch();

    /// One step in reading a value: the rest of the value, or nothing for NULL.
    struct Piece {
        std::optional<std::string> rest;
        bool finished;  ///< an earlier step has delivered the end of the value
    };
    /// Column numbers count from 1. Throws `Failure` 07009 or 24000 outside the result.
    Piece piece(std::size_t column);
    /// Marks `length` bytes of the piece as delivered, and the value as finished if `last`.
    void advance(std::size_t length, bool last);

  private:
    Connection& connection_;
    std::vector<std::string> columns_;
    std::vector<Row> rows_;
    std::size_t nextRow_ = 0;
    std::size_t openColumn_ = 0;
    std::size_t delivered_ = 0;
    bool finished_ = false;
};

}  // namespace recording
