#include "module/ducts/triple_run.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cwctype>
#include <string_view>

namespace tessary {

namespace {

constexpr std::array<std::wstring_view, 4> roundShapes = {L"RD", L"OO", L"DX", L"OX"};
constexpr std::array<std::wstring_view, 4> roundShapesInLowerCase = {L"rd", L"oo", L"dx", L"ox"};

bool readCoordinates(ArgCursor& cursor, AcGePoint3d& point) {
    return readNumber(cursor, point.x) && readNumber(cursor, point.y) && readNumber(cursor, point.z);
}

bool readSection(ArgCursor& cursor, TripleRun& run) {
    if (!readNumber(cursor, run.width) || !readNumber(cursor, run.height) || !readString(cursor, run.shape) ||
        !readNumber(cursor, run.thickness1) || !readNumber(cursor, run.thickness2)) {
        return false;
    }
    run.width += 2 * run.thickness1;
    run.height += 2 * run.thickness1;
    run.width += 2 * run.thickness2;
    run.height += 2 * run.thickness2;
    return true;
}

bool readJustification(ArgCursor& cursor, TripleRun& run) {
    return readString(cursor, run.horizontal) && readString(cursor, run.vertical) &&
           readInteger(cursor, run.raised) && readNumber(cursor, run.raise);
}

bool isOneOf(std::wstring_view shape, const std::array<std::wstring_view, 4>& shapes) {
    return std::ranges::find(shapes, shape) != shapes.end();
}

}  // namespace

bool readTripleRun(ArgCursor& cursor, TripleRun& run) {
    readListBegin(cursor);
    if (!readCoordinates(cursor, run.start) || !readCoordinates(cursor, run.end) ||
        !readInteger(cursor, run.conversionCode) || !readNumber(cursor, run.startSetback) ||
        !readNumber(cursor, run.endSetback) || !readSection(cursor, run) || !readJustification(cursor, run)) {
        return false;
    }
    readListEnd(cursor);
    return true;
}

SectionSize outerSize(const TripleRun& run) {
    return {std::abs(run.width), std::abs(run.height)};
}

bool isRectangular(const TripleRun& run) {
    std::wstring shape = run.shape;
    std::ranges::transform(shape, shape.begin(),
                           [](wchar_t letter) { return static_cast<wchar_t>(std::towupper(letter)); });
    return !isOneOf(shape, roundShapes);
}

bool isPlainRectangular(const TripleRun& run) {
    return !isOneOf(run.shape, roundShapes) && !isOneOf(run.shape, roundShapesInLowerCase) &&
           run.flexCode != L"FX";
}

}  // namespace tessary
