#pragma once

// The module's reactor on the host's editor. It will close the database connection of a drawing that is saved
// under another name. Does nothing as long as no database can be opened.

namespace tessary {

void attachEditorReactor();
void detachEditorReactor();

}  // namespace tessary
