"""Checks a built handbook: argument, its folder. Every link leads somewhere, and no page needs the network."""

import pathlib
import sys
from html.parser import HTMLParser
from urllib.parse import unquote, urlsplit

# What a browser fetches by itself; a link that is only followed by a reader may lead anywhere.
FETCHED = {("script", "src"), ("img", "src"), ("link", "href"), ("iframe", "src"), ("source", "src")}


class Links(HTMLParser):
    def __init__(self):
        super().__init__()
        self.links = []

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src") and value:
                self.links.append((tag, name, value))


def faults(site, page):
    parser = Links()
    parser.feed(page.read_text(encoding="utf-8"))
    for tag, name, value in parser.links:
        url = urlsplit(value)
        if url.scheme or url.netloc:
            if (tag, name) in FETCHED and url.scheme not in ("data", "javascript"):
                yield f"fetches {value}"
        elif url.path and not (page.parent / unquote(url.path)).exists():
            # The page for addresses that don't exist names everything by its place on a server.
            if page != site / "404.html":
                yield f"leads nowhere: {value}"


def main(site):
    pages = sorted(site.rglob("*.html"))
    found = [f"{page.relative_to(site)}: {fault}" for page in pages for fault in faults(site, page)]
    found += [f"{sheet.relative_to(site)}: fetches" for sheet in site.rglob("*.css")
              if "url(http" in sheet.read_text(encoding="utf-8") or "url(//" in sheet.read_text(encoding="utf-8")]
    print(*found, f"{len(pages)} pages, {len(found)} faults", sep="\n")
    return 1 if found or not pages else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
