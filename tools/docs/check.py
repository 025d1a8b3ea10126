#!/usr/bin/python3
"""check.py: what has to hold of the site, looked at in the finished pages alone, beside what the tool says of the schema.

usage: check.py --tool build/release/bin/zyn --source . --site build/docs

No link and no anchor leads nowhere. Each type has a page, which has each field or alternative with its tag, type and presence,
each failure code, and a link on each use; each message stands on its channel's page and is linked from its record. The
octets of each example decode to the JSON beside them, and its tree has an element for each of their values. Each function and
variable of a public header stands on the header's page, behind a word on it."""
import argparse
import html.parser
import json
import re
import subprocess
import sys
from pathlib import Path
from posixpath import normpath

VOID = {"meta", "link", "input", "img", "br", "hr"}


class Element:
    def __init__(self, name, attributes, parent):
        self.name, self.attributes, self.parent = name, attributes, parent
        self.children = []

    def text(self):
        return "".join(one if isinstance(one, str) else one.text() for one in self.children)

    def all(self, name, **attributes):
        """The elements of a name below this one, with attributes of these values."""
        for child in self.children:
            if isinstance(child, Element):
                if child.name == name and all(child.attributes.get(key) == value for key, value in attributes.items()):
                    yield child
                yield from child.all(name, **attributes)


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.whole = self.at = Element("", {}, None)
        self.ids, self.links = set(), []
        self.feed(path.read_text())
        self.close()

    def handle_starttag(self, tag, attributes):
        element = Element(tag, {key.replace("-", "_"): value for key, value in attributes}, self.at)
        self.at.children.append(element)
        if "id" in element.attributes:
            self.ids.add(element.attributes["id"])
        self.links += [element.attributes[key] for key in ("href", "src") if key in element.attributes]
        if tag not in VOID:
            self.at = element

    def handle_startendtag(self, tag, attributes):
        self.handle_starttag(tag, attributes)
        if tag not in VOID:
            self.at = self.at.parent

    def handle_endtag(self, tag):
        if self.at.name == tag:
            self.at = self.at.parent

    def handle_data(self, data):
        self.at.children.append(data)

    def row(self, id):
        """The cells of the row of a table."""
        found = next(self.whole.all("tr", id=id), None)
        return found and list(found.all("td"))


class Check:
    def __init__(self, tool, site):
        self.tool, self.site = tool, Path(site)
        self.faults = []
        self.pages = {str(path.relative_to(site)): Page(path) for path in sorted(self.site.rglob("*.html"))}
        described = subprocess.run([tool, "schema", "--json"], check=True, capture_output=True, text=True).stdout
        self.types = {one["name"]: one for one in map(json.loads, described.splitlines())}
        self.examples = []  # (page, octets, JSON)

    def fault(self, page, text):
        self.faults.append(f"{page}: {text}")

    def leads(self, page, reference):
        """Whether a reference on a page leads somewhere; what leaves the site is refused, for no network is needed."""
        path, _, anchor = reference.partition("#")
        target = normpath(f"{Path(page).parent}/{path}") if path else page
        if target in self.pages:
            return not anchor or anchor in self.pages[target].ids
        return not re.match(r"\w+:|//", reference) and not anchor and (self.site / target).is_file()

    def links(self):
        for name, page in self.pages.items():
            for reference in page.links:
                if not self.leads(name, reference):
                    self.fault(name, f"the link {reference} leads nowhere")
        script = (self.site / "search-index.js").read_text()
        entries, types, fields = (json.loads(line.split(" = ", 1)[1].rstrip(";")) for line in script.splitlines())
        for name, address, _ in entries:
            if not self.leads("index.html", address):
                self.fault("search-index.js", f"{name} is said to be at {address}")
        for name, numbers in fields.items():
            for number in numbers:
                if not self.leads("index.html", f"records/{types[number]}.html#field-{name}"):
                    self.fault("search-index.js", f"{types[number]} has no field {name}")
        if missing := self.types.keys() - {name for name, _, _ in entries}:
            self.fault("search-index.js", f"not to be found: {sorted(missing)}")

    def headers(self, source):
        for path in sorted(Path(source, "include/zyn").glob("*.h*")):
            name = f"headers/{path.name}.html"
            page = self.pages.get(name)
            if page is None:
                self.fault(name, "there is no page for the header")
                continue
            text = re.sub(r"/\*.*?\*/|\\\n", "", path.read_text(), flags=re.S)
            text = re.sub(r"^#.*", "", text, flags=re.M)
            declared = re.findall(r"\bZYN_API [^;()]*?(\w+)(?:\[\w+\])?(?:;|\()", text)
            entries = [one for one in page.whole.all("section", **{"class": "entry"}) if next(one.all("p"), None)]
            told = {one.attributes["id"] for entry in entries for one in entry.all("span") if "id" in one.attributes}
            if missing := set(declared) - told:
                self.fault(name, f"nothing is said of {sorted(missing)}")

    def type_page(self, type):
        name = f"records/{type['name']}.html"
        page = self.pages.get(name)
        if page is None:
            return self.fault(name, "there is no page for the type")
        if not "".join(one.text() for one in page.whole.all("div", **{"class": "lead"})).strip():
            self.fault(name, "it is not said what the type is for")
        for kind, members in (("field", type.get("fields", [])), ("alternative", type.get("alternatives", []))):
            for member in members:
                self.member(name, page, kind, member)
        for code in type["codes"]:
            row = page.row(f"code{code['code']}")
            if not row or row[1].text() != code["text"]:
                self.fault(name, f"code {code['code']} is not told as the library does")
        section = {one.attributes.get("href") for one in page.whole.all("a")}
        for use in type["usedIn"]:
            user = re.split(r"[.\[]", use)[0]
            if not any(one and one.split("#")[0] == f"../records/{user}.html" for one in section):
                self.fault(name, f"no link to {use}, where it is used")
        for message in type.get("messages", []):
            self.message(name, type, message, section)
        return self.example(name, type, page)

    def member(self, name, page, kind, member):
        cells = page.row(f"{kind}-{member['name']}")
        if not cells:
            return self.fault(name, f"no row for the {kind} {member['name']}")
        texts = [cell.text().strip() for cell in cells]
        octets = member.get("tag", "")
        wanted = [member["name"], member["type"]] + ([str(member["number"])] if "number" in member else
                                                    ["optional" if member["optional"] else "required"])
        if missing := [one for one in wanted if one not in texts]:
            self.fault(name, f"the row of {member['name']} lacks {missing}")
        if octets and not any(text.startswith(octets) for text in texts):
            self.fault(name, f"the row of {member['name']} lacks its tag {octets}")
        if not any(one.attributes["href"] == f"../records/{member['type']}.html" for cell in cells for one in cell.all("a")):
            self.fault(name, f"the row of {member['name']} has no link to {member['type']}")
        return None

    def message(self, name, type, message, links):
        channel = "transactions" if message["channel"].startswith("trans") else "queries"
        anchor = f"{message['channel']}-{message['name']}"
        cells = self.pages[f"channels/{channel}.html"].row(anchor)
        texts = [cell.text().strip() for cell in cells or []]
        if not {str(message["number"]), message["name"], type["name"]} <= set(texts):
            self.fault(f"channels/{channel}.html", f"no row for {message['channel']} {message['number']}, {message['name']}")
        if f"../channels/{channel}.html#{anchor}" not in links:
            self.fault(name, f"no link to the message {message['name']}")

    def carried(self, type):
        """Whether there are messages with the type."""
        envelope = type["kind"] == "CHOICE" or any(self.types[one["type"]]["kind"] == "CHOICE" for one in type.get("fields", []))
        return envelope or bool(type["usedIn"]) or "messages" in type

    def shows(self, type, value):
        """Whether JSON is a value of the type."""
        if type["kind"] == "SEQUENCE":
            required = {field["name"] for field in type["fields"] if not field["optional"]}
            return isinstance(value, dict) and required <= value.keys() <= {field["name"] for field in type["fields"]}
        if type["kind"] == "CHOICE":
            return isinstance(value, dict) and len(value) == 1 and value.keys() <= {one["name"] for one in type["alternatives"]}
        return isinstance(value, list) == (type["kind"] == "SET OF")

    def example(self, name, type, page):
        block = next(page.whole.all("div", **{"class": "example"}), None)
        if block is None:
            if self.carried(type):
                self.fault(name, "there is no example")
            return None
        octets = block.attributes["data_octets"]
        shown = next(block.all("pre", **{"class": "octets"})).text()
        text = next(block.all("pre", **{"class": "json"}))
        value = json.loads(text.text())
        if not self.shows(type, json.loads(next(text.all("mark"), text).text())):
            self.fault(name, "what is highlighted in the JSON is not of the type")
        if octets.split() != shown.split():
            self.fault(name, "the octets shown are not those of the example")
        self.examples.append((name, octets, value))
        rows = [[cell.text().strip() for cell in row.all("td")] for row in block.all("tr")]
        starts, values = [int(row[0]) for row in rows], [row[4] for row in rows if row[4]]
        if starts != sorted(starts) or starts[:1] != [0]:
            self.fault(name, "the elements of the tree are not in their order")
        if len(values) != leaves(value):
            self.fault(name, f"the tree has {len(values)} values, the JSON {leaves(value)}")
        return None

    def decode(self, octets):
        """The JSON of messages, a line each; one that is bad has none."""
        command = [self.tool, "decode", "--in", "hex", "--out", "json"]
        return subprocess.run(command, input="\n".join(octets), capture_output=True, text=True).stdout.splitlines()

    def decode_examples(self):
        texts = self.decode(octets for _, octets, _ in self.examples)
        if len(texts) != len(self.examples):  # some are bad: one by one
            texts = ["".join(self.decode([octets])) for _, octets, _ in self.examples]
        for (name, _, value), text in zip(self.examples, texts, strict=True):
            if not text or json.loads(text) != value:
                self.fault(name, f"the octets do not decode to the JSON, but to {text or 'nothing'}")


def leaves(value):
    """How many primitive values JSON holds."""
    if isinstance(value, dict):
        return 1 if value.keys() & {"hex", "bits"} else sum(map(leaves, value.values()))
    return sum(map(leaves, value)) if isinstance(value, list) else 1


def main():
    parser = argparse.ArgumentParser()
    for name in ("tool", "source", "site"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    check = Check(arguments.tool, arguments.site)
    check.links()
    check.headers(arguments.source)
    for type in check.types.values():
        check.type_page(type)
    check.decode_examples()
    for fault in check.faults:
        print(fault)
    links = sum(len(page.links) for page in check.pages.values())
    print(f"{len(check.pages)} pages, {links} links, {len(check.types)} types, {len(check.examples)} examples: {len(check.faults)} faults")
    sys.exit(1 if check.faults else 0)


if __name__ == "__main__":
    main()
