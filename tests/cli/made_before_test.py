#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Projects that were made before names were kept, and their lists again.

  made_before_test.py REELDB DATA

DATA has made-before.sql, a project of version 1 as a program of that time wrote it from made-before.edl, and then its
reel DAY got a shelf. With the folder REELDB_SAMPLES, for each list in it, a project of version 1 is made whose shots have
another of their names as reel, as programs of that time took it. Nothing may be there twice, each shot gets the reel that
it has in a new project, and undo brings back what was there.
"""
import json
import os
import pathlib
import sqlite3
import subprocess
import sys
import tempfile

reeldb, data = sys.argv[1], pathlib.Path(sys.argv[2])
work = tempfile.TemporaryDirectory()
facilities = 0


def run(facility, *words, codes=(0,)):
    done = subprocess.run([reeldb, "-C", facility, *words], capture_output=True, text=True)
    assert done.returncode in codes, (words, done.returncode, done.stderr)
    return done.stdout


def read(facility, *words, codes=(0,)):
    return json.loads(run(facility, *words, "--json", codes=codes))


def new_facility(project=None):
    global facilities
    facilities += 1
    facility = os.path.join(work.name, str(facilities))
    subprocess.run([reeldb, "init", facility], check=True, capture_output=True)
    if project is not None:
        file = pathlib.Path(facility, "projects", "main.reels")
        for old in file.parent.iterdir():
            old.unlink()
        connection = sqlite3.connect(file)
        connection.executescript(project)
        connection.close()
    return facility


def shots(facility):
    return sorted((shot["reel"].lower(), shot["clip"], shot["source_in"], shot["source_out"], shot["tracks"])
                  for shot in read(facility, "export")["shots"])


def reels(facility):
    return {reel["id"]: reel for reel in read(facility, "list")}


def equal(got, wanted, what):
    assert got == wanted, f"{what}: {got}, not {wanted}"


def project_of_today():
    sql = (data / "made-before.sql").read_text(encoding="utf-8")
    facility = new_facility(sql)
    before_shots, before_reels = shots(facility), reels(facility)
    report = read(facility, "import", str(data / "made-before.edl"))
    equal(report["files"][0]["shots_added"], 0, "shots added")
    equal(report["files"][0]["created"], [], "reels created")
    equal(sorted((move["from"], move["to"], move["shots"]) for move in report["moved"]),
          [("/mnt/sound/RAIN.WAV", "RAIN.WAV", 1), ("A001C001", "A001C001_200303_F701", 1),
           ("A001C002", "A001C002_200303_F701", 1), ("NIGHT_LOOK", "B010C007", 1), ("NIGHT_LOOK", "P00D8875", 1)],
          "moves")
    after = reels(facility)
    equal({reel: after[reel]["shots"] for reel in after},
          {"A001C001_200303_F701": 1, "A001C002_200303_F701": 1, "RAIN.WAV": 1, "DAY": 1, "B010C007": 1, "P00D8875": 1,
           "NIGHT_LOOK": 0}, "reels")
    equal(after["DAY"]["bin"], "Shelf 4", "shelf of a reel that stays")
    equal(read(facility, "names", "check")["shots_without_list"], 0, "shots of no list once theirs is imported")
    again = read(facility, "import", str(data / "made-before.edl"))
    equal((again["files"][0]["shots_added"], again["files"][0]["created"], again["moved"]), (0, [], []), "again")
    run(facility, "undo", "--any")
    equal(shots(facility), before_shots, "shots after undo")
    equal(reels(facility), before_reels, "reels after undo")


def check_of_names():
    sql = (data / "made-before.sql").read_text(encoding="utf-8")
    cut = sql.replace("'NIGHT_LOOK'", "'A001C001_200303_F701'")
    facility = new_facility(cut)
    before = shots(facility)
    found = read(facility, "names", "check")
    equal(found["moved"], [{"from": "A001C001", "to": "A001C001_200303_F701", "shots": 1}], "what would move")
    equal(shots(facility), before, "shots after a check")
    equal(found["shots_without_list"], len(before), "shots that no kept list uses")
    text = run(facility, "names", "check")
    assert "would be moved" in text
    assert f"{len(before)} shots without a kept list: import their lists again" in text, text
    equal(read(facility, "names", "check", "--apply")["stored"], True, "stored")
    equal(reels(facility)["A001C001_200303_F701"]["shots"], 3, "shots of the whole name")
    equal(read(facility, "names", "check")["moved"], [], "what would move then")
    run(facility, "undo", "--any")
    equal(shots(facility), before, "shots after undo")
    two = cut.replace("'/mnt/sound/RAIN.WAV'", "'A001C001_200304_G802'")
    found = read(new_facility(two), "names", "check")
    equal(found["moved"], [], "moves of a cut name of two reels")
    equal([(name["name"], name["perhaps"]) for name in found["names"]],
          [("A001C001", ["A001C001_200303_F701", "A001C001_200304_G802"])], "names that may mean several reels")


def quoted(text):
    return "'" + text.replace("'", "''") + "'"


def made_from(shots_of_list):
    """A project of version 1 with these shots: each under the first of its other names, if it has one."""
    sql = (data / "made-before.sql").read_text(encoding="utf-8")
    lines = [line for line in sql.split("\n") if not line.startswith(('INSERT INTO "logs"', 'INSERT INTO "fields"'))]
    rows, known = [], {}

    def add(kind, reel, name, texts, video, audio):
        number = len(rows) + 1
        rows.append(f"INSERT INTO logs VALUES({number}, {kind}, NULL, x'{number:032x}', 0, 'E', {int(kind == 1)}, "
                    f"{int(kind == 9)}, {quoted(name)}, {quoted('' if kind == 1 else 'Tape 2ch')}, {video}, {audio}, "
                    f"{quoted(reel)}, {', '.join(texts)});")

    for shot in shots_of_list:
        names = list(dict.fromkeys(shot["aliases"] + [shot["reel"]]))
        reel = names.pop(0)
        reel = known.setdefault(reel.lower(), reel)
        keys = ("source_file", "source_in", "source_out", "record_in", "record_out", "tracks")
        add(1, reel, shot["clip"], [quoted(shot[key]) for key in keys] + [quoted("\n".join(names))],
            shot["video_channels"], shot["audio_channels"])
    for reel in known.values():
        add(9, reel, "Reel " + reel, ["NULL"] * 7, 1, 2)
    insert = "\n".join(rows) + f"\nUPDATE project SET value = {len(rows)} WHERE key = 'last_number';\n"
    return "\n".join(lines).replace("COMMIT;", insert + "COMMIT;")


def sample(path):
    fresh = new_facility()
    run(fresh, "import", str(path), codes=(0, 4))
    content = read(fresh, "export")["shots"]
    pictures = [shot for shot in content if not shot["sound_of"]]  # programs of that time made none of sound rolls
    facility = new_facility(made_from(pictures))
    before = shots(facility)
    equal(len(before), len(pictures), f"{path.name}: shots of the old project")
    report = read(facility, "import", str(path), codes=(0, 4))
    equal(report["files"][0]["shots_added"], len(content) - len(pictures), f"{path.name}: shots added")
    assert shots(facility) == shots(fresh), f"{path.name}: other shots than in a new project"
    again = read(facility, "import", str(path), codes=(0, 4))
    equal((again["files"][0]["shots_added"], again["files"][0]["created"], again["moved"]), (0, [], []),
          f"{path.name}: again")
    run(facility, "undo", "--any")
    assert shots(facility) == before, f"{path.name}: undo leaves other shots"
    return sum(move["shots"] for move in report["moved"])


project_of_today()
check_of_names()
samples = os.environ.get("REELDB_SAMPLES")
lists = sorted(path for path in pathlib.Path(samples).iterdir() if path.suffix in (".edl", ".ale")) if samples else []
moved = sum(sample(path) for path in lists)
assert not lists or moved > 0, "no shot of any list moved"
print(f"{len(lists)} lists, {moved} shots moved" if lists else "REELDB_SAMPLES names no folder with lists")
