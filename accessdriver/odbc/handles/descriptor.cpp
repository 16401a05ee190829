#include "accessdriver/odbc/handles/descriptor.h"

#include <algorithm>
#include <array>
#include <limits>

#include "accessdriver/odbc/data/columnAttributes.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

constexpr SQLSMALLINT mostDigits = 38;

bool isDate(SQLSMALLINT type) { return type >= SQL_TYPE_DATE && type <= SQL_TYPE_TIMESTAMP; }
SQLSMALLINT verbose(SQLSMALLINT type) { return isDate(type) ? SQLSMALLINT{SQL_DATETIME} : type; }
SQLSMALLINT dateCode(SQLSMALLINT type) {
    return isDate(type) ? static_cast<SQLSMALLINT>(type - SQL_TYPE_DATE + SQL_CODE_DATE) : SQLSMALLINT{0};
}

template <class T>
SQLLEN bits(T* pointer) {
    return static_cast<SQLLEN>(reinterpret_cast<std::uintptr_t>(pointer));
}

template <class T>
T* pointerFrom(SQLLEN bits) {
    return reinterpret_cast<T*>(static_cast<std::uintptr_t>(bits));
}

[[noreturn]] void refuseField(SQLSMALLINT field) {
    throw sql::Error("HY091", "A descriptor has no field " + std::to_string(field) + " here.");
}

void setType(DescriptorRecord& record, SQLSMALLINT type) {
    record.type = type;
    record.scaleGiven = false;
    record.precision = type == SQL_C_NUMERIC ? mostDigits : SQLSMALLINT{0};
    record.scale = 0;
}

bool isHeaderField(SQLSMALLINT field) {
    static constexpr std::array<SQLSMALLINT, 7> fields = {
        SQL_DESC_ALLOC_TYPE, SQL_DESC_ARRAY_SIZE, SQL_DESC_ARRAY_STATUS_PTR,  SQL_DESC_BIND_OFFSET_PTR,
        SQL_DESC_BIND_TYPE,  SQL_DESC_COUNT,      SQL_DESC_ROWS_PROCESSED_PTR};
    return std::find(fields.begin(), fields.end(), field) != fields.end();
}

}  // namespace

SQLULEN sizeOfVariable(SQLSMALLINT cType, SQLLEN bufferSize) {
    switch (cType) {
        case SQL_C_BIT:
        case SQL_C_TINYINT:
        case SQL_C_STINYINT:
        case SQL_C_UTINYINT:
            return 1;
        case SQL_C_SHORT:
        case SQL_C_SSHORT:
        case SQL_C_USHORT:
            return sizeof(SQLSMALLINT);
        case SQL_C_LONG:
        case SQL_C_SLONG:
        case SQL_C_ULONG:
        case SQL_C_FLOAT:
            return sizeof(SQLINTEGER);
        case SQL_C_SBIGINT:
        case SQL_C_UBIGINT:
        case SQL_BIGINT:
        case SQL_C_DOUBLE:
            return sizeof(SQLBIGINT);
        case SQL_C_DATE:
        case SQL_C_TYPE_DATE:
            return sizeof(SQL_DATE_STRUCT);
        case SQL_C_TIME:
        case SQL_C_TYPE_TIME:
            return sizeof(SQL_TIME_STRUCT);
        case SQL_C_TIMESTAMP:
        case SQL_C_TYPE_TIMESTAMP:
            return sizeof(SQL_TIMESTAMP_STRUCT);
        case SQL_C_NUMERIC:
            return sizeof(SQL_NUMERIC_STRUCT);
        case SQL_C_GUID:
            return sizeof(SQLGUID);
        default:
            return static_cast<SQLULEN>(std::max<SQLLEN>(bufferSize, 0));
    }
}

DescriptorRecord& DescriptorHandle::record(SQLUSMALLINT number) {
    if (number == 0) throw sql::Error("07009", "There is no bookmark; columns and parameters count from 1.");
    if (records.size() < number) records.resize(number);
    return records[number - 1U];
}

bool DescriptorHandle::isBound(std::size_t number) const {
    if (number == 0 || number > records.size()) return false;
    const DescriptorRecord& record = records[number - 1];
    return record.data != nullptr || record.lengthAddress != nullptr || record.indicatorAddress != nullptr;
}

const DescriptorRecord& DescriptorHandle::existing(SQLSMALLINT number) const {
    if (number < 1 || static_cast<std::size_t>(number) > records.size()) {
        throw sql::Error("07009", "The descriptor has no record " + std::to_string(number) + ".");
    }
    return records[static_cast<std::size_t>(number) - 1];
}

DescriptorHandle::Field DescriptorHandle::field(SQLSMALLINT number, SQLSMALLINT field) const {
    const bool isRow = kind_ == Kind::row;
    switch (field) {
        case SQL_DESC_ALLOC_TYPE:
            return SQLLEN{allocation_};
        case SQL_DESC_ARRAY_SIZE:
            return static_cast<SQLLEN>(arraySize);
        case SQL_DESC_ARRAY_STATUS_PTR:
            return bits(arrayStatus);
        case SQL_DESC_BIND_OFFSET_PTR:
            return bits(bindOffset);
        case SQL_DESC_BIND_TYPE:
            return static_cast<SQLLEN>(bindType);
        case SQL_DESC_COUNT:
            return static_cast<SQLLEN>(isRow ? columns.size() : records.size());
        case SQL_DESC_ROWS_PROCESSED_PTR:
            return bits(rowsProcessed);
        default:
            break;
    }
    if (isRow) {
        if (number < 1 || static_cast<std::size_t>(number) > columns.size()) {
            throw sql::Error("07009", "The result has no column " + std::to_string(number) + ".");
        }
        return columnAttribute(columns[static_cast<std::size_t>(number) - 1], static_cast<SQLUSMALLINT>(field));
    }
    const DescriptorRecord& record = existing(number);
    switch (field) {
        case SQL_DESC_TYPE:
            return SQLLEN{verbose(record.type)};
        case SQL_DESC_CONCISE_TYPE:
            return SQLLEN{record.type};
        case SQL_DESC_DATETIME_INTERVAL_CODE:
            return SQLLEN{dateCode(record.type)};
        case SQL_DESC_DATETIME_INTERVAL_PRECISION:
            return SQLLEN{0};
        case SQL_DESC_LENGTH:
            return static_cast<SQLLEN>(record.length);
        case SQL_DESC_PRECISION:
            return SQLLEN{record.precision};
        case SQL_DESC_SCALE:
            return SQLLEN{record.scale};
        case SQL_DESC_NUM_PREC_RADIX:
            return SQLLEN{record.type == SQL_C_NUMERIC ? 10 : 0};
        case SQL_DESC_OCTET_LENGTH:
            return record.octetLength;
        case SQL_DESC_DATA_PTR:
            return bits(record.data);
        case SQL_DESC_OCTET_LENGTH_PTR:
            return bits(record.lengthAddress);
        case SQL_DESC_INDICATOR_PTR:
            return bits(record.indicatorAddress);
        case SQL_DESC_PARAMETER_TYPE:
            return SQLLEN{record.parameterType};
        case SQL_DESC_NULLABLE:
            return SQLLEN{SQL_NULLABLE};
        case SQL_DESC_UNNAMED:
            return SQLLEN{record.name.empty() ? SQL_UNNAMED : SQL_NAMED};
        case SQL_DESC_NAME:
            return record.name;
        default:
            refuseField(field);
    }
}

void DescriptorHandle::setField(SQLSMALLINT number, SQLSMALLINT field, SQLLEN value) {
    if (kind_ == Kind::row && field != SQL_DESC_ARRAY_STATUS_PTR && field != SQL_DESC_ROWS_PROCESSED_PTR) {
        throw sql::Error("HY016", "The description of a result can't be changed.");
    }
    if (!isHeaderField(field)) {
        DescriptorRecord& record = this->record(static_cast<SQLUSMALLINT>(std::max<SQLSMALLINT>(number, 0)));
        switch (field) {
            case SQL_DESC_TYPE:
                if (value != SQL_DATETIME) setType(record, static_cast<SQLSMALLINT>(value));
                break;
            case SQL_DESC_CONCISE_TYPE:
                setType(record, static_cast<SQLSMALLINT>(value));
                break;
            case SQL_DESC_DATETIME_INTERVAL_CODE:
                setType(record, static_cast<SQLSMALLINT>(SQL_TYPE_DATE + value - SQL_CODE_DATE));
                break;
            case SQL_DESC_LENGTH:
                record.length = static_cast<SQLULEN>(value);
                break;
            case SQL_DESC_PRECISION:
                record.precision = static_cast<SQLSMALLINT>(value);
                break;
            case SQL_DESC_SCALE:
                record.scale = static_cast<SQLSMALLINT>(value);
                record.scaleGiven = true;
                break;
            case SQL_DESC_OCTET_LENGTH:
                record.octetLength = value;
                break;
            case SQL_DESC_DATA_PTR:
                record.data = pointerFrom<void>(value);
                break;
            case SQL_DESC_OCTET_LENGTH_PTR:
                record.lengthAddress = pointerFrom<SQLLEN>(value);
                break;
            case SQL_DESC_INDICATOR_PTR:
                record.indicatorAddress = pointerFrom<SQLLEN>(value);
                break;
            case SQL_DESC_PARAMETER_TYPE:
                if (value != SQL_PARAM_INPUT) throw sql::Error("HYC00", "The driver has input parameters only.");
                break;
            case SQL_DESC_DATETIME_INTERVAL_PRECISION:
            case SQL_DESC_NUM_PREC_RADIX:
                break;  // follow from the type
            default:
                refuseField(field);
        }
        return;
    }
    switch (field) {
        case SQL_DESC_ARRAY_SIZE:
            if (value < 1) throw sql::Error("HY024", "An array has at least one element.");
            arraySize = static_cast<SQLULEN>(value);
            break;
        case SQL_DESC_ARRAY_STATUS_PTR:
            arrayStatus = pointerFrom<SQLUSMALLINT>(value);
            break;
        case SQL_DESC_BIND_OFFSET_PTR:
            bindOffset = pointerFrom<SQLULEN>(value);
            break;
        case SQL_DESC_BIND_TYPE:
            bindType = static_cast<SQLULEN>(value);
            break;
        case SQL_DESC_COUNT:
            if (value < 0 || value > std::numeric_limits<SQLSMALLINT>::max()) {
                throw sql::Error("07009", "A descriptor can't have so many records.");
            }
            records.resize(static_cast<std::size_t>(value));
            break;
        case SQL_DESC_ROWS_PROCESSED_PTR:
            rowsProcessed = pointerFrom<SQLULEN>(value);
            break;
        default:
            refuseField(field);
    }
}

void DescriptorHandle::setName(SQLSMALLINT number, const std::string& name) {
    if (kind_ != Kind::parameters) refuseField(SQL_DESC_NAME);
    record(static_cast<SQLUSMALLINT>(std::max<SQLSMALLINT>(number, 0))).name = name;
}

void DescriptorHandle::copyFrom(const DescriptorContent& other, Kind otherKind) {
    if (kind_ == Kind::row) throw sql::Error("HY016", "The description of a result can't be changed.");
    if (otherKind == Kind::row && other.columns.empty()) {
        throw sql::Error("HY007", "There is no result whose description could be copied.");
    }
    DescriptorContent::operator=(other);
    columns.clear();
    for (const sql::ResultColumn& column : other.columns) {
        const auto number = [&](SQLUSMALLINT field) { return std::get<SQLLEN>(columnAttribute(column, field)); };
        DescriptorRecord record;
        record.type = static_cast<SQLSMALLINT>(number(SQL_DESC_CONCISE_TYPE));
        record.length = static_cast<SQLULEN>(number(SQL_DESC_LENGTH));
        record.octetLength = number(SQL_DESC_OCTET_LENGTH);
        record.precision = static_cast<SQLSMALLINT>(number(SQL_DESC_PRECISION));
        record.scale = static_cast<SQLSMALLINT>(number(SQL_DESC_SCALE));
        records.push_back(record);
    }
}

}  // namespace odbc
