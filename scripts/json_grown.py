#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Whether a JSON file has all that an earlier one had: json_grown.py BEFORE AFTER. Objects may have more keys.

Exit status: 0 when nothing is missing or different, 1 with the first place that is.
"""
import json
import sys


def difference(before, after, place):
    """The first place where after lacks something, or nothing."""
    if isinstance(before, dict) and isinstance(after, dict):
        for key, value in before.items():
            if key not in after:
                return f"{place}.{key}: missing"
            found = difference(value, after[key], f"{place}.{key}")
            if found:
                return found
        return None
    if isinstance(before, list) and isinstance(after, list) and len(before) == len(after):
        for number, (old, new) in enumerate(zip(before, after)):
            found = difference(old, new, f"{place}[{number}]")
            if found:
                return found
        return None
    return None if before == after else f"{place}: {after!r} (before: {before!r})"


def main():
    before, after = (json.load(open(name, encoding="utf-8")) for name in sys.argv[1:3])
    found = difference(before, after, sys.argv[2])
    if found:
        print(f"json_grown: {found}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
