#include "accessdriver/odbc/statement.h"

#include <array>
#include <deque>

#include "accessdriver/odbc/moved.h"
#include "accessdriver/sql/error.h"
#include "accessdriver/sql/parser.h"

namespace odbc {

namespace {

using Takes = AttributeRule::Takes;

constexpr std::array<AttributeRule, 27> rules = {{
    {SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_OFF, Takes::onlyInitial},
    {SQL_ATTR_CONCURRENCY, SQL_CONCUR_READ_ONLY, Takes::substitutesInitial},
    {SQL_ATTR_CURSOR_SCROLLABLE, SQL_NONSCROLLABLE, Takes::onlyInitial},
    {SQL_ATTR_CURSOR_SENSITIVITY, SQL_INSENSITIVE, Takes::substitutesInitial},
    {SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_FORWARD_ONLY, Takes::substitutesInitial},
    {SQL_ATTR_ENABLE_AUTO_IPD, SQL_FALSE, Takes::onlyInitial},
    {SQL_ATTR_FETCH_BOOKMARK_PTR, 0, Takes::onlyInitial},
    {SQL_ATTR_KEYSET_SIZE, 0, Takes::substitutesInitial},
    {SQL_ATTR_MAX_LENGTH, 0, Takes::substitutesInitial},
    {SQL_ATTR_MAX_ROWS, 0, Takes::any},
    {SQL_ATTR_METADATA_ID, SQL_FALSE, Takes::any},
    {SQL_ATTR_NOSCAN, SQL_NOSCAN_OFF, Takes::any},
    {SQL_ATTR_PARAM_BIND_OFFSET_PTR, 0, Takes::any},
    {SQL_ATTR_PARAM_BIND_TYPE, SQL_PARAM_BIND_BY_COLUMN, Takes::any},
    {SQL_ATTR_PARAM_STATUS_PTR, 0, Takes::any},
    {SQL_ATTR_PARAMS_PROCESSED_PTR, 0, Takes::any},
    {SQL_ATTR_PARAMSET_SIZE, 1, Takes::onlyInitial},
    {SQL_ATTR_QUERY_TIMEOUT, 0, Takes::substitutesInitial},
    {SQL_ATTR_RETRIEVE_DATA, SQL_RD_ON, Takes::any},
    {SQL_ATTR_ROW_ARRAY_SIZE, 1, Takes::substitutesInitial},
    {SQL_ATTR_ROW_BIND_OFFSET_PTR, 0, Takes::any},
    {SQL_ATTR_ROW_BIND_TYPE, SQL_BIND_BY_COLUMN, Takes::any},
    {SQL_ATTR_ROW_NUMBER, 0, Takes::nothing},
    {SQL_ATTR_ROW_STATUS_PTR, 0, Takes::any},
    {SQL_ATTR_ROWS_FETCHED_PTR, 0, Takes::any},
    {SQL_ATTR_SIMULATE_CURSOR, SQL_SC_NON_UNIQUE, Takes::substitutesInitial},
    {SQL_ATTR_USE_BOOKMARKS, SQL_UB_OFF, Takes::onlyInitial},
}};

SQLULEN offsetAt(const SQLULEN* place) { return place == nullptr ? 0 : *place; }

}  // namespace

Statement::Statement(std::shared_ptr<Connection> connection)
    : Handle(SQL_HANDLE_STMT), connection_(std::move(connection)), attributes_(rules) {}

void Statement::reset() {
    dropResult();
    plan_.reset();
    columns_.clear();
}

void Statement::prepare(std::string text) {
    reset();
    const sql::Session& session = connection_->session();
    text_ = std::move(text);
    parsed_ = sql::parse(text_);
    plan_ = session.prepare(parsed_);
    columns_ = sql::resultColumns(*plan_);
}

SQLRETURN Statement::execute() {
    const sql::Plan& ready = plan();
    dropResult();
    const SQLULEN offset = offsetAt(attributes_.pointer<SQLULEN>(SQL_ATTR_PARAM_BIND_OFFSET_PTR));
    std::deque<std::string> texts;
    std::vector<sql::Literal> values;
    for (std::size_t i = 1; i <= ready.parameters.size(); ++i) {
        const auto bound = boundParameters_.find(static_cast<SQLUSMALLINT>(i));
        if (bound == boundParameters_.end()) {
            throw sql::Error("07002", "Nothing is bound to parameter " + std::to_string(i) + ".");
        }
        values.push_back(literalFrom(bound->second, offset, texts));
    }
    sql::Outcome outcome = connection_->session().run(ready, values);
    if (auto* processed = attributes_.pointer<SQLULEN>(SQL_ATTR_PARAMS_PROCESSED_PTR)) *processed = 1;
    if (auto* status = attributes_.pointer<SQLUSMALLINT>(SQL_ATTR_PARAM_STATUS_PTR)) *status = SQL_PARAM_SUCCESS;
    rowCount_ = outcome.changed;
    rows_ = std::move(outcome.rows);
    return rowCount_ == 0 ? SQL_NO_DATA : SQL_SUCCESS;
}

void Statement::answer(sql::RowSet rows) {
    reset();
    columns_ = rows.columns();
    rows_ = std::move(rows);
}

SQLRETURN Statement::fetch() {
    if (!rows_) throw sql::Error("24000", "There is no result to fetch from.");
    partColumn_ = 0;
    const SQLULEN most = attributes_.get(SQL_ATTR_MAX_ROWS);
    onRow_ = (most == 0 || fetched_ < most) && rows_->next();
    if (!onRow_) {
        report(0, SQL_ROW_NOROW);
        return SQL_NO_DATA;
    }
    ++fetched_;
    try {
        fillBoundColumns();
    } catch (...) {
        report(1, SQL_ROW_ERROR);
        throw;
    }
    report(1, diagnostics.empty() ? SQL_ROW_SUCCESS : SQL_ROW_SUCCESS_WITH_INFO);
    return SQL_SUCCESS;
}

void Statement::fillBoundColumns() {
    if (attributes_.get(SQL_ATTR_RETRIEVE_DATA) == SQL_RD_OFF) return;
    const SQLULEN offset = offsetAt(attributes_.pointer<SQLULEN>(SQL_ATTR_ROW_BIND_OFFSET_PTR));
    for (const auto& [number, bound] : boundColumns_) {
        if (number > columns_.size()) continue;
        Target target = bound;
        target.buffer = moved(static_cast<char*>(bound.buffer), offset);
        target.indicator = moved(bound.indicator, offset);
        Progress progress;
        transfer(rows_->value(number - 1U), columns_[number - 1U], target, progress, diagnostics);
    }
}

void Statement::report(SQLULEN rows, SQLUSMALLINT status) const {
    if (auto* fetched = attributes_.pointer<SQLULEN>(SQL_ATTR_ROWS_FETCHED_PTR)) *fetched = rows;
    if (auto* place = attributes_.pointer<SQLUSMALLINT>(SQL_ATTR_ROW_STATUS_PTR)) *place = status;
}

SQLRETURN Statement::getData(SQLUSMALLINT number, const Target& target) {
    if (!rows_ || !onRow_) throw sql::Error("24000", "The cursor is on no row.");
    const sql::ResultColumn& described = column(number);
    if (partColumn_ != number || partType_ != target.cType) {
        partColumn_ = number;
        partType_ = target.cType;
        part_ = {};
    }
    return transfer(rows_->value(number - 1U), described, target, part_, diagnostics);
}

void Statement::closeCursor() {
    if (!rows_) throw sql::Error("24000", "There is no open cursor.");
    dropResult();
}

void Statement::dropResult() {
    rows_.reset();
    rowCount_ = -1;
    fetched_ = 0;
    onRow_ = false;
    partColumn_ = 0;
}

void Statement::bindColumn(SQLUSMALLINT number, const Target& target) {
    if (number == 0) throw sql::Error("07009", "There is no bookmark column.");
    if (target.buffer == nullptr && target.indicator == nullptr) {
        boundColumns_.erase(number);
        return;
    }
    if (!isTargetType(target.cType)) throw sql::Error("HY003", "The driver does not offer this C type.");
    if (target.capacity < 0) throw sql::Error("HY090", "The length of a buffer is negative.");
    boundColumns_[number] = target;
}

void Statement::bindParameter(SQLUSMALLINT number, const BoundParameter& parameter) {
    if (number == 0) throw sql::Error("07009", "Parameters count from 1.");
    if (!isParameterType(parameter.cType))
        throw sql::Error("HY003", "The driver does not read parameters of this C type.");
    boundParameters_[number] = parameter;
}

const std::vector<sql::ResultColumn>& Statement::columns() const {
    if (!plan_ && !rows_) throw sql::Error("HY010", "No statement is prepared.");
    return columns_;
}

const sql::ResultColumn& Statement::column(SQLUSMALLINT number) const {
    if (number == 0 || number > columns().size()) {
        throw sql::Error("07009", "The result has no column " + std::to_string(number) + ".");
    }
    return columns_[number - 1U];
}

const sql::Plan& Statement::plan() const {
    if (!plan_) throw sql::Error("HY010", "No statement is prepared.");
    return *plan_;
}

SQLULEN Statement::attribute(SQLINTEGER attribute) const {
    return attribute == SQL_ATTR_ROW_NUMBER ? fetched_ : attributes_.get(attribute);
}

void Statement::setAttribute(SQLINTEGER attribute, SQLULEN value) {
    if (!attributes_.set(attribute, value)) diagnostics.warn("01S02", "The attribute keeps its value.");
}

}  // namespace odbc
