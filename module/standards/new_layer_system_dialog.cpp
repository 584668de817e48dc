#include "module/standards/new_layer_system_dialog.h"

#include "framework/instance.h"
#include "module/binding/message_box.h"
#include "module/binding/text_comparison.h"
#include "module/binding/variant_conversion.h"
#include "module/resource_ids.h"
#include "module/resources/module_icon.h"
#include "module/standards/layer_system_columns.h"

namespace tessary {

namespace {

constexpr int idName = 2006;
constexpr int idSources = 1013;

// What the database keeps of a text.
constexpr WPARAM longestName = 255;

}  // namespace

CNewLayerSystem::CNewLayerSystem(HWND parent, const CGridCtrl& systems)
    : Dialog(IDD_NEW_LAYER_SYSTEM, parent, framework::ownInstance()), systems_(systems) {}

bool CNewLayerSystem::onInitDialog() {
    setIcon(moduleIcon());
    const HWND sources = control(idSources);
    for (int row = firstRealSystemRow; row < systems_.rowCount(); ++row) {
        const std::wstring& name = systems_.text(row, LayerSystemColumn::name);
        SendMessageW(sources, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    }
    SendMessageW(sources, LB_SETCURSEL, 0, 0);
    SendMessageW(control(idName), EM_LIMITTEXT, longestName, 0);
    focusControl(idName);
    return false;
}

void CNewLayerSystem::onOK() {
    const HWND sources = control(idSources);
    sourceIndex_ = static_cast<int>(SendMessageW(sources, LB_GETCURSEL, 0, 0));
    name_ = trimmed(controlText(idName));
    if (name_.empty() || equalIgnoringCase(name_, L"GENERAL")) {
        refuse(L"Invalid layer system name.");
        return;
    }
    const LRESULT found = SendMessageW(sources, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                       reinterpret_cast<LPARAM>(name_.c_str()));
    if (found != LB_ERR) {
        refuse(L"A layer system with that name already exists.");
        return;
    }
    end(IDOK);
}

void CNewLayerSystem::refuse(const wchar_t* message) {
    showMessageBox(message, L"Quarnel", MB_OK | MB_ICONEXCLAMATION);
    focusControl(idName);
}

}  // namespace tessary
