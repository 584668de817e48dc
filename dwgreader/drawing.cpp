#include "dwgreader/drawing.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <set>

namespace dwgreader {
namespace {

constexpr const char* kModelSpace = "*Model_Space";
constexpr const char* kPaperSpace = "*Paper_Space";

std::string folded(std::string name) {
    for (char& c : name)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return name;
}

bool isSpace(const std::string& name) {
    return folded(name) == folded(kModelSpace) || folded(name) == folded(kPaperSpace);
}

class DxfFile {
public:
    explicit DxfFile(Drawing& drawing) : drawing_(drawing) {}

    std::string write() {
        nameBlocks();
        adoptSpaces();
        sortAttributes();
        writeComments();
        writeHeader();
        writeTables();
        writeBlocks();
        writeEntities();
        writeObjects();
        file_.text(0, "EOF");
        return file_.str();
    }

private:
    // Blocks without a name of their own (*U, *D and the like) may lack the number that makes them different.
    void nameBlocks() {
        std::set<std::string> taken;
        for (auto& [handle, block] : drawing_.blocks) {
            const std::string stem = block.name;
            int number = 0;
            while (block.name.empty() || isBare(block.name) || !taken.insert(folded(block.name)).second)
                block.name = (stem.empty() ? "*U" : stem) + std::to_string(++number);
        }
    }

    static bool isBare(const std::string& name) { return name.size() == 2 && name[0] == '*'; }

    // The entities of the spaces come by themselves when their block is not named as their owner.
    void adoptSpaces() {
        for (auto& [handle, block] : drawing_.blocks) {
            if (!isSpace(block.name))
                continue;
            std::vector<Entity>& space =
                folded(block.name) == folded(kModelSpace) ? drawing_.modelSpace : drawing_.paperSpace;
            space.insert(space.end(), std::make_move_iterator(block.entities.begin()),
                         std::make_move_iterator(block.entities.end()));
            block.entities.clear();
        }
        // The library hands them on in no order; handles grow with time.
        for (auto* const space : {&drawing_.modelSpace, &drawing_.paperSpace})
            std::stable_sort(space->begin(), space->end(),
                             [](const Entity& a, const Entity& b) { return a.handle < b.handle; });
    }

    void sortAttributes() {
        std::stable_sort(drawing_.attributes.begin(), drawing_.attributes.end(),
                         [](const Entity& a, const Entity& b) {
                             return std::pair(a.owner, a.handle) < std::pair(b.owner, b.handle);
                         });
    }

    void writeComments() {
        for (const auto& [name, count] : drawing_.unreadEntities)
            file_.text(999, "unread " + std::to_string(count) + " " + name);
        if (drawing_.unreadObjects > 0)
            file_.text(999, "unread-objects " + std::to_string(drawing_.unreadObjects));
    }

    void beginSection(const char* name) { file_.text(0, "SECTION").text(2, name); }
    void endSection() { file_.text(0, "ENDSEC"); }

    void writeHeader() {
        beginSection("HEADER");
        // The version of the first DXF files in UTF-8.
        file_.text(9, "$ACADVER").text(1, "AC1021").text(9, "$DWGCODEPAGE").text(3, "ANSI_1252");
        file_.append(drawing_.header);
        endSection();
    }

    void beginTable(const char* name) {
        file_.text(0, "TABLE").text(2, name).text(100, "AcDbSymbolTable").integer(70, 0);
    }

    void writeTable(const char* name, const Records& records) {
        beginTable(name);
        for (const auto& [handle, record] : records)
            file_.append(record.groups);
        file_.text(0, "ENDTAB");
    }

    void writeTables() {
        beginSection("TABLES");
        writeTable("VPORT", drawing_.viewports);
        writeTable("LTYPE", drawing_.linetypes);
        writeTable("LAYER", drawing_.layers);
        writeTable("STYLE", drawing_.textStyles);
        writeTable("APPID", drawing_.applications);
        writeTable("DIMSTYLE", drawing_.dimensionStyles);
        beginTable("BLOCK_RECORD");
        for (const auto& [handle, block] : drawing_.blocks) {
            file_.text(0, "BLOCK_RECORD").handle(5, handle);
            file_.text(100, "AcDbSymbolTableRecord").text(100, "AcDbBlockTableRecord").text(2, block.name);
        }
        file_.text(0, "ENDTAB");
        endSection();
    }

    void writeBlocks() {
        beginSection("BLOCKS");
        for (const auto& [handle, block] : drawing_.blocks) {
            file_.text(0, "BLOCK").text(100, "AcDbEntity").text(8, block.layer);
            file_.text(100, "AcDbBlockBegin").text(2, block.name).integer(70, block.flags);
            file_.point(10, block.base).text(3, block.name).text(1, block.path);
            writeEntities(block.entities);
            file_.text(0, "ENDBLK").text(100, "AcDbEntity").text(8, block.layer).text(100, "AcDbBlockEnd");
        }
        endSection();
    }

    void writeEntities() {
        beginSection("ENTITIES");
        writeEntities(drawing_.modelSpace);
        writeEntities(drawing_.paperSpace);
        endSection();
    }

    void writeEntities(const std::vector<Entity>& entities) {
        for (const Entity& entity : entities) {
            const auto block = drawing_.blocks.find(entity.block);
            const auto [first, last] = attributesOf(entity);
            // An insertion of a block that is not there shows nothing and cannot be written.
            if (entity.isInsertion && block == drawing_.blocks.end())
                throw DamagedDrawing("a block that is inserted is missing");
            file_.append(entity.before);
            if (first != last)
                file_.integer(66, 1);
            if (block != drawing_.blocks.end())
                file_.text(2, block->second.name);
            file_.append(entity.after).append(entity.parts);
            for (auto attribute = first; attribute != last; ++attribute)
                file_.append(attribute->before).append(attribute->after);
            if (first != last)
                file_.append(entity.sequenceEnd);
        }
    }

    using Attributes = std::vector<Entity>::const_iterator;
    std::pair<Attributes, Attributes> attributesOf(const Entity& entity) const {
        const auto& all = drawing_.attributes;
        if (!entity.isInsertion)
            return {all.end(), all.end()};
        const auto first = std::lower_bound(all.begin(), all.end(), entity.handle,
                                            [](const Entity& a, Handle owner) { return a.owner < owner; });
        const auto last =
            std::find_if(first, all.end(), [&](const Entity& a) { return a.owner != entity.handle; });
        return {first, last};
    }

    void writeObjects() {
        beginSection("OBJECTS");
        for (const auto& [handle, definition] : drawing_.imageDefinitions)
            file_.text(0, "IMAGEDEF").handle(5, handle).append(definition);
        endSection();
    }

    Drawing& drawing_;
    DxfText file_;
};

}  // namespace

std::string dxfFile(Drawing& drawing) {
    return DxfFile(drawing).write();
}

}  // namespace dwgreader
