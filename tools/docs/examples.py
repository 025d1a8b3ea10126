"""One example for each type: a message that carries it, as octets, as a tree and as JSON, all as the tool shows them.

A message that the tests hold is taken if it has the type with most of its members; otherwise one is made up."""
import json
import re
from pathlib import Path

from model import CHANNELS, run
from values import Values

LONGEST = 420  # octets of a held message that still make a page to look at
ROW = re.compile(r"^ *(?P<offset>\d+)  (?P<indent> *)(?P<octets>[0-9A-F]{2}(?: [0-9A-F]{2})*)  +(?P<rest>\S.*)$")
REST = re.compile(r"^(?P<tag>\S.*?) +(?P<length>\d+|open)  (?P<name>\S*) *(?P<type>(?:Zyn|Asn)\w+)(?: +(?P<value>\S.*))?$")


class Row:
    """An element of a message: a line of the tree."""

    def __init__(self, line):
        found = ROW.match(line)
        rest = found and REST.match(found["rest"])
        if not rest:
            raise SystemExit(f"a line of the tree is not understood: {line!r}")
        self.offset = int(found["offset"])
        self.depth = len(found["indent"]) // 2
        self.tag, self.length = rest["tag"], rest["length"]
        self.name, self.type, self.value = rest["name"], rest["type"], rest["value"] or ""
        self.path = ()
        self.own = False

    def size(self, octets):
        """The octets of tag and length, and those of all."""
        at = self.offset
        if octets[at] & 0x1F == 0x1F:
            at += 1
            while octets[at] & 0x80:
                at += 1
        at += 1
        head = at + 1 + (octets[at] & 0x7F if octets[at] & 0x80 else 0) - self.offset
        return head, head + int(self.length)


def steps(name):
    """ "statics.price" or "[3]" as steps into JSON."""
    return tuple(int(step[1:-1]) if step.startswith("[") else step for step in re.findall(r"\[\d+\]|[^.\[\]]+", name))


def tree_rows(text):
    """The rows of one message of a tree, each with its path."""
    rows, paths = [], []
    for line in text.splitlines():
        if ROW.match(line):  # otherwise the heading, or octets of the row before
            row = Row(line)
            del paths[row.depth:]
            inside = paths[-1] if paths else ()
            row.path = inside if row.name == row.type and not inside else inside + steps(row.name)
            paths += [row.path] * (row.depth + 1 - len(paths))
            rows.append(row)
    return rows


class Example:
    def __init__(self, type, message, title, held):
        self.type = type
        self.message = message
        self.title = title
        self.held = held
        self.json = None
        self.octets = b""
        self.rows = []
        self.path = ()  # of the type in the JSON

    def hex(self):
        return " ".join(f"{octet:02X}" for octet in self.octets)


def find(type, value, wanted, path=()):
    """All places of a type in a value: (path, how many members are there)."""
    if type is wanted:
        yield path, len(value) if type.kind in ("SEQUENCE", "SET OF") else 0
    if type.kind == "SET OF":
        for i, element in enumerate(value):
            yield from find(type.element, element, wanted, path + (i,))
    elif type.kind in ("SEQUENCE", "CHOICE"):
        for member in type.members:
            if member.name in value:
                yield from find(member.type, value[member.name], wanted, path + (member.name,))


def read_message(path):
    """A message that the tests hold: what it is, its channel, its octets."""
    lines = path.read_text().splitlines()
    return lines[0].lstrip("# "), lines[1], bytes.fromhex("".join(lines[2:lines.index("", 2)]))


class Examples:
    def __init__(self, schema, tool, source):
        self.schema, self.tool = schema, tool
        self.values = Values()
        self.held = []  # (envelope, JSON, octets, channel, title)
        messages = [read_message(path) for path in sorted(Path(source, "tests/messages").glob("*.txt"))]
        for channel, (_, name, _) in CHANNELS.items():
            of_channel = [one for one in messages if one[1] == channel]
            for (title, _, octets), value in zip(of_channel, self._decoded(channel, of_channel), strict=True):
                self.values.learn(schema.types[name], value)
                self.held.append((schema.types[name], value, octets, channel, title))
        self.all = {type.name: self._choose(type) for type in schema.types.values()}
        self.all = {name: example for name, example in self.all.items() if example}
        self._fill()

    def _decoded(self, channel, messages):
        """The JSON of messages, all of one channel."""
        lines = "\n".join(octets.hex() for _, _, octets in messages)
        decode = [self.tool, "decode", "--channel", channel, "--in", "hex", "--out", "json"]
        return [json.loads(line) for line in run(decode, lines).splitlines()]

    def _message(self, channel, value):
        choice, field = self.schema.choice(channel)
        inner = value[field.name] if field else value
        name = next(iter(inner))
        return next(one for one in self.schema.messages if one.channel == channel and one.name == name)

    def _choose(self, type):
        best = None
        for envelope, value, octets, channel, title in self.held:
            for path, members in find(envelope, value, type):
                rank = (members, -len(octets))
                if len(octets) <= LONGEST and (best is None or rank > best[0]):
                    best = rank, value, channel, title, path
        if best and (type.kind == "CHOICE" or best[0][0] * 2 >= len(type.members)):
            _, value, channel, title, path = best
            example = Example(type, self._message(channel, value), title, held=True)
            example.json, example.path = value, path
            return example
        return self._made_up(type)

    def _made_up(self, type):
        """Made up, in the message that leads there by the fewest steps; none if no message carries the type."""
        if not type.carriers:
            return None
        ways = [(message, self.schema.reach(message.type)[type]) for message in type.carriers]
        message, way = min(ways, key=lambda one: len(one[1]))
        value = {message.name: self.values.along(way, type)}
        envelope = self.schema.types[message.envelope]
        if envelope.kind == "SEQUENCE":
            value = {envelope.members[0].name: "TRADER01", envelope.members[1].name: value}
        example = Example(type, message, "", held=False)
        example.json = value
        example.path = max(find(envelope, value, type), key=lambda one: one[1])[0]
        return example

    def _fill(self):
        """Octets, tree and JSON of all examples, of each channel at one go."""
        for channel in CHANNELS:
            chosen = [one for one in self.all.values() if one.message.channel == channel]
            documents = "\n".join(json.dumps(one.json) for one in chosen)
            lines = run([self.tool, "encode", "--channel", channel], documents)
            decode = [self.tool, "decode", "--channel", channel, "--in", "hex", "--out"]
            back = run([*decode, "json"], lines).splitlines()
            trees = run([*decode, "tree"], lines).split("offset  octets")[1:]
            for example, line, text, tree in zip(chosen, lines.splitlines(), back, trees, strict=True):
                if json.loads(text) != example.json:
                    raise SystemExit(f"the example of {example.type.name} does not come back: {text}")
                example.octets = bytes.fromhex(line)
                example.rows = tree_rows("offset  octets" + tree)
                for row in example.rows:
                    row.own = row.path[:len(example.path)] == example.path
