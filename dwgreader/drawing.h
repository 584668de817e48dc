#pragma once

// A drawing as it comes out of the library, held until all of it is known: blocks come in no order, and names
// of blocks, owners of attributes and free handles are only known at the end.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "dwgreader/dxf_text.h"

namespace dwgreader {

using Handle = std::uint32_t;

struct Entity {
    Handle handle = 0;
    Handle owner = 0;  // block record; of an attribute its insertion; 0: model or paper space
    bool paper = false;
    DxfText before;            // groups up to the name of the block
    Handle block = 0;          // insertions and dimensions: the block they show
    DxfText after;             // groups behind it
    DxfText parts;             // objects that follow it: vertices
    bool isInsertion = false;  // attributes may follow
    DxfText sequenceEnd;       // of an insertion with attributes
};

struct Block {
    std::string name;
    int flags = 0;
    std::string layer;
    std::string path;  // of an external reference
    DRW_Coord base;
    std::vector<Entity> entities;
};

// Table records that need no name of others.
struct Record {
    std::string name;
    DxfText groups;
};
using Records = std::map<Handle, Record>;

struct Drawing {
    DxfText header;
    Records viewports, linetypes, layers, textStyles, applications, dimensionStyles;
    std::map<Handle, Block> blocks;
    std::vector<Entity> modelSpace, paperSpace;
    std::vector<Entity> attributes;  // owned by insertions
    std::map<Handle, DxfText> imageDefinitions;
    std::map<std::string, int> unreadEntities;  // how many, by name
    int unreadObjects = 0;
};

// The whole DXF file. Comments (999) in front say what the drawing had besides: "unread 3 REGION" for each
// kind of entity, and "unread-objects 12". The drawing is used up.
std::string dxfFile(Drawing& drawing);

}  // namespace dwgreader
