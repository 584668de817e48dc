#pragma once

// Tells cheaply whether a database file has changed since a moment.

#include "server/sqlite/sqlite_handle.h"

namespace tessary::server {

// The file's change counter, which every committed change increases before it is done; nothing when it cannot
// be read.
//
// It is read from the file without a lock. That is enough to go on using records that were read under one: a
// change that somebody has been told is done has its new counter in the file already (the commit writes it
// before the journal is deleted), so equal counters mean that no change had ended before this look. A change
// under way may show its counter early, and a torn number is never the old one by accident of being half
// written, since it is compared for equality: both only cause a look into the database itself. File systems
// that serve other computers' writes late are why the caller also bounds the age of what it uses.
std::optional<std::uint32_t> changeCounter(const Connection& connection, const std::string& schema);

}  // namespace tessary::server
