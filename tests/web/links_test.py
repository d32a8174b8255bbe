"""Finds broken links in the pages: links_test.py DIR

Each link and each file that a page names is in the folder, each anchor is in its page, and no page has two of one name.
"""

from __future__ import annotations

import html.parser
import pathlib
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, path: pathlib.Path) -> None:
        super().__init__()
        self.anchors: set[str] = set()
        self.repeated: list[str] = []
        self.links: list[str] = []
        self.feed(path.read_text("utf-8"))

    def handle_starttag(self, tag: str, attributes: list[tuple[str, str | None]]) -> None:
        for name, value in attributes:
            if name == "id" and value in self.anchors:
                self.repeated.append(value)
            if name == "id":
                self.anchors.add(value or "")
            if name in ("href", "src"):
                self.links.append(value or "")


def main() -> int:
    folder = pathlib.Path(sys.argv[1]).resolve()
    pages = {path: Page(path) for path in sorted(folder.rglob("*.html"))}
    faults = []
    links = 0
    for path, page in pages.items():
        faults += [f"{path}: the anchor {anchor} is there twice" for anchor in page.repeated]
        for link in page.links:
            if link.startswith("data:"):
                continue
            links += 1
            file, _, anchor = link.partition("#")
            target = (path.parent / urllib.parse.unquote(file)).resolve() if file else path
            if not target.is_relative_to(folder) or not target.is_file():
                faults.append(f"{path}: {link} is not in the folder")
            elif anchor and not anchor.startswith("type=") and anchor not in pages[target].anchors:
                faults.append(f"{path}: {link} has no anchor")
    print("\n".join(faults[:20]))
    print(f"{len(pages)} pages, {links} links, {len(faults)} faults")
    return 0 if pages and links and not faults else 1


sys.exit(main())
