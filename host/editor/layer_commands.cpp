// LAYER: makes layers and changes their properties.

#include <functional>

#include "host/api/symbol_tables.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/editor/color_names.h"
#include "host/editor/command_context.h"
#include "host/editor/command_tables.h"

namespace drafthost::editor {

namespace {

// Names of a comma-separated list.
std::vector<std::wstring> namesIn(const std::wstring& list) {
    std::vector<std::wstring> names;
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = list.find(L',', start);
        const std::wstring name = list.substr(start, comma - start);
        if (!name.empty())
            names.push_back(name);
        if (comma == std::wstring::npos)
            return names;
        start = comma + 1;
    }
}

AcDbObjectId makeLayer(CommandContext& context, const std::wstring& name) {
    AcDbDatabase& database = context.database();
    const AcDbObjectId known = findRecord(&database, TableIndex::Layer, name);
    if (!known.isNull())
        return known;
    const AcDbObjectPointer<AcDbLayerTable> table(database.layerTableId(), AcDb::kForWrite);
    auto layer = std::make_unique<AcDbLayerTableRecord>();
    AcDbObjectId id;
    if (!table || layer->setName(name.c_str()) != Acad::eOk || table->add(id, layer.get()) != Acad::eOk) {
        context.print(L"Invalid layer name \"" + name + L"\".");
        return {};
    }
    layer.release()->close();
    return id;
}

using Change = std::function<Acad::ErrorStatus(AcDbLayerTableRecord& layer)>;

// Applies a change to every layer that a list of names and patterns means.
void changeLayers(CommandContext& context, const std::wstring& patterns, const Change& change) {
    AcArray<AcDbObjectId> layers;
    {
        const AcDbObjectPointer<AcDbLayerTable> table(context.database().layerTableId(), AcDb::kForRead);
        if (table)
            layers = table->recordIds();
    }
    bool any = false;
    for (const AcDbObjectId id : layers) {
        if (!matchesPattern(recordName(id), patterns) && !equalNames(recordName(id), patterns))
            continue;
        any = true;
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
        if (!layer || change(*layer) != Acad::eOk)
            context.print(L"Cannot change layer \"" + recordName(id) + L"\".");
    }
    if (!any)
        context.print(L"No matching layer names found.");
}

std::wstring layersOrCurrent(CommandContext& context, const wchar_t* prompt) {
    const std::wstring names = context.text(prompt, true);
    return names.empty() ? recordName(context.database().clayer()) : names;
}

void setCurrentLayer(CommandContext& context, const std::wstring& name, bool make) {
    const AcDbObjectId id =
        make ? makeLayer(context, name) : findRecord(&context.database(), TableIndex::Layer, name);
    if (id.isNull()) {
        if (!make)
            context.print(L"Cannot find layer \"" + name + L"\".");
        return;
    }
    if (context.database().setClayer(id) != Acad::eOk)
        context.print(L"Cannot make layer \"" + name + L"\" current.");
}

void makeOption(CommandContext& context) {
    const std::wstring name = context.text(L"Enter name for new layer (becomes the current layer): ", true);
    if (!name.empty())
        setCurrentLayer(context, name, true);
}
void setOption(CommandContext& context) {
    const std::wstring name = context.text(L"Enter layer name to make current: ", true);
    if (!name.empty())
        setCurrentLayer(context, name, false);
}
void newOption(CommandContext& context) {
    for (const std::wstring& name : namesIn(context.text(L"Enter name list for new layer(s): ", true))) {
        makeLayer(context, name);
    }
}

void colorOption(CommandContext& context) {
    const std::wstring text = context.text(L"New color: ");
    const auto index = colorIndex(text);
    if (!index || *index < 1 || *index > 255)
        return context.print(L"A color number (1-255) or standard color name is required.");
    const std::wstring names =
        layersOrCurrent(context, L"Enter name list of layer(s) for that color <current>: ");
    changeLayers(context, names, [&](AcDbLayerTableRecord& layer) {
        return layer.setColorIndex(static_cast<std::uint16_t>(*index));
    });
}

void linetypeOption(CommandContext& context) {
    const std::wstring name = context.text(L"Enter loaded linetype name: ", true);
    const AcDbObjectId linetype = findRecord(&context.database(), TableIndex::Linetype, name);
    if (linetype.isNull())
        return context.print(L"Linetype \"" + name + L"\" is not loaded.");
    const std::wstring names =
        layersOrCurrent(context, L"Enter name list of layer(s) for that linetype <current>: ");
    changeLayers(context, names,
                 [&](AcDbLayerTableRecord& layer) { return layer.setLinetypeObjectId(linetype); });
}

// On, off, frozen, locked: a setter and the value it gets.
template <auto Setter, bool Value>
void switchOption(CommandContext& context) {
    changeLayers(context, context.text(L"Enter name list of layer(s): ", true),
                 [](AcDbLayerTableRecord& layer) { return (layer.*Setter)(Value); });
}

void freezeOption(CommandContext& context) {
    const AcDbObjectId current = context.database().clayer();
    changeLayers(context, context.text(L"Enter name list of layer(s) to freeze: ", true),
                 [&](AcDbLayerTableRecord& layer) {
                     return layer.objectId() == current ? Acad::eNotApplicable : layer.setIsFrozen(true);
                 });
}

void listOption(CommandContext& context) {
    const std::wstring patterns = context.text(L"Enter layer name(s) to list <*>: ", true);
    const AcDbObjectPointer<AcDbLayerTable> table(context.database().layerTableId(), AcDb::kForRead);
    if (!table)
        return;
    for (const AcDbObjectId id : table->recordIds()) {
        if (!patterns.empty() && !matchesPattern(recordName(id), patterns))
            continue;
        const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForRead);
        if (!layer)
            continue;
        std::wstring line = L"\"" + recordName(id) + L"\"  color " + std::to_wstring(layer->colorIndex()) +
                            L"  " + recordName(layer->linetypeObjectId());
        if (layer->isOff())
            line += L"  off";
        if (layer->isFrozen())
            line += L"  frozen";
        if (layer->isLocked())
            line += L"  locked";
        context.print(line);
    }
}

using Record = AcDbLayerTableRecord;
struct Option {
    const wchar_t* keyword;
    CommandFunction function;
};
constexpr Option kOptions[] = {
    {L"?", listOption},
    {L"Make", makeOption},
    {L"Set", setOption},
    {L"New", newOption},
    {L"ON", switchOption<&Record::setIsOff, false>},
    {L"OFF", switchOption<&Record::setIsOff, true>},
    {L"Color", colorOption},
    {L"Ltype", linetypeOption},
    {L"Freeze", freezeOption},
    {L"Thaw", switchOption<&Record::setIsFrozen, false>},
    {L"LOck", switchOption<&Record::setIsLocked, true>},
    {L"Unlock", switchOption<&Record::setIsLocked, false>},
};

void layerCommand(CommandContext& context) {
    for (;;) {
        const std::wstring keyword =
            context.keyword(L"Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/Freeze/Thaw/LOck/Unlock]: ",
                            L"? Make Set New ON OFF Color Ltype Freeze Thaw LOck Unlock");
        if (keyword.empty())
            return;
        for (const Option& option : kOptions) {
            if (keyword == option.keyword)
                option.function(context);
        }
    }
}

constexpr CommandDefinition kCommands[] = {{L"LAYER", layerCommand}};

}  // namespace

std::span<const CommandDefinition> layerCommands() {
    return kCommands;
}

}  // namespace drafthost::editor
