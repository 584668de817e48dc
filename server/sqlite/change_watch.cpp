#include "server/sqlite/change_watch.h"

namespace tessary::server {

std::optional<std::uint32_t> changeCounter(const Connection& connection, const std::string& schema) {
    constexpr sqlite3_int64 counterOffset = 24;  // in the file's header
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(connection.handle(), schema.c_str(), SQLITE_FCNTL_FILE_POINTER, &file) !=
            SQLITE_OK ||
        file == nullptr || file->pMethods == nullptr)
        return std::nullopt;
    std::uint32_t counter = 0;
    if (file->pMethods->xRead(file, &counter, sizeof counter, counterOffset) != SQLITE_OK)
        return std::nullopt;
    return counter;
}

}  // namespace tessary::server
