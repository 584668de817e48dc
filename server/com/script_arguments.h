#pragma once

// Arguments of a call by name. Scripting languages pass every variable as a variant by reference, also for an
// out parameter that is a number, a text or a truth value.

#include <windows.h>

#include <oaidl.h>

#include <memory>
#include <vector>

namespace tessary::server {

// The arguments with such variables replaced by values of the parameters' types.
class ScriptArguments {
public:
    ScriptArguments(ITypeInfo& info, DISPID member, const DISPPARAMS& given);
    ~ScriptArguments();
    ScriptArguments(const ScriptArguments&) = delete;
    ScriptArguments& operator=(const ScriptArguments&) = delete;

    DISPPARAMS* get() { return &arguments_; }
    // After the call: gives the variables their values.
    void storeResults();

private:
    struct Replacement {
        VARIANT* variable;
        VARIANT value;
    };

    void replace(const FUNCDESC& method);

    std::vector<VARIANT> values_;
    DISPPARAMS arguments_;
    // Arguments point into them.
    std::vector<std::unique_ptr<Replacement>> replacements_;
};

}  // namespace tessary::server
