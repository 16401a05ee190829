#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "accessdriver/odbc/data/variable.h"
#include "accessdriver/odbc/handles/connection.h"
#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// A variable of the application that is bound to a column or parameter; of a parameter's implementation side, what it
/// is described as.
struct DescriptorRecord {
    SQLSMALLINT type = SQL_C_DEFAULT;  ///< concise type
    SQLULEN length = 0;                ///< characters
    SQLSMALLINT precision = 0;
    SQLSMALLINT scale = 0;
    bool scaleGiven = false;  ///< whether the application has set precision or scale itself
    SQLLEN octetLength = 0;   ///< bytes of the buffer
    SQLPOINTER data = nullptr;
    SQLLEN* lengthAddress = nullptr;     ///< of a variable for the value's length in bytes
    SQLLEN* indicatorAddress = nullptr;  ///< of a variable that is SQL_NULL_DATA for Null; often the same one
    SQLSMALLINT parameterType = SQL_PARAM_INPUT;
    std::string name = {};
};

/// What SQLCopyDesc copies of a descriptor: header and records. The pointers lead to variables of the application.
struct DescriptorContent {
    SQLULEN arraySize = 1;
    SQLUSMALLINT* arrayStatus = nullptr;
    SQLULEN* bindOffset = nullptr;
    SQLULEN bindType = SQL_BIND_BY_COLUMN;
    SQLULEN* rowsProcessed = nullptr;
    std::vector<DescriptorRecord> records = {};   ///< number 1 first; none for an IRD
    std::vector<sql::ResultColumn> columns = {};  ///< of an IRD
};

/// A descriptor: the variables of the application for rows (ARD) or parameters (APD), what the parameters are described
/// as (IPD), or the columns of the result (IRD). Each statement has one of each; an application may put its own in
/// the place of the first two.
class DescriptorHandle : public Handle, public DescriptorContent {
  public:
    static constexpr SQLSMALLINT handleType = SQL_HANDLE_DESC;

    enum class Kind { application, parameters, row };

    /// One that the application asks for.
    explicit DescriptorHandle(std::shared_ptr<ConnectionHandle> connection)
        : DescriptorHandle(std::move(connection), Kind::application) {
        allocation_ = SQL_DESC_ALLOC_USER;
    }
    DescriptorHandle(std::shared_ptr<ConnectionHandle> connection, Kind kind)
        : Handle(SQL_HANDLE_DESC), kind_(kind), connection_(std::move(connection)) {}

    std::mutex& mutex() override { return connection_->mutex(); }
    const ConnectionHandle& connection() const { return *connection_; }
    Kind kind() const { return kind_; }
    bool isAutomatic() const { return allocation_ == SQL_DESC_ALLOC_AUTO; }

    bool freed = false;  ///< the application has freed the descriptor

    /// A record to write to, made if it is not there. Throws sql::Error(07009) for number 0.
    DescriptorRecord& record(SQLUSMALLINT number);

    /// Whether there is a variable with that number.
    bool isBound(std::size_t number) const;

    /// A field of the header, or of a record: a text, or a number (a pointer as its bits). Throws sql::Error: 07009 no
    /// such record, HY091 no such field.
    using Field = std::variant<std::string, SQLLEN>;
    Field field(SQLSMALLINT number, SQLSMALLINT field) const;

    /// Throws sql::Error: HY016 for an IRD, HY091 for a field that can't be set, 07009.
    void setField(SQLSMALLINT number, SQLSMALLINT field, SQLLEN value);
    void setName(SQLSMALLINT number, const std::string& name);

    /// Takes over header and records of another descriptor; a column of an IRD becomes a record. Throws sql::Error:
    /// HY016 if this is an IRD, HY007 if the other one is an IRD without columns.
    void copyFrom(const DescriptorContent& other, Kind otherKind);

    /// Returns the address of element `row` of an array of the application that begins at `base`, whose elements have
    /// so many bytes where arrays are bound column by column. A null pointer stays null. The address need not be
    /// aligned.
    template <class T>
    T* element(T* base, SQLULEN row, SQLULEN bytes) const {
        if (base == nullptr) return nullptr;
        const SQLULEN stride = bindType == SQL_BIND_BY_COLUMN ? bytes : bindType;
        const SQLULEN offset = bindOffset == nullptr ? 0 : loadFrom<SQLULEN>(bindOffset);
        return reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(base) + row * stride + offset);
    }

  private:
    const DescriptorRecord& existing(SQLSMALLINT number) const;

    Kind kind_;
    SQLSMALLINT allocation_ = SQL_DESC_ALLOC_AUTO;
    std::shared_ptr<ConnectionHandle> connection_;
};

/// Bytes of a variable of that C type; of a text or binary one, the size of its buffer.
SQLULEN sizeOfVariable(SQLSMALLINT cType, SQLLEN bufferSize);

}  // namespace odbc
