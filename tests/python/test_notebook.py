"""The notebook runs beside simulated boards and shows what its page shows."""
import os
import pathlib
import re
import subprocess

import pytest

SVG = re.compile(r"<svg.*?</svg>", re.DOTALL)  # how it is drawn depends on the version of matplotlib


@pytest.fixture(scope="module")
def page(source, tmp_path_factory):
    """What the notebook prints now."""
    folder = tmp_path_factory.mktemp("page")
    build = pathlib.Path(os.environ["ORVANE_LAB"]).parents[1]
    ended = subprocess.run([source / "packaging/notebook-page", source / "docs/notebooks/bring-up.ipynb", folder,
                            build], text=True, capture_output=True, timeout=600)
    assert ended.returncode == 0, ended.stderr
    return (folder / "bring-up.md").read_text()


def test_page_shows_what_the_notebook_prints(page, source):
    committed = (source / "docs/notebooks/bring-up.md").read_text()
    assert SVG.sub("curve", page) == SVG.sub("curve", committed), "packaging/notebook-page writes the page anew"


def test_page_has_tables_and_a_curve(page):
    assert "<td>OV0002</td><td>10.83.0.2</td>" in page
    assert "<mark>LOOPBACK 1</mark>" in page
    assert len(SVG.findall(page)) == 1
    assert "period: 64 samples" in page
