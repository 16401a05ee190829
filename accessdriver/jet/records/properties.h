#pragma once

#include <string>
#include <vector>

#include "accessdriver/jet/schema.h"
#include "accessdriver/jet/storage/bytes.h"

namespace jet {

/// One named value that Access keeps beside a definition.
struct Property {
    std::string name;
    ColumnType type = ColumnType::text;
    std::vector<std::uint8_t> value;  ///< as a column of the type would store it; a Boolean is one byte
};

/// The properties of a column, or of the table or file itself, whose owner is "".
struct PropertyList {
    std::string owner;
    std::vector<Property> properties;
};

/// Decodes a value of the catalog's column LvProp; nothing for one of another kind. Throws Error(corrupt).
std::vector<PropertyList> readProperties(ByteSpan blob);

/// The property of that name, or null.
const Property* find(const std::vector<Property>& properties, std::string_view name);

/// Its value as a text, "" for other types; and as yes or no, which it is not by default.
std::string textOf(const Property* property);
bool yesNoOf(const Property* property, bool byDefault);

/// The opposite of readProperties.
std::vector<std::uint8_t> propertyBlob(const std::vector<PropertyList>& lists);

}  // namespace jet
