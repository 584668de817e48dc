// The part of the editor interface that reads and sets system variables.

#include "host/api/editor.h"
#include "host/documents/host.h"

using drafthost::theHost;
using drafthost::editor::SetOutcome;
using drafthost::editor::VariableValue;

namespace {

struct NodeWriter {
    resbuf& node;
    void operator()(int value) const {
        node.restype = value == static_cast<std::int16_t>(value) ? RTSHORT : RTLONG;
        node.resval.rlong = value;
    }
    void operator()(double value) const {
        node.restype = RTREAL;
        node.resval.rreal = value;
    }
    void operator()(const std::wstring& text) const {
        node.restype = RTSTR;
        node.resval.rstring = nullptr;
        acutNewString(text.c_str(), node.resval.rstring);
    }
    void operator()(const AcGePoint3d& p) const { point(RT3DPOINT, p.x, p.y, p.z); }
    void operator()(const AcGePoint2d& p) const { point(RTPOINT, p.x, p.y, 0); }
    void point(short type, double x, double y, double z) const {
        node.restype = type;
        const ads_real coordinates[] = {x, y, z};
        std::copy(coordinates, coordinates + 3, node.resval.rpoint);
    }
};

std::optional<VariableValue> valueOf(const resbuf& node) {
    const ads_real* const p = node.resval.rpoint;
    switch (node.restype) {
        case RTSHORT: return node.resval.rint;
        case RTLONG: return node.resval.rlong;
        case RTREAL:
        case RTANG:
        case RTORINT: return node.resval.rreal;
        case RTSTR: return std::wstring(node.resval.rstring ? node.resval.rstring : L"");
        case RTPOINT: return AcGePoint2d(p[0], p[1]);
        case RT3DPOINT: return AcGePoint3d(p[0], p[1], p[2]);
        default: return std::nullopt;
    }
}

}  // namespace

int acedGetVar(const ACHAR* name, resbuf* value) {
    const drafthost::Document* const document = theHost().documents().current();
    if (!document || !name || !value)
        return RTERROR;
    const auto found = drafthost::editor::getVariable(*document, name);
    if (!found)
        return RTERROR;
    std::visit(NodeWriter{*value}, *found);
    return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
    drafthost::Document* const document = theHost().documents().current();
    if (!document || !name || !value)
        return RTERROR;
    const auto given = valueOf(*value);
    return given && drafthost::editor::setVariable(*document, name, *given) == SetOutcome::Done ? RTNORM
                                                                                                : RTERROR;
}
