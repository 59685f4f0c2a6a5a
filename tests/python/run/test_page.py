"""What a page shows of a data set."""
import json
import subprocess
import sys

from orvane.run.page import contents


def test_page_has_points_with_their_conditions_and_an_array_by_its_mean(sweep, out):
    def measure(p, drive):
        p.record(wave=[1.0, 3.0], text="</script>", eye=float("nan"))

    sweep(boards=["OV0001:0"], measure=measure, drive=[1, 2], repeat=2).go(out)
    told = contents(str(out))
    summary = told.pop("summary")
    assert (summary["name"], summary["conditions"], summary["missing"]) == ("sweep", ["drive"], 0)
    assert not summary["going"]
    assert told["0"] == ["OV0001:0", [1], 0, True, {"wave": 2.0, "text": "</script>", "eye": None}]
    assert [each[1:3] for each in told.values()] == [[[1], 0], [[1], 1], [[2], 0], [[2], 1]]
    printed = subprocess.run([sys.executable, "-m", "orvane.run.page", str(out)], check=True,
                             stdout=subprocess.PIPE, timeout=60)
    assert json.loads(printed.stdout) == {"summary": summary, **told}


def test_page_says_that_it_leaves_points_out(sweep, out, monkeypatch):
    sweep(boards=["OV0001:0"], measure=lambda p, drive: p.record(eye=1.0), drive=[1, 2, 3]).go(out)
    monkeypatch.setattr("orvane.run.page._MOST_POINTS", 3)
    assert "only the first" not in contents(str(out))["summary"]["text"]
    monkeypatch.setattr("orvane.run.page._MOST_POINTS", 2)
    told = contents(str(out))
    assert told["summary"]["text"].endswith("\nonly the first 2 of 3 points are shown")
    assert sorted(told) == ["0", "1", "summary"]


def test_file_that_is_no_data_set_is_told_on_standard_output(tmp_path):
    file = tmp_path / "it.orvrun"
    file.write_bytes(b"SQLite format 3\0 and the rest")
    ended = subprocess.run([sys.executable, "-m", "orvane.run.page", str(file)], text=True, stdout=subprocess.PIPE,
                           timeout=60)
    assert ended.returncode == 1
    assert ended.stdout.strip() and "Traceback" not in ended.stdout and str(file) not in ended.stdout
