"""The guide: Markdown files as pages. docs/guide/README.md opens it and gives the order by its links; what else there is in
docs/ follows."""
import re
from pathlib import Path
from posixpath import normpath

import markdown
from markupsafe import Markup

from text import first_sentence


class Page:
    def __init__(self, source, path):
        self.path = path  # from the root of the repository, with /
        self.text = Path(source, path).read_text()
        self.title = re.search(r"^# (.+)$", self.text, re.M)[1]
        stem = Path(path).stem
        self.url = "guide/index.html" if stem == "README" else f"guide/{stem}.html"
        self.about = ""  # a line

    def first_sentence(self):
        paragraph = next(one for one in self.text.split("\n\n") if re.match(r"[\w*`]", one))
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)|`([^`]*)`|\*", lambda found: found[1] or found[2] or "", paragraph)
        return first_sentence(" ".join(plain.split()))


def pages(source):
    """The pages in their order."""
    opening = Page(source, "docs/guide/README.md")
    opening.about = opening.first_sentence()
    found = [opening]
    listed = re.findall(r"^- \[[^\]]*\]\(([\w./-]+\.md)\): (.*)$", opening.text, re.M)
    about = {normpath(f"docs/guide/{name}"): text for name, text in listed}
    others = [f"docs/guide/{path.name}" for path in sorted(Path(source, "docs/guide").glob("*.md"))]
    others += [f"docs/{path.name}" for path in sorted(Path(source, "docs").glob("*.md"))]
    for path in dict.fromkeys([*about, *others]):
        if path != opening.path:
            found.append(Page(source, path))
            found[-1].about = about.get(path) or found[-1].first_sentence()
    return found


class Renderer:
    """urls: the page of a file of the repository, from the root of the site."""

    def __init__(self, source, out, urls, linker):
        self.source, self.out, self.urls, self.linker = Path(source), Path(out), urls, linker

    def body(self, page):
        blocks = []  # which Markdown does not look into

        def aside(found):
            blocks.append(self._block(found))
            return f"\n\nBLOCK{len(blocks) - 1}BLOCK\n\n"
        text = re.sub(r"^```(\w+)\n(.*?)^```$", aside, page.text, flags=re.M | re.S)
        html = markdown.markdown(text, extensions=["tables", "toc", "sane_lists"])
        html = re.sub(r'<p>(<img [^>]*>)</p>', r"<figure>\1</figure>", html)
        html = re.sub(r'<img alt="([^"]*)" src="([^"]+)" ?/?>', lambda found: self._picture(page, found), html)
        html = re.sub(r'<a href="([^"]+)">(.*?)</a>', lambda found: self._link(page, found), html, flags=re.S)
        html = re.sub(r"(<a .*?</a>)|<code>(\w+)</code>", self._name, html, flags=re.S)
        html = re.sub(r"<table>(.*?)</table>", r'<div class="scroll"><table>\1</table></div>', html, flags=re.S)
        return Markup(re.sub(r"<p>BLOCK(\d+)BLOCK</p>", lambda found: blocks[int(found[1])], html))

    def _block(self, found):
        language, code = found[1], found[2]
        colours = {"c": "c", "cpp": "cpp", "cmake": "cmake", "sh": "sh", "python": "python", "json": "json"}
        if language in colours:
            html = str(self.linker.code(code, colours[language]))
        else:
            html = code.rstrip("\n").replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
        if language == "console":
            html = re.sub(r"^(\$|&gt;) (.*)$", r"<b>\1 \2</b>", html, flags=re.M)
        return f'<pre class="code-{language}">' + html + "</pre>"

    def _name(self, found):
        href = found[2] and self.linker.href(found[2])  # what is a link already stays so
        return f'<a href="{href}">{found[0]}</a>' if href else found[0]

    def _target(self, page, reference):
        return normpath(f"{Path(page.path).parent}/{reference}")

    def _link(self, page, found):
        reference, anchor = re.match(r"([^#]*)(#.*)?", found[1]).groups()
        if not reference or re.match(r"\w+:", reference):
            return found[0]
        path = self._target(page, reference)
        if path in self.urls:
            return f'<a href="{self.linker.root}{self.urls[path]}{anchor or ""}">{found[2]}</a>'
        if (self.source / path).exists():
            return found[2]  # a file of the repository that the site has no page for
        return found[0]  # and the check tells of it

    def _picture(self, page, found):
        alternative, reference = found[1], found[2]
        path = self.source / self._target(page, reference)
        if path.suffix == ".svg" and path.parent.name == "guide":
            svg = path.read_text()
            return re.sub(r"<\?xml.*?\?>\s*|<!--.*?-->\s*", "", svg, flags=re.S).replace("<svg ", f'<svg role="img" aria-label="{alternative}" ', 1)
        (self.out / "guide").mkdir(parents=True, exist_ok=True)
        (self.out / "guide" / path.name).write_bytes(path.read_bytes())
        return f'<img class="picture" alt="{alternative}" src="{path.name}">'
