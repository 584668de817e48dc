#pragma once

// The lists of a definition, from the flat array in which they cross the interface.

#include "server/values/value.h"

namespace tessary::server {

struct DefinitionNode {
    bool isList = false;
    Value value;                        // when it is no list; null for nil
    std::vector<DefinitionNode> items;  // of a list; a dotted pair has two

    const Text* text() const { return isList ? nullptr : std::get_if<Text>(&value); }
    // nil, which is the empty list too
    bool isNil() const { return isList ? items.empty() : isNull(value); }
};

// The list of all arguments. Throws syntaxInDefinition (3290) for markers that do not match.
DefinitionNode parseTree(const std::vector<Value>& flat);

// The node as a LISP programmer would write it, shortened, for error texts.
Text display(const DefinitionNode& node);

}  // namespace tessary::server
