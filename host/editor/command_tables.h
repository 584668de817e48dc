#pragma once

// The commands, by topic.

#include <span>

#include "host/editor/commands.h"

namespace drafthost::editor {

std::span<const CommandDefinition> drawCommands();
std::span<const CommandDefinition> changeCommands();
std::span<const CommandDefinition> layerCommands();
std::span<const CommandDefinition> settingCommands();
std::span<const CommandDefinition> undoCommands();

}  // namespace drafthost::editor
