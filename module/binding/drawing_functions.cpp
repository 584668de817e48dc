#include "module/binding/function_table.h"

#include "module/binding/thunk.h"
#include "module/drawing/curve_functions.h"
#include "module/drawing/multiline_text_functions.h"
#include "module/drawing/numeric_functions.h"
#include "module/ducts/arc_intersections.h"
#include "module/ducts/duct_functions.h"
#include "module/leader/leader_functions.h"
#include "module/standards/layers_dialog.h"

#include <iterator>

namespace tessary {

namespace {

constexpr FunctionEntry functions[] = {
    {L"qn_qn-setGroupSelectable", unavailableThunk},
    {L"qn_qn-GetGroup", unavailableThunk},
    {L"AcDbCurve::getLength", drawingThunk<curveLength>},
    {L"AcDbCurve::getPointAtDist", drawingThunk<curvePointAtDistance>},
    {L"AcDbCurve::getClosestPointTo", drawingThunk<curveClosestPoint>},
    {L"AcDbCurve::getDistAtPoint", drawingThunk<curveDistanceAtPoint>},
    {L"AcDbBlockReference::Jig", unavailableThunk},
    {L"AcDbMText::actualWidth", drawingThunk<multilineTextWidth>},
    {L"AcDbMText::actualHeight", drawingThunk<multilineTextHeight>},
    {L"AcDbMText::setNormal", drawingThunk<setMultilineTextNormal>},
    {L"AcDbMText::setDirection", drawingThunk<setMultilineTextDirection>},
    {L"AcDbMText::setMask", drawingThunk<setMultilineTextMask>},
    {L"AcDbMText::direction", drawingThunk<multilineTextDirection>},
    {L"AcDbMText::insert", drawingThunk<insertMultilineText>},
    {L"AcDbMText::ascent", drawingThunk<multilineTextAscent>},
    {L"AcDbMText::descent", drawingThunk<multilineTextDescent>},
    {L"RectangleJig", unavailableThunk},
    {L"qn_qn-lineJig", unavailableThunk},
    {L"qn_qn-textJig", unavailableThunk},
    {L"qn_qn-rotateJig", unavailableThunk},
    {L"qn_qn-multiRotateJig", unavailableThunk},
    {L"qn_qn-multiMoveJig", unavailableThunk},
    {L"qn_qn-entsel", unavailableThunk},
    {L"AcDbLeader::create", unavailableThunk},
    {L"qn_qn-showHelp", unavailableThunk},
    {L"qn_qn-SHGetFolderPath", unavailableThunk},
    {L"qn_qn-SHOpenFolderAndSelect", unavailableThunk},
    {L"qn_qn-shellExecute", unavailableThunk},
    {L"ed_editMultilineText", unavailableThunk},
    {L"qn_qn-customizeLabelGroup", unavailableThunk},
    {L"qn_qn-customizeLayers", drawingThunk<customizeLayers>},
    {L"qn_qn-customizeTextStyles", unavailableThunk},
    {L"asin", drawingThunk<arcSine>},
    {L"acos", drawingThunk<arcCosine>},
    {L"qn_qn-setColor", unavailableThunk},
    {L"qn_qn-setPlotStyle", unavailableThunk},
    {L"qn_qn-freezeInViewport", unavailableThunk},
    {L"ssgetPK", unavailableThunk},
    {L"ssgetCP", unavailableThunk},
    {L"ssgetC", unavailableThunk},
    {L"ssgetX-block", unavailableThunk},
    {L"ssgetX-circle", unavailableThunk},
    {L"ssgetX-polyline", unavailableThunk},
    {L"ssgetX-all", unavailableThunk},
    {L"qn_qn-leader-insert", drawingThunk<insertLeader>},
    {L"qn_qn-leader-setPoints", drawingThunk<setLeaderPoints>},
    {L"qn_qn-leader-setBlock", drawingThunk<setLeaderBlock>},
    {L"qn_qn-leader-setOffset", drawingThunk<setLeaderOffset>},
    {L"qn_qn-leader-explode", drawingThunk<explodeLeader>},
    {L"qn_qn-rand", drawingThunk<randomInteger>},
    {L"qn_atof", drawingThunk<textToReal>},
    {L"AcDbMtext::lastLineWidth", drawingThunk<lastLineWidth>},
    {L"GetSystemMetrics::SM_CXSCREEN", drawingThunk<screenWidth>},
    {L"GetSystemMetrics::SM_CYSCREEN", drawingThunk<screenHeight>},
    {L"qn_qn-executeToDo", unavailableThunk},
    {L"qn_qn-submitBug", unavailableThunk},
    {L"EditUserOptions", unavailableThunk},
    {L"qn_photo-licenseDialog", unavailableThunk},
    {L"qn_qn-safeContinue", unavailableThunk},
    {L"qn_qn-createLayer", unavailableThunk},
    {L"GetComputerName", unavailableThunk},
    {L"XFolderDialog", unavailableThunk},
    {L"PathIsNetworkPath", unavailableThunk},
    {L"CFileDialog", unavailableThunk},
    {L"qn_qn-getPoint", unavailableThunk},
    {L"qn_qn-getPoint-withKWords", unavailableThunk},
    {L"qn_qn-getCorner", unavailableThunk},
    {L"qn_qn-intersectArcArc", drawingThunk<intersectArcArc>},
    {L"qn_qn-intersectArcLine", drawingThunk<intersectArcLine>},
    {L"qn_qn-intersectLineArc", drawingThunk<intersectLineArc>},
    {L"qn_qn-LayerSystemOptionsElec", unavailableThunk},
    {L"qn_qn-LayerSystemOptionsPlumb", unavailableThunk},
    {L"qn_qn-LayerSystemOptionsHVAC", unavailableThunk},
    {L"DownloadFile", unavailableThunk},
    {L"ExtractZip", unavailableThunk},
    {L"CreateZip", unavailableThunk},
    {L"GetTempPath", unavailableThunk},
    {L"IsFileReadOnly", unavailableThunk},
    {L"CreateCompressedGuidString", unavailableThunk},
    {L"AcDbAnnotativeObjectPE::setAnnotative", unavailableThunk},
    {L"SetAnnoBlock", unavailableThunk},
    {L"qn_qn-drawHanger", drawingThunk<drawHanger>},
    {L"qn_qn-drawTripleCenter", drawingThunk<drawTripleCenter>},
    {L"qn_qn-getTripleCoord", drawingThunk<getTripleCoord>},
    {L"qn_qn-drawTripleTransition", drawingThunk<drawTripleTransition>},
    {L"qn_qn-drawTripleElbow", drawingThunk<drawTripleElbow>},
    {L"qn_qn-drawTripleWye", drawingThunk<drawTripleWye>},
    {L"qn_qn-drawTripleTakeoff", drawingThunk<drawTripleTakeoff>},
    {L"qn_qn-drawTripleSkin", drawingThunk<drawTripleSkin>},
    {L"qn_qn-tripleUnion", drawingThunk<tripleUnion>},
    {L"qn_qn-explodeSolid", drawingThunk<explodeSolid>},
    {L"acedSetStatusBarProgressMeterPos", unavailableThunk},
    {L"acedSetStatusBarProgressMeter", unavailableThunk},
    {L"acedRestoreStatusBar", unavailableThunk},
    {L"RegEnumKey", unavailableThunk},
    {L"AcDbFace::makeEdgeInvisibleAt", unavailableThunk},
    {L"AcDbEntity::getGeomExtents", unavailableThunk},
    {L"AcDbEntity::setColor", unavailableThunk},
    {L"AcDb2dPolyline::setCurveType", unavailableThunk},
    {L"qn::pow", drawingThunk<power>},
    {L"qn_qn-setToDoDrawing", unavailableThunk},
    {L"qn_qn-getToDoDrawing", unavailableThunk},
    {L"signString", unavailableThunk},
    {L"verifyString", unavailableThunk},
    {L"qn_qn-createJigTimer", unavailableThunk},
    {L"qn_qn-killJigTimer", unavailableThunk},
    {L"qn_qn-enableAutoCADWindow", unavailableThunk},
    {L"qn_qn-disableAutoCADWindow", unavailableThunk},
    {L"qn_qn-sendToBack", unavailableThunk},
    {L"qn_qn-getAcadWindowText", unavailableThunk},
    {L"qn_qn-setAcadWindowText", unavailableThunk},
};

static_assert(std::size(functions) == 111);

}  // namespace

std::span<const FunctionEntry> drawingFunctions() {
    return functions;
}

}  // namespace tessary
