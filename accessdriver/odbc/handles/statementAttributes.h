#pragma once

#include <span>

#include "accessdriver/odbc/handles/attributes.h"

namespace odbc {

/// One of a statement's four descriptors: the ARD, the IRD, the APD and the IPD of the ODBC reference.
enum class DescriptorSide { rowVariables, row, parameterVariables, parameters };

/// An attribute of a statement that is a field of the header of one of its descriptors.
struct HeaderAttribute {
    SQLINTEGER attribute;
    DescriptorSide side;
    SQLSMALLINT field;
};

/// The attributes that a statement keeps itself.
std::span<const AttributeRule> statementAttributeRules();

/// Returns the header field that the attribute stands for; null for any other attribute.
const HeaderAttribute* headerAttribute(SQLINTEGER attribute);

}  // namespace odbc
