// Descriptors, field by field and record by record.

#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

bool isPointer(SQLSMALLINT field) {
    return field == SQL_DESC_ARRAY_STATUS_PTR || field == SQL_DESC_BIND_OFFSET_PTR ||
           field == SQL_DESC_ROWS_PROCESSED_PTR || field == SQL_DESC_DATA_PTR || field == SQL_DESC_INDICATOR_PTR ||
           field == SQL_DESC_OCTET_LENGTH_PTR;
}

// The fields that are not of the two common sizes, as the ODBC reference has them.
bool isLong(SQLSMALLINT field) {
    return isPointer(field) || field == SQL_DESC_ARRAY_SIZE || field == SQL_DESC_LENGTH ||
           field == SQL_DESC_OCTET_LENGTH || field == SQL_DESC_DISPLAY_SIZE;
}

bool isInteger(SQLSMALLINT field) {
    return field == SQL_DESC_BIND_TYPE || field == SQL_DESC_AUTO_UNIQUE_VALUE || field == SQL_DESC_CASE_SENSITIVE ||
           field == SQL_DESC_DATETIME_INTERVAL_PRECISION || field == SQL_DESC_NUM_PREC_RADIX;
}

bool hasRecord(const DescriptorHandle& descriptor, SQLSMALLINT number) {
    return number <= std::get<SQLLEN>(descriptor.field(0, SQL_DESC_COUNT));
}

template <class Char>
SQLRETURN getField(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value, SQLINTEGER capacity,
                   SQLINTEGER* length) {
    return withHandle<DescriptorHandle>(raw, [&](DescriptorHandle& descriptor) -> SQLRETURN {
        if (!hasRecord(descriptor, number)) return SQL_NO_DATA;
        const DescriptorHandle::Field got = descriptor.field(number, field);
        if (const auto* text = std::get_if<std::string>(&got)) {
            copyTextOut(&descriptor.diagnostics, *text, static_cast<Char*>(value), capacity, length, Unit::bytes);
            return SQL_SUCCESS;
        }
        const SQLLEN bits = std::get<SQLLEN>(got);
        if (isLong(field)) {
            copyValueOut(bits, value, length);
        } else if (isInteger(field)) {
            copyValueOut(static_cast<SQLINTEGER>(bits), value, length);
        } else {
            copyValueOut(static_cast<SQLSMALLINT>(bits), value, length);
        }
        return SQL_SUCCESS;
    });
}

template <class Char>
SQLRETURN setField(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value, SQLINTEGER length) {
    return withHandle<DescriptorHandle>(raw, [&](DescriptorHandle& descriptor) {
        if (field != SQL_DESC_NAME) return descriptor.setField(number, field, reinterpret_cast<SQLLEN>(value));
        const SQLINTEGER characters = length < 0 ? length : length / static_cast<SQLINTEGER>(sizeof(Char));
        descriptor.setName(number, utf8From(static_cast<const Char*>(value), characters));
    });
}

template <class Char>
SQLRETURN getRecord(SQLHDESC raw, SQLSMALLINT number, Char* name, SQLSMALLINT capacity, SQLSMALLINT* nameLength,
                    SQLSMALLINT* type, SQLSMALLINT* subtype, SQLLEN* length, SQLSMALLINT* precision, SQLSMALLINT* scale,
                    SQLSMALLINT* nullable) {
    return withHandle<DescriptorHandle>(raw, [&](DescriptorHandle& descriptor) -> SQLRETURN {
        if (!hasRecord(descriptor, number)) return SQL_NO_DATA;
        const auto numberOf = [&](SQLSMALLINT field) { return std::get<SQLLEN>(descriptor.field(number, field)); };
        const auto small = [&](SQLSMALLINT field) { return static_cast<SQLSMALLINT>(numberOf(field)); };
        copyTextOut(&descriptor.diagnostics, std::get<std::string>(descriptor.field(number, SQL_DESC_NAME)), name,
                    capacity, nameLength);
        copyValueOut(small(SQL_DESC_TYPE), type);
        copyValueOut(small(SQL_DESC_DATETIME_INTERVAL_CODE), subtype);
        copyValueOut(numberOf(SQL_DESC_OCTET_LENGTH), length);
        copyValueOut(small(SQL_DESC_PRECISION), precision);
        copyValueOut(small(SQL_DESC_SCALE), scale);
        copyValueOut(small(SQL_DESC_NULLABLE), nullable);
        return SQL_SUCCESS;
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLGetDescField(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                                  SQLINTEGER capacity, SQLINTEGER* length) {
    return getField<SQLCHAR>(raw, number, field, value, capacity, length);
}

SQLRETURN SQL_API SQLGetDescFieldW(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                                   SQLINTEGER capacity, SQLINTEGER* length) {
    return getField<SQLWCHAR>(raw, number, field, value, capacity, length);
}

SQLRETURN SQL_API SQLSetDescField(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                                  SQLINTEGER length) {
    return setField<SQLCHAR>(raw, number, field, value, length);
}

SQLRETURN SQL_API SQLSetDescFieldW(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                                   SQLINTEGER length) {
    return setField<SQLWCHAR>(raw, number, field, value, length);
}

SQLRETURN SQL_API SQLGetDescRec(SQLHDESC raw, SQLSMALLINT number, SQLCHAR* name, SQLSMALLINT capacity,
                                SQLSMALLINT* nameLength, SQLSMALLINT* type, SQLSMALLINT* subtype, SQLLEN* length,
                                SQLSMALLINT* precision, SQLSMALLINT* scale, SQLSMALLINT* nullable) {
    return getRecord(raw, number, name, capacity, nameLength, type, subtype, length, precision, scale, nullable);
}

SQLRETURN SQL_API SQLGetDescRecW(SQLHDESC raw, SQLSMALLINT number, SQLWCHAR* name, SQLSMALLINT capacity,
                                 SQLSMALLINT* nameLength, SQLSMALLINT* type, SQLSMALLINT* subtype, SQLLEN* length,
                                 SQLSMALLINT* precision, SQLSMALLINT* scale, SQLSMALLINT* nullable) {
    return getRecord(raw, number, name, capacity, nameLength, type, subtype, length, precision, scale, nullable);
}

SQLRETURN SQL_API SQLSetDescRec(SQLHDESC raw, SQLSMALLINT number, SQLSMALLINT type, SQLSMALLINT subtype, SQLLEN length,
                                SQLSMALLINT precision, SQLSMALLINT scale, SQLPOINTER data, SQLLEN* lengthAddress,
                                SQLLEN* indicatorAddress) {
    return withHandle<DescriptorHandle>(raw, [&](DescriptorHandle& descriptor) {
        descriptor.setField(number, SQL_DESC_TYPE, type);
        if (type == SQL_DATETIME) descriptor.setField(number, SQL_DESC_DATETIME_INTERVAL_CODE, subtype);
        descriptor.setField(number, SQL_DESC_OCTET_LENGTH, length);
        if (type == SQL_C_NUMERIC) {
            descriptor.setField(number, SQL_DESC_PRECISION, precision);
            descriptor.setField(number, SQL_DESC_SCALE, scale);
        }
        descriptor.setField(number, SQL_DESC_DATA_PTR, reinterpret_cast<SQLLEN>(data));
        descriptor.setField(number, SQL_DESC_OCTET_LENGTH_PTR, reinterpret_cast<SQLLEN>(lengthAddress));
        descriptor.setField(number, SQL_DESC_INDICATOR_PTR, reinterpret_cast<SQLLEN>(indicatorAddress));
    });
}

SQLRETURN SQL_API SQLCopyDesc(SQLHDESC from, SQLHDESC to) {
    // One lock at a time: two threads may copy between two connections in opposite directions.
    const auto source = std::static_pointer_cast<DescriptorHandle>(findHandle(from, DescriptorHandle::handleType));
    if (!source) return SQL_INVALID_HANDLE;
    DescriptorContent content;
    const SQLRETURN read = withHandle<DescriptorHandle>(
        from, [&](DescriptorHandle& descriptor) { content = static_cast<const DescriptorContent&>(descriptor); });
    if (!SQL_SUCCEEDED(read)) return read;
    return withHandle<DescriptorHandle>(
        to, [&](DescriptorHandle& descriptor) { descriptor.copyFrom(content, source->kind()); });
}

}  // extern "C"
