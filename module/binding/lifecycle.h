#pragma once

// What the module does when it is loaded and unloaded and when drawings are opened and closed. Exceptions
// pass to the entry point, which reports them. All calls come on the host's main thread.

namespace tessary {

// packet: the host's, of its load message.
void loadModule(void* packet);
void unloadModule();
// The document opened is the current one.
void openDocument();
// The document about to close is the current one.
void closeDocument();

}  // namespace tessary
