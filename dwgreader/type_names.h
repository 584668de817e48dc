#pragma once

// Names of the types of objects in DWG files that the library does not read.

#include <string>

namespace dwgreader {

struct UnreadType {
    enum class Kind {
        Entity,  // something that is seen is missing
        Object,  // dictionaries, layouts, groups
        Part     // of something else, or of the file: nothing is missing
    };
    Kind kind = Kind::Object;
    std::string name;  // as in DXF files
};

// className: DXF name of its class; empty for a type that all files share. isEntity: what its class says.
UnreadType unreadType(int type, const std::string& className, bool isEntity);

}  // namespace dwgreader
