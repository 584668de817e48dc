#pragma once

#include <filesystem>
#include <string_view>

#include "host/api/status.h"

namespace drafthost::exchange {

// Writes the bytes to a temporary file beside the target, brings them to the disk and renames the file over
// the target: the target has either its old contents or all of the new ones. The temporary file is removed on
// failure. eFileNotFound: no such folder; eFileAccessErr: folder or target may not be written; eFilerError:
// the bytes could not all be written (a full disk).
Acad::ErrorStatus replaceFile(const std::filesystem::path& target, std::string_view bytes);

}  // namespace drafthost::exchange
