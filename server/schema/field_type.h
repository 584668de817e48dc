#pragma once

// A field's type, size and properties in one text, as the short form of a definition has it:
// TEXT(50) NOT NULL DEFAULT "none".

#include "server/schema/definition.h"

namespace tessary::server {

struct TypedField {
    FieldDefinition field;
    bool primary = false;
    bool unique = false;
};

// Throws typeUnknown (3259), syntaxInDefinition (3290) and conversion (3421), all naming the field.
TypedField parseFieldType(TextView fieldName, TextView typeText);

// The text begins with the name of a type. What follows is not looked at.
bool beginsWithType(TextView typeText);

// The text that parseFieldType makes the same field of.
Text fieldTypeText(const FieldDefinition& field, bool primary);

// Sets the size of a text field, 1 to 255; throws syntaxInDefinition.
void setSize(FieldDefinition& field, double size);
// Null takes the default away. Throws conversion (3421) and fieldTooSmall (3163).
void setDefault(FieldDefinition& field, const Value& value);
// An autonumber has no default; throws syntaxInDefinition. To be called when all is set.
void checkField(const FieldDefinition& field);

// A date that parseDate reads back to the second, wherever it is read.
Text dateText(Date date);

}  // namespace tessary::server
