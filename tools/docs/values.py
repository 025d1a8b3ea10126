"""Records made up for the examples: each member gets a value that its name suggests.

Values come first from the messages that the tests hold, where a member of the same name and kind has one, then from the
rules below."""
import re

NUMBERS = [  # name, value
    (r"(?i)date$", 20261123),
    (r"(time|Time)$", 93000),
    (r"millisec", 417),
    (r"decimals$|Decimals$", 2),
    (r"seqNum|obSeqNum", 1843),
    (r"recNum", 1),
    (r"(?i)quantity|qty|balance|depth|bought|sold|planned", 5000),
    (r"^(num|max)", 12),
    (r"No$|Id$|Idx$|Index$|Num$", 7),
    (r"(?i)timeout|interval|seconds|secs", 30),
]
TEXTS = [
    (r"Id$", lambda name: name[:-2].upper()[:8] + "-1"),
    (r"Name$", lambda name: re.sub(r"([A-Z])", r" \1", name).capitalize()),
    (r"No$|Number$", lambda name: "26112300004711"),
    (r"(?i)ipaddr|ip[A-Z]", lambda name: "192.0.2.17"),
    (r"(?i)password", lambda name: "open sesame"),
    (r"(?i)text|message|remarks|desc|title|info", lambda name: "Hours of trading change on Friday"),
    (r"", lambda name: name[:10].upper()),
]
REALS = [(r"(?i)yield", 3.875), (r"(?i)value$|limit|amount|load|balance", 1250000.0), (r"", 48.35)]


def first(rules, name, otherwise=None):
    return next((value for pattern, value in rules if re.search(pattern, name)), otherwise)


class Values:
    """learned: (name of the member, name of its type) to the value that a message of the tests has there."""

    def __init__(self):
        self.learned = {}

    def learn(self, type, value):
        if type.kind == "SET OF":
            for element in value:
                self.learn(type.element, element)
        if type.kind not in ("SEQUENCE", "CHOICE"):
            return
        for member in type.members:
            if member.name in value:
                self.learned.setdefault((member.name, member.type.name), value[member.name])
                self.learn(member.type, value[member.name])

    def primitive(self, kind, name):
        if kind == "INTEGER":
            return first(NUMBERS, name, 1)
        if kind == "ENUMERATED":
            return 1
        if kind == "BOOLEAN":
            return True
        if kind == "REAL":
            return first(REALS, name)
        if kind == "BIT STRING":
            return {"bits": "0010000110"}
        return first(TEXTS, name)(name)

    def make(self, type, name="", full=False):
        """A value of a type. full: with all OPTIONAL members; otherwise only where without them nothing would be left."""
        if (name, type.name) in self.learned and not full:
            return self.learned[(name, type.name)]
        if type.kind == "CHOICE":
            member = type.members[0]
            return {member.name: self.make(member.type, member.name)}
        if type.kind == "SET OF":
            return [self.make(type.element, name, full=True)]
        if type.kind != "SEQUENCE":
            return self.primitive(type.kind, name)
        kept = [member for member in type.members if full or not member.optional] or type.members
        if type.name == "AsnFixedReal":  # whose name is that of the price or amount
            return {"value": first(REALS, name), "decimals": 2}
        if type.name == "AsnLongInt":
            return {"value": 412650}
        return {member.name: self.make(member.type, member.name) for member in kept}

    def along(self, way, type):
        """A value of the type that a way starts from, with a full value of type at its end."""
        if not way:
            return self.make(type, full=True)
        holder, member = way[0]
        below = self.along(way[1:], type)
        if member is None:
            return [below]
        if holder.kind == "CHOICE":
            return {member.name: below}
        value = self.make_required(holder)
        value[member.name] = below
        return {one.name: value[one.name] for one in holder.members if one.name in value}

    def make_required(self, type):
        return {member.name: self.make(member.type, member.name) for member in type.members if not member.optional}
