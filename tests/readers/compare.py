# SPDX-License-Identifier: MIT
#
# Asks readers of property lists what files read as, as tests/readers/reader.h tells it, Python's own
# among them, and says where two of the others agree and the first differs.
#
# usage: compare.py READER READER…     the names of files on standard input, a line for each
import collections
import datetime
import math
import os
import plistlib
import subprocess
import sys

EXAMPLES = 4


def told(value):
    """What a value reads as."""
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, int):
        return str(value)
    if isinstance(value, float):
        return "rnan" if math.isnan(value) else "r%.17g" % value
    if isinstance(value, str):
        return "s" + value.encode("utf-8", "surrogatepass").hex()
    if isinstance(value, bytes):
        return "d" + value.hex()
    if isinstance(value, datetime.datetime):
        return "t%d" % ((value - datetime.datetime(2001, 1, 1)) // datetime.timedelta(seconds=1))
    if isinstance(value, plistlib.UID):
        return "u%d" % value.data
    if isinstance(value, list):
        return "[" + "".join(told(element) + "," for element in value) + "]"
    if isinstance(value, dict):
        entries = sorted((told(key), told(element)) for key, element in value.items())
        return "{" + "".join(key + ":" + element + "," for key, element in entries) + "}"
    return "?"


def python(file):
    """What a file reads as for Python."""
    try:
        with open(file, "rb") as opened:
            return told(plistlib.load(opened))
    except RecursionError:
        return "died"
    except Exception:  # pylint: disable=broad-except
        return "-"


def readings(reader, files):
    """What all files read as for one of the programs."""
    output = subprocess.run(
        [reader], input="\n".join(files) + "\n", capture_output=True, text=True, check=True
    ).stdout
    lines = output.splitlines()
    assert len(lines) == len(files), reader
    return lines


def kind(ours, theirs, others):
    """A difference in a few words."""
    who = "us alone" if ours not in others else "us and one other"
    if theirs == "-":
        return "read by " + who
    if ours == "-":
        return "refused by " + who
    return "read otherwise by " + who


def main(readers):
    """Compares the programs' readings and Python's."""
    files = sys.stdin.read().split("\n")[:-1]
    answers = {os.path.basename(reader): readings(reader, files) for reader in readers}
    answers["Python"] = [python(file) for file in files]
    found = collections.defaultdict(list)
    agreed = 0
    for index, file in enumerate(files):
        ours, *others = (answer[index] for answer in answers.values())
        best = max(others, key=others.count)
        times = others.count(best) if best != "died" else 0
        agreed += times >= 2
        if times >= 2 and best != ours:
            found[kind(ours, best, others)].append((os.path.getsize(file), file, ours, others))
    print("%d files, of %d of which two or more say the same" % (len(files), agreed))
    for name, examples in sorted(found.items()):
        print("%d %s" % (len(examples), name))
        for _, file, ours, others in sorted(examples)[:EXAMPLES]:
            with open(file, "rb") as opened:
                print("    %s\n        %s" % (file, repr(opened.read())[:300]))
            for reader, answer in zip(answers, [ours, *others]):
                print("        %-18s %s" % (reader, answer[:120]))


main(sys.argv[1:])
