#include "accessdriver/odbc/handles/statement.h"

#include <algorithm>
#include <deque>

#include "accessdriver/odbc/handles/statementAttributes.h"
#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

constexpr std::string_view ownCursorNames = "SQL_CUR";
constexpr std::size_t longestCursorName = 64;

SQLULEN bits(const void* pointer) { return reinterpret_cast<SQLULEN>(pointer); }

}  // namespace

StatementHandle::StatementHandle(std::shared_ptr<ConnectionHandle> connection)
    : Handle(SQL_HANDLE_STMT), connection_(std::move(connection)), attributes_(statementAttributeRules()) {
    const auto make = [&](DescriptorHandle::Kind kind) {
        auto descriptor = std::make_shared<DescriptorHandle>(connection_, kind);
        registerHandle(descriptor);
        return descriptor;
    };
    ard_ = make(DescriptorHandle::Kind::application);
    apd_ = make(DescriptorHandle::Kind::application);
    ipd_ = make(DescriptorHandle::Kind::parameters);
    ird_ = make(DescriptorHandle::Kind::row);
}

StatementHandle::~StatementHandle() {
    for (const auto& descriptor : {ard_, apd_, ipd_, ird_}) unregisterHandle(descriptor.get());
}

// If the application has freed its descriptor, the statement's own one is in use again.
DescriptorHandle& StatementHandle::rowDescriptor() const {
    return applicationArd_ && !applicationArd_->freed ? *applicationArd_ : *ard_;
}

DescriptorHandle& StatementHandle::parameterDescriptor() const {
    return applicationApd_ && !applicationApd_->freed ? *applicationApd_ : *apd_;
}

DescriptorHandle& StatementHandle::descriptor(DescriptorSide side) const {
    switch (side) {
        case DescriptorSide::rowVariables:
            return rowDescriptor();
        case DescriptorSide::row:
            return *ird_;
        case DescriptorSide::parameterVariables:
            return parameterDescriptor();
        default:
            return *ipd_;
    }
}

// --- running

void StatementHandle::reset() {
    dropResult();
    waitingForData_.reset();
    plan_.reset();
    ird_->columns.clear();
}

void StatementHandle::prepare(std::string text) {
    reset();
    const sql::Session& session = connection_->session();
    text_ = std::move(text);
    parsed_ = sql::parse(text_);
    plan_ = session.prepare(parsed_);
    ird_->columns = plan_->columns;
}

SQLRETURN StatementHandle::execute() {
    const sql::Plan& ready = plan();
    dropResult();
    ParameterSets parameters(parameterDescriptor(), *ipd_, ready.parameters.size());
    if (!parameters.nextDataAtExecution()) return run(parameters);
    waitingForData_.emplace(parameterDescriptor(), *ipd_, ready.parameters.size());
    return SQL_NEED_DATA;
}

SQLRETURN StatementHandle::parameterData(SQLPOINTER* token) {
    if (!waitingForData_) throw sql::Error("HY010", "The statement waits for no data.");
    if (const auto next = waitingForData_->nextDataAtExecution()) {
        if (token != nullptr) *token = waitingForData_->token(*next);
        return SQL_NEED_DATA;
    }
    const ParameterSets parameters = *std::exchange(waitingForData_, std::nullopt);
    return run(parameters);
}

void StatementHandle::putData(const void* data, SQLLEN length) {
    if (!waitingForData_) throw sql::Error("HY010", "The statement waits for no data.");
    waitingForData_->put(data, length);
}

SQLRETURN StatementHandle::run(const ParameterSets& parameters) {
    if (!plan().returnsRows()) connection_->requireWritable();
    if (parameters.sets() == 1) {
        runSets(parameters);
    } else {
        if (plan().returnsRows()) throw sql::Error("HYC00", "A SELECT takes one set of parameters at a time.");
        sql::Session::Group together(connection_->session());
        runSets(parameters);
        together.finish();
    }
    const bool old = connection_->environment()->attributes.get(SQL_ATTR_ODBC_VERSION) == SQL_OV_ODBC2;
    return rowCount_ == 0 && !old ? SQL_NO_DATA : SQL_SUCCESS;
}

// All sets are one statement: the first one that fails ends it, and what it did is undone as for any other.
void StatementHandle::runSets(const ParameterSets& parameters) {
    const auto report = [&](SQLULEN set, SQLUSMALLINT status) {
        if (ipd_->arrayStatus != nullptr) storeAt(ipd_->arrayStatus + set, status);
        if (status != SQL_PARAM_UNUSED) storeAt(ipd_->rowsProcessed, set + 1);
    };
    for (SQLULEN set = 0; set < parameters.sets(); ++set) report(set, SQL_PARAM_UNUSED);
    storeAt(ipd_->rowsProcessed, SQLULEN{0});
    for (SQLULEN set = 0; set < parameters.sets(); ++set) {
        if (parameters.isIgnored(set)) continue;
        try {
            std::deque<std::string> texts;
            const auto values = parameters.values(set, texts);
            sql::Outcome outcome = connection_->session().run(plan(), values);
            if (outcome.rows) open(std::move(outcome.rows));
            if (outcome.changed >= 0) rowCount_ = std::max<std::int64_t>(rowCount_, 0) + outcome.changed;
        } catch (...) {
            report(set, SQL_PARAM_ERROR);
            rowCount_ = -1;
            throw;
        }
        report(set, SQL_PARAM_SUCCESS);
    }
}

// --- reading

void StatementHandle::open(std::shared_ptr<sql::RowSet> rows) {
    cursor_.emplace(std::move(rows), isScrollable(), attributes_.get(SQL_ATTR_MAX_ROWS));
    if (isScrollable()) rowCount_ = cursor_->rowCount();
}

void StatementHandle::setResult(sql::RowSet rows) {
    reset();
    ird_->columns = rows.columns();
    open(std::make_shared<sql::RowSet>(std::move(rows)));
}

StatementHandle::Rowset StatementHandle::rowset() const {
    return {rowDescriptor().arraySize, ird_->arrayStatus, ird_->rowsProcessed};
}

SQLRETURN StatementHandle::fetch(SQLSMALLINT orientation, SQLLEN offset, const Rowset& wanted) {
    if (!cursor_) throw sql::Error("24000", "There is no result to fetch from.");
    connection_->requireOwnProcess();
    getDataColumn_ = 0;
    rowsetSize_ = 0;
    bool cut = false;
    SQLULEN failed = 0;
    const auto report = [&](SQLULEN row, SQLUSMALLINT status) {
        if (wanted.status != nullptr) storeAt(wanted.status + row, status);
    };
    if (cursor_->move(orientation, offset, wanted.size, cut)) {
        while (rowsetSize_ < wanted.size) {
            const std::size_t warnings = diagnostics.records().size();
            bool readable = false;
            try {
                readable = cursor_->moveToRow(rowsetSize_);
                if (!readable) break;
                fillBoundColumns(rowsetSize_);
                report(rowsetSize_,
                       diagnostics.records().size() == warnings ? SQL_ROW_SUCCESS : SQL_ROW_SUCCESS_WITH_INFO);
            } catch (...) {
                diagnostics.addCurrentException();
                report(rowsetSize_, SQL_ROW_ERROR);
                ++failed;
            }
            ++rowsetSize_;
            // A row that can't be read from the file is the last one of its rowset; the next rowset begins behind it.
            if (!readable) break;
        }
        cursor_->endRowset(rowsetSize_);
    }
    for (SQLULEN row = rowsetSize_; row < wanted.size; ++row) report(row, SQL_ROW_NOROW);
    storeAt(wanted.fetched, rowsetSize_);
    if (rowsetSize_ == 0) return SQL_NO_DATA;
    if (cut) diagnostics.warn("01S06", "The rowset begins with the first row.");
    if (cursor_->scrollable() && rowsetSize_ > 1) cursor_->moveToRow(0);
    return failed == rowsetSize_ ? SQL_ERROR : SQL_SUCCESS;
}

void StatementHandle::fillBoundColumns(SQLULEN row) {
    if (attributes_.get(SQL_ATTR_RETRIEVE_DATA) == SQL_RD_OFF) return;
    const DescriptorHandle& variables = rowDescriptor();
    const auto& described = ird_->columns;
    for (std::size_t i = 0; i < std::min(variables.records.size(), described.size()); ++i) {
        if (!variables.isBound(i + 1)) continue;
        const DescriptorRecord& bound = variables.records[i];
        Target target{.cType = resolvedType(bound.type, described[i]), .capacity = bound.octetLength};
        const SQLULEN bytes = sizeOfVariable(target.cType, bound.octetLength);
        target.buffer = variables.element(static_cast<char*>(bound.data), row, bytes);
        target.length = variables.element(bound.lengthAddress, row, sizeof(SQLLEN));
        target.indicator = variables.element(bound.indicatorAddress, row, sizeof(SQLLEN));
        if (bound.scaleGiven) target.scale = bound.scale;
        Progress progress;
        transfer(cursor_->value(i), described[i], target, progress, diagnostics);
    }
}

void StatementHandle::setPosition(SQLULEN row) {
    if (!cursor_ || rowsetSize_ == 0) throw sql::Error("24000", "The cursor is on no row.");
    if (row < 1 || row > rowsetSize_) throw sql::Error("HY107", "The rowset has no such row.");
    getDataColumn_ = 0;
    if (cursor_->scrollable()) {
        cursor_->moveToRow(row - 1);
    } else if (rowsetSize_ > 1) {
        throw sql::Error("HY109", "A forward-only result keeps no rows to go back to.");
    }
}

SQLRETURN StatementHandle::getData(SQLUSMALLINT number, Target target) {
    if (!cursor_ || rowsetSize_ == 0) throw sql::Error("24000", "The cursor is on no row.");
    if (rowsetSize_ > 1 && !cursor_->scrollable()) {
        throw sql::Error("HY109", "Of a forward-only result, rows that come in blocks are read by bound columns.");
    }
    const sql::ResultColumn& described = column(number);
    if (target.cType == SQL_ARD_TYPE && rowDescriptor().records.size() >= number) {
        const DescriptorRecord& bound = rowDescriptor().records[number - 1U];
        target.cType = bound.type;
        if (bound.scaleGiven) target.scale = bound.scale;
    }
    if (getDataColumn_ != number || getDataType_ != target.cType) {
        getDataColumn_ = number;
        getDataType_ = target.cType;
        getDataProgress_ = {};
    }
    return transfer(cursor_->value(number - 1U), described, target, getDataProgress_, diagnostics);
}

void StatementHandle::closeCursor() {
    if (!cursor_) throw sql::Error("24000", "There is no open cursor.");
    dropResult();
}

void StatementHandle::dropResult() {
    cursor_.reset();
    rowCount_ = -1;
    rowsetSize_ = 0;
    getDataColumn_ = 0;
}

// --- binding and describing

void StatementHandle::bindColumn(SQLUSMALLINT number, const Target& target) {
    if (!isTargetType(target.cType)) throw sql::Error("HY003", "The driver does not offer this C type.");
    if (target.capacity < 0) throw sql::Error("HY090", "The length of a buffer is negative.");
    rowDescriptor().record(number) = {.type = target.cType,
                                      .octetLength = target.capacity,
                                      .data = target.buffer,
                                      .lengthAddress = target.length,
                                      .indicatorAddress = target.indicator};
}

void StatementHandle::bindParameter(SQLUSMALLINT number, const DescriptorRecord& variable,
                                    const DescriptorRecord& described) {
    if (!isParameterType(variable.type))
        throw sql::Error("HY003", "The driver does not read parameters of this C type.");
    parameterDescriptor().record(number) = variable;
    ipd_->record(number) = described;
}

const std::vector<sql::ResultColumn>& StatementHandle::columns() const {
    if (!plan_ && !cursor_) throw sql::Error("HY010", "No statement is prepared.");
    return ird_->columns;
}

const sql::ResultColumn& StatementHandle::column(SQLUSMALLINT number) const {
    if (number == 0 || number > columns().size()) {
        throw sql::Error("07009", "The result has no column " + std::to_string(number) + ".");
    }
    return ird_->columns[number - 1U];
}

const sql::Plan& StatementHandle::plan() const {
    if (!plan_) throw sql::Error("HY010", "No statement is prepared.");
    return *plan_;
}

// --- names

void StatementHandle::setCursorName(const std::string& name) {
    const bool reserved =
        name.size() >= ownCursorNames.size() && sql::sameName(name.substr(0, ownCursorNames.size()), ownCursorNames);
    if (name.empty() || name.size() > longestCursorName || (reserved && name != cursorName_)) {
        throw sql::Error("34000", "'" + name + "' can't be a cursor's name.");
    }
    for (const auto& handle : allHandles(SQL_HANDLE_STMT)) {
        const auto& other = static_cast<const StatementHandle&>(*handle);
        if (&other == this || other.connection_ != connection_ || !sql::sameName(other.cursorName_, name)) continue;
        throw sql::Error("3C000", "Another statement has the cursor name '" + name + "'.");
    }
    cursorName_ = name;
}

const std::string& StatementHandle::cursorName() {
    if (cursorName_.empty())
        cursorName_ = std::string(ownCursorNames) + std::to_string(connection_->nextCursorNumber());
    return cursorName_;
}

// --- attributes

bool StatementHandle::isScrollable() const { return attributes_.get(SQL_ATTR_CURSOR_TYPE) == SQL_CURSOR_STATIC; }

SQLULEN StatementHandle::attribute(SQLINTEGER attribute) const {
    switch (attribute) {
        case SQL_ATTR_APP_ROW_DESC:
            return bits(&rowDescriptor());
        case SQL_ATTR_APP_PARAM_DESC:
            return bits(&parameterDescriptor());
        case SQL_ATTR_IMP_ROW_DESC:
            return bits(ird_.get());
        case SQL_ATTR_IMP_PARAM_DESC:
            return bits(ipd_.get());
        case SQL_ATTR_ROW_NUMBER:
            return cursor_ ? cursor_->rowNumber() : 0;
        default:
            break;
    }
    const HeaderAttribute* const header = headerAttribute(attribute);
    if (header == nullptr) return attributes_.get(attribute);
    return static_cast<SQLULEN>(std::get<SQLLEN>(descriptor(header->side).field(0, header->field)));
}

void StatementHandle::useDescriptor(std::shared_ptr<DescriptorHandle>& place, SQLULEN handle) {
    auto given = std::static_pointer_cast<DescriptorHandle>(
        findHandle(reinterpret_cast<SQLHANDLE>(handle), DescriptorHandle::handleType));
    if (given && &given->connection() != connection_.get()) given.reset();
    const bool own = handle == 0 || (given && (given == ard_ || given == apd_));
    if (!own && (!given || given->isAutomatic())) {
        throw sql::Error("HY017", "This is no descriptor that the application has allocated on the connection.");
    }
    place = own ? nullptr : given;
}

void StatementHandle::setAttribute(SQLINTEGER attribute, SQLULEN value) {
    if (attribute == SQL_ATTR_APP_ROW_DESC) return useDescriptor(applicationArd_, value);
    if (attribute == SQL_ATTR_APP_PARAM_DESC) return useDescriptor(applicationApd_, value);
    if (const HeaderAttribute* const header = headerAttribute(attribute)) {
        return descriptor(header->side).setField(0, header->field, static_cast<SQLLEN>(value));
    }
    if (attribute == SQL_ATTR_CURSOR_TYPE) {
        if (value != SQL_CURSOR_FORWARD_ONLY && value != SQL_CURSOR_STATIC) {
            diagnostics.warn("01S02", "The cursor is a static one.");
            value = SQL_CURSOR_STATIC;
        }
        attributes_.set(SQL_ATTR_CURSOR_SCROLLABLE, value == SQL_CURSOR_STATIC ? SQL_SCROLLABLE : SQL_NONSCROLLABLE);
    }
    if (attribute == SQL_ATTR_CURSOR_SCROLLABLE) {
        attributes_.set(SQL_ATTR_CURSOR_TYPE, value == SQL_SCROLLABLE ? SQL_CURSOR_STATIC : SQL_CURSOR_FORWARD_ONLY);
    }
    if (!attributes_.set(attribute, value)) diagnostics.warn("01S02", "The attribute keeps its value.");
}

}  // namespace odbc
