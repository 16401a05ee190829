#include "accessdriver/odbc/handles/statementAttributes.h"

#include <algorithm>
#include <array>

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

using Side = DescriptorSide;
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

}  // namespace

std::span<const AttributeRule> statementAttributeRules() { return rules; }

const HeaderAttribute* headerAttribute(SQLINTEGER attribute) {
    const auto* const found = std::find_if(headerAttributes.begin(), headerAttributes.end(),
                                           [&](const auto& h) { return h.attribute == attribute; });
    return found == headerAttributes.end() ? nullptr : found;
}

}  // namespace odbc
