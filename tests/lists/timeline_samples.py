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
import xml.etree.ElementTree

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


# --- xmeml

def text(element, *path):
    found = element.find("/".join(path)) if element is not None else None
    return (found.text or "").strip() if found is not None else ""


def xmeml_items(root):
    parents = {child: parent for parent in root.iter() for child in parent}
    files = {file.get("id"): file for file in root.iter("file") if len(file)}

    def rate(element):
        while element is not None and not text(element, "rate", "timebase"):
            element = parents.get(element)
        if element is None:
            return None
        slowed = text(element, "rate", "ntsc").upper() == "TRUE"
        return fractions.Fraction(text(element, "rate", "timebase")) * (fractions.Fraction(1000, 1001) if slowed else 1)

    for clip in root.iter("clipitem"):
        if clip.find("sequence") is not None:
            continue
        file = files.get(clip.find("file").get("id")) if clip.find("file") is not None else None
        path, name = text(file, "pathurl"), text(file, "name")
        reel = text(file, "timecode", "reel", "name")
        if file is not None and not path and not reel and (file.find("mediaSource") is not None or not name.strip("/")):
            continue
        begin = end = ""
        timecode = file.find("timecode") if file is not None else None
        if timecode is not None:
            counted = rate(timecode)
            drop = text(timecode, "displayformat") == "DF"
            if text(timecode, "frame"):
                start = fractions.Fraction(text(timecode, "frame")) / counted
            else:
                h, m, s, f = map(int, re.split("[:;]", text(timecode, "string")))
                assert not drop, "a label of drop frame without a number"
                start = fractions.Fraction(((h * 60 + m) * 60 + s) * -(-counted // 1) + f) / counted
            begin, end = (label(start + fractions.Fraction(text(clip, side)) / rate(clip), counted, drop)
                          for side in ("in", "out"))
        yield Item(text(clip, "name"), reel, first(base_name(path), name, text(clip, "name")), begin, end, 1)


# --- FCPXML

def seconds(value):
    return fractions.Fraction(value.rstrip("s").split("/")[0]) / fractions.Fraction((value.rstrip("s") + "/1").split("/")[1])


def fcpxml_items(root):
    parents = {child: parent for parent in root.iter() for child in parent}
    resources = {one.get("id"): one for one in root.find("resources")}
    second_choices = {two for audition in root.iter("audition") for one in list(audition)[1:] for two in one.iter()}

    def around(element):
        while element is not None:
            yield element
            element = parents.get(element)

    def reel_of(element):
        for metadata in element.findall("metadata"):
            for entry in metadata.findall("md"):
                if entry.get("key") == "com.apple.proapps.studio.reel" and entry.get("value", "").strip():
                    return entry.get("value")
        return ""

    def duration_of(element):
        found = resources.get(element.get("format"))
        return seconds(found.get("frameDuration")) if found is not None and found.get("frameDuration") else None

    for clip in root.iter():
        asset = resources.get(clip.get("ref"))
        if clip.tag not in ("asset-clip", "video", "audio") or clip in second_choices or asset is None or \
                asset.tag != "asset":
            continue
        reel = next((reel_of(one) for one in around(clip) if one.tag != "gap" and one.tag != "title" and reel_of(one)),
                    reel_of(asset))
        media = asset.find("media-rep")
        source = base_name((media.get("src") if media is not None else asset.get("src")) or asset.get("name"))
        frame = next((found for found in [duration_of(clip), duration_of(asset)] + [duration_of(one) for one in around(clip)]
                      if found), None)
        modes = [one.get("tcFormat") for one in around(clip) if one.get("tcFormat")]
        begin = end = ""
        start = seconds(clip.get("start") or asset.get("start") or "0s")
        if frame:
            drop = modes[:1] == ["DF"]
            begin = label(start, 1 / frame, drop)
            end = label(start + seconds(clip.get("duration") or asset.get("duration")), 1 / frame, drop)
        sound = 0 if clip.tag == "video" or asset.get("hasAudio") != "1" else int(asset.get("audioChannels") or 1)
        picture = 1 if clip.tag != "audio" and asset.get("hasVideo") == "1" else 0
        for one in [part.strip() for part in reel.split(";") if part.strip()] or [""]:
            name = first(clip.get("name"), *(two.get("name") for two in around(clip) if two.tag in ("clip", "sync-clip")))
            yield Item(name, one, source, begin, end, picture + sound)


# --- Comparison

def items_of(path):
    if path.endswith(".otio"):
        return list(otio_items(path))
    root = xml.etree.ElementTree.parse(path).getroot()
    if root.tag == "xmeml":
        return list(xmeml_items(root))
    return list(fcpxml_items(root)) if root.tag == "fcpxml" else []


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
        return 1 if items_of(path) or rest[1] != "3" else 0
    faults, clips, events = compare(path, *map(load, rest))
    print("%s: %d clips, %d events, %d faults" % (path, clips, events, len(faults)))
    for fault in faults:
        print("  " + fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
