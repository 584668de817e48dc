// Commands about the drawing as a whole: SETVAR, UCS, QSAVE, SAVEAS, and those that only concern a view.

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/command_context.h"
#include "host/editor/command_tables.h"
#include "host/editor/system_variables.h"
#include "host/exchange/dwg_conversion.h"

namespace drafthost::editor {

namespace {

using Kind = InputRequest::Kind;

// The host shows no view: these take their options and change nothing.
void redrawCommand(CommandContext&) {}

void zoomCommand(CommandContext& context) {
    const auto reply =
        context.ask(Kind::Point, {.prompt = L"Specify corner of window, enter a scale factor (nX or nXP), or "
                                            L"[All/Center/Extents/Previous/Scale/Window/Object]: ",
                                  .keywords = L"All Center Extents Previous Scale Window Object",
                                  .control = RSG_OTHER});
    if (!reply.given)
        return;
    if (reply.keyword.empty()) {
        context.ask(Kind::Corner, {.prompt = L"Specify opposite corner: ", .base = reply.point});
    } else if (reply.keyword == L"Window") {
        const AcGePoint3d corner = context.point(L"Specify first corner: ");
        context.ask(Kind::Corner, {.prompt = L"Specify opposite corner: ", .base = corner});
    } else if (reply.keyword == L"Center") {
        context.point(L"Specify center point: ");
        context.text(L"Enter magnification or height: ");
    } else if (reply.keyword == L"Scale") {
        context.text(L"Enter a scale factor (nX or nXP): ");
    } else if (reply.keyword == L"Object") {
        context.selection();
    }
}

void ucsCommand(CommandContext& context) {
    const auto reply =
        context.ask(Kind::Point, {.prompt = L"Specify origin of UCS or [World/3point/Z] <World>: ",
                                  .keywords = L"World 3point Z 3"});
    AcGePoint3d origin;
    AcGeVector3d x = AcGeVector3d::kXAxis, y = AcGeVector3d::kYAxis, z;
    if (reply.given && reply.keyword != L"World")
        context.ucsToWorld().getCoordSystem(origin, x, y, z);
    if (reply.given && reply.keyword.empty()) {
        origin = context.world(reply.point);
    } else if (reply.keyword == L"Z") {
        const double angle = context.angle(L"Specify rotation angle about Z axis <90>: ");
        x.rotateBy(angle, z);
        y.rotateBy(angle, z);
    } else if (reply.keyword.starts_with(L"3")) {
        origin = context.world(context.point(L"Specify new origin point <0,0,0>: "));
        x = (context.world(context.point(L"Specify point on positive portion of X-axis: ")) - origin)
                .normal();
        const AcGeVector3d up =
            context.world(context.point(L"Specify point on positive-Y portion of the UCS XY plane: ")) -
            origin;
        const AcGeVector3d normal = x.crossProduct(up);
        if (x.isZeroLength() || normal.isZeroLength())
            return context.print(L"The points lie in a line.");
        y = normal.normal().crossProduct(x);
    }
    HeaderVariables& header = context.database().impl().changeSettings().header;
    header.setPoint(L"$UCSORG", origin);
    header.setPoint(L"$UCSXDIR", AcGePoint3d() + x);
    header.setPoint(L"$UCSYDIR", AcGePoint3d() + y);
}

void setNamedVariable(CommandContext& context, const std::wstring& name) {
    const auto value = getVariable(context.document(), name);
    if (!value)
        return context.print(L"Unknown variable name \"" + name + L"\".");
    const std::wstring text =
        context.text((L"Enter new value for " + name + L" <" + shownValue(*value) + L">: ").c_str(), true);
    if (text.empty())
        return;
    const auto typed = typedValue(*value, text);
    const SetOutcome outcome = typed ? setVariable(context.document(), name, *typed) : SetOutcome::WrongType;
    static constexpr const wchar_t* kMessages[] = {L"", L"Unknown variable name.",
                                                   L"The variable is read-only.", L"Invalid value.",
                                                   L"The value is out of range."};
    if (outcome != SetOutcome::Done)
        context.print(kMessages[static_cast<std::size_t>(outcome)]);
}

void setvarCommand(CommandContext& context) {
    const std::wstring name = context.text(L"Enter variable name: ");
    if (!name.empty())
        setNamedVariable(context, name);
}

void variableOfThatName(CommandContext& context) {
    setNamedVariable(context, context.name());
}

bool hasExtension(const std::wstring& path, std::wstring_view extension) {
    return path.size() > extension.size() &&
           equalNames(path.substr(path.size() - extension.size()), extension);
}

// Drawings are written as DXF: no DWG file is replaced by one, and none is called so.
bool wouldPassForDwg(const std::wstring& path) {
    return hasExtension(path, L".dwg") || exchange::isDwgFile(path);
}

bool saveTo(CommandContext& context, const std::wstring& path) {
    if (wouldPassForDwg(path)) {
        context.print(L"Cannot write " + path + L": drawings are saved as DXF, under a name of their own.");
        return false;
    }
    const Acad::ErrorStatus status = context.database().dxfOut(path.c_str());
    if (status != Acad::eOk) {
        context.print(L"Cannot write " + path + L": " + acadErrorStatusText(status) + L".");
        return false;
    }
    context.database().impl().modifications = 0;
    context.document().undo().saved();
    return true;
}

void saveAsCommand(CommandContext& context) {
    std::wstring name = context.text(L"Save drawing as: ", true);
    if (name.empty())
        return;
    // A dot may stand in a folder's name, and files of other kinds are not to be replaced by a drawing.
    if (!hasExtension(name, L".dxf") && !hasExtension(name, L".dwg"))
        name += L".dxf";
    const std::wstring path = fullPath(name);
    if (!saveTo(context, path))
        return;
    context.database().impl().fileName = path;
    context.document().setName(path);
}

void quickSaveCommand(CommandContext& context) {
    const std::wstring path = context.database().fileName();
    // A drawing from a DWG file is saved under a new name, as a new one is.
    path.empty() || wouldPassForDwg(path) ? saveAsCommand(context) : static_cast<void>(saveTo(context, path));
}

constexpr CommandDefinition kCommands[] = {
    {L"QSAVE", quickSaveCommand}, {L"REDRAW", redrawCommand}, {L"REGEN", redrawCommand},
    {L"REGENALL", redrawCommand}, {L"SAVEAS", saveAsCommand}, {L"SETVAR", setvarCommand},
    {L"UCS", ucsCommand},         {L"ZOOM", zoomCommand},
};
constexpr CommandDefinition kVariable = {L"", variableOfThatName};

}  // namespace

std::span<const CommandDefinition> settingCommands() {
    return kCommands;
}

const CommandDefinition& variableCommand() {
    return kVariable;
}

std::vector<CommandDefinition> allCommands() {
    std::vector<CommandDefinition> all;
    for (const auto& table :
         {drawCommands(), changeCommands(), layerCommands(), settingCommands(), undoCommands()}) {
        all.insert(all.end(), table.begin(), table.end());
    }
    std::sort(all.begin(), all.end(),
              [](const auto& a, const auto& b) { return std::wcscmp(a.name, b.name) < 0; });
    return all;
}

}  // namespace drafthost::editor
