// Attributes of statements: plain ones, and those that are fields of the statement's descriptors.

#include <algorithm>
#include <array>

#include "accessdriver/odbc/statement.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

using Takes = AttributeRule::Takes;

constexpr std::array<AttributeRule, 18> rules = {{
    {SQL_ATTR_ASYNC_ENABLE, SQL_ASYNC_ENABLE_OFF, Takes::onlyInitial},
    {SQL_ATTR_CONCURRENCY, SQL_CONCUR_READ_ONLY, Takes::substitutesInitial},
    {SQL_ATTR_CURSOR_SCROLLABLE, SQL_NONSCROLLABLE, Takes::any},
    {SQL_ATTR_CURSOR_SENSITIVITY, SQL_INSENSITIVE, Takes::substitutesInitial},
    {SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_FORWARD_ONLY, Takes::any},
    {SQL_ATTR_ENABLE_AUTO_IPD, SQL_FALSE, Takes::onlyInitial},
    {SQL_ATTR_FETCH_BOOKMARK_PTR, 0, Takes::onlyInitial},
    {SQL_ATTR_KEYSET_SIZE, 0, Takes::substitutesInitial},
    {SQL_ATTR_MAX_LENGTH, 0, Takes::substitutesInitial},
    {SQL_ATTR_MAX_ROWS, 0, Takes::any},
    {SQL_ATTR_METADATA_ID, SQL_FALSE, Takes::any},
    {SQL_ATTR_NOSCAN, SQL_NOSCAN_OFF, Takes::any},
    {SQL_ATTR_QUERY_TIMEOUT, 0, Takes::substitutesInitial},
    {SQL_ATTR_RETRIEVE_DATA, SQL_RD_ON, Takes::any},
    {SQL_ATTR_ROW_NUMBER, 0, Takes::nothing},
    {SQL_ATTR_SIMULATE_CURSOR, SQL_SC_NON_UNIQUE, Takes::substitutesInitial},
    {SQL_ATTR_USE_BOOKMARKS, SQL_UB_OFF, Takes::onlyInitial},
    {SQL_ROWSET_SIZE, 1, Takes::any},
}};

// Attributes of a statement that are fields of its descriptors' headers.
using Side = Statement::Side;
struct HeaderAttribute {
    SQLINTEGER attribute;
    Side side;
    SQLSMALLINT field;
};
constexpr std::array<HeaderAttribute, 12> headerAttributes = {{
    {SQL_ATTR_PARAM_BIND_OFFSET_PTR, Side::parameterVariables, SQL_DESC_BIND_OFFSET_PTR},
    {SQL_ATTR_PARAM_BIND_TYPE, Side::parameterVariables, SQL_DESC_BIND_TYPE},
    {SQL_ATTR_PARAM_OPERATION_PTR, Side::parameterVariables, SQL_DESC_ARRAY_STATUS_PTR},
    {SQL_ATTR_PARAM_STATUS_PTR, Side::parameters, SQL_DESC_ARRAY_STATUS_PTR},
    {SQL_ATTR_PARAMS_PROCESSED_PTR, Side::parameters, SQL_DESC_ROWS_PROCESSED_PTR},
    {SQL_ATTR_PARAMSET_SIZE, Side::parameterVariables, SQL_DESC_ARRAY_SIZE},
    {SQL_ATTR_ROW_ARRAY_SIZE, Side::rowVariables, SQL_DESC_ARRAY_SIZE},
    {SQL_ATTR_ROW_BIND_OFFSET_PTR, Side::rowVariables, SQL_DESC_BIND_OFFSET_PTR},
    {SQL_ATTR_ROW_BIND_TYPE, Side::rowVariables, SQL_DESC_BIND_TYPE},
    {SQL_ATTR_ROW_OPERATION_PTR, Side::rowVariables, SQL_DESC_ARRAY_STATUS_PTR},
    {SQL_ATTR_ROW_STATUS_PTR, Side::row, SQL_DESC_ARRAY_STATUS_PTR},
    {SQL_ATTR_ROWS_FETCHED_PTR, Side::row, SQL_DESC_ROWS_PROCESSED_PTR},
}};

const HeaderAttribute* headerAttribute(SQLINTEGER attribute) {
    const auto* const found = std::find_if(headerAttributes.begin(), headerAttributes.end(),
                                           [&](const auto& h) { return h.attribute == attribute; });
    return found == headerAttributes.end() ? nullptr : found;
}

SQLULEN bits(const void* pointer) { return reinterpret_cast<SQLULEN>(pointer); }

}  // namespace

std::span<const AttributeRule> Statement::attributeRules() { return rules; }

bool Statement::isScrollable() const { return attributes_.get(SQL_ATTR_CURSOR_TYPE) == SQL_CURSOR_STATIC; }

SQLULEN Statement::attribute(SQLINTEGER attribute) const {
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

void Statement::useDescriptor(std::shared_ptr<Descriptor>& place, SQLULEN handle) {
    auto given =
        std::static_pointer_cast<Descriptor>(findHandle(reinterpret_cast<SQLHANDLE>(handle), Descriptor::handleType));
    if (given && &given->connection() != connection_.get()) given.reset();
    const bool own = handle == 0 || (given && (given == ard_ || given == apd_));
    if (!own && (!given || given->isAutomatic())) {
        throw sql::Error("HY017", "This is no descriptor that the application has allocated on the connection.");
    }
    place = own ? nullptr : given;
}

void Statement::setAttribute(SQLINTEGER attribute, SQLULEN value) {
    if (attribute == SQL_ATTR_APP_ROW_DESC) return useDescriptor(givenArd_, value);
    if (attribute == SQL_ATTR_APP_PARAM_DESC) return useDescriptor(givenApd_, value);
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
