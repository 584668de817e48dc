#pragma once

// Tables that lie in other files: another database is attached when it is first needed, a text file is read
// into memory, and again when it has changed.

#include "server/sqlite/order_table.h"

#include <filesystem>

namespace tessary::server {

class LinkedTables {
public:
    explicit LinkedTables(Connection& connection) : connection_(connection) {}

    // Throws what is wrong with the file, naming it. Not to be called inside a transaction.
    OrderTable resolve(const LinkDefinition& link);

private:
    struct AttachedFile {
        std::string schema;
        std::shared_ptr<Catalog> catalog;  // of all paths that lead to the file
    };
    struct TextFile {
        TableEntryPtr entry;
        std::string name;  // of the table in memory
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
    };

    std::filesystem::path fileOf(const LinkDefinition& link) const;
    AttachedFile& attached(const std::filesystem::path& file);
    OrderTable resolveTextFile(const LinkDefinition& link, const std::filesystem::path& file);
    void readTextFile(const LinkDefinition& link, const std::filesystem::path& file, TextFile& target);

    Connection& connection_;
    std::map<std::filesystem::path, AttachedFile> attached_;
    std::map<Text, TextFile, NameLess> textFiles_;
    std::int64_t counter_ = 0;
};

}  // namespace tessary::server
