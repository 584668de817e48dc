#pragma once

// The product's LISP functions that the Layers dialog calls, and the host's color dialog, by name. One that
// is not defined, fails or answers with another type than asked for counts as having answered nil.
//
// The types of the numbers are part of what those functions are called with: a system's key is a 32-bit
// integer for some and a 16-bit integer for others, whose keys beyond that are cut off.

#include <optional>
#include <string>

namespace tessary::layer_callbacks {

// Lets the LISP code look up the electrical settings that key names depend on.
void setElectricalGlobals(const std::wstring& databasePath);
bool isKeyShown(const std::wstring& key);
// A single blank without an answer.
std::wstring sortText(const std::wstring& key);
std::wstring displayName(const std::wstring& key);

void createPipeLabels(int newSystem, int sourceSystem);
void deletePipeLabels(int system);
// Why the system cannot be deleted; nothing when it can.
std::optional<std::wstring> deletionRefusal(int system);
// Opens the product's own dialogs on the system.
void editSystem(int system, const std::wstring& databasePath);
void exportSystem(int system, const std::wstring& databasePath);
// Whether the database was changed.
bool importSystem(int system, const std::wstring& databasePath);

// color: index 1 to 255, selected at first. Nothing when the drafter cancelled.
std::optional<int> chooseColor(int color);

}  // namespace tessary::layer_callbacks
