#include "host/database/default_drawing.h"

#include <algorithm>
#include <sstream>

#include "host/database/block_contents.h"
#include "host/database/default_template.h"
#include "host/database/handles.h"
#include "host/database/loading.h"
#include "host/database/names.h"
#include "host/database/symbol_records.h"

namespace drafthost {
namespace {

DxfValue parseValue(short code, const std::wstring& text) {
    std::wistringstream numbers(text);
    switch (dxfKind(code)) {
        case DxfKind::Point: {
            AcGePoint3d p;
            numbers >> p.x >> p.y;
            if (numbers >> p.z)
                return p;
            return AcGePoint2d(p.x, p.y);
        }
        case DxfKind::Real: {
            double value = 0;
            numbers >> value;
            return value;
        }
        case DxfKind::Int16:
        case DxfKind::Int32:
        case DxfKind::Int64:
        case DxfKind::Bool: {
            std::int64_t value = 0;
            numbers >> value;
            return value;
        }
        case DxfKind::Handle:
        case DxfKind::Reference: return ObjectReference{parseHandle(std::wstring_view(text)), {}};
        case DxfKind::Text:
        case DxfKind::Binary: break;
    }
    return text;
}

std::vector<DxfGroup> parseTemplate(const wchar_t* text) {
    std::vector<DxfGroup> groups;
    std::wistringstream lines(text);
    for (std::wstring line; std::getline(lines, line);) {
        const std::size_t blank = std::min(line.find(L' '), line.size());
        const auto code = static_cast<short>(std::stoi(line.substr(0, blank)));
        groups.push_back({code, parseValue(code, line.substr(std::min(blank + 1, line.size())))});
    }
    return groups;
}

// Cuts before each group 0.
std::vector<std::vector<DxfGroup>> splitObjects(const std::vector<DxfGroup>& groups) {
    std::vector<std::vector<DxfGroup>> objects;
    for (const DxfGroup& group : groups) {
        if (group.code == 0 || objects.empty())
            objects.emplace_back();
        objects.back().push_back(group);
    }
    return objects;
}

const std::wstring& textOf(const std::vector<DxfGroup>& groups, short code) {
    static const std::wstring none;
    for (const DxfGroup& group : groups) {
        const auto* const text = std::get_if<std::wstring>(&group.value);
        if (group.code == code && text)
            return *text;
    }
    return none;
}

// Adds the objects of the template that a drawing lacks.
class MissingParts {
public:
    explicit MissingParts(AcDbDatabase& database) : database_(database), impl_(database.impl()) {}

    std::vector<std::wstring> add() {
        for (auto& groups : splitObjects(parseTemplate(kDefaultTables)))
            parts_.emplace_back(std::move(groups));
        firstObject_ = parts_.size();
        for (auto& groups : splitObjects(parseTemplate(kDefaultObjects)))
            parts_.emplace_back(std::move(groups));
        for (Part& part : parts_)
            findExisting(part);
        for (Part& part : parts_)
            chooseHandle(part);
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            if (!parts_[i].exists)
                create(parts_[i], i >= firstObject_);
        }
        return std::move(added_);
    }

private:
    struct Part {
        explicit Part(std::vector<DxfGroup> content) : groups(std::move(content)) {}
        std::vector<DxfGroup> groups;
        AcDbHandle handle;  // in the template
        bool exists = false;
        AcDbObjectId id;
        std::wstring parentEntry;  // name to enter it under in a dictionary that exists; empty: none
        AcDbObjectId existingParent;
    };

    Part* partOf(AcDbHandle handle) {
        for (Part& part : parts_) {
            if (handleInGroups(part.groups) == handle)
                return &part;
        }
        return nullptr;
    }

    void findExisting(Part& part) {
        part.handle = handleInGroups(part.groups);
        const std::wstring type = textOf(part.groups, 0);
        TableIndex table{};
        if (type == L"TABLE") {
            findTableIndex(textOf(part.groups, 2), table);
            part.id = impl_.table(table);
        } else if (findTableIndex(type, table)) {
            part.id = findRecord(&database_, table, textOf(part.groups, 2));
        } else if (part.handle == AcDbHandle(0xC)) {
            part.id = impl_.namedObjects;
        } else {
            findEntry(part);
        }
        part.exists = part.exists || !part.id.isNull();
    }

    // An object is looked up in the dictionary that owns it, when the drawing has that already.
    void findEntry(Part& part) {
        const Part* const parent = partOf(ownerOf(part));
        if (!parent || !parent->exists)
            return;
        const auto* const dictionary = peek<AcDbDictionary>(parent->id);
        const std::wstring name = entryName(*parent, part.handle);
        // What stands in an owner of another class is taken to be complete.
        if (!dictionary || name.empty()) {
            part.exists = true;
        } else if (dictionary->getAt(name.c_str(), part.id) != Acad::eOk) {
            part.parentEntry = name;
            part.existingParent = parent->id;
        }
    }

    static AcDbHandle ownerOf(const Part& part) {
        bool inside = false;
        for (const DxfGroup& group : part.groups) {
            if (group.code == 102)
                inside = !inside;
            if (group.code == 330 && !inside)
                return std::get<ObjectReference>(group.value).handle;
        }
        return {};
    }

    static std::wstring entryName(const Part& parent, AcDbHandle handle) {
        const std::wstring* name = nullptr;
        for (const DxfGroup& group : parent.groups) {
            if (group.code == 3)
                name = std::get_if<std::wstring>(&group.value);
            const auto* const reference = std::get_if<ObjectReference>(&group.value);
            if (group.code == 350 && name && reference && reference->handle == handle)
                return *name;
        }
        return {};
    }

    void chooseHandle(Part& part) {
        if (part.exists)
            return;
        const AcDbStub* const known = impl_.find(part.handle);
        const AcDbHandle handle = known ? AcDbHandle(impl_.nextHandle) : part.handle;
        part.id = AcDbObjectId(impl_.reserve(handle));
    }

    // References of the template become references to the objects that stand for them in this drawing.
    void resolve(std::vector<DxfGroup>& groups) {
        for (DxfGroup& group : groups) {
            auto* const reference = std::get_if<ObjectReference>(&group.value);
            const Part* const target = reference ? partOf(reference->handle) : nullptr;
            if (target)
                *reference = {target->id.handle(), target->id};
        }
    }

    void create(Part& part, bool isObject) {
        std::vector<DxfGroup> groups = part.groups;
        resolve(groups);
        const std::wstring& type = textOf(part.groups, 0);
        if (isObject)
            loadObject(database_, std::move(groups));
        else if (type == L"TABLE")
            loadTable(database_, std::move(groups));
        else
            loadRecord(database_, std::move(groups));
        if (type == L"LAYOUT")
            linkLayout(part);
        if (!part.parentEntry.empty()) {
            auto* const dictionary = peek<AcDbDictionary>(part.existingParent);
            auto& entries = static_cast<DictionaryState&>(*ObjectImp::of(dictionary).state).entries;
            entries.push_back({part.parentEntry, part.id, 350});
        }
        const std::wstring& name = textOf(part.groups, 2);
        added_.push_back(type + (name.empty() ? L"" : L" \"" + name + L"\""));
    }

    // A block record that was there before its layout learns of it.
    void linkLayout(const Part& part) {
        const auto* const last = std::get_if<ObjectReference>(&part.groups.back().value);
        const Part* const record = last ? partOf(last->handle) : nullptr;
        auto* const block = record ? peek<AcDbBlockTableRecord>(record->id) : nullptr;
        if (block)
            static_cast<BlockState&>(*ObjectImp::of(block).state).layout = part.id;
    }

    AcDbDatabase& database_;
    AcDbDatabase::Impl& impl_;
    std::vector<Part> parts_;
    std::size_t firstObject_ = 0;
    std::vector<std::wstring> added_;
};

// Header variables that name a record, with the id that is kept instead.
struct NamedSetting {
    const wchar_t* variable;
    short code;
    TableIndex table;
    AcDbObjectId DatabaseSettings::*id;
    const wchar_t* standard;
};
constexpr NamedSetting kNamedSettings[] = {
    {L"$CLAYER", 8, TableIndex::Layer, &DatabaseSettings::layer, L"0"},
    {L"$TEXTSTYLE", 7, TableIndex::TextStyle, &DatabaseSettings::textStyle, L"Standard"},
    {L"$CELTYPE", 6, TableIndex::Linetype, &DatabaseSettings::linetype, L"ByLayer"},
    {L"$DIMSTYLE", 2, TableIndex::DimStyle, &DatabaseSettings::dimensionStyle, L"Standard"},
};

const NamedSetting* findNamedSetting(std::wstring_view name) {
    for (const NamedSetting& setting : kNamedSettings) {
        if (equalNames(name, setting.variable))
            return &setting;
    }
    return nullptr;
}

}  // namespace

std::vector<std::wstring> addMissingParts(AcDbDatabase& database) {
    const LoadScope scope(database);
    std::vector<std::wstring> added = MissingParts(database).add();
    const auto* const blocks = peek<AcDbSymbolTable>(database.impl().table(TableIndex::Block));
    for (const AcDbObjectId id : blocks->recordIds())
        completeBlock(*peek<AcDbBlockTableRecord>(id));
    return added;
}

void settleIds(AcDbDatabase& database) {
    AcDbDatabase::Impl& impl = database.impl();
    impl.modelSpace = findRecord(&database, TableIndex::Block, ACDB_MODEL_SPACE);
    impl.paperSpace = findRecord(&database, TableIndex::Block, ACDB_PAPER_SPACE);
    impl.currentSpace = impl.modelSpace;
    for (const NamedSetting& setting : kNamedSettings) {
        AcDbObjectId id = findRecord(&database, setting.table, impl.settings.header.text(setting.variable));
        if (id.isNull())
            id = findRecord(&database, setting.table, setting.standard);
        impl.settings.*setting.id = id;
    }
}

std::vector<ClassGroups> defaultClasses() {
    std::vector<ClassGroups> classes = splitObjects(parseTemplate(kDefaultClasses));
    for (ClassGroups& groups : classes) {
        if (groups.front().code == 0)
            groups.erase(groups.begin());
    }
    return classes;
}

HeaderVariables defaultHeaderVariables() {
    HeaderVariables header;
    std::wstring name;
    for (DxfGroup& group : parseTemplate(kDefaultHeader)) {
        if (group.code == 9)
            name = std::get<std::wstring>(group.value);
        else
            header.set(name, {std::move(group)});
    }
    return header;
}

std::vector<DxfGroup> headerVariable(const AcDbDatabase& database, std::wstring_view name) {
    const DatabaseSettings& settings = database.impl().settings;
    if (const NamedSetting* const setting = findNamedSetting(name)) {
        return {{setting->code, recordName(settings.*setting->id)}};
    }
    if (equalNames(name, L"$HANDSEED"))
        return {{5, ObjectReference{AcDbHandle(database.impl().nextHandle), {}}}};
    const HeaderVariables::Entry* const entry = settings.header.find(name);
    return entry ? entry->groups : std::vector<DxfGroup>();
}

bool setHeaderVariable(AcDbDatabase& database, std::wstring_view name, std::vector<DxfGroup> groups) {
    if (groups.empty())
        return false;
    const NamedSetting* const setting = findNamedSetting(name);
    if (!setting) {
        database.impl().changeSettings().header.set(name, std::move(groups));
        return true;
    }
    const auto* const text = std::get_if<std::wstring>(&groups.front().value);
    const AcDbObjectId id = text ? findRecord(&database, setting->table, *text) : AcDbObjectId();
    if (id.isNull())
        return false;
    database.impl().changeSettings().*setting->id = id;
    return true;
}

}  // namespace drafthost
