"""Ctrl-C at a terminal: it ends what is running or waiting, also a dialog, and the session goes on."""

import os
import pty
import select
import sys
import time

PATIENCE = 30  # seconds

# As ./tessary repl runs the host.
SESSION = r"""
cd "$TESSARY_ROOT" && . scripts/common.sh && . scripts/wine-session.sh
in_pipes scripts/wine.sh "$TESSARY_BIN/drafthost.exe" repl --module "$TESSARY_BIN/Tessary2010x64.arx"
echo "status $?"
"""


class Terminal:
    def __init__(self):
        process, self.end = pty.fork()
        if process == 0:
            os.execvp("bash", ["bash", "-c", SESSION])
        self.shown = ""

    def type(self, text):
        os.write(self.end, text.encode())

    def expect(self, text):
        """Waits until the terminal shows the text, and forgets what is up to there."""
        limit = time.monotonic() + PATIENCE
        while text not in self.shown:
            readable, _, _ = select.select([self.end], [], [], max(0.0, limit - time.monotonic()))
            try:
                more = os.read(self.end, 4096) if readable else b""
            except OSError:  # the session has ended
                more = b""
            if not more:
                sys.exit(f"expected {text!r}, the terminal shows:\n{self.shown}")
            self.shown += more.decode(errors="replace").replace("\r", "")
        self.shown = self.shown[self.shown.index(text) + len(text):]


terminal = Terminal()
terminal.expect("Command: ")

terminal.type("\x03")
terminal.expect("Command: ")

terminal.type('(progn (getstring (strcat "Go" "? ")) (while T))\n')
terminal.expect("Go? ")
terminal.type("\n\x03")
terminal.expect("; error: Function cancelled\nCommand: ")

terminal.type('(getpoint (strcat "Whe" "re? "))\n')
terminal.expect("Where? ")
terminal.type("\x03")
terminal.expect("; error: Function cancelled\nCommand: ")

terminal.type("(acad_colordlg 5)\n")
terminal.expect("Select Color: ")
terminal.type("\x03")
terminal.expect("nil\nCommand: ")

# Esc is a key of its own.
terminal.type("(acad_colordlg 5)\n")
terminal.expect("Select Color: ")
terminal.type("\x1b\n")
terminal.expect("nil\nCommand: ")

terminal.type("(acad_colordlg 7)\n")
terminal.expect("Select Color: ")
terminal.type("type #1108 30\n")
terminal.expect("Select Color: ")
terminal.type("ok\n")
terminal.expect("30\nCommand: ")

terminal.type("\x04")
terminal.expect("status 0")
