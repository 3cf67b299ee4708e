#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Reads timelines with code of its own, and compares their clips with those that reeldb imported.

  timeline_samples.py FILE IMPORT EVENTS AGAIN   the JSON of an import, of the kept list, and of a second import
  timeline_samples.py FILE refused CODE ERRORS   the import failed: fails unless the file has no timeline

It shares no code with the readers of lists/. Clips that reeldb joins are compared by their tracks: each track of an event
is a clip of the file.
"""
import collections
import fractions
import json
import re
import sys
import urllib.parse

RATES = [fractions.Fraction(n) for n in (24, 25, 30, 48, 50, 60, 120)]
RATES += [fractions.Fraction(n * 1000, 1001) for n in (24, 30, 48, 60, 120)]

Item = collections.namedtuple("Item", "name reel source begin end tracks")


def exact_rate(number):
    """The rate of video that the number means; None for any other."""
    number = fractions.Fraction(number)
    near = min(RATES, key=lambda rate: abs(rate - number))
    return near if abs(near - number) < fractions.Fraction(1, 500) else None


def label(seconds, rate, drop):
    """The timecode of the frame at the time; None if the time has none."""
    frame = seconds * rate // 1
    base = -(-rate // 1)
    if drop and base in (30, 60) and rate != base:
        lost = base // 15
        tens, rest = divmod(frame, base * 600 - 9 * lost)
        frame += 9 * lost * tens + (lost * ((rest - lost) // (base * 60 - lost)) if rest > lost else 0)
        separator = ";"
    else:
        separator = ":"
    if not 0 <= frame < base * 86400:
        return ""
    ff, ss = frame % base, frame // base
    return "%02d:%02d:%02d%s%02d" % (ss // 3600, ss // 60 % 60, ss % 60, separator, ff)


def base_name(url):
    name = re.split(r"[/\\]", url)[-1]
    return urllib.parse.unquote(name) if ":" in url else name


def first(*texts):
    return next((text.strip() for text in texts if isinstance(text, str) and text.strip()), "")


def get(value, *path):
    for key in path:
        value = value.get(key) if isinstance(value, dict) else None
    return value


# --- OTIO

def otio_clips(value):
    if isinstance(value, dict):
        if str(value.get("OTIO_SCHEMA", "")).startswith("Clip."):
            yield value
        for key, member in value.items():
            if key != "metadata":
                yield from otio_clips(member)
    elif isinstance(value, list):
        for member in value:
            yield from otio_clips(member)


def otio_items(path):
    with open(path, encoding="utf-8") as file:
        root = json.loads(re.sub(r"(:\s*-?)Inf\b", r"\1Infinity", file.read()), parse_float=fractions.Fraction)
    for clip in otio_clips(root):
        medium = clip.get("media_reference") or get(clip, "media_references", clip.get("active_media_reference_key")) or {}
        if medium.get("OTIO_SCHEMA", "").startswith("GeneratorReference"):
            continue
        reel = first(get(clip, "metadata", "cmx_3600", "reel"),
                     get(medium, "metadata", "fcp_xml", "timecode", "reel", "name"),
                     get(clip, "metadata", "ALE", "Tape"), get(medium, "metadata", "ALE", "Tape"))
        source = first(base_name(medium.get("target_url") or ""), medium.get("name"), clip.get("name"))
        whole = clip.get("source_range") or medium.get("available_range")
        begin = end = ""
        if whole:
            start, length = whole["start_time"], whole["duration"]
            rate = exact_rate(start["rate"]) or exact_rate(medium["available_range"]["start_time"]["rate"])
            drop = get(medium, "metadata", "fcp_xml", "timecode", "displayformat") == "DF"
            at = fractions.Fraction(start["value"]) / (exact_rate(start["rate"]) or start["rate"])
            lasts = fractions.Fraction(length["value"]) / (exact_rate(length["rate"]) or length["rate"])
            begin, end = label(at, rate, drop), label(at + lasts, rate, drop)
        yield Item(first(clip.get("name")), reel, source, begin, end, 1)


# --- Comparison

def items_of(path):
    if path.endswith(".otio"):
        return list(otio_items(path))
    raise ValueError("unknown ending")


def tracks_of(event):
    return len(re.findall("[VA]", event["tracks"]))


def compare(path, imported, kept, again):
    wanted, got = collections.Counter(), collections.Counter()
    faults = []
    events = [event for event in kept["events"] if not event["special"]]
    for item in items_of(path):
        wanted[(item.name, item.reel, item.begin, item.end)] += item.tracks
        if not item.reel and not any(event["reel"] == item.source for event in events):
            faults.append("no event of the source " + item.source)
    for event in events:
        got[(event["clip"], event["reel_text"], event["source_in"], event["source_out"])] += tracks_of(event)
    for clip in sorted((wanted - got) | (got - wanted)):
        faults.append("%s: %d of the file, %d imported" % (clip, wanted[clip], got[clip]))
    if imported["files"][0]["clips"] != len(events):
        faults.append("%d clips reported, %d kept" % (imported["files"][0]["clips"], len(events)))
    if again["stored"] or again["files"][0]["shots_added"] or again["files"][0]["created"]:
        faults.append("the second import adds something")
    return faults, sum(wanted.values()), len(events)


def load(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def main(path, *rest):
    if rest[0] == "refused":
        with open(rest[2], encoding="utf-8") as file:
            print("%s: refused with %s: %s" % (path, rest[1], file.read().strip()))
        try:
            return 1 if items_of(path) or rest[1] != "3" else 0
        except ValueError:
            return 0
    faults, clips, events = compare(path, *map(load, rest))
    print("%s: %d clips, %d events, %d faults" % (path, clips, events, len(faults)))
    for fault in faults:
        print("  " + fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
