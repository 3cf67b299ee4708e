#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads cut lists with code of its own, and says what each clip's source is called by the rules of docs/formats/names.md.

  list_names.py names FILE...         the number of different names of each list, their digest, and the file
  list_names.py check EXPORT FILE...  fails if EXPORT, the output of `reeldb export --json` after an import of the files,
                                      puts two sources into one reel that these lists keep apart

It shares no code with the readers of lists/. It knows what it needs for names, of cut lists only.
"""
import collections
import json
import re
import sys

FIELDS = (6, 8, 16, 32, 129)
ROW_FIELD = 16
SOUND = "wav bwf rf64 w64 aif aiff aifc caf mp3 m4a aac flac ac3 ogg opus sd2".split()
STILL = "png tif tiff psd jpg jpeg bmp tga gif pct pict heic".split()
FILES = ("mov mxf mp4 m4v avi r3d ari arx braw crm rmf cine dng dpx exr cin mpg mpeg m2v mts m2ts m2t vob dv dif wmv "
         "mkv webm ogv 3gp flv gxf lxf qt").split()
ENDING = re.compile(r"(?P<stem>.+?)(?P<ending>(\.\[\d+-\d+\])?\.(?P<ext>%s)(\.\[\d+-\d+\])?|\.\[\d+-\d+\])"
                    % "|".join(SOUND + STILL + FILES), re.I | re.S)
EVENT = re.compile(r"\s*(?P<number>\d{1,6}[A-Za-z]?)\s+(?P<reel>\S.*?)(?P<blanks>\s+)(?P<tracks>NONE|[AVBavb][AVav0-9/]*)\s+"
                   r"(?:(?:C|D|W\d*|K\s*[BO]?|KB)\s+)?(?:\d+\s+)?"
                   r"(?P<times>(?:\d\d[:;.,]\d\d[:;.,]\d\d[:;.,]\d{2,3}|\d+)\s+(?:\d\d[:;.,]\d\d[:;.,]\d\d[:;.,]\d{2,3}|\d+)"
                   r"\s+\d\d[:;.,]\d\d[:;.,]\d\d[:;.,]\d{2,3}\s+\d\d[:;.,]\d\d[:;.,]\d\d[:;.,]\d{2,3})\s*$", re.I)

Clip = collections.namedtuple("Clip", "file line reel field clip source_file id tracks times name by_note")


def form(name):
    return "".join(c.lower() if ord(c) < 128 and c.isalnum() else "_" if ord(c) < 128 else c for c in name)


def letters(name):
    return form(name).replace("_", "")


def parts(name):
    found = ENDING.fullmatch(name)
    if not found:
        return name, ""
    extension = (found["ext"] or "").lower()
    if "[" in found["ending"] or extension in FILES:
        return found["stem"], "file"
    return found["stem"], "sound" if extension in SOUND else "still"


def is_cut(text, name):
    if len(form(name)) > len(text) and form(name).startswith(form(text)):
        return True
    return text.isascii() and text.isalnum() and len(letters(name)) > len(text) and letters(name).startswith(text.lower())


def is_short(text, fills, name):
    if fills and is_cut(text, name):
        return True
    stem, kind = parts(name)
    return kind != "" and parts(text)[1] == "" and form(text) == form(stem)


def plain(clip):
    while True:
        found = re.fullmatch(r"(?s)(.*\S)\s*\.(NEW|COPY|SUB|SYNC)\.\d+", clip, re.I)
        if not found:
            return clip
        clip = found[1]


def same(a, b):
    return form(a) == form(b)


def read(path):
    with open(path, "rb") as file:
        data = file.read()
    try:
        text = data.decode("utf-8-sig")
    except UnicodeDecodeError:
        text = data.decode("latin-1")
    lines = [line.strip("\0\x1a\f") for line in re.split("\r\n|\r|\n", text)]
    events, rows, widths = [], collections.defaultdict(list), [0]
    group, target = [], None
    for number, line in enumerate(lines, 1):
        found = EVENT.fullmatch(line)
        if found:
            event = dict(line=number, number=found["number"], reel=found["reel"].strip(), times=found["times"].split(),
                         tracks=found["tracks"], notes=collections.defaultdict(list))
            if event["reel"].upper() not in ("AX", "BL", "BLACK", "BARS", "GEN"):
                widths.append(len(found["reel"]) + len(found["blanks"]) - 1)
            if group and group[-1]["number"] != event["number"]:
                group = []
            group.append(event)
            events.append(event)
            target = group[0]["notes"]
            event["group"] = group
            continue
        row = re.fullmatch(r"\s*>>>\s*SOURCE\s+(\S+)\s+(\S+)\s+(\S+)\s*", line, re.I)
        if row:
            entry = dict(first=row[1], second=row[2], id=row[3].lower(), notes=collections.defaultdict(list))
            for name in {row[1].lower(), row[2].lower()}:
                rows[name].append(entry)
            target, group = entry["notes"], []
            continue
        note = re.fullmatch(r"\s*\*\s*([A-Z ]+?)\s*:\s*(.*?)\s*", line)
        if note and target is not None:
            target[note[1]].append("" if note[2] == "(NULL)" else note[2])
    field = next((f for f in FIELDS if f >= max(widths)), 0)
    return events, rows, field


def clips_of(path):
    events, rows, field = read(path)
    for event in events:
        reel, notes = event["reel"], event["group"][0]["notes"]
        if reel.upper() in ("BL", "BLACK", "BARS", "GEN") or "*" in reel:
            continue
        # Only events of one source: who gets which note of a dissolve is not this script's matter.
        if len({e["reel"].lower() for e in event["group"]}) > 1:
            continue
        clip = (notes["FROM CLIP NAME"] + [""])[0]
        source = (notes["SOURCE FILE"] + [""])[0]
        mine = rows.get(reel.lower(), [])
        ids = {row["id"] for row in mine}
        row_notes = {(row["notes"]["SOURCE FILE"] + [""])[0].lower(): (row["notes"]["SOURCE FILE"] + [""])[0]
                     for row in mine}
        longer = {max((row["first"], row["second"]), key=len) if len(row["first"]) != len(row["second"]) else reel
                  for row in mine}
        fills = len(reel) == field
        name, by_note = reel, False
        files = [source] + (list(row_notes.values()) if len(row_notes) == 1 else [])
        files = [f for f in files if f and "*" not in f and f.upper() != "AX"]
        if reel.upper() == "AX":
            name = re.split(r"[/\\]", source)[-1] or plain(clip)
        else:
            forms = [f for f in files if same(reel, f) or is_short(reel, fills, f)]
            if forms:
                stays = same(reel, forms[0]) or same(reel, parts(forms[0])[0])
                name, by_note = (reel if stays else forms[0]), True
            elif len({l.lower() for l in longer}) == 1:
                name = longer.pop()
            elif fills and "*" not in clip and parts(plain(clip))[1] and is_cut(reel, plain(clip)):
                name = plain(clip)
        if not name or name.upper() in ("AX", "BL", "BARS", "GEN", "BLACK") or "*" in name:
            continue
        yield Clip(path, event["line"], reel, field, clip, source, ids.pop() if len(ids) == 1 else "",
                   event["tracks"], tuple(event["times"]), name, by_note)


def digest(names):
    value = 0xcbf29ce484222325
    for byte in "\n".join(sorted(names)).encode("utf-8"):
        value = (value ^ byte) * 0x100000001b3 & 0xffffffffffffffff
    return value


def names(paths):
    for path in paths:
        first = {}
        for clip in clips_of(path):
            first.setdefault(clip.name.lower(), clip.name)
        print(len(first), "0x%016x" % digest(first.values()), path)


def kept_apart(a, b):
    """Whether the rules for one list keep two of its names apart."""
    if same(a.name, b.name) or (parts(a.name)[1] == parts(b.name)[1] and same(parts(a.name)[0], parts(b.name)[0])):
        return False
    return not (is_short(a.name, len(a.reel) == a.field, b.name) or is_short(b.name, len(b.reel) == b.field, a.name))


def check(export, paths):
    """Returns what is wrong, and how many clips were found in the project."""
    shots = collections.defaultdict(list)
    for shot in export["shots"]:
        shots[shot["clip"], shot["tracks"], shot["source_in"], shot["source_out"]].append(shot)
    faults, found, lost = [], 0, 0
    ids, files = collections.defaultdict(set), collections.defaultdict(set)
    for path in paths:
        seen = collections.defaultdict(dict)
        for clip in clips_of(path):
            # Another shot of that range may be in another reel, so the shot must know the clip's reel text or name.
            known = {clip.reel.lower(), clip.name.lower()}
            reels = {shot["reel"].lower() for shot in shots[clip.clip, clip.tracks, clip.times[0], clip.times[1]]
                     if known & {text.lower() for text in [shot["reel"], *shot["aliases"]]}}
            if len(reels) != 1:
                lost += 1
                continue
            found += 1
            reel = reels.pop()
            seen[reel].setdefault(clip.name.lower(), clip)
            if clip.id:
                ids[reel].add(clip.id)
            if clip.by_note:
                files[reel].add(clip.source_file or clip.name)
        for reel, clips in seen.items():
            clips = list(clips.values())
            faults += ["%s: %s and %s are one reel: %s" % (path, a.name, b.name, reel)
                       for i, a in enumerate(clips) for b in clips[:i] if kept_apart(a, b)]
    faults += ["one reel of several source ids: %s %s" % (reel, sorted(known)) for reel, known in ids.items()
               if len(known) > 1]
    for reel, known in files.items():
        known = sorted(known)
        faults += ["one reel of two source files: %s: %s, %s" % (reel, a, b) for i, a in enumerate(known)
                   for b in known[:i] if not same(a, b) and not is_short(a, False, b) and not is_short(b, False, a)
                   and (parts(a)[1] != parts(b)[1] or not same(parts(a)[0], parts(b)[0]))]
    return faults, found, lost


def main(arguments):
    if len(arguments) > 1 and arguments[0] == "names":
        names(arguments[1:])
    elif len(arguments) > 2 and arguments[0] == "check":
        with open(arguments[1], encoding="utf-8") as file:
            faults, found, lost = check(json.load(file), arguments[2:])
        print("%d clips found, %d not found alone, %d faults" % (found, lost, len(faults)))
        for fault in faults:
            print(fault)
        # A check that finds hardly any clip checks nothing.
        return 1 if faults or found < 9 * lost else 0
    else:
        return __doc__
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
