# SPDX-License-Identifier: MIT
#
# Asks readers of property lists what files read as, as tests/readers/reader.h tells it, Python's own
# among them, and says of which kinds (see kinds.py) it is where two of the others agree and the first
# differs; fails where it is of none. A value in XML that stands by itself is asked about as it is and
# as a whole document, since most readers look at it only then.
#
# usage: compare.py READER READER…     the names of files on standard input, a line for each
import collections
import datetime
import math
import os
import plistlib
import subprocess
import sys
import tempfile

from kinds import kind_of

EXAMPLES = 10


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


def documents(files, folder):
    """What begins with something else than a document does, made into documents: their names."""
    names = []
    for number, file in enumerate(files):
        with open(file, "rb") as opened:
            data = opened.read()
        if not data.startswith(b"<") or data.startswith((b"<?xml", b"<plist")):
            continue
        is_value = not data.startswith((b"<!", b"<?"))
        start, end = (b"<plist>", b"</plist>") if is_value else (b'<?xml version="1.0"?>', b"")
        names.append(os.path.join(folder, "%d-%s" % (number, os.path.basename(file))))
        with open(names[-1], "wb") as made:
            made.write(start + data + end)
    return names


def differences(files, answers):
    """By kind, where two of the others agree: the data, and all that was answered."""
    found = collections.defaultdict(list)
    agreed = 0
    for file, (ours, *others) in zip(files, zip(*answers)):
        best = max(others, key=others.count)
        if best == "died" or others.count(best) < 2:
            continue
        agreed += 1
        if best != ours:
            with open(file, "rb") as opened:
                data = opened.read()
            found[kind_of(data, ours, best)].append((len(data), data, [ours, *others]))
    print("%d files, of %d of which two or more say the same" % (len(files), agreed))
    return found


def main(readers):
    """Compares the programs' readings and Python's. Whether each difference is of a kind."""
    files = sys.stdin.read().split("\n")[:-1]
    with tempfile.TemporaryDirectory() as folder:
        files += documents(files, folder)
        answers = [readings(reader, files) for reader in readers]
        answers.append([python(file) for file in files])
        found = differences(files, answers)
    unknown = found.pop(None, [])
    for kind, examples in sorted(found.items()):
        print("%6d  two others %s" % (len(examples), kind))
    print("%6d  of no kind" % len(unknown))
    for _, data, told_by_all in sorted(unknown)[:EXAMPLES]:
        print("    %s" % repr(data)[:300])
        for reader, answer in zip([*map(os.path.basename, readers), "Python"], told_by_all):
            print("        %-18s %s" % (reader, answer[:120]))
    return not unknown


sys.exit(0 if main(sys.argv[1:]) else 1)
