#include "host/editor/external_calls.h"

#include <comdef.h>

#include "host/documents/host.h"
#include "host/editor/structured_exceptions.h"
#include "host/lisp/utf8.h"

namespace drafthost::editor {

using lisp::Value;

// Pushes a call, and releases what it left behind.
class ExternalCalls::CallScope {
public:
    CallScope(ExternalCalls& calls, Call& call) : calls_(calls), call_(call) { calls_.running_ = &call; }
    ~CallScope() {
        acutRelRb(call_.argumentList);
        calls_.running_ = call_.outer;
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

private:
    ExternalCalls& calls_;
    Call& call_;
};

void ExternalCalls::listReleased(const resbuf* list) {
    for (Call* call = running_; call; call = call->outer) {
        if (call->argumentList == list)
            call->argumentList = nullptr;
    }
}

int ExternalCalls::run(const ModuleFunction& function) const {
    if (!function.function) {
        return function.module && function.module->entryPoint(AcRx::kInvkSubrMsg, nullptr) != AcRx::kRetError
                   ? RSRSLT
                   : RSERR;
    }
    int result = RSERR;
    if (const std::uint32_t fault = callCatchingFaults(function.function, result)) {
        throw lisp::LispError(L"external function " + function.name + L" failed: " + faultName(fault));
    }
    return result;
}

Value ExternalCalls::call(Document& document, const ModuleFunction& function, lisp::Interpreter& interpreter,
                          lisp::Arguments arguments) {
    Call call{document, interpreter, arguments, function.number, lisp::Root(interpreter), nullptr, running_};
    const CallScope scope(*this, call);
    const Modules::RunScope running(host_.modules(), function.module);
    int result = RSERR;
    try {
        result = run(function);
    } catch (const lisp::LispError&) {
        throw;
    } catch (const std::exception& error) {
        throw lisp::LispError(L"external function " + function.name + L" failed: " +
                              lisp::fromUtf8(error.what()));
    } catch (const _com_error& error) {
        throw lisp::LispError(L"external function " + function.name + L" failed: " + error.ErrorMessage());
    } catch (...) {
        throw lisp::LispError(L"external function " + function.name + L" failed: unknown exception");
    }
    if (result != RSRSLT)
        throw lisp::LispError(L"ADS request error");
    return call.result.get();
}

}  // namespace drafthost::editor
