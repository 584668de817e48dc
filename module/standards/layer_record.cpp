#include "module/standards/layer_record.h"

#include <utility>

namespace tessary {

namespace {

// In the order of the list below.
enum Field : std::size_t {
    key,
    name,
    hasRgbColor,
    color,
    red,
    green,
    blue,
    linetypeName,
    plot,
    lineweight,
    plotstyle
};

constexpr StandardsField fields[] = {
    {L"ixLayer", FieldType::number},
    {L"sName", FieldType::text},
    {L"bRGBColor", FieldType::yesNo},
    {L"iColor", FieldType::number, true},
    {L"iRed", FieldType::number, true},
    {L"iGreen", FieldType::number, true},
    {L"iBlue", FieldType::number, true},
    {L"sLinetype", FieldType::text},
    {L"bPlot", FieldType::yesNo},
    {L"sLineweight", FieldType::text, true},
    {L"sPlotstyle", FieldType::text, true},
    {L"ixMasterDatabase", FieldType::number, true},
    {L"iMasterDatabaseIndex", FieldType::number, true},
};

constexpr StandardsTable table = {L"tblLayer", L"ixLayer", fields};

constexpr const wchar_t* nameIndex = L"sName";

}  // namespace

CTblLayer::CTblLayer(bool skipMasterLink, ConnectionPointer connection)
    : StandardsRecord(table, skipMasterLink, std::move(connection)) {}

bool CTblLayer::seekByName(const std::wstring& wanted) {
    return seek(nameIndex, variantFromString(wanted));
}

int CTblLayer::ixLayer() const {
    return value<int>(key);
}

const std::wstring& CTblLayer::sName() const {
    return value<std::wstring>(name);
}

std::optional<int> CTblLayer::iColor() const {
    return valueOrNull<int>(color);
}

const std::wstring& CTblLayer::sLinetype() const {
    return value<std::wstring>(linetypeName);
}

bool CTblLayer::bPlot() const {
    return value<bool>(plot);
}

std::optional<std::wstring> CTblLayer::sLineweight() const {
    return valueOrNull<std::wstring>(lineweight);
}

std::optional<std::wstring> CTblLayer::sPlotstyle() const {
    return valueOrNull<std::wstring>(plotstyle);
}

void CTblLayer::setName(const std::wstring& text) {
    set(name, text);
}

void CTblLayer::setColor(int index) {
    set(color, index);
}

void CTblLayer::setLinetype(const std::wstring& text) {
    set(linetypeName, text);
}

void CTblLayer::setPlot(bool plots) {
    set(plot, plots);
}

void CTblLayer::setLineweight(const std::optional<std::wstring>& digits) {
    setOrNull(lineweight, digits);
}

void CTblLayer::setPlotstyle(const std::optional<std::wstring>& text) {
    setOrNull(plotstyle, text);
}

}  // namespace tessary
