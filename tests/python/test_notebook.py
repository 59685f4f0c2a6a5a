"""The notebooks run beside simulated boards and show what their pages show."""
import functools
import os
import pathlib
import re
import subprocess

import pytest

SVG = re.compile(r"<svg.*?</svg>", re.DOTALL)  # how it is drawn depends on the version of matplotlib


@pytest.fixture(scope="module")
def page(source, tmp_path_factory):
    """page(name): what a notebook prints now."""
    build = pathlib.Path(os.environ["ORVANE_LAB"]).parents[1]

    @functools.lru_cache(None)
    def printed(name):
        folder = tmp_path_factory.mktemp(name)
        ended = subprocess.run([source / "packaging/notebook-page", source / f"docs/notebooks/{name}.ipynb", folder,
                                build], text=True, capture_output=True, timeout=600)
        assert ended.returncode == 0, ended.stderr
        return (folder / f"{name}.md").read_text()

    return printed


@pytest.mark.parametrize("name", ["bring-up", "finished-run"])
def test_page_shows_what_the_notebook_prints(page, source, name):
    committed = (source / f"docs/notebooks/{name}.md").read_text()
    assert SVG.sub("curve", page(name)) == SVG.sub("curve", committed), "packaging/notebook-page writes the page anew"


def test_page_has_tables_and_a_curve(page):
    bring_up = page("bring-up")
    assert "<td>OV0002</td><td>10.83.0.2</td>" in bring_up
    assert "<mark>LOOPBACK 1</mark>" in bring_up
    assert len(SVG.findall(bring_up)) == 1
    assert "period: 64 samples" in bring_up


def test_page_of_a_finished_run_has_its_points_and_plots(page):
    finished = page("finished-run")
    assert "48 points, 0 missing" in finished
    assert "{'board': 2, 'temperature': 3, 'drive': 8, 'repeat': 1, 'samples_0': 256}" in finished
    assert finished.count("![png](finished-run_files/") == 2
