#pragma once

// Values that a distributor of the product sets before building it.

namespace tessary::configuration {

// Where the installer of the components that the dialogs need is downloaded from.
inline constexpr const wchar_t* componentsInstallerAddress =
    L"https://downloads.quarnel.example/QNComponents.exe";
inline constexpr const wchar_t* supportTelephone = L"555-0142";

}  // namespace tessary::configuration
