// The part of the editor interface that writes to the command line and asks the drafter.

#include <windows.h>

#include <cstdarg>
#include <cwchar>

#include "host/api/editor.h"
#include "host/documents/host.h"
#include "host/editor/commands.h"
#include "host/editor/entity_pick.h"
#include "host/editor/formatted_text.h"
#include "host/editor/value_conversion.h"

using drafthost::Document;
using drafthost::theHost;
using drafthost::editor::InputRequest;
using drafthost::editor::InputResult;

namespace {

// Room that callers give for keywords and texts, the final null included.
constexpr std::size_t kTextRoom = 133;

std::wstring promptOf(const ACHAR* prompt) {
    return prompt ? prompt : L"";
}

InputResult ask(InputRequest::Kind kind, const ads_point base, const ACHAR* prompt,
                bool allowBlanks = false) {
    Document* const document = theHost().documents().current();
    if (!document)
        return {.status = RTERROR};
    InputRequest request;
    request.kind = kind;
    request.prompt = promptOf(prompt);
    request.allowBlanks = allowBlanks;
    if (base)
        request.base = AcGePoint3d(base[0], base[1], base[2]);
    return document->prompts().ask(std::move(request));
}

int askPoint(InputRequest::Kind kind, const ads_point base, const ACHAR* prompt, ads_point result) {
    const InputResult answer = ask(kind, base, prompt);
    if (answer.status == RTNORM) {
        for (int i = 0; i < 3; ++i)
            result[i] = answer.point[i];
    }
    return answer.status;
}

int askNumber(InputRequest::Kind kind, const ads_point base, const ACHAR* prompt, ads_real* result) {
    const InputResult answer = ask(kind, base, prompt);
    if (answer.status == RTNORM)
        *result = answer.number;
    return answer.status;
}

int copyOut(const std::wstring& text, ACHAR* result) {
    const std::size_t length = std::min(text.size(), kTextRoom - 1);
    std::wmemcpy(result, text.data(), length);
    result[length] = 0;
    return RTNORM;
}

}  // namespace

int acutPrintf(const ACHAR* format, ...) {
    if (!format)
        return RTERROR;
    va_list arguments;
    va_start(arguments, format);
    theHost().commandLine().write(drafthost::editor::formatted(format, arguments));
    va_end(arguments);
    return RTNORM;
}

int acedPrompt(const ACHAR* text) {
    theHost().commandLine().write(promptOf(text));
    return RTNORM;
}

int acedAlert(const ACHAR* text) {
    theHost().commandLine().flush();
    MessageBoxW(nullptr, promptOf(text).c_str(), L"Message", MB_OK | MB_ICONWARNING);
    return RTNORM;
}

int acedTextScr() {
    return RTNORM;
}
int acedGraphScr() {
    return RTNORM;
}

int acedInitGet(int control, const ACHAR* keywords) {
    Document* const document = theHost().documents().current();
    if (!document)
        return RTERROR;
    document->prompts().initGet(control, promptOf(keywords));
    return RTNORM;
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
    return askPoint(InputRequest::Kind::Point, base, prompt, result);
}
int acedGetCorner(const ads_point base, const ACHAR* prompt, ads_point result) {
    return askPoint(InputRequest::Kind::Corner, base, prompt, result);
}
int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result) {
    return askNumber(InputRequest::Kind::Distance, base, prompt, result);
}
int acedGetAngle(const ads_point base, const ACHAR* prompt, ads_real* result) {
    return askNumber(InputRequest::Kind::Angle, base, prompt, result);
}
int acedGetOrient(const ads_point base, const ACHAR* prompt, ads_real* result) {
    return askNumber(InputRequest::Kind::Orientation, base, prompt, result);
}
int acedGetReal(const ACHAR* prompt, ads_real* result) {
    return askNumber(InputRequest::Kind::Real, nullptr, prompt, result);
}

int acedGetInt(const ACHAR* prompt, int* result) {
    const InputResult answer = ask(InputRequest::Kind::Integer, nullptr, prompt);
    if (answer.status == RTNORM)
        *result = answer.integer;
    return answer.status;
}

int acedGetString(int allowBlanks, const ACHAR* prompt, ACHAR* result) {
    const InputResult answer = ask(InputRequest::Kind::Text, nullptr, prompt, allowBlanks != 0);
    return answer.status == RTNORM ? copyOut(answer.text, result) : answer.status;
}

int acedGetKword(const ACHAR* prompt, ACHAR* result) {
    const InputResult answer = ask(InputRequest::Kind::Keyword, nullptr, prompt);
    // Text that acedInitGet lets through counts as a keyword here.
    const bool given = answer.status == RTNORM || answer.status == RTKWORD;
    return given ? copyOut(answer.text, result) : answer.status;
}

int acedGetInput(ACHAR* result) {
    Document* const document = theHost().documents().current();
    return document && result ? copyOut(document->prompts().lastInput(), result) : RTERROR;
}

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point picked) {
    Document* const document = theHost().documents().current();
    if (!document)
        return RTERROR;
    const drafthost::editor::EntityPick pick = drafthost::editor::askEntity(*document, promptOf(prompt));
    if (pick.status != RTNORM)
        return pick.status;
    for (int i = 0; i < 3; ++i)
        picked[i] = pick.point[i];
    return acdbGetAdsName(*reinterpret_cast<ads_name*>(entity), pick.entity) == Acad::eOk ? RTNORM : RTERROR;
}

bool acedUsrBrk() {
    return theHost().interrupted() || theHost().runFailed();
}

int acedCmd(const resbuf* commandAndAnswers) {
    Document* const document = theHost().documents().current();
    if (!document || document->commands().busy())
        return RTERROR;
    std::vector<drafthost::editor::CommandWord> words;
    for (const resbuf* node = commandAndAnswers; node; node = node->rbnext) {
        const auto value = drafthost::editor::fromNode(document->interpreter(), *node);
        auto answer = drafthost::editor::answerFromValue(value);
        if (!answer)
            return RTERROR;
        const bool text = answer->kind == drafthost::editor::Answer::Kind::Typed;
        const bool pause = text && answer->text == L"\\";
        if (text && answer->text.empty())
            answer->kind = drafthost::editor::Answer::Kind::Enter;
        words.push_back({pause, std::move(*answer)});
    }
    if (words.empty()) {
        document->commands().cancel();
        return RTNORM;
    }
    return document->commands().feed(std::move(words)) ? RTNORM : RTERROR;
}
