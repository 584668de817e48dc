#include "host/editor/variable_table.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/editor/color_names.h"
#include "host/editor/command_context.h"
#include "host/editor/commands.h"
#include "host/editor/coordinates.h"

namespace drafthost::editor {

namespace {

constexpr VariableType Int = VariableType::Integer, Real = VariableType::Real, Text = VariableType::Text,
                       Point = VariableType::Point, Point2 = VariableType::Point2;
constexpr VariablePlace Session = VariablePlace::Session, PerDocument = VariablePlace::Document,
                        Drawing = VariablePlace::Drawing;
constexpr VariableAccess Fixed = VariableAccess::ReadOnly;

std::wstring fileFolder(const Document& document) {
    const std::wstring folder = folderOf(document.fileName());
    return folder.empty() ? folderOf(fullPath(L"x")) : folder;
}

VariableValue drawingName(const Document& document) {
    const std::wstring path = document.fileName();
    return path.substr(folderOf(path).size());
}
VariableValue drawingFolder(const Document& document) {
    return fileFolder(document);
}
VariableValue drawingTitled(const Document& document) {
    return document.database()->impl().fileName.empty() ? 0 : 1;
}
VariableValue modified(const Document& document) {
    return document.database()->impl().modifications == 0 ? 0 : 1;
}
VariableValue supportPath(const Document&) {
    return theHost().services().searchPath();
}
VariableValue temporaryFolder(const Document&) {
    wchar_t folder[MAX_PATH + 1] = L"";
    GetTempPathW(static_cast<DWORD>(std::size(folder)), folder);
    return std::wstring(folder);
}
VariableValue commandActive(const Document& document) {
    return const_cast<Document&>(document).commands().active() ? 1 : 0;
}
VariableValue commandNames(const Document& document) {
    return const_cast<Document&>(document).commands().activeName();
}
VariableValue userName(const Document&) {
    wchar_t name[257] = L"";
    DWORD length = static_cast<DWORD>(std::size(name));
    return GetUserNameW(name, &length) ? std::wstring(name) : std::wstring();
}

SYSTEMTIME localTime() {
    SYSTEMTIME time;
    GetLocalTime(&time);
    return time;
}
double dayFraction(const SYSTEMTIME& t) {
    return (t.wHour * 3600 + t.wMinute * 60 + t.wSecond + t.wMilliseconds / 1000.0) / 86400.0;
}

// 20240131.1530: year, month, day, and the time as digits behind the point.
VariableValue calendarDate(const Document&) {
    const SYSTEMTIME t = localTime();
    const double date = t.wYear * 10000.0 + t.wMonth * 100.0 + t.wDay;
    return date + t.wHour / 1e2 + t.wMinute / 1e4 + t.wSecond / 1e6 + t.wMilliseconds / 1e9;
}

// Julian day number (midnight, not noon, begins the day) and fraction.
VariableValue julianDate(const Document&) {
    const SYSTEMTIME t = localTime();
    const int a = (14 - t.wMonth) / 12, y = t.wYear + 4800 - a, m = t.wMonth + 12 * a - 3;
    const int day = t.wDay + (153 * m + 2) / 5 + 365 * y + y / 4 - y / 100 + y / 400 - 32045;
    return day + dayFraction(t);
}

VariableValue milliseconds(const Document&) {
    return static_cast<int>(GetTickCount64() & 0x7FFFFFFF);
}

AcDbExtents drawingExtents(const Document& document) {
    AcDbExtents extents;
    const AcDbObjectPointer<AcDbBlockTableRecord> space(document.database()->modelSpaceId(), AcDb::kForRead);
    if (!space)
        return extents;
    for (const AcDbObjectId id : space->entityIds()) {
        const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
        if (entity)
            entity->getGeomExtents(extents);  // those without extents add nothing
    }
    return extents;
}
// An empty drawing has them the wrong way round, which tells programs that there is nothing.
constexpr double kEmpty = 1e20;
VariableValue lowerExtents(const Document& document) {
    const AcDbExtents extents = drawingExtents(document);
    return extents.isValid() ? extents.minPoint() : AcGePoint3d(kEmpty, kEmpty, kEmpty);
}
VariableValue upperExtents(const Document& document) {
    const AcDbExtents extents = drawingExtents(document);
    return extents.isValid() ? extents.maxPoint() : AcGePoint3d(-kEmpty, -kEmpty, -kEmpty);
}

VariableValue viewCenter(const Document& document) {
    const AcDbExtents extents = drawingExtents(document);
    if (!extents.isValid())
        return AcGePoint3d();
    return extents.minPoint() + (extents.maxPoint() - extents.minPoint()) * 0.5;
}
VariableValue viewHeight(const Document& document) {
    const AcDbExtents extents = drawingExtents(document);
    const double height = extents.isValid() ? extents.maxPoint().y - extents.minPoint().y : 0;
    return height > 0 ? height : 1.0;
}

VariableValue lastPoint(const Document& document) {
    return const_cast<Document&>(document).prompts().lastPoint();
}
bool setLastPoint(Document& document, const VariableValue& value) {
    document.prompts().setLastPoint(std::get<AcGePoint3d>(value));
    return true;
}

// Bits: 1 on, 2 only one step is kept, 4 Auto, 8 a group is open.
VariableValue undoControl(const Document& given) {
    auto& document = const_cast<Document&>(given);
    const UndoHistory& history = document.undo();
    if (history.recording() == UndoHistory::Recording::None)
        return 0;
    return 1 + (history.recording() == UndoHistory::Recording::One ? 2 : 0) + (document.undoAuto() ? 4 : 0) +
           (history.groupOpen() ? 8 : 0);
}
VariableValue undoMarks(const Document& document) {
    return static_cast<int>(const_cast<Document&>(document).undo().marks());
}

VariableValue worldUcs(const Document& document) {
    return ucsToWorld(*document.database()).isEqualTo(AcGeMatrix3d::kIdentity) ? 1 : 0;
}

// CECOLOR is a text, the header keeps a number.
VariableValue currentColor(const Document& document) {
    const int index = document.database()->cecolor();
    if (index == 256)
        return std::wstring(L"BYLAYER");
    return index == 0 ? std::wstring(L"BYBLOCK") : std::to_wstring(index);
}
bool setCurrentColor(Document& document, const VariableValue& value) {
    const auto index = colorIndex(std::get<std::wstring>(value));
    return index &&
           setHeaderVariable(*document.database(), L"$CECOLOR", {{62, static_cast<std::int64_t>(*index)}});
}

VariableValue ucsX(const Document& document) {
    return document.database()->impl().settings.header.point(L"$UCSXDIR", {1, 0, 0});
}
VariableValue ucsY(const Document& document) {
    return document.database()->impl().settings.header.point(L"$UCSYDIR", {0, 1, 0});
}

// Sorted by name within each part.
const VariableRow kRows[] = {
    // The host.
    {.name = L"ACADPREFIX", .type = Text, .place = Session, .access = Fixed, .compute = supportPath},
    {.name = L"ACADVER", .type = Text, .place = Session, .access = Fixed, .text = L"18.0s"},
    {.name = L"CDATE", .type = Real, .place = Session, .access = Fixed, .compute = calendarDate},
    {.name = L"DATE", .type = Real, .place = Session, .access = Fixed, .compute = julianDate},
    {.name = L"LOCALE", .type = Text, .place = Session, .access = Fixed, .text = L"ENU"},
    {.name = L"LOGINNAME", .type = Text, .place = Session, .access = Fixed, .compute = userName},
    {.name = L"MILLISECS", .type = Int, .place = Session, .access = Fixed, .compute = milliseconds},
    {.name = L"PLATFORM",
     .type = Text,
     .place = Session,
     .access = Fixed,
     .text = L"Microsoft Windows (x64)"},
    {.name = L"PRODUCT", .type = Text, .place = Session, .access = Fixed, .text = L"drafthost"},
    {.name = L"PROGRAM", .type = Text, .place = Session, .access = Fixed, .text = L"drafthost"},
    {.name = L"SYSCODEPAGE", .type = Text, .place = Session, .access = Fixed, .text = L"ANSI_1252"},
    {.name = L"TEMPPREFIX", .type = Text, .place = Session, .access = Fixed, .compute = temporaryFolder},
    // The session.
    {.name = L"APERTURE", .type = Int, .place = Session, .number = 10, .minimum = 1, .maximum = 50},
    {.name = L"ATTDIA", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"ATTREQ", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"BLIPMODE", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"CMDDIA", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"CMDECHO", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"CURSORSIZE", .type = Int, .place = Session, .number = 5, .minimum = 1, .maximum = 100},
    {.name = L"DRAGMODE", .type = Int, .place = Session, .number = 2, .minimum = 0, .maximum = 2},
    {.name = L"EDGEMODE", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"EXPERT", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 5},
    {.name = L"FILEDIA", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"GRIPS", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 2},
    {.name = L"HIGHLIGHT", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"MAXSORT", .type = Int, .place = Session, .number = 1000, .minimum = 0, .maximum = 32767},
    {.name = L"MENUECHO", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 15},
    {.name = L"NOMUTT", .type = Int, .place = Session, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"OSMODE", .type = Int, .place = Session, .number = 4133, .minimum = 0, .maximum = 32767},
    {.name = L"PICKADD", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 2},
    {.name = L"PICKAUTO", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 5},
    {.name = L"PICKBOX", .type = Int, .place = Session, .number = 3, .minimum = 0, .maximum = 50},
    {.name = L"PICKDRAG", .type = Int, .place = Session, .number = 2, .minimum = 0, .maximum = 2},
    {.name = L"PICKFIRST", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"PICKSTYLE", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 3},
    {.name = L"SAVETIME", .type = Int, .place = Session, .number = 10, .minimum = 0, .maximum = 600},
    {.name = L"SCREENSIZE", .type = Point2, .place = Session, .access = Fixed, .number = 1000},
    {.name = L"SDI", .type = Int, .place = Session, .access = Fixed, .number = 0},
    {.name = L"TOOLTIPS", .type = Int, .place = Session, .number = 1, .minimum = 0, .maximum = 1},
    // The document.
    {.name = L"AUTOSNAP", .type = Int, .place = PerDocument, .number = 63, .minimum = 0, .maximum = 63},
    {.name = L"CMDACTIVE", .type = Int, .place = PerDocument, .access = Fixed, .compute = commandActive},
    {.name = L"CMDNAMES", .type = Text, .place = PerDocument, .access = Fixed, .compute = commandNames},
    {.name = L"CTAB", .type = Text, .place = PerDocument, .access = Fixed, .text = L"Model"},
    {.name = L"CVPORT", .type = Int, .place = PerDocument, .access = Fixed, .number = 2},
    {.name = L"DBMOD", .type = Int, .place = PerDocument, .access = Fixed, .compute = modified},
    {.name = L"DWGNAME", .type = Text, .place = PerDocument, .access = Fixed, .compute = drawingName},
    {.name = L"DWGPREFIX", .type = Text, .place = PerDocument, .access = Fixed, .compute = drawingFolder},
    {.name = L"DWGTITLED", .type = Int, .place = PerDocument, .access = Fixed, .compute = drawingTitled},
    {.name = L"ERRNO", .type = Int, .place = PerDocument, .number = 0, .minimum = 0, .maximum = 32767},
    {.name = L"EXTMAX", .type = Point, .place = PerDocument, .access = Fixed, .compute = upperExtents},
    {.name = L"EXTMIN", .type = Point, .place = PerDocument, .access = Fixed, .compute = lowerExtents},
    {.name = L"GRIDMODE", .type = Int, .place = PerDocument, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"LASTANGLE", .type = Real, .place = PerDocument, .access = Fixed, .number = 0},
    {.name = L"LASTPOINT", .type = Point, .place = PerDocument, .compute = lastPoint, .store = setLastPoint},
    {.name = L"LASTPROMPT", .type = Text, .place = PerDocument, .access = Fixed, .text = L""},
    {.name = L"POLYSIDES", .type = Int, .place = PerDocument, .number = 4, .minimum = 3, .maximum = 1024},
    {.name = L"SNAPANG", .type = Real, .place = PerDocument, .number = 0},
    {.name = L"SNAPMODE", .type = Int, .place = PerDocument, .number = 0, .minimum = 0, .maximum = 1},
    {.name = L"TARGET", .type = Point, .place = PerDocument, .access = Fixed, .number = 0},
    {.name = L"TRACEWID", .type = Real, .place = PerDocument, .number = 1},
    {.name = L"UNDOCTL", .type = Int, .place = PerDocument, .access = Fixed, .compute = undoControl},
    {.name = L"UNDOMARKS", .type = Int, .place = PerDocument, .access = Fixed, .compute = undoMarks},
    {.name = L"USERS1", .type = Text, .place = PerDocument},
    {.name = L"USERS2", .type = Text, .place = PerDocument},
    {.name = L"USERS3", .type = Text, .place = PerDocument},
    {.name = L"USERS4", .type = Text, .place = PerDocument},
    {.name = L"USERS5", .type = Text, .place = PerDocument},
    {.name = L"VIEWCTR", .type = Point, .place = PerDocument, .access = Fixed, .compute = viewCenter},
    {.name = L"VIEWSIZE", .type = Real, .place = PerDocument, .access = Fixed, .compute = viewHeight},
    {.name = L"VIEWTWIST", .type = Real, .place = PerDocument, .access = Fixed, .number = 0},
    {.name = L"WORLDUCS", .type = Int, .place = PerDocument, .access = Fixed, .compute = worldUcs},
    {.name = L"WORLDVIEW", .type = Int, .place = PerDocument, .number = 1, .minimum = 0, .maximum = 1},
    // The drawing's header.
    {.name = L"ANGBASE", .type = Real, .place = Drawing},
    {.name = L"ANGDIR", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"ATTMODE", .type = Int, .place = Drawing, .number = 1, .minimum = 0, .maximum = 2},
    {.name = L"AUNITS", .type = Int, .place = Drawing, .minimum = 0, .maximum = 4},
    {.name = L"AUPREC", .type = Int, .place = Drawing, .minimum = 0, .maximum = 8},
    {.name = L"CECOLOR", .type = Text, .place = Drawing, .compute = currentColor, .store = setCurrentColor},
    {.name = L"CELTSCALE", .type = Real, .place = Drawing, .number = 1, .minimum = 1e-99, .maximum = 1e99},
    {.name = L"CELTYPE", .type = Text, .place = Drawing, .text = L"ByLayer"},
    {.name = L"CELWEIGHT", .type = Int, .place = Drawing, .number = -1, .minimum = -3, .maximum = 211},
    {.name = L"CLAYER", .type = Text, .place = Drawing, .text = L"0"},
    {.name = L"DIMSCALE", .type = Real, .place = Drawing, .number = 1, .minimum = 0, .maximum = 1e99},
    {.name = L"DIMSTYLE", .type = Text, .place = Drawing, .access = Fixed, .text = L"Standard"},
    {.name = L"DIMTXSTY", .type = Text, .place = Drawing, .text = L"Standard"},
    {.name = L"DIMTXT", .type = Real, .place = Drawing, .number = 2.5, .minimum = 1e-99, .maximum = 1e99},
    {.name = L"DIMZIN", .type = Int, .place = Drawing, .number = 8, .minimum = 0, .maximum = 15},
    {.name = L"ELEVATION", .type = Real, .place = Drawing},
    {.name = L"FILLETRAD", .type = Real, .place = Drawing, .minimum = 0, .maximum = 1e99},
    {.name = L"FILLMODE", .type = Int, .place = Drawing, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"HANDLES", .type = Int, .place = Session, .access = Fixed, .number = 1},
    {.name = L"INSBASE", .type = Point, .place = Drawing},
    {.name = L"INSUNITS", .type = Int, .place = Drawing, .minimum = 0, .maximum = 20},
    {.name = L"LIMMAX", .type = Point2, .place = Drawing, .number = 420},
    {.name = L"LIMMIN", .type = Point2, .place = Drawing},
    {.name = L"LTSCALE", .type = Real, .place = Drawing, .number = 1, .minimum = 1e-99, .maximum = 1e99},
    {.name = L"LUNITS", .type = Int, .place = Drawing, .number = 2, .minimum = 1, .maximum = 5},
    {.name = L"LUPREC", .type = Int, .place = Drawing, .number = 4, .minimum = 0, .maximum = 8},
    {.name = L"LWDISPLAY", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"MEASUREMENT", .type = Int, .place = Drawing, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"MIRRTEXT", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"ORTHOMODE", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"PDMODE", .type = Int, .place = Drawing, .minimum = 0, .maximum = 100},
    {.name = L"PDSIZE", .type = Real, .place = Drawing},
    {.name = L"PLINEWID", .type = Real, .place = Drawing, .minimum = 0, .maximum = 1e99},
    {.name = L"PSLTSCALE", .type = Int, .place = Drawing, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"QTEXTMODE", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"REGENMODE", .type = Int, .place = Drawing, .number = 1, .minimum = 0, .maximum = 1},
    {.name = L"TEXTSIZE", .type = Real, .place = Drawing, .number = 2.5, .minimum = 1e-99, .maximum = 1e99},
    {.name = L"TEXTSTYLE", .type = Text, .place = Drawing, .text = L"Standard"},
    {.name = L"THICKNESS", .type = Real, .place = Drawing},
    {.name = L"TILEMODE", .type = Int, .place = Drawing, .access = Fixed, .number = 1},
    {.name = L"UCSNAME", .type = Text, .place = Drawing, .access = Fixed},
    {.name = L"UCSORG", .type = Point, .place = Drawing, .access = Fixed},
    {.name = L"UCSXDIR", .type = Point, .place = Drawing, .access = Fixed, .compute = ucsX},
    {.name = L"UCSYDIR", .type = Point, .place = Drawing, .access = Fixed, .compute = ucsY},
    {.name = L"UNITMODE", .type = Int, .place = Drawing, .minimum = 0, .maximum = 1},
    {.name = L"USERI1", .type = Int, .place = Drawing, .minimum = -32768, .maximum = 32767},
    {.name = L"USERI2", .type = Int, .place = Drawing, .minimum = -32768, .maximum = 32767},
    {.name = L"USERI3", .type = Int, .place = Drawing, .minimum = -32768, .maximum = 32767},
    {.name = L"USERI4", .type = Int, .place = Drawing, .minimum = -32768, .maximum = 32767},
    {.name = L"USERI5", .type = Int, .place = Drawing, .minimum = -32768, .maximum = 32767},
    {.name = L"USERR1", .type = Real, .place = Drawing},
    {.name = L"USERR2", .type = Real, .place = Drawing},
    {.name = L"USERR3", .type = Real, .place = Drawing},
    {.name = L"USERR4", .type = Real, .place = Drawing},
    {.name = L"USERR5", .type = Real, .place = Drawing},
};

}  // namespace

std::span<const VariableRow> variableTable() {
    return kRows;
}

}  // namespace drafthost::editor
