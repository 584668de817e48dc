// Value lists: allocation, release and building of result buffers.

#include "host/api/resbuf.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "host/database/dxf_group.h"
#include "host/database/open_counters.h"
#include "host/database/resbuf_text.h"

namespace drafthost {

OpenCounters& openCounters() {
    static OpenCounters counters;
    return counters;
}

void (*valueListReleased)(const resbuf* list) = nullptr;

ACHAR* copyText(std::wstring_view text) {
    auto* const copy = static_cast<ACHAR*>(std::malloc((text.size() + 1) * sizeof(ACHAR)));
    if (!copy)
        return nullptr;
    std::copy(text.begin(), text.end(), copy);
    copy[text.size()] = 0;
    return copy;
}

bool setText(resbuf& node, std::wstring_view text) {
    ACHAR* const copy = copyText(text);
    if (!copy)
        return false;
    std::free(node.resval.rstring);
    node.resval.rstring = copy;
    return true;
}

bool setBinary(resbuf& node, const std::uint8_t* bytes, std::size_t count) {
    auto* const copy = static_cast<char*>(std::malloc(count ? count : 1));
    if (!copy)
        return false;
    if (count)
        std::memcpy(copy, bytes, count);
    std::free(node.resval.rbinary.buf);
    node.resval.rbinary = {static_cast<short>(count), copy};
    return true;
}

namespace {

ResultKind kindOfGroup(int code) {
    switch (dxfKind(code)) {
        case DxfKind::Text: return ResultKind::String;
        case DxfKind::Point: return ResultKind::Point;
        case DxfKind::Real: return ResultKind::Real;
        case DxfKind::Int16:
        case DxfKind::Bool: return ResultKind::Short;
        case DxfKind::Int32: return ResultKind::Long;
        case DxfKind::Int64: return ResultKind::Int64;
        case DxfKind::Handle: return ResultKind::Handle;
        case DxfKind::Reference: return ResultKind::Name;
        case DxfKind::Binary: return ResultKind::Binary;
    }
    return ResultKind::None;
}

ResultKind kindOfLispType(int type) {
    switch (type) {
        case RTREAL:
        case RTANG:
        case RTORINT: return ResultKind::Real;
        case RTPOINT:
        case RT3DPOINT: return ResultKind::Point;
        case RTSHORT: return ResultKind::Short;
        case RTLONG: return ResultKind::Long;
        case RTSTR: return ResultKind::String;
        case RTENAME:
        case RTPICKS: return ResultKind::Name;
        default: return ResultKind::None;
    }
}

bool isGroupCode(int type) {
    return type >= -5 && type <= 1071;
}

bool isKnownType(int type) {
    switch (type) {
        case RTVOID:
        case RTLB:
        case RTLE:
        case RTDOTE:
        case RTNIL:
        case RTT: return true;
        default: return isGroupCode(type) || kindOfLispType(type) != ResultKind::None;
    }
}

bool ownsText(ResultKind kind) {
    return kind == ResultKind::String || kind == ResultKind::Handle;
}

// Without a text, also where one belongs to the type.
resbuf* newNode(int type) {
    auto* const node = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
    if (!node)
        return nullptr;
    node->restype = static_cast<short>(type);
    ++openCounters().valueNodes;
    return node;
}

// Reads the next value from the arguments of acutBuildList. Short values arrive as int.
bool takeArgument(resbuf& node, va_list& arguments) {
    switch (acutResultKind(node.restype)) {
        case ResultKind::Real: node.resval.rreal = va_arg(arguments, double); return true;
        case ResultKind::Point: {
            const ads_real* const point = va_arg(arguments, ads_real*);
            if (!point)
                return false;
            std::copy(point, point + 3, node.resval.rpoint);
            return true;
        }
        case ResultKind::Short:
            node.resval.rlong = static_cast<std::int16_t>(va_arg(arguments, int));
            return true;
        case ResultKind::Long: node.resval.rlong = va_arg(arguments, std::int32_t); return true;
        case ResultKind::Int64: node.resval.rlname[0] = va_arg(arguments, std::int64_t); return true;
        case ResultKind::String:
        case ResultKind::Handle: {
            const ACHAR* const text = va_arg(arguments, const ACHAR*);
            return setText(node, text ? text : L"");
        }
        case ResultKind::Name: {
            const std::int64_t* const name = va_arg(arguments, std::int64_t*);
            if (!name)
                return false;
            ads_name_set(name, node.resval.rlname);
            return true;
        }
        case ResultKind::Binary: {
            const ads_binary* const binary = va_arg(arguments, ads_binary*);
            return binary && setBinary(node, reinterpret_cast<const std::uint8_t*>(binary->buf),
                                       static_cast<std::size_t>(binary->clen));
        }
        case ResultKind::None: return true;
    }
    return false;
}

}  // namespace
}  // namespace drafthost

ResultKind acutResultKind(int type) {
    if (type == -3 || type == -5)
        return ResultKind::None;
    if (type == RTNONE_TYPE)
        return ResultKind::None;
    return drafthost::isGroupCode(type) ? drafthost::kindOfGroup(type) : drafthost::kindOfLispType(type);
}

resbuf* acutNewRb(int type) {
    resbuf* const node = drafthost::newNode(type);
    if (node && drafthost::ownsText(acutResultKind(type)) && !drafthost::setText(*node, L"")) {
        acutRelRb(node);
        return nullptr;
    }
    return node;
}

int acutRelRb(resbuf* list) {
    if (list && drafthost::valueListReleased)
        drafthost::valueListReleased(list);
    while (list) {
        resbuf* const next = list->rbnext;
        const ResultKind kind = acutResultKind(list->restype);
        if (drafthost::ownsText(kind))
            std::free(list->resval.rstring);
        if (kind == ResultKind::Binary)
            std::free(list->resval.rbinary.buf);
        std::free(list);
        --drafthost::openCounters().valueNodes;
        list = next;
    }
    return RTNORM;
}

resbuf* acutBuildList(int type, ...) {
    va_list arguments;
    va_start(arguments, type);
    resbuf* first = nullptr;
    resbuf** end = &first;
    bool good = true;
    while (good && type != RTNONE && type != 0) {
        if (type == RTDXF0)
            type = 0;
        resbuf* const node = drafthost::isKnownType(type) ? drafthost::newNode(type) : nullptr;
        good = node != nullptr;
        if (!good)
            break;
        *end = node;
        end = &node->rbnext;
        good = drafthost::takeArgument(*node, arguments);
        if (good)
            type = va_arg(arguments, int);
    }
    va_end(arguments);
    if (good)
        return first;
    acutRelRb(first);
    return nullptr;
}

int acutNewString(const ACHAR* text, ACHAR*& copy) {
    copy = drafthost::copyText(text ? text : L"");
    return copy ? RTNORM : RTERROR;
}

void acutDelString(ACHAR*& text) {
    std::free(text);
    text = nullptr;
}
