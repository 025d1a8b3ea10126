"""The schema as the pages see it: what the tool tells of each type, with the comments of the modules and the links between
types in both directions."""
import json
import re
import subprocess
import tempfile
from collections import deque
from pathlib import Path

CHANNELS = {  # as the tool names them: the page, the envelope, and what a message of it is called
    "trans-request": ("transactions", "ZynTransReq", "transaction"),
    "trans-reply": ("transactions", "ZynTransRep", "transaction reply"),
    "query-request": ("queries", "ZynQueryReq", "query"),
    "query-reply": ("queries", "ZynQueryRep", "query reply"),
}


def run(command, text=None):
    done = subprocess.run(command, input=text, capture_output=True, text=True)
    if done.returncode != 0:
        raise SystemExit(f"{' '.join(map(str, command))} ended in {done.returncode}: {done.stderr.strip()}")
    return done.stdout


class Member:
    """A field of a SEQUENCE or an alternative of a CHOICE."""

    def __init__(self, described, remarks):
        self.name = described["name"]
        self.type = described["type"]  # the name; Schema puts the Type in its place
        self.number = described.get("number")
        self.octets = described.get("tag", "")
        self.optional = described.get("optional", False)
        self.explicit = described["explicit"]
        self.tag = remarks.get("tag", "")
        self.above = remarks.get("above", "")
        self.behind = remarks.get("behind", "")

    def octets_title(self):
        """The octets of the tag, and behind a bar how a string opens that comes in pieces."""
        if not self.octets:
            return "that of its alternative"
        if self.type.kind not in ("OCTET STRING", "BIT STRING") or self.explicit:
            return self.octets
        return f"{self.octets} | {int(self.octets[:2], 16) | 0x20:02X}{self.octets[2:]}"


class Type:
    def __init__(self, described, remarks):
        self.name = described["name"]
        self.kind = described["kind"]
        self.module = described.get("module", "")
        self.size = described["size"]
        self.element = described.get("element")
        self.codes = described["codes"]
        self.comment = remarks.get("comment", "")
        self.line = remarks.get("line", 0)
        by_name = {member["name"]: member for member in remarks.get("members", [])}
        listed = described.get("fields", []) or described.get("alternatives", [])
        self.members = [Member(member, by_name.get(member["name"], {})) for member in listed]
        self.used_by = []  # (type, how it names this one)
        self.messages = []  # those whose record this is
        self.carriers = []  # those that have it anywhere below
        self.envelope = None  # the page of the channel that it is the envelope of, or the choice in that

    @property
    def primitive(self):
        return not self.module

    def url(self):
        return f"records/{self.name}.html"

    def uses(self):
        """The types of the members, each once, in their order."""
        held = [member.type for member in self.members] + ([self.element] if self.element else [])
        return list(dict.fromkeys(held))


class Message:
    """An alternative of one of the four choices that travel."""

    def __init__(self, channel, member):
        self.channel = channel
        self.page, self.envelope, self.title = CHANNELS[channel]
        self.name = member.name
        self.number = member.number
        self.type = member.type

    def anchor(self):
        return f"{self.channel}-{self.name}"

    def url(self):
        return f"channels/{self.page}.html#{self.anchor()}"


class Schema:
    def __init__(self, tool, compiler, source):
        described = [json.loads(line) for line in run([tool, "schema", "--json"]).splitlines()]
        modules = sorted(Path(source, "records").glob("*.asn1"))
        with tempfile.TemporaryDirectory() as folder:
            run([compiler, "--remarks", f"{folder}/remarks.json", *modules])
            said = [json.loads(line) for line in Path(folder, "remarks.json").read_text().splitlines()]
        remarks = {one["type"]: one for one in said if "type" in one}
        self.types = {one["name"]: Type(one, remarks.get(one["name"], {})) for one in described}
        self.modules = {one["module"]: one["comment"] for one in said if "type" not in one}
        self.texts = {path.stem: path.read_text() for path in modules}
        self.structures = {path.stem: path.read_text() for path in Path(source, "include/zyn/records").glob("*.h")}
        self.inits = {path.stem: path.read_text() for path in Path(source, "include/zyn/cpp").glob("*.hpp")}
        self._link(remarks)
        self._carry()

    def _link(self, remarks):
        for type in self.types.values():
            if not type.primitive and type.name not in remarks:
                raise SystemExit(f"{type.name} of the library is in no module of records/")
            if type.element:
                type.element = self.types[type.element]
                type.element.used_by.append((type, f"{type.name}[]"))
            for member in type.members:
                member.type = self.types[member.type]
                member.type.used_by.append((type, f"{type.name}.{member.name}"))

    def choice(self, channel):
        """The CHOICE of a channel's messages, and the field of the envelope that holds it, if one does."""
        envelope = self.types[CHANNELS[channel][1]]
        if envelope.kind == "CHOICE":
            return envelope, None
        return envelope.members[1].type, envelope.members[1]

    def _carry(self):
        self.messages = []
        for channel, (page, envelope, _) in CHANNELS.items():
            self.types[envelope].envelope = self.choice(channel)[0].envelope = page
            for member in self.choice(channel)[0].members:
                message = Message(channel, member)
                self.messages.append(message)
                member.type.messages.append(message)
                for type in self.reach(member.type):
                    type.carriers.append(message)

    def reach(self, start):
        """A type and all below it, the nearest first, each with the way that leads there: (type, member) steps."""
        ways = {start: ()}
        queue = deque([start])
        while queue:
            type = queue.popleft()
            for member in type.members:
                if member.type not in ways:
                    ways[member.type] = ways[type] + ((type, member),)
                    queue.append(member.type)
            if type.element and type.element not in ways:
                ways[type.element] = ways[type] + ((type, None),)
                queue.append(type.element)
        return ways

    def of_module(self, module):
        return [type for type in self.types.values() if type.module == module]

    def definition(self, type):
        """What the module's text has of a type, from its name to the end of the braces."""
        if type.primitive:
            return ""
        text = self.texts[type.module].split("\n")
        lines = []
        for line in text[type.line - 1:]:
            lines.append(line)
            bare = "\n".join(re.sub(r"--.*", "", one) for one in lines)
            if bare.count("{") == bare.count("}") and "::=" in bare:
                break
        return "\n".join(lines)

    def structure(self, type):
        """What the generated header has of a type."""
        text = self.structures.get(type.module, "")
        found = re.search(rf"^struct {type.name} \{{\n.*?^\}};$", text, re.M | re.S)
        found = found or re.search(rf"^typedef [^;]*\b{type.name};.*$", text, re.M)
        return found.group(0) if found else ""

    def init(self, type):
        """What the generated header for C++ has to build a type with, without what is no field."""
        found = re.search(rf"^template <> struct Init<{type.name}> \{{\n.*?^\}};$", self.inits.get(type.module, ""), re.M | re.S)
        return re.sub(r"\n*    void fill\(.*\n", "\n", found.group(0)) if found else ""
