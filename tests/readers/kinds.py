# SPDX-License-Identifier: MIT
#
# Of which kind it is when readers of property lists differ about some bytes: the kinds are those of
# docs/standin.md. What is the matter with the bytes is found here without the readers.
import re
import struct
import xml.parsers.expat

# What others do, where this reader does what docs/standin.md says: by what is the matter.
REFUSE = {
    "malformed": "XML that is not well-formed",
    "controls": "control characters, or the zero byte, in XML",
    "no plist": "XML without a plist around it, or with something behind it",
    "odd scalar": "numbers, data and dates in other than the usual forms",
    "empty key": "an empty key",
    "broken text": "text that comments, instructions or CDATA sections break up",
    "version": "a version other than 00",
    "high ASCII": "bytes above 0x7F in an ASCII object",
    "surrogate": "an unpaired surrogate",
    "large identifier": "identifiers of more than 8 bytes",
    "begins otherwise": "what begins with a mark, a comment or a document type",
}
TAKE = {
    "outside": "objects that lie in the mark or reach into the offsets",
    "gap": "something between the offsets and the trailer",
    "odd key": "keys that are no strings",
    "stray text": "text between tags in XML",
}
READ_OTHERWISE = {
    "repeated key": "let the last of several entries with one key count",
    "CF$UID": 'keep {"CF$UID": number} a dictionary in XML',
}

CONTROLS = bytes(set(range(0x20)) - set(b"\t\n\r"))
REFERENCE = re.compile(rb"&#(x[0-9A-Fa-f]+|[0-9]+);")
USUAL = {
    "integer": re.compile(r"\s*[+-]?[0-9]{1,19}\s*"),
    "real": re.compile(r"\s*[+-]?([0-9]+(\.[0-9]*)?([eE][+-]?[0-9]+)?|inf(inity)?)\s*"),
    "date": re.compile(r"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"),
    "data": re.compile(r"([A-Za-z0-9+/]{4})*([A-Za-z0-9+/]{2}(==|[A-Za-z0-9+/]=))?"),
}
CONTAINERS = ("plist", "dict", "array")


class XML:
    """What is the matter with well-formed XML. Raises ExpatError for other bytes."""

    def __init__(self, data):
        self.facts = set()
        self.open = []
        self.outermost = []
        parser = xml.parsers.expat.ParserCreate()
        parser.buffer_text = True
        parser.StartElementHandler = self.start
        parser.EndElementHandler = self.end
        parser.CharacterDataHandler = self.text
        parser.CommentHandler = parser.ProcessingInstructionHandler = self.mark
        parser.StartCdataSectionHandler = self.mark
        parser.Parse(data, True)
        if len(self.outermost) != 2 or self.outermost[0] != "plist":
            self.facts.add("no plist")

    def start(self, name, _):
        """Of an element."""
        if len(self.open) < 2:
            self.outermost.append(name)
        self.open.append([name, ""])

    def end(self, _):
        """Of an element."""
        name, text = self.open.pop()
        if name == "data":
            text = "".join(text.split())
        if name in USUAL and not USUAL[name].fullmatch(text):
            self.facts.add("odd scalar")
        if name == "key" and text in ("", "CF$UID"):
            self.facts.add(text or "empty key")

    def text(self, text):
        """Characters."""
        self.open[-1][1] += text
        if self.open[-1][0] in CONTAINERS and text.strip():
            self.facts.add("stray text")

    def mark(self, *_):
        """What may stand between tags."""
        if self.open and self.open[-1][0] not in CONTAINERS:
            self.facts.add("broken text")


def xml_facts(data):
    """What is the matter with bytes in the XML form."""
    facts = set() if data.startswith((b"<?xml", b"<plist")) else {"begins otherwise"}
    mended = REFERENCE.sub(b"?", data.translate(None, CONTROLS))
    for candidate in (data, mended):
        try:
            return facts | XML(candidate).facts
        except (xml.parsers.expat.ExpatError, ValueError, LookupError):
            facts.add("controls")
    return facts - {"controls"} | {"malformed"}


class Binary:
    """What is the matter with the objects that can be reached."""

    def __init__(self, data):
        self.data = data
        trailer = struct.unpack(">6xBBQQQ", data[-32:])
        self.offset_size, self.reference_size, count, top, self.offsets = trailer
        self.facts = set()
        self.seen = set()
        if data[6:8] != b"00":
            self.facts.add("version")
        if self.offsets + count * self.offset_size != len(data) - 32:
            self.facts.add("gap")
        waiting = [top]
        while waiting:
            reference = waiting.pop()
            if reference not in self.seen:
                self.seen.add(reference)
                waiting += self.look(self.place(reference))

    def number(self, place, size):
        """Of so many bytes."""
        return int.from_bytes(self.data[place : place + size], "big")

    def place(self, reference):
        """Of an object."""
        return self.number(self.offsets + reference * self.offset_size, self.offset_size)

    def extent(self, place):
        """Where an object's content begins, and how many parts it has."""
        count = self.data[place] & 15
        if count != 15 or self.data[place] < 0x40:
            return place + 1, count
        size = 1 << (self.data[place + 1] & 15)
        return place + 2 + size, self.number(place + 2, size)

    def look(self, place):
        """At an object. The references that it holds."""
        kind = self.data[place] >> 4
        begin, count = self.extent(place)
        sizes = {1: 1 << count, 2: 1 << count, 3: 8, 4: count, 5: count, 6: 2 * count, 8: count + 1}
        size = {10: count, 13: 2 * count}.get(kind, 0) * self.reference_size + sizes.get(kind, 0)
        content = self.data[begin : begin + size]
        if place < 8 or begin + size > self.offsets:
            self.facts.add("outside")
        if kind == 5 and max(content, default=0) > 0x7F:
            self.facts.add("high ASCII")
        if kind == 6 and re.search("[\ud800-\udfff]", content.decode("utf-16-be", "surrogatepass")):
            self.facts.add("surrogate")
        if kind == 8 and size > 8:
            self.facts.add("large identifier")
        if kind not in (10, 13):
            return []
        step = self.reference_size
        references = [self.number(begin + i * step, step) for i in range(size // step)]
        if kind == 13:
            self.look_at_keys(references[:count])
        return references

    def look_at_keys(self, references):
        """Of a dictionary."""
        places = [self.place(reference) for reference in references]
        if any(self.data[place] >> 4 not in (5, 6) for place in places):
            self.facts.add("odd key")
        texts = []
        for place in places:
            begin, count = self.extent(place)
            is_wide = self.data[place] >> 4 == 6
            content = self.data[begin : begin + (2 * count if is_wide else count)]
            texts.append(content.decode("utf-16-be" if is_wide else "latin-1", "surrogatepass"))
        if len(set(texts)) < len(texts):
            self.facts.add("repeated key")


def binary_facts(data):
    """What is the matter with bytes in the binary form."""
    try:
        return Binary(data).facts
    except (IndexError, struct.error, OverflowError, UnicodeDecodeError):
        return set()


def kind_of(data, ours, theirs):
    """Of which kind it is that others read `theirs`, where this reader reads `ours`; or nothing."""
    kinds = REFUSE if theirs == "-" else TAKE if ours == "-" else READ_OTHERWISE
    verb = {id(REFUSE): "refuse ", id(TAKE): "take "}.get(id(kinds), "")
    facts = binary_facts(data) if data.startswith(b"bplist") else xml_facts(data)
    return next((verb + words for fact, words in kinds.items() if fact in facts), None)
