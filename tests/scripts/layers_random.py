#!/usr/bin/python3
"""Random sessions in the Layers dialog against a model of what reaches the database, and when.

Usage: layers_random.py [SEED [SESSIONS [ACTIONS]]]. Without arguments the ones that the suite runs. Several sessions share
one run of the host, each with a database of its own."""

import os
import random
import re
import shutil
import sys

sys.path.insert(0, os.path.join(os.environ["TESSARY_ROOT"], "tests"))
from standards_dialog import *  # noqa: E402

SEED, SESSIONS, ACTIONS = (int(given) if given else usual for given, usual in zip((sys.argv[1:4] + [""] * 3)[:3], (7, 25, 15)))

TAKEN = "Layer name already exists in the database."
INVALID = ("Invalid characters in layer name.\n\nThe following characters are not valid in layer names:\n"
           "    < > / \\ ' \" : ; ? * | , = '")
REFERENCED = "Layer is currently referenced by a layer key and cannot be deleted."
LINEWEIGHTS = ["Default", "0.00 mm", "0.05 mm", "0.13 mm", "0.25 mm", "0.50 mm", "1.00 mm", "2.11 mm"]
PICKED_COLOR = 42

# No two names that are not the same start with the same letter, so that their order is that of plain texts.
NAMES = ["M-DUCT", "m-duct", "A-WALL", "c3", "C3", "  D 4 ", "g/h", "H:1", "Juniper", "juniper", "Q", "new layer", "NEW LAYER (1)",
         "New Layer", "u=v", "W'", "it's", "x,y", "", "100% [y]"]
COLORS = ["0", "1", "77", "255", "256", "-4", "", "12 or so", "red", "99999999999", "Select color. . ."]
LINETYPES = ["Continuous", "DASHDOT", "no such linetype", ""]
PLOT_STYLES = ["Style 9", "", "50% 'of' it", "To Scale"]
SYSTEM_NAMES = ["Supply", "EXHAUST", "More", "Other", " Air ", "general", "", "100% [s]", "zone's"]


def number(text):
    found = re.match(r"\s*([+-]?\d+)", text)
    return max(-2**31, min(2**31 - 1, int(found[1]))) if found else 0


class Layer:
    # As the list shows it; all texts but plots.
    def __init__(self, key, name, color, linetype, plots, lineweight, plot_style):
        self.key, self.name, self.color, self.linetype, self.plots = key, name, color, linetype, plots
        self.lineweight, self.plot_style = lineweight, plot_style

    @classmethod
    def shown(cls, key, record):
        name, color, linetype, plots, digits, plot_style = record
        if digits:
            whole, hundredths = divmod(number(digits), 100)
            decimals = f".{hundredths:02}".rstrip("0") if hundredths else ""
            lineweight = f"{whole}{decimals} mm"
        else:
            lineweight = "Default"
        return cls(key, name, "" if color is None else str(color), linetype, bool(plots), lineweight, plot_style or "")

    def record(self):
        digits = None if self.lineweight in ("Default", "") else str(round(float(self.lineweight.split(" ")[0]) * 100))
        return (self.name, max(1, min(255, number(self.color))), self.linetype, -1 if self.plots else 0, digits,
                self.plot_style or None)


class Key:
    def __init__(self, key, loaded, layer):
        self.key, self.loaded, self.layer = key, loaded, layer  # layer: the name


class Session:
    def __init__(self, database, chance):
        self.chance = chance
        self.layers = {row[0]: tuple(row[1:]) for row in database.execute(
            "select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer")}
        self.keys = {row[0]: tuple(row[1:]) for row in database.execute(
            "select ixLayerKey, ixLayerSystem, ixLayer, sKey from tblLayerKey")}
        self.systems = {row[0]: tuple(row[1:]) for row in database.execute(
            "select ixLayerSystem, sDescription, iSortOrder from tblLayerSystem")}
        self.next = {"layer": max(self.layers) + 1, "key": max(self.keys) + 1, "system": max(self.systems) + 1}
        self.answers, self.messages = [], []
        self.shown_system, self.remembered, self.can_move = -100, 1, False
        self.key_rows, self.choices = [], []
        self.focus = {LAYERS: 0, KEYS: 0, SYSTEMS: 1}
        self.fill_layers()
        self.take_choices_from_list()
        ordered = sorted(self.systems, key=lambda key: (self.systems[key][1], key))
        self.system_rows = [[-1, "General", 0]] + [[key, *self.systems[key]] for key in ordered]
        self.fill_keys()

    # ---- What the dialog does

    def ordered_layers(self):
        return sorted(self.layers, key=lambda key: (self.layers[key][0].lower(), key))

    def fill_layers(self):
        self.rows = [Layer.shown(key, self.layers[key]) for key in self.ordered_layers()]
        self.focus[LAYERS] = 1 if self.rows else 0

    def take_choices_from_list(self):
        self.choices = [(row.name, row.key) for row in self.rows]

    def refresh_choices(self):
        if self.layers:
            self.choices = [(self.layers[key][0], key) for key in self.ordered_layers()]

    def choice(self, name):
        return next((key for text, key in self.choices if text == name), 0)

    def system_key(self):
        return self.system_rows[self.focus[SYSTEMS] - 1][0]

    def fill_keys(self):
        system = self.system_key()
        if system == self.shown_system:
            return
        self.shown_system = system
        owner = None if system == -1 else system
        found = sorted((text, key, layer) for key, (of, layer, text) in self.keys.items() if of == owner and text != "Hidden")
        self.key_rows = [Key(key, layer, self.layers[layer][0] if layer in self.layers else "") for _, key, layer in found]
        self.focus[KEYS] = 1 if found else 0
        if found:
            self.show_layer_of_key(1)

    def show_layer_of_key(self, row):
        self.show_layer("key", self.choice(self.key_rows[row - 1].layer))

    def show_layer(self, field, value):
        if value != 0:
            for row, layer in enumerate(self.rows, 1):
                if getattr(layer, field) == value:
                    self.focus[LAYERS] = row
                    return

    def save_keys(self):
        for row in self.key_rows:
            layer = self.choice(row.layer)
            if layer and row.key in self.keys:
                system, _, text = self.keys[row.key]
                self.keys[row.key] = (system, layer, text)

    def system_selected(self):
        self.save_keys()
        self.fill_keys()
        self.can_move = self.focus[SYSTEMS] != 1
        last = len(self.key_rows)
        if last:
            self.focus[KEYS] = self.remembered if self.remembered <= last else last
            self.show_layer_of_key(self.focus[KEYS])

    def key_focused(self, row):
        if row != self.focus[KEYS]:
            self.focus[KEYS] = self.remembered = row
            self.show_layer_of_key(row)

    def store_layer(self, row):
        if row.key in self.layers:
            self.layers[row.key] = row.record()

    # The name cell's editing ends with this text. True: it is open again.
    def name_edited(self, row, text):
        layer = self.rows[row - 1]
        layer.name = text.strip()
        refused = False
        if any(key != layer.key and record[0].lower() == layer.name.lower() for key, record in self.layers.items()):
            self.says(TAKEN, "press OK")
            layer.name = self.layers[layer.key][0]
            refused = True
        if any(character in layer.name for character in "<>/\\'\":;?*|,="):
            self.says(INVALID, "press OK")
            layer.name = self.layers[layer.key][0]
            return True
        self.store_layer(layer)
        for key in self.key_rows:
            if key.loaded == layer.key:
                key.layer = layer.name
        self.take_choices_from_list()
        return refused

    def down(self, grid, count):
        return min(self.focus[grid] + 1, count)

    # Ends editing that a refused name has opened again.
    def leave_name(self, row, still_open):
        for attempt in range(6):
            if not still_open:
                return
            if attempt == 0:
                self.answers.append("key Escape")
                still_open = self.name_edited(row, self.rows[row - 1].name)
            else:
                # A name that the database has twice is refused again and again.
                letter = self.chance.choice("bfior")
                self.answers += ["key Control+A", f"key {letter.upper()}", "key Return"]
                still_open = self.name_edited(row, letter)
                if not still_open:
                    self.focus[LAYERS] = self.down(LAYERS, len(self.rows))
        if still_open:
            raise RuntimeError("the session cannot go on")

    # ---- What the drafter does

    def says(self, text, *answers):
        self.messages.append(text)
        self.answers += answers

    def asks(self, text):
        yes = self.chance.random() < 0.7
        self.says(text, "press Yes" if yes else "press No")
        return yes

    def press(self, button):
        self.answers.append(f"press #{button}")

    def some_row(self, rows):
        return self.chance.randrange(len(rows)) + 1

    def select_system(self):
        row = self.some_row(self.system_rows)
        self.answers.append(f"row #{SYSTEMS} {row}")
        if row != self.focus[SYSTEMS]:
            self.focus[SYSTEMS] = row
            self.system_selected()

    def select_key(self):
        if self.key_rows:
            row = self.some_row(self.key_rows)
            self.answers.append(f"row #{KEYS} {row}")
            self.key_focused(row)

    def select_layer(self):
        if self.rows:
            self.focus[LAYERS] = self.some_row(self.rows)
            self.answers.append(f"row #{LAYERS} {self.focus[LAYERS]}")

    def edit_key(self):
        names = {name.lower() for name, _ in self.choices}
        if not self.key_rows or len(names) < len(self.choices) or not self.choices:
            return  # which of two entries in other letters is found is not what this is about
        row, name = self.some_row(self.key_rows), self.chance.choice(self.choices)[0]
        if not name:
            return
        self.answers.append(f"cell #{KEYS} {row} 4 {name}")
        self.key_focused(row)
        self.show_layer("name", name)
        self.key_rows[row - 1].layer = name
        self.key_focused(self.down(KEYS, len(self.key_rows)))

    def layer_cell(self, column, text):
        row = self.focus[LAYERS] = self.some_row(self.rows)
        self.answers.append(f"cell #{LAYERS} {row} {column} {text}".rstrip(" ") if not text.strip() else f"cell #{LAYERS} {row} {column} {text}")
        return row

    def rename_layer(self):
        if self.rows:
            text = self.chance.choice(NAMES)
            row = self.layer_cell(1, text)
            still_open = self.name_edited(row, text)
            if not still_open:
                self.focus[LAYERS] = self.down(LAYERS, len(self.rows))
            self.leave_name(row, still_open)

    def typed_cell(self, column, field, texts):
        if self.rows:
            text = self.chance.choice(texts)
            setattr(self.rows[self.layer_cell(column, text) - 1], field, str(PICKED_COLOR) if text.startswith("Select") else text)
            if not text.startswith("Select"):
                self.focus[LAYERS] = self.down(LAYERS, len(self.rows))

    def edit_color(self):
        self.typed_cell(2, "color", COLORS)

    def edit_linetype(self):
        self.typed_cell(3, "linetype", LINETYPES)

    def edit_lineweight(self):
        self.typed_cell(5, "lineweight", LINEWEIGHTS)

    def edit_plot_style(self):
        self.typed_cell(6, "plot_style", PLOT_STYLES)

    def check_plot(self):
        if self.rows:
            plots = self.chance.random() < 0.5
            row = self.some_row(self.rows)
            self.answers.append(f"cell #{LAYERS} {row} 4 {int(plots)}")
            if self.rows[row - 1].plots != plots:
                self.rows[row - 1].plots = plots
                self.focus[LAYERS] = row

    def new_layer(self):
        if not self.rows:
            return  # copied from nothing: layers_dialog_layers.py
        self.press(NEW_LAYER)
        last = self.rows[-1]
        unmarked = lambda text: "0" if text in ("To Scale", "Can Rotate") else text
        layer = Layer(-1, "", last.color, unmarked(last.linetype), last.plots, last.lineweight, unmarked(last.plot_style))
        names = {row.name for row in self.rows}
        layer.name, count = "New Layer", 1
        while layer.name in names:
            layer.name, count = f"New Layer ({count})", count + 1
        self.rows.append(layer)
        layer.key = self.next["layer"]
        self.next["layer"] += 1
        self.layers[layer.key] = layer.record()
        self.refresh_choices()
        row = self.focus[LAYERS] = len(self.rows)
        self.leave_name(row, True)

    def delete_layer(self):
        self.press(DELETE_LAYER)
        if not self.rows:
            return
        key = self.rows[self.focus[LAYERS] - 1].key
        if any(layer == key for _, layer, _ in self.keys.values()):
            self.says(REFERENCED, "press OK")
        elif key in self.layers and self.asks(f"Are you sure you want to delete layer {self.layers[key][0]}?"):
            del self.layers[key]
            del self.rows[self.focus[LAYERS] - 1]
            self.focus[LAYERS] = min(self.focus[LAYERS], len(self.rows))
            self.refresh_choices()

    def delete_unused(self):
        self.press(DELETE_UNUSED)
        if self.asks("Are you sure you want to delete all unused layers?"):
            used = {layer for _, layer, _ in self.keys.values()}
            self.layers = {key: record for key, record in self.layers.items() if key in used}
            self.fill_layers()
            self.refresh_choices()

    def undo_layers(self):
        self.press(UNDO_LAYERS)
        self.fill_layers()

    def undo_keys(self):
        self.press(UNDO_KEYS)

    def new_system(self):
        sources = self.system_rows[1:]
        if not sources:
            return
        self.press(NEW_SYSTEM)
        name = self.chance.choice(SYSTEM_NAMES)
        source = self.chance.choice(sources)
        if sum(row[1].lower() == source[1].lower() for row in sources) == 1 and source[1]:
            self.answers.append(f"choose #1013 {source[1]}")
        else:
            source = sources[0]
        self.answers += [f"type #2006 {name}", f"press #{OK}"]
        name = name.strip()
        refusal = ("Invalid layer system name." if name.lower() in ("", "general")
                   else "A layer system with that name already exists." if any(row[1].lower() == name.lower() for row in sources) else None)
        if refusal:
            self.says(refusal, "press OK")
        if refusal or self.chance.random() < 0.2:
            if not refusal:
                self.answers.pop()
            self.answers.append(f"press #{CANCEL}")
            return
        key = self.next["system"]
        self.next["system"] += 1
        self.systems[key] = (name, max(row[2] for row in self.system_rows) + 1)
        for of, layer, text in [self.keys[key] for key in sorted(self.keys)]:
            if of == source[0]:
                self.keys[self.next["key"]] = (key, layer, text)
                self.next["key"] += 1
        self.system_rows.append([key, name, 0])
        self.focus[SYSTEMS] = len(self.system_rows)
        self.save_keys()
        self.fill_keys()

    def edit_system(self):
        self.press(EDIT_SYSTEM)
        if self.focus[SYSTEMS] == 1:
            self.says("The general layer system cannot be edited.", "press OK")

    def delete_system(self):
        self.press(DELETE_SYSTEM)
        row = self.focus[SYSTEMS]
        if len(self.system_rows) < 3:
            self.says("You cannot delete the last layer system.", "press OK")
        elif row == 1:
            self.says("The general layer system cannot be deleted.", "press OK")
        elif self.asks(f"Are you sure you want to delete layer system {self.system_rows[row - 1][1]}?"):
            key = self.system_key()
            self.keys = {ix: record for ix, record in self.keys.items() if record[0] != key}
            del self.systems[key]
            del self.system_rows[row - 1]
            self.focus[SYSTEMS] = min(row, len(self.system_rows))
            self.system_selected()

    def move(self):
        if self.can_move:
            step = self.chance.choice((-1, 1))
            self.press(MOVE_UP if step < 0 else MOVE_DOWN)
            row = self.focus[SYSTEMS]
            if (row > 2 if step < 0 else 1 < row < len(self.system_rows)):
                rows = self.system_rows
                rows[row - 1], rows[row - 1 + step] = rows[row - 1 + step], rows[row - 1]
                self.focus[SYSTEMS] = row + step

    def export(self):
        self.press(EXPORT)
        self.save_keys()

    def finish(self):
        if self.chance.random() < 0.4:
            self.press(CANCEL)
            return
        self.press(OK)
        for row, (key, name, _) in enumerate(self.system_rows, 1):
            if key in self.systems:
                self.systems[key] = (name, row)
        self.save_keys()
        for row in self.rows:
            self.store_layer(row)

    def act(self, count):
        often = [self.select_system, self.select_key, self.edit_key, self.rename_layer, self.edit_color]
        other = [self.select_layer, self.edit_linetype, self.edit_lineweight, self.edit_plot_style, self.check_plot, self.new_layer,
                 self.delete_layer, self.delete_unused, self.undo_layers, self.undo_keys, self.new_system, self.edit_system,
                 self.delete_system, self.move, self.move, self.export]
        for _ in range(count):
            self.chance.choice(often * 2 + other)()
        self.finish()


scene = Scene("layers_random")
connection = open_database(scene.folder / "kept.qn")
sessions = []
for count in range(SESSIONS):
    session = Session(connection, random.Random(f"{SEED} {count}"))
    session.act(ACTIONS)
    sessions.append(session)
    shutil.copy(scene.folder / "kept.qn", scene.folder / f"db{count}.qn")
connection.close()

CHOOSES = f"(defun acad_colordlg (color flag) {PICKED_COLOR})"
answers = [answer for count, session in enumerate(sessions) for answer in [f"# session {count}", *session.answers]]
run = scene.host(CALLBACKS + CHOOSES + f"""(setq n 0) (repeat {SESSIONS} (princ (strcat "\\nsession " (itoa n)))
  (qn_qn-customizeLayers (strcat "db" (itoa n) ".qn")) (setq n (1+ n))) (princ "\\nall")""", answers, wait=60 + 10 * SESSIONS)
if run.status != 0 or "\nall" not in run.out or run.errors.strip():
    line = re.search(r"line (\d+)", run.errors)
    around = "\n".join(answers[max(0, int(line[1]) - 12):int(line[1]) + 2]) if line else ""
    scene.fail(f"seed {SEED}: the run", f"status {run.status}\n{run.out}\n{run.errors}\nthe answers before it:\n{around}")
messages = [message for session in sessions for message in session.messages]
for place, (found, expected) in enumerate(zip(run.messages + [None], messages + [None])):
    if found != expected:
        scene.equal(f"seed {SEED}: message {place}", found, expected)
        break
for count, session in enumerate(sessions):
    database = open_database(scene.folder / f"db{count}.qn")
    keyed = lambda key: ((key[0], key[2]), key[1])
    records = lambda statement: {row[0]: tuple(row[1:]) for row in database.execute(statement)}
    for what, found, expected in (
            ("layers", records("select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer"), session.layers),
            # Copied keys may be numbered in any order.
            ("keys", dict(keyed(key) for key in database.execute("select ixLayerSystem, ixLayer, sKey from tblLayerKey")),
             dict(keyed(key) for key in session.keys.values())),
            ("systems", records("select ixLayerSystem, sDescription, iSortOrder from tblLayerSystem"), session.systems)):
        for key in set(found) | set(expected):
            if found.get(key) != expected.get(key):
                scene.fail(f"seed {SEED}, session {count}: {what}: {key}", f"{found.get(key)}, expected {expected.get(key)}\n"
                           + ("\n".join(session.answers) if scene.failures < 3 else ""))
    database.close()
scene.finish()
