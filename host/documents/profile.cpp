#include "host/documents/profile.h"

#include <windows.h>

namespace drafthost {

namespace {

std::wstring sectionKey(const std::wstring& section) {
    return profileKey() + L'\\' + section;
}

}  // namespace

std::wstring profileKey() {
    return L"Software\\Drafthost\\Profiles\\Default";
}

std::optional<std::wstring> readProfile(const std::wstring& section, const std::wstring& entry) {
    const std::wstring key = sectionKey(section);
    DWORD size = 0;
    if (RegGetValueW(HKEY_CURRENT_USER, key.c_str(), entry.c_str(), RRF_RT_REG_SZ, nullptr, nullptr, &size) !=
        ERROR_SUCCESS) {
        return std::nullopt;
    }
    std::wstring text(size / sizeof(wchar_t), L'\0');
    if (RegGetValueW(HKEY_CURRENT_USER, key.c_str(), entry.c_str(), RRF_RT_REG_SZ, nullptr, text.data(),
                     &size) != ERROR_SUCCESS) {
        return std::nullopt;  // changed meanwhile
    }
    text.resize(text.find(L'\0') == std::wstring::npos ? text.size() : text.find(L'\0'));
    return text;
}

bool writeProfile(const std::wstring& section, const std::wstring& entry, const std::wstring& text) {
    return RegSetKeyValueW(HKEY_CURRENT_USER, sectionKey(section).c_str(), entry.c_str(), REG_SZ,
                           text.c_str(),
                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

void removeFromProfile(const std::wstring& section, const std::wstring& entry) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, sectionKey(section).c_str(), entry.c_str());
}

}  // namespace drafthost
