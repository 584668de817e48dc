#pragma once

#include "server/values/value.h"

namespace tessary::server {

// See Engine::create and Engine::compact.
void createDatabase(TextView path);
void compactDatabase(TextView source, TextView target);

// Makes a new database at `path` (which is new or empty) of what can be read of the damaged source. What was
// lost, one sentence a table, for the error's text; empty when all records could be read.
Text salvage(TextView source, TextView path);

// Makes the file an empty database of ours.
void initialize(class Connection& connection);

}  // namespace tessary::server
