#pragma once

// Values that a distributor of the product sets before building it.

namespace tessary::configuration {

// Where the installer of the components that the dialogs need is downloaded from.
inline constexpr const wchar_t* componentsInstallerAddress =
    L"https://downloads.quarnel.example/QNComponents.exe";
inline constexpr const wchar_t* supportTelephone = L"555-0142";
// Stand in drawings beside the classes that the add-in brings: drafters who lack it read them.
inline constexpr const wchar_t* companyName = L"Quarnel Software";
inline constexpr const wchar_t* companyAddress = L"https://www.quarnel.example";

}  // namespace tessary::configuration
