#!/usr/bin/python3
"""make.py: the reference and the guide as a static site.

usage: make.py --tool build/release/bin/zyn --compiler build/release/bin/zyn-schema --source . --out build/docs"""
import argparse
import json
import re
import shutil
from pathlib import Path

import jinja2

import guide
import headers
import text
from examples import Examples
from model import CHANNELS, Schema

HERE = Path(__file__).resolve().parent
PARTS = {  # of a channel's page
    "trans-request": "Requests: transactions", "trans-reply": "Replies to transactions",
    "query-request": "Requests: queries", "query-reply": "Replies to queries",
}


class Site:
    def __init__(self, arguments):
        self.source, self.out = arguments.source, Path(arguments.out)
        self.schema = Schema(arguments.tool, arguments.compiler, self.source)
        self.examples = Examples(self.schema, arguments.tool, self.source).all
        self.headers = headers.load(self.source)
        self.guide = guide.pages(self.source)
        self.modules = self.schema.modules
        self.symbols = {name: (header, entry) for header in self.headers for entry in header.entries for name in entry.symbols}
        self.search = []
        self.pages = 0
        self.environments = {}  # a page's folder decides how its links begin
        self._name_pages()

    def _name_pages(self):
        """What a name in a text, and a file of the repository, link to."""
        self.names = {f"{header.name}": header.url() for header in self.headers}
        for name, (header, entry) in self.symbols.items():
            if re.search(r"[A-Z_]", name[1:]):  # others are words of English
                self.names[name] = f"{header.url()}#{name}"
        for header in self.headers:
            for entry in header.entries:
                self.names |= {name: f"{header.url()}#{name}" for name, _, _ in entry.rows}
        self.names |= {name: type.url() for name, type in self.schema.types.items()}
        self.files = {page.path: page.url for page in self.guide}
        self.files |= {f"include/zyn/{header.name}": header.url() for header in self.headers}
        self.files |= {f"records/{module}.asn1": f"modules/{module}.html" for module in self.modules}

    def write(self, template, url, title, **more):
        root = "../" * url.count("/")
        linker = text.Linker(self.names, root)
        if root not in self.environments:
            self.environments[root] = self._environment(linker)
        environment = self.environments[root]
        made = {key: value(linker) if callable(value) else value for key, value in more.items()}
        html = environment.get_template(template).render(site=self, root=root, here=url, title=title, **made)
        path = self.out / url
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(html)
        self.pages += 1

    def _environment(self, linker):
        environment = jinja2.Environment(loader=jinja2.FileSystemLoader(HERE / "templates"), autoescape=True,
                                         trim_blocks=True, lstrip_blocks=True, undefined=jinja2.StrictUndefined)
        environment.filters |= {
            "link_types": linker.text, "link_paragraphs": linker.paragraphs, "doc": linker.doc, "c_code": linker.code,
            "summary": lambda type: text.first_sentence(self.comment(type)), "first_sentence": text.first_sentence,
            "purpose": lambda type: text.purpose(self.comment(type)), "member_anchor": member_anchor,
        }
        return environment

    def comment(self, type):
        """The schema's comment; of the types that ASN.1 has built in, what the header says of theirs."""
        if type.comment or type.name not in self.symbols:
            return type.comment
        return " ".join(self.symbols[type.name][1].paragraphs[0][0].split())

    def records(self):
        for type in self.schema.types.values():
            example = self.examples.get(type.name)
            shown = example and {"octets": text.octets(example), "json": text.json_text(example.json, example.path)}
            definition = self.schema.definition(type)
            self.write("record.html", type.url(), type.name, type=type, comment=self.comment(type), example=example,
                       shown=shown, structure=lambda linker, type=type: linker.code(self.schema.structure(type)),
                       init=lambda linker, type=type: linker.code(self.schema.init(type), "cpp"),
                       definition=lambda linker, definition=definition: linker.asn1(definition))
            self.search.append([type.name, type.url(), f"{type.kind}, {type.module}" if type.module else type.kind])
        modules = [(module, comment, self.schema.of_module(module)) for module, comment in self.modules.items()]
        built_in = [type for type in self.schema.types.values() if type.primitive]
        modules.append(("Built in", "What the fields of all records are made of in the end.", built_in))
        self.write("records.html", "records/index.html", "All records", modules=modules,
                   count=sum(not type.primitive for type in self.schema.types.values()))

    def module_pages(self):
        for module, comment in self.modules.items():
            types = self.schema.of_module(module)
            codes = [code for type in types for code in type.codes]
            self.write("module.html", f"modules/{module}.html", module, module=module, comment=comment, types=types, codes=codes)
            self.search.append([module, f"modules/{module}.html", "module"])

    def channels(self):
        leads = {"transactions": "What changes something: a ZynTransReq is answered by one ZynTransRep.",
                 "queries": "What only reads: a ZynQueryReq is answered by ZynQueryRep records."}
        for page, lead in leads.items():
            parts = []
            for channel in (one for one in CHANNELS if CHANNELS[one][0] == page):
                choice, _ = self.schema.choice(channel)
                messages = [one for one in self.schema.messages if one.channel == channel]
                parts.append({"channel": channel, "heading": PARTS[channel], "choice": choice,
                              "envelope": self.schema.types[CHANNELS[channel][1]],
                              "messages": list(zip(messages, choice.members, strict=True))})
                self.search += [[one.name, one.url(), f"{one.title} {one.number}, {one.type.name}"] for one in messages]
            self.write("channel.html", f"channels/{page}.html", page.capitalize(), parts=parts,
                       lead=lambda linker, lead=lead: linker.text(lead))

    def header_pages(self):
        for header in self.headers:
            included = re.findall(r'#include "zyn/([\w./]+)"', header.text)
            header.includes = [one for one in self.headers if one.name in included]
            self.write("header.html", header.url(), header.name, header=header)
            self.search.append([header.name, header.url(), "header"])
        for name, (header, _) in self.symbols.items():
            if name not in self.schema.types:
                self.search.append([name, f"{header.url()}#{name}", header.name])
        for header in self.headers:
            for entry in header.entries:
                self.search += [[f"{name} {number}", f"{header.url()}#{name}", meaning] for name, number, meaning in entry.rows]

    def guide_pages(self):
        for page, following in zip(self.guide, self.guide[1:] + [None]):
            renderer = guide.Renderer(self.source, self.out, self.files, text.Linker(self.names, "../"))
            body = renderer.body(page)
            self.write("guide.html", page.url, page.title, body=body, next=following)
            self.search.append([page.title, page.url, "guide"])
            for anchor, heading in re.findall(r'<h2 id="([^"]+)">(.*?)</h2>', body):
                self.search.append([re.sub(r"<[^>]*>", "", heading), f"{page.url}#{anchor}", f"guide: {page.title}"])

    def home(self):
        readme = Path(self.source, "README.md").read_text()
        about = " ".join(readme.split("\n\n")[1].split())
        cards = [{"url": page.url, "title": page.title, "text": page.about} for page in self.guide]
        cards += [
            {"url": "channels/transactions.html", "title": "Transactions", "text": "All that can be asked to be done, by number."},
            {"url": "channels/queries.html", "title": "Queries", "text": "All that can be asked for, by number."},
            {"url": "records/index.html", "title": "Records", "text": "Every type: its fields, codes and an example."},
            {"url": "headers/zyn.h.html", "title": "Headers", "text": "Every function and type of the C interface."},
        ]
        self.write("home.html", "index.html", "Reference and guide", about=about, cards=cards)

    def index(self):
        """A script, not JSON: pages from a file:// address may not read files, but may run scripts."""
        fields = {}
        types = list(self.schema.types.values())
        for number, type in enumerate(types):
            for member in type.members if type.kind == "SEQUENCE" else []:
                fields.setdefault(member.name, []).append(number)
        dump = lambda value: json.dumps(value, separators=(",", ":"), ensure_ascii=False)
        entries = dump(self.search)
        (self.out / "search-index.js").write_text(
            f"const zynEntries = {entries};\nconst zynTypes = {dump([type.name for type in types])};\nconst zynFields = {dump(fields)};\n")
        for name in ("style.css", "site.js"):
            shutil.copyfile(HERE / name, self.out / name)


def member_anchor(type, name):
    if "." not in name:
        return ""
    return f"#{'alternative' if type.kind == 'CHOICE' else 'field'}-{name.split('.')[1]}"


def main():
    parser = argparse.ArgumentParser()
    for name in ("tool", "compiler", "source", "out"):
        parser.add_argument(f"--{name}", required=True)
    arguments = parser.parse_args()
    shutil.rmtree(arguments.out, ignore_errors=True)
    site = Site(arguments)
    site.records()
    site.module_pages()
    site.channels()
    site.header_pages()
    site.guide_pages()
    site.home()
    site.index()
    print(f"{site.pages} pages in {arguments.out}, {len(site.examples)} examples, {len(site.search)} entries to search")


if __name__ == "__main__":
    main()
