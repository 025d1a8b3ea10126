"""The public headers as pages: what stands ahead of a header's declarations, and each comment with the declarations that
follow it."""
import re
from pathlib import Path

COMMENT = re.compile(r"/\*(.*?)\*/|((?:^[ \t]*//[^\n]*\n?)+)", re.S | re.M)
CODES = re.compile(r"^\s*X\((\w+), (-\d+), \"([^\"]*)\"\)", re.M)
NO_SYMBOLS = {"if", "for", "while", "switch", "return", "sizeof", "else", "static_assert", "requires", "noexcept"}


class Entry:
    """A comment and the declarations that it is for; one of the two may be missing."""

    def __init__(self, comment, code):
        self.paragraphs = paragraphs(comment)
        self.code = code
        self.symbols = symbols(code)
        self.rows = CODES.findall(code)

    def anchor(self):
        return self.symbols[0] if self.symbols else None


def paragraphs(comment):
    """Paragraphs of a comment: (text, whether its columns are to be kept)."""
    lines = [re.sub(r"^\s*(?:///?|\*)? ?", "", line).rstrip() for line in comment.strip("\n").split("\n")]
    blocks = "\n".join(lines).strip("\n").split("\n\n")
    out = []
    for block in blocks:
        if block.startswith("    "):  # code, of which an empty line is a part
            parts = [out.pop()[0]] if out and out[-1][1] else []
            out.append(("\n\n".join([*parts, re.sub(r"^    ", "", block, flags=re.M)]), True))
        elif re.search(r"\S {3,}\S", block):
            out.append((block, True))
        elif block.strip():
            out += [(part, False) for part in parted(block)]
    return out


def parted(block):
    """Parts a block where its writer did: a line ends although the next word would have fitted."""
    lines, parts = block.split("\n"), [""]
    longest = max(map(len, lines))
    for line, following in zip(lines, lines[1:] + [""]):
        parts[-1] += (" " if parts[-1] else "") + line
        if following and line.endswith((".", ":", ";")) and len(line) + 1 + len(following.split()[0]) + 8 < longest:
            parts.append("")
    return parts


def symbols(code):
    """What the declarations of an entry name: functions, types, macros and variables; no members."""
    outside, depth, macro = [], 0, False
    for line in code.split("\n"):
        if macro or line.startswith("#"):
            if not macro:
                outside.append(line)
            macro = line.endswith("\\")
            continue
        if depth == 0 or re.match(r"^\} ?\w", line):
            outside.append(line)
        depth += line.count("{") - line.count("}")
    found = [] # of what is there twice, as a type that is named ahead, the last counts
    for line in join_lines(outside):
        name = symbol(line)
        if name and name not in NO_SYMBOLS and name not in found:
            found.append(name)
    return found


def join_lines(lines):
    """Declarations of several lines in one."""
    out = []
    for line in lines:
        if out and out[-1].count("(") > out[-1].count(")"):
            out[-1] += " " + line.strip()
        else:
            out.append(line)
    return out


def symbol(line):
    line = re.sub(r"^(?:ZYN_API|static inline|static|inline|constexpr|extern|ZYN_API extern) +", "", line)
    line = re.sub(r"^extern +", "", line)
    line = re.sub(r"^template <.*> (?=class|struct|using|concept)", "", line)
    if re.match(r"^\s*(//|/\*|\*|#(?!define))", line) or not line.strip():
        return None
    if found := re.match(r"^#define (\w+)", line):
        return found[1]
    if found := re.match(r"^typedef .*\(\*(\w+)\)", line):
        return found[1]
    if found := re.match(r"^(?:typedef .*?|\} ?)(\w+);", line):
        return found[1]
    if found := re.match(r"^(?:typedef )?(?:struct|enum class|enum|class|union) (?:\[\[\w+\]\] )?(\w+)", line):
        return found[1]
    if found := re.match(r"^(?:using|concept) (\w+)", line):
        return found[1]
    if found := re.match(r"^[\w:<>*&,\[\] ]*?\b(\w+)\s*\(", line):
        return found[1]
    if found := re.match(r"^[\w ]+?[ *]+(\w+)(?:\[\w+\])?;", line):
        return found[1]
    return None


class Header:
    def __init__(self, path, folder):
        self.name = path.relative_to(folder).as_posix()
        self.text = path.read_text()
        self.entries = []
        self._read(strip_frame(self.text))

    def url(self):
        return f"headers/{self.name.replace('/', '-')}.html"

    def summary(self):
        return self.opening[0][0] if self.opening else ""

    def _read(self, text):
        """Parts the text at the comments that start a line of their own outside of braces."""
        self.opening = []
        pieces = []  # (comment, code)
        at, depth = 0, 0
        while at < len(text):
            end = text.find("\n", at)
            end = len(text) if end < 0 else end
            line = text[at:end]
            if depth == 0 and (found := COMMENT.match(text, at)) and not line.startswith((" ", "\t")):
                pieces.append([found[1] or found[2], ""])
                at = found.end() + (text[found.end():found.end() + 1] == "\n")
                if text[at:at + 1] == "\n":  # an empty line: the comment stands for itself
                    pieces.append([None, ""])
                continue
            if not pieces:
                pieces.append([None, ""])
            pieces[-1][1] += line + "\n"
            depth += opened(line)
            at = end + 1
        for number, (comment, code) in enumerate(pieces):
            code = re.sub(r"\n{2,}", "\n\n", code).strip("\n")
            if number == 0 and comment is not None and not code:
                self.opening = paragraphs(comment)
            elif comment is not None or code:
                self._add(Entry(comment or "", code))

    def _add(self, entry):
        last = self.entries[-1] if self.entries else None
        if last and last.code and not entry.paragraphs:
            last.code += "\n" + entry.code
            last.symbols += [one for one in entry.symbols if one not in last.symbols]
        else:
            self.entries.append(entry)


def opened(line):
    """How many braces a line leaves open; those of namespaces and of extern "C" do not count."""
    if re.match(r"^(?:inline )?namespace\b|^extern \"C\"|^\} // namespace", line):
        return 0
    bare = re.sub(r"//.*|/\*.*?\*/|\"[^\"]*\"", "", line)
    return bare.count("{") - bare.count("}") + bare.count("(") - bare.count(")")


def strip_frame(text):
    """Without guard, includes and what makes a header fit for C++ as well."""
    text = re.sub(r"#ifdef __cplusplus\n(?:extern \"C\" \{|\})\n#endif\n", "", text)
    text = re.sub(r"^#(?:ifndef|define) \w+_H(?:PP)?_?\n", "", text, flags=re.M)
    text = re.sub(r"^#pragma once\n", "", text, flags=re.M)
    text = re.sub(r"^#include .*\n", "", text, flags=re.M)
    text = re.sub(r"#if defined\(__GNUC__\)\n#define ZYN_API.*?#endif\n", "", text, flags=re.S)
    text = re.sub(r"\n#endif\s*$", "\n", text)
    # Of C++ what users write: neither what is private, nor the names of namespaces.
    text = re.sub(r"^namespace detail \{\n.*?^\} // namespace detail\n", "", text, flags=re.M | re.S)
    text = re.sub(r"\n+^private:\n.*?(?=^\};)", "\n", text, flags=re.M | re.S)
    text = re.sub(r"^namespace zyn \{\n|^\} // namespace zyn\n", "", text, flags=re.M)
    opening = re.match(r"\s*(/\*.*?\*/\n|(?://[^\n]*\n)+)", text, re.S)  # it stands for itself, whatever follows
    if opening:
        text = opening[1] + "\n" + text[opening.end():]
    return text


def load(source):
    folder = Path(source, "include/zyn")
    paths = [*sorted(folder.glob("*.h")), *sorted(folder.glob("*.hpp")), *folder.glob("cpp/base.hpp")]
    return [Header(path, folder) for path in paths]
