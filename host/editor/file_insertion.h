#pragma once

// Drawing files as block definitions, for INSERT.

#include <string>

#include "host/editor/command_context.h"

namespace drafthost::editor {

// The block that INSERT places. name: of a block of the drawing; or else of a drawing file on the search
// path, with or without extension, which becomes a block of the file's name. "NAME=FILE" makes the file the
// block of that name, "NAME=" the file that is called like it, whether the drawing has such a block or not.
// Ends the command, with a message, when there is neither or when the file cannot be inserted.
AcDbObjectId blockForInsertion(CommandContext& context, const std::wstring& name);

}  // namespace drafthost::editor
