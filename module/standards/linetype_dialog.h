#pragma once

// The Select Linetype dialog: the linetypes of the current drawing.

#include "host/api/dialog.h"
#include "module/grid/grid_control.h"

#include <string>

namespace tessary {

class CAcadLinetypeDialog final : public AcEdDialog {
public:
    // current: the linetype that is selected at first, in any case of letters.
    CAcadLinetypeDialog(HWND parent, const std::wstring& current);

    // After OK the chosen linetype, otherwise the one of the construction.
    const std::wstring& linetype() const { return linetype_; }

protected:
    bool onInitDialog() override;
    void onOK() override;
    void onResized() override;

private:
    void fill();

    CGridCtrl grid_;
    std::wstring linetype_;
};

}  // namespace tessary
