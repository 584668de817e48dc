#include "dwgreader/type_names.h"

#include <map>

namespace dwgreader {

UnreadType unreadType(int type, const std::string& className, bool isEntity) {
    using Kind = UnreadType::Kind;
    static const std::map<int, const char*> entities = {
        {30, "POLYLINE (mesh)"},   {33, "SHAPE"}, {37, "REGION"},
        {38, "3DSOLID"},           {39, "BODY"},  {43, "OLEFRAME"},
        {46, "TOLERANCE"},         {47, "MLINE"}, {74, "OLE2FRAME"},
        {498, "ACAD_PROXY_ENTITY"}};
    if (!className.empty())
        return {isEntity ? Kind::Entity : Kind::Object, className};
    const auto found = entities.find(type);
    if (found != entities.end())
        return {Kind::Entity, found->second};
    // Beginnings and ends of blocks and sequences, vertices of what is not read, and the heads of tables.
    const bool part = (type >= 4 && type <= 6) || (type >= 10 && type <= 14) || (type >= 48 && type <= 71);
    return {part ? Kind::Part : Kind::Object, {}};
}

}  // namespace dwgreader
