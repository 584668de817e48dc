#include "server/com/script_arguments.h"

#include <cstring>

namespace tessary::server {

namespace {

// A method's description; null when there is none of that number.
FUNCDESC* describe(ITypeInfo& info, DISPID member) {
    FUNCDESC* method = nullptr;
    for (UINT i = 0; SUCCEEDED(info.GetFuncDesc(i, &method)); ++i) {
        if (method->memid == member) {
            return method;
        }
        info.ReleaseFuncDesc(method);
    }
    return nullptr;
}

// What the parameter points to; VT_EMPTY for one that takes a variant, or no pointer.
VARTYPE pointedType(const ELEMDESC& parameter) {
    if (parameter.tdesc.vt != VT_PTR) {
        return VT_EMPTY;
    }
    const VARTYPE type = parameter.tdesc.lptdesc->vt;
    return type == VT_I2 || type == VT_I4 || type == VT_BOOL || type == VT_BSTR ? type : VARTYPE(VT_EMPTY);
}

}  // namespace

ScriptArguments::ScriptArguments(ITypeInfo& info, DISPID member, const DISPPARAMS& given)
    : values_(given.rgvarg, given.rgvarg + given.cArgs), arguments_(given) {
    arguments_.rgvarg = values_.data();
    FUNCDESC* method = given.cNamedArgs == 0 ? describe(info, member) : nullptr;
    if (method) {
        replace(*method);
        info.ReleaseFuncDesc(method);
    }
}

// Arguments stand in reverse order.
void ScriptArguments::replace(const FUNCDESC& method) {
    for (std::size_t i = 0; i < values_.size() && i < static_cast<std::size_t>(method.cParams); ++i) {
        VARIANT& argument = values_[values_.size() - 1 - i];
        const VARTYPE type = pointedType(method.lprgelemdescParam[i]);
        if (type == VT_EMPTY || argument.vt != (VT_BYREF | VT_VARIANT)) {
            continue;
        }
        Replacement& replacement = *replacements_.emplace_back(std::make_unique<Replacement>());
        replacement.variable = argument.pvarVal;
        replacement.value.vt = type;
        argument.vt = static_cast<VARTYPE>(VT_BYREF | type);
        argument.byref = &replacement.value.byref;
    }
}

ScriptArguments::~ScriptArguments() {
    for (const std::unique_ptr<Replacement>& replacement : replacements_) {
        VariantClear(&replacement->value);
    }
}

void ScriptArguments::storeResults() {
    for (const std::unique_ptr<Replacement>& replacement : replacements_) {
        VariantClear(replacement->variable);
        // Script engines do not always align their variables.
        std::memcpy(static_cast<void*>(replacement->variable), &replacement->value, sizeof(VARIANT));
        VariantInit(&replacement->value);
    }
}

}  // namespace tessary::server
