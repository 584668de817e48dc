#pragma once

// The New Layer System dialog: the name of a new system, and which one its keys are copied from.

#include "framework/dialog.h"
#include "module/grid/grid_control.h"

#include <string>

namespace tessary {

class CNewLayerSystem final : public framework::Dialog {
public:
    // systems: the systems grid of the Layers dialog, which outlives this one. Its rows from 2 on, those of
    // the real systems, are offered.
    CNewLayerSystem(HWND parent, const CGridCtrl& systems);

    // After OK.
    const std::wstring& name() const { return name_; }
    // Of the entry chosen; -1 when there is none.
    int sourceIndex() const { return sourceIndex_; }

protected:
    bool onInitDialog() override;
    void onOK() override;

private:
    void refuse(const wchar_t* message);

    const CGridCtrl& systems_;
    std::wstring name_;
    int sourceIndex_ = -1;
};

}  // namespace tessary
