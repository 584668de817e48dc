#pragma once

// What the host keeps for its user from one run to the next: texts, by section and entry. They lie in the
// registry under the user's own key, in the profile that is in use.

#include <optional>
#include <string>

namespace drafthost {

// Below HKEY_CURRENT_USER.
std::wstring profileKey();

// Nothing when the entry is missing or is no text.
std::optional<std::wstring> readProfile(const std::wstring& section, const std::wstring& entry);
// False when the registry refuses; what was kept before then stays.
bool writeProfile(const std::wstring& section, const std::wstring& entry, const std::wstring& text);
void removeFromProfile(const std::wstring& section, const std::wstring& entry);

}  // namespace drafthost
