#pragma once

namespace tessary::server {

// What each of the 65536 UTF-16 code units folds to; surrogates fold to themselves. Lives as long as the
// process.
const char16_t* foldingTable();

}  // namespace tessary::server
