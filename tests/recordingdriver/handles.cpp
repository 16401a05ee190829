#include "tests/recordingdriver/handles.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace recording {

namespace {

bool contains(const std::vector<int>& numbers, int number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

bool isSelect(std::string_view statement) {
    constexpr std::string_view word = "select";
    const std::string_view begin = statement.substr(0, word.size());
    return std::equal(begin.begin(), begin.end(), word.begin(), word.end(),
                      [](unsigned char a, char b) { return std::tolower(a) == b; });
}

const Answer* findAnswer(std::string_view statement) {
    // The latest answer wins, so that a test can override what its fixture gave.
    const auto& answers = script().answers;
    const auto found = std::find_if(answers.rbegin(), answers.rend(),
                                    [&](const Answer& answer) { return statement.starts_with(answer.start); });
    return found == answers.rend() ? nullptr : &*found;
}

}  // namespace

Script& script() {
    static Script theScript;
    return theScript;
}

void Connection::note(Kind kind, const std::string& text) const { script().events.push_back({kind, text, number_}); }

void Connection::connect(const std::string& connectionString) {
    number_ = ++script().connects;
    for (const ConnectRefusal& entry : script().connectRefusals) {
        if (number_ < entry.first || number_ > entry.last) continue;
        note(Kind::refusedConnect, connectionString);
        throw Failure("08001", entry.refusal);
    }
    note(Kind::connect, connectionString);
    dead_ = contains(script().deathsAfterConnect, number_);
    inTransaction_ = false;
}

void Connection::disconnect() {
    if (inTransaction_ && !dead_) throw Failure("25000", {0, "A transaction is still open"});
    note(Kind::disconnect);
}

void Connection::endTransaction(bool commit) {
    if (dead_) throw Failure("08S01", {0, "The connection is dead"});
    note(commit ? Kind::commit : Kind::rollback);
    inTransaction_ = false;
}

void Connection::refuse(const std::string& statement) const {
    for (const StatementRefusal& entry : script().statementRefusals) {
        const bool hit = entry.number == script().statements ||
                         (!entry.part.empty() && statement.find(entry.part) != std::string::npos);
        if (hit) throw Failure("HY000", entry.refusal);
    }
}

const Answer* Connection::execute(const std::string& statement) {
    ++script().statements;
    const Answer* answer = findAnswer(statement);
    try {
        if (dead_) throw Failure("08S01", {0, "The connection is dead"});
        refuse(statement);
        if (isSelect(statement) && answer == nullptr) throw Failure("42S02", {0, "The script has no answer to this"});
    } catch (const Failure&) {
        note(Kind::refusedStatement, statement);
        throw;
    }
    note(Kind::statement, statement);
    inTransaction_ = !autocommit_ && (inTransaction_ || !isSelect(statement));
    if (autocommit_) note(Kind::commit);
    dead_ = contains(script().deathsAfterStatement, script().statements);
    return answer;
}

void Statement::execute(const std::string& text) {
    closeCursor();
    const Answer* answer = connection_.execute(text);
    if (answer == nullptr) return;
    columns_ = answer->columns;
    rows_ = answer->rows;
}

void Statement::closeCursor() {
    columns_.clear();
    rows_.clear();
    nextRow_ = 0;
    openColumn_ = 0;
}

bool Statement::fetch() {
    if (columns_.empty()) throw Failure("24000", {0, "There is no open cursor"});
    openColumn_ = 0;
    if (++script().fetches == script().fetchRefusal) throw Failure("HY000", {1, "The page cannot be read"});
    if (nextRow_ < rows_.size()) {
        ++nextRow_;
        return true;
    }
    nextRow_ = rows_.size() + 1;
    return false;
}

Statement::Piece Statement::piece(std::size_t column) {
    if (nextRow_ == 0 || nextRow_ > rows_.size()) throw Failure("24000", {0, "The cursor is on no row"});
    if (column == 0 || column > columns_.size()) throw Failure("07009", {0, "There is no such column"});
    if (column != openColumn_) {
        openColumn_ = column;
        delivered_ = 0;
        finished_ = false;
    }
    const Row& row = rows_[nextRow_ - 1];
    const auto& value = row.at(column - 1);
    if (!value) return {std::nullopt, finished_};
    return {value->substr(delivered_), finished_};
}

void Statement::advance(std::size_t length, bool last) {
    delivered_ += length;
    finished_ = last;
}

}  // namespace recording
