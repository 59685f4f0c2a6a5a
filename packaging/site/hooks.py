"""MkDocs hooks: draw the ```dot blocks of a page with Graphviz; list pages that the navigation does not name."""
import pathlib
import re
import subprocess

BLOCK = re.compile(r"^```dot\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def draw(match):
    drawing = subprocess.run(["dot", "-Tsvg", "-Nfontname=sans-serif", "-Efontname=sans-serif"], input=match[1],
                             text=True, capture_output=True, check=True).stdout
    svg = drawing[drawing.index("<svg"):]
    return '<div style="overflow-x: auto">' + re.sub(r"\n\s*\n", "\n", svg) + "</div>"


def on_page_markdown(markdown, **_):
    return BLOCK.sub(draw, markdown)


def named(entries):
    """Every page that a navigation names, at whatever depth."""
    for entry in entries:
        for value in entry.values():
            yield from named(value) if isinstance(value, list) else [value]


def on_config(config, **_):
    pages = pathlib.Path(config["docs_dir"])
    known = set(named(config["nav"]))
    others = [str(page.relative_to(pages)) for page in sorted((pages / "docs").rglob("*.md"))]
    more = [page for page in others if page not in known]
    if more:
        config["nav"].append({"More": more})
    return config
