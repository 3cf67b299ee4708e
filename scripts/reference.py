#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""reference.py FOLDER: names what has no comment in the XML that doxygen wrote into FOLDER; exits with 1 if anything.

doxygen itself says nothing of namespaces, enumerators, destructors and constructors without arguments. Private members
need no comment, and neither do deleted ones: there is nothing to call.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def has_comment(element):
    parts = [element.find("briefdescription"), element.find("detaileddescription")]
    return any("".join(part.itertext()).strip() for part in parts if part is not None)


def place(element):
    location = element.find("location")
    return f"{location.get('file')}:{location.get('line')}" if location is not None else "?"


def is_exempt(member):
    return (
        member.get("prot") == "private"
        or member.get("kind") == "friend"
        or (member.findtext("argsstring") or "").endswith("=delete")
    )


def silent_in(compound):
    name = compound.findtext("compoundname")
    if compound.get("kind") in ("class", "struct", "union", "namespace", "file") and not has_comment(compound):
        yield f"{place(compound)}: {compound.get('kind')} {name}"
    for member in compound.iter("memberdef"):
        what = f"{member.findtext('name')}{member.findtext('argsstring') or ''}"
        if not is_exempt(member) and not has_comment(member):
            yield f"{place(member)}: {name}: {what}"
        for value in member.iter("enumvalue"):
            if not has_comment(value):
                yield f"{place(member)}: {name}: {what}::{value.findtext('name')}"


def main():
    files = sorted(Path(sys.argv[1]).glob("*.xml"))
    if not files:
        sys.exit(f"reference: {sys.argv[1]}: holds no XML")
    silent, comments = set(), 0
    for file in files:
        for compound in ElementTree.parse(file).getroot().iter("compounddef"):
            if compound.get("kind") in ("dir", "page") or compound.findtext("compoundname", "").endswith(".md"):
                continue
            silent.update(silent_in(compound))
            comments += sum(map(has_comment, compound.iter("memberdef")))
    for line in sorted(silent):
        print(f"{line}: no comment", file=sys.stderr)
    if silent or not comments:
        sys.exit(1)


main()
