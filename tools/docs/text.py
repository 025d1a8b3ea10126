"""Text as HTML: links on the names of types and symbols, code in colours, octets and JSON with a part highlighted."""
import json
import re

from markupsafe import Markup, escape
from pygments import highlight
from pygments.formatters import HtmlFormatter
from pygments.lexers import get_lexer_by_name

NAME = re.compile(r"\b[A-Za-z_]\w+\b(?:\.h\b)?")


def first_sentence(text):
    return re.split(r"(?<=[.])\s", text, maxsplit=1)[0] if text else ""


def purpose(text):
    """The first sentence of a record's comment without the message that it is, where that stands beside it."""
    return re.sub(r": (?:transaction|query)(?: reply)? \d+, \w+\.$", ".", first_sentence(text))


class Linker:
    """names: what is linked, to its page and anchor."""

    def __init__(self, names, root):
        self.names, self.root = names, root

    def href(self, name):
        url = self.names.get(name)
        return url and self.root + url

    def text(self, text):
        """Text with links on the names in it."""
        def linked(found):
            href = self.href(found[0])
            return f'<a href="{href}">{found[0]}</a>' if href else found[0]
        return Markup(NAME.sub(linked, str(escape(text))))

    def paragraphs(self, text):
        return Markup("\n").join(Markup("<p>{}</p>").format(self.text(one)) for one in text.split("\n"))

    def doc(self, paragraphs):
        """Paragraphs of a header; those with columns keep them."""
        form = {True: Markup("<pre class=\"table\">{}</pre>"), False: Markup("<p>{}</p>")}
        return Markup("\n").join(form[columns].format(self.text(text)) for text, columns in paragraphs)

    def code(self, text, language="c"):
        """Code in colours, with links on the names in it."""
        text = re.sub(r"\bZYN_API ", "", text)
        html = highlight(text, get_lexer_by_name(language), HtmlFormatter(nowrap=True))
        parts = re.split(r"(<[^>]*>)", html)
        comment = False
        for i, part in enumerate(parts):
            if part.startswith("<span class"):
                comment = re.match(r'<span class="[cs]', part) is not None  # comments and strings stay as they are
            elif not part.startswith("<") and not comment:
                parts[i] = re.sub(r"\b[A-Za-z_]\w+\b", self._plain, part)
        return Markup("".join(parts).rstrip("\n"))

    def _plain(self, found):
        href = self.href(found[0])
        return f'<a href="{href}">{found[0]}</a>' if href else found[0]

    def asn1(self, text):
        """A definition in ASN.1, with its comments and words told apart."""
        out = []
        for line in text.split("\n"):
            code, mark, comment = line.partition("--")
            code = re.sub(r"\b(SEQUENCE|CHOICE|SET OF|OPTIONAL|EXPLICIT|IMPLICIT|OCTET STRING|BIT STRING|INTEGER|BOOLEAN|REAL)\b",
                          r'<span class="k">\1</span>', str(self.text(code)))
            out.append(code + (f'<span class="c1">--{self.text(comment)}</span>' if mark else ""))
        return Markup("\n".join(out))


def octets(example):
    """The octets of a message, those of the example's own type in a mark, each for the script to find."""
    own = [row for row in example.rows if row.own]
    start = own[0].offset if own else 0
    end = start + own[0].size(example.octets)[1] if own else 0
    for row in own:
        end = max(end, row.offset + row.size(example.octets)[1])
    if not example.path:
        start = end = 0
    cells = [f"{octet:02X}" for octet in example.octets]
    if end > start:
        cells[start] = "<mark>" + cells[start]
        cells[end - 1] += "</mark>"
    return Markup(" ".join(cells))


def json_text(value, own):
    """JSON over several lines, what is short in one; the value at the path own in a mark."""
    return Markup(json_lines(value, own, (), 0))


def json_lines(value, own, path, used):
    """used: the columns of the line that are taken ahead of the value."""
    text = json.dumps(value, ensure_ascii=False)
    leads = len(path) < len(own) and own[:len(path)] == path
    if isinstance(value, (dict, list)) and value and (leads or used + len(text) > 38):
        depth = len(path)
        pad = "  " * (depth + 1)
        lines = []
        for key, one in value.items() if isinstance(value, dict) else enumerate(value):
            name = f"{json.dumps(key)}: " if isinstance(value, dict) else ""
            lines.append(pad + name + json_lines(one, own, path + (key,), len(pad + name)))
        ends = "{}" if isinstance(value, dict) else "[]"
        html = ends[0] + "\n" + ",\n".join(lines) + "\n" + "  " * depth + ends[1]
    else:
        html = str(escape(text))
    return f"<mark>{html}</mark>" if path and path == own else html
