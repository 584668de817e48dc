#!/usr/bin/python3
"""Runs a transcript: a session at the host's prompt with the output that it must show.

    # comment
    #! open: drawing.dxf        the drawing to open
    #! answers: name.answers    answers for prompts and dialogs
    #! copy: name.lsp           a file put into the session's working folder (as often as needed)
    > (+ 1 2)
    3
    > (list 1
    >>      2)
    (1 2)
    > (getint "Number: ")
    < 5
    Number: 5

Comments and directives stand before the first input; their files lie relative to the transcript. `>>` lines continue
the input (they are joined by a blank), `<` lines are typed at what the input asks for. The other lines are the exact
output; blank lines at its end do not count. An output line that begins with `>`, `<` or `\\` has a `\\` in front. The
session starts in an empty folder of its own, whose path shows as FOLDER in the output.

Exit status: 0 when the output is as written, 1 when not or when the host failed, 2 for an unusable transcript.
TESSARY_BIN and TESSARY_WINE say where the binaries are and what runs them.
"""

import argparse
import difflib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TIMEOUT_SECONDS = 60
PROMPT = re.compile(r"(?:\A|\n)Command: ")


class TranscriptError(Exception):
    """The transcript itself is unusable."""


class Entry:
    """One input, what is typed at its prompts, and the output it must show."""

    def __init__(self, line):
        self.input_lines = [line]  # as written, `>`, `>>` and `<` included
        self.output_lines = []

    def typed(self):
        expression = " ".join(line.lstrip(">").removeprefix(" ") for line in self.input_lines if line[0] == ">")
        answers = [line[1:].removeprefix(" ") for line in self.input_lines if line[0] == "<"]
        return [expression] + answers

    def expected(self):
        lines = [line[1:] if line.startswith("\\") else line for line in self.output_lines]
        return "\n".join(lines).rstrip("\n")

    def set_output(self, text):
        blank_end = len(self.output_lines) - len("\n".join(self.output_lines).rstrip("\n").split("\n"))
        if not any(self.output_lines):
            blank_end = len(self.output_lines)
        shown = text.split("\n") if text else []
        self.output_lines = ["\\" + line if line[:1] in (">", "<", "\\") else line for line in shown]
        self.output_lines += [""] * blank_end


class Transcript:
    def __init__(self, path):
        self.path = path
        self.header, self.entries, self.directives = [], [], []
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            self._add(number, line)
        if not self.entries:
            raise TranscriptError(f"{path}: no input (a line that begins with >)")

    def _add(self, number, line):
        continues = line.startswith((">>", "<"))
        if continues and not (self.entries and not self.entries[-1].output_lines):
            raise TranscriptError(f"{self.path}:{number}: {line.split()[0]} must follow an input line")
        if continues:
            self.entries[-1].input_lines.append(line)
        elif line.startswith(">"):
            self.entries.append(Entry(line))
        elif self.entries:
            self.entries[-1].output_lines.append(line)
        else:
            self._add_header(number, line)

    def _add_header(self, number, line):
        self.header.append(line)
        directive = re.fullmatch(r"#! *(open|answers|copy): *(.+?) *", line)
        if directive:
            file = self.path.parent / directive[2]
            if not file.is_file():
                raise TranscriptError(f"{self.path}:{number}: there is no file {directive[2]}")
            self.directives.append((directive[1], file))
        elif line.startswith("#!") or (line.strip() and not line.startswith("#")):
            raise TranscriptError(f"{self.path}:{number}: neither a comment nor a directive: {line}")

    def files(self, kind):
        return [file for directive, file in self.directives if directive == kind]

    def write(self):
        lines = list(self.header)
        for entry in self.entries:
            lines += entry.input_lines + entry.output_lines
        self.path.write_text("\n".join(lines) + "\n", encoding="utf-8")


def windows_path(path):
    """Drive Z: is the root of the file system."""
    return "Z:" + str(path.resolve()).replace("/", "\\")


def run_session(transcript):
    """The host's standard output, its standard error and its exit status (None: it did not end in time)."""
    binaries = pathlib.Path(os.environ["TESSARY_BIN"])
    command = [os.environ["TESSARY_WINE"], str(binaries / "drafthost.exe"), "repl", "--echo", "off",
               "--module", windows_path(binaries / "Tessary2010x64.arx")]
    for kind in ("open", "answers"):
        for file in transcript.files(kind):
            command += ["--" + kind, windows_path(file)]
    typed = "".join(line + "\n" for entry in transcript.entries for line in entry.typed())
    with tempfile.TemporaryDirectory(prefix="transcript-", ignore_cleanup_errors=True) as folder:
        for file in transcript.files("copy"):
            shutil.copy(file, folder)
        # Files, not pipes: services that Wine starts would hold a pipe open after the host has ended.
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
            process = subprocess.Popen(command, cwd=folder, stdin=subprocess.PIPE, stdout=output, stderr=errors)
            try:
                process.communicate(typed.encode("utf-8"), timeout=TIMEOUT_SECONDS)
                status = process.returncode
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
                status = None
            return without_folder(read_text(output), folder), read_text(errors), status


def without_folder(text, folder):
    """The text with FOLDER for the path of the session's folder, also where LISP shows it as a string."""
    path = windows_path(pathlib.Path(folder))
    return text.replace(path.replace("\\", "\\\\"), "FOLDER").replace(path, "FOLDER")


def read_text(file):
    file.seek(0)
    return file.read().decode("utf-8", errors="replace").replace("\r\n", "\n")


def split_output(output, count):
    """What stands before the first prompt, the output of each of the `count` inputs, and what follows the last one.

    Output follows its prompt directly, since the input is not echoed: a line break at its beginning is its own.
    """
    banner, *blocks = PROMPT.split(output)
    blocks = [block.rstrip("\n") for block in blocks]
    blocks += [""] * (count - len(blocks))
    return banner, blocks[:count], "\n".join(blocks[count:]).strip()


def compare(transcript, blocks):
    """A unified diff of the whole session, empty when it is as written."""
    wanted, got = [], []
    for entry, block in zip(transcript.entries, blocks):
        wanted += entry.input_lines + entry.expected().split("\n")
        got += entry.input_lines + block.split("\n")
    name = transcript.path.name
    return list(difflib.unified_diff(wanted, got, f"{name} (expected)", f"{name} (printed)", lineterm=""))


def check(transcript, update):
    output, errors, status = run_session(transcript)
    banner, blocks, rest = split_output(output, len(transcript.entries))
    if update and status == 0:
        for entry, block in zip(transcript.entries, blocks):
            entry.set_output(block)
        transcript.write()
    prompted = PROMPT.search(output) is not None
    problems = compare(transcript, blocks) if prompted else ["the host printed no prompt"]
    if rest:
        problems += ["after the last input:", rest]
    if status is None:
        problems.append(f"the host did not end within {TIMEOUT_SECONDS} seconds; it was stopped")
    elif status != 0:
        problems.append(f"the host ended with status {status}")
    if problems:
        for title, text in (("before the first prompt", banner), ("standard error", errors)):
            if text.strip():
                problems += [f"{title}:", text.strip()]
        print("\n".join(problems))
    return not problems


def main():
    parser = argparse.ArgumentParser(description="runs transcripts")
    parser.add_argument("--update", action="store_true", help="write what is printed into the transcript")
    parser.add_argument("transcripts", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    root = pathlib.Path(__file__).resolve().parent.parent
    os.environ.setdefault("TESSARY_BIN", str(root / "build/debug/bin"))
    os.environ.setdefault("TESSARY_WINE", str(root / "scripts/wine.sh"))
    try:
        results = [check(Transcript(path), options.update) for path in options.transcripts]
    except (OSError, TranscriptError) as error:
        print(error, file=sys.stderr)
        return 2
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
