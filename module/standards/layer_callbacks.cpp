#include "module/standards/layer_callbacks.h"

#include "host/api/editor.h"
#include "module/binding/value_list.h"

#include <cstdint>

namespace tessary::layer_callbacks {

namespace {

// Null for nil, and for a function that is not there or failed.
ValueList invoke(const ValueList& call) {
    resbuf* answer = nullptr;
    const int status = acedInvoke(call.get(), &answer);
    ValueList result(answer);
    if (status != RTNORM || !result || result->restype == RTNIL) {
        result.reset();
    }
    return result;
}

ValueList textCall(const wchar_t* function, const std::wstring& argument) {
    return ownValueList(acutBuildList(RTSTR, function, RTSTR, argument.c_str(), RTNONE));
}

// Some of the product's functions want the key as a 16-bit integer.
ValueList shortKeyCall(const wchar_t* function, int system, const std::wstring& databasePath) {
    const short key = static_cast<short>(system);
    return ownValueList(
        acutBuildList(RTSTR, function, RTSHORT, int{key}, RTSTR, databasePath.c_str(), RTNONE));
}

std::optional<std::wstring> textOfResult(const ValueList& result) {
    if (!result || result->restype != RTSTR || !result->resval.rstring) {
        return std::nullopt;
    }
    return std::wstring(result->resval.rstring);
}

}  // namespace

void setElectricalGlobals(const std::wstring& databasePath) {
    invoke(textCall(L"util-layerKeySetElecGlobals", databasePath));
}

bool isKeyShown(const std::wstring& key) {
    return invoke(textCall(L"util-showLayerKey", key)) != nullptr;
}

std::wstring sortText(const std::wstring& key) {
    return textOfResult(invoke(textCall(L"util-createLayerKeySortText", key))).value_or(L" ");
}

std::wstring displayName(const std::wstring& key) {
    return textOfResult(invoke(textCall(L"util-LayerkeyRename", key))).value_or(L" ");
}

void createPipeLabels(int newSystem, int sourceSystem) {
    invoke(ownValueList(acutBuildList(RTSTR, L"util-createPipeLabels", RTLONG, std::int32_t{newSystem},
                                      RTLONG, std::int32_t{sourceSystem}, RTNONE)));
}

void deletePipeLabels(int system) {
    invoke(
        ownValueList(acutBuildList(RTSTR, L"util-deletePipeLabels", RTLONG, std::int32_t{system}, RTNONE)));
}

std::optional<std::wstring> deletionRefusal(int system) {
    return textOfResult(invoke(ownValueList(
        acutBuildList(RTSTR, L"util-checkObjectsforLayersystem", RTLONG, std::int32_t{system}, RTNONE))));
}

void editSystem(int system, const std::wstring& databasePath) {
    invoke(ownValueList(acutBuildList(RTSTR, L"util-layersystemoptions", RTLONG, std::int32_t{system}, RTSTR,
                                      databasePath.c_str(), RTNONE)));
}

void exportSystem(int system, const std::wstring& databasePath) {
    invoke(shortKeyCall(L"util-exportLayerSystem-noName", system, databasePath));
}

bool importSystem(int system, const std::wstring& databasePath) {
    return invoke(shortKeyCall(L"util-importLayerSystem-noName", system, databasePath)) != nullptr;
}

std::optional<int> chooseColor(int color) {
    const ValueList result =
        invoke(ownValueList(acutBuildList(RTSTR, L"acad_colordlg", RTSHORT, color, RTNIL, RTNONE)));
    if (!result) {
        return std::nullopt;
    }
    switch (result->restype) {
        case RTSHORT: return result->resval.rint;
        case RTLONG: return result->resval.rlong;
        default: return std::nullopt;
    }
}

}  // namespace tessary::layer_callbacks
