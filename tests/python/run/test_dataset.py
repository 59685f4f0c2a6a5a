"""The data set: what is kept, how other programs read it, what is refused."""
import csv
import json
import math
import sqlite3
import subprocess

import numpy
import pytest

import orvane
from orvane.run import DataSetError, schema, values


WREN = """{"format": "orvane-map-1", "name": "wren", "blocks": {"CHIP": {"at": "30.0xD000", "registers": {
    "CONTROL": {"at": 0, "fields": {"SPEED": {"bits": "6,13", "values": {"0": "10 Mb/s", "1": "%s"}}}}}}}}"""


def rows(path, query):
    base = sqlite3.connect(path)
    found = base.execute(query).fetchall()
    base.close()
    return found


@pytest.mark.parametrize("value", [0, -1, 2**63 - 1, -2**63, 2**64 - 1, 1.5, math.inf, True, False, None, "", "µV",
                                   b"\0\1", numpy.uint16(7), numpy.float32(0.5), numpy.bool_(True)])
def test_value_comes_back_as_it_was(sweep, out, table, value):
    sweep(boards="OV0001:0", drive=[0], measure=lambda p, drive: p.record(it=value)).go(out)
    kept = table(out)["OV0001:0", (("drive", 0),), 0]["it"]
    plain = value.item() if isinstance(value, numpy.generic) else value
    assert (kept, type(kept)) == (plain, type(plain))


def test_not_a_number_comes_back_as_it_was(sweep, out, table):
    sweep(boards="OV0001:0", drive=[0], measure=lambda p, drive: p.record(it=math.nan)).go(out)
    assert math.isnan(table(out)["OV0001:0", (("drive", 0),), 0]["it"])


@pytest.mark.parametrize("array", [numpy.arange(6, dtype=numpy.uint8).reshape(2, 3), numpy.array([1.5, math.nan]),
                                   numpy.array([1, 2], dtype=">u4"), numpy.zeros((0, 2)), numpy.array(["a", "bc"])])
def test_array_comes_back_as_it_was(sweep, out, table, array):
    sweep(boards="OV0001:0", drive=[0], measure=lambda p, drive: p.record(it=array)).go(out)
    kept = table(out)["OV0001:0", (("drive", 0),), 0]["it"]
    numpy.testing.assert_array_equal(kept, array)
    assert (kept.dtype, kept.shape) == (array.dtype, array.shape)


@pytest.mark.parametrize("value", [{}, object(), [1, None], numpy.ma.masked_array([1, 2], [True, False])])
def test_value_of_another_kind_is_refused(value):
    with pytest.raises(TypeError, match="^it: "):
        values.checked("it", value)


def test_recipe_environment_and_boards_are_kept(sweep, out):
    sweep().go(out)
    with orvane.DataSet(out) as data:
        assert data.recipe.conditions == {"drive": (0, 1, 2, 3)}
        assert data.hash == data.recipe.hash
        assert [(each.port, each.serial, each.phy, each.identifier) for each in data.boards()] == [
            ("OV0001:0", "OV0001", 3, 0x0A5C1E83), ("OV0002:0", "OV0002", 3, 0x0A5C1E83)]
        (session,) = data.sessions()
        assert (session.how, session.environment["numpy"]) == ("complete", numpy.__version__)
        assert session.begun < session.ended
        assert all(session.begun < point.begun < point.ended < session.ended for point in data.points())


def test_map_is_kept_whole(sweep, out, tmp_path):
    (tmp_path / "wren.json").write_text(WREN % "100 Mb/s")
    sweep(map=tmp_path / "wren.json").go(out)
    (tmp_path / "wren.json").unlink()
    with orvane.DataSet(out) as data:
        assert data.map().match("CHIP.**") == ["CHIP.CONTROL", "CHIP.CONTROL.SPEED"]
        assert "100 Mb/s" in data.map().to_json()


def test_map_that_means_something_else_by_the_same_names_is_refused(sweep, out, tmp_path):
    for speed in ("100 Mb/s", "1000 Mb/s"):
        (tmp_path / f"{speed[:4].strip()}.json").write_text(WREN % speed)
    sweep(map=tmp_path / "100.json").go(out)
    with pytest.raises(DataSetError, match=r"not the same run: map: wren \(\w+\) in the data set, wren \(\w+\) now"):
        sweep(map=tmp_path / "1000.json").go(out, resume=True)


def test_firmware_is_kept_for_each_board_and_has_to_be_the_same(sweep, out, tmp_path, lab):
    (tmp_path / "wren.json").write_text(WREN % "100 Mb/s")
    run = sweep(map=tmp_path / "wren.json", firmware="CHIP.CONTROL.*")
    run.go(out)
    with orvane.DataSet(out) as data:
        assert [each.details for each in data.boards()] == [{"firmware": {"CHIP.CONTROL.SPEED": "10 Mb/s"}}] * 2
        assert data.sessions()[0].environment["boards"] == {"OV0001:0": "10.83.0.1", "OV0002:0": "10.83.0.2"}
    lab["OV0002"].set_value((30, 0xD000), 0x2000, phy=3)
    try:
        with pytest.raises(DataSetError, match=r'board: OV0002:0 is .*"10 Mb/s".* in the data set, .*"100 Mb/s"'):
            run.go(out, resume=True)
    finally:
        lab["OV0002"].set_value((30, 0xD000), 0, phy=3)


def test_firmware_that_the_map_has_not_is_refused(sweep):
    with pytest.raises(orvane.run.RecipeError, match="^firmware: there is no CHIP.VERSION in the map ieee8023$"):
        sweep(firmware=["CHIP.VERSION"])


def test_any_sqlite_tool_reads_it(sweep, out):
    sweep(boards="OV0001:0").go(out)
    told = subprocess.run(["sqlite3", out, "SELECT port, json_extract(conditions, '$.drive'), name, value FROM result"],
                          text=True, stdout=subprocess.PIPE, check=True).stdout
    assert told == "OV0001:0|0|read|0\nOV0001:0|1|read|1\nOV0001:0|2|read|2\nOV0001:0|3|read|3\n"
    assert rows(out, "PRAGMA user_version") == [(schema.VERSION,)]
    assert rows(out, "PRAGMA journal_mode") == [("wal",)]
    assert rows(out, "PRAGMA foreign_key_check") == []


def test_each_point_is_there_before_the_next_one_begins(sweep, out):
    seen = []

    def measure(p, drive):
        seen.append(rows(out, "SELECT count(*) FROM point WHERE state = 'done'")[0][0])
        p.record(read=drive)

    sweep(boards="OV0001:0", measure=measure).go(out)
    assert seen == [0, 1, 2, 3]


def test_csv_has_a_row_for_each_point(sweep, out, tmp_path):
    sweep(boards="OV0001:0", drive=[1, 2],
          measure=lambda p, drive: p.record(text=f"{drive}, µ", row=numpy.array([drive, 0]))).go(out)
    with orvane.DataSet(out) as data:
        data.to_csv(tmp_path / "it.csv")
    with open(tmp_path / "it.csv", newline="", encoding="utf-8") as file:
        told = list(csv.DictReader(file))
    assert [(row["board"], row["drive"], row["text"], json.loads(row["row"])) for row in told] == [
        ("OV0001:0", "1", "1, µ", [1, 0]), ("OV0001:0", "2", "2, µ", [2, 0])]


def partly(sweep, out):
    """A run whose last point fails on each board."""

    def measure(p, drive):
        if drive == 2:
            raise RuntimeError("no reading")
        p.record(read=2**60 + drive, row=numpy.array([drive, 7], numpy.uint8))

    sweep(drive=range(3), retries=0, measure=measure).go(out)
    return orvane.DataSet(out)


def test_pandas_has_a_row_for_each_point(sweep, out):
    pytest.importorskip("pandas")
    with partly(sweep, out) as data:
        frame = data.to_pandas()
    assert list(zip(frame["board"], frame["drive"], frame["read"])) == [
        (board, drive, 2**60 + drive) for board in ("OV0001:0", "OV0002:0") for drive in (0, 1)]


def test_xarray_has_boards_conditions_and_repeats_as_dimensions(sweep, out):
    pytest.importorskip("xarray")
    with partly(sweep, out) as data:
        found = data.to_xarray()
    assert found["row"].dims == ("board", "drive", "repeat", "row_0")
    assert found["row"].sel(board="OV0002:0", drive=1, repeat=0).values.tolist() == [1, 7]
    assert math.isnan(found["read"].sel(board="OV0001:0", drive=2, repeat=0))


def test_hdf5_keeps_whole_numbers_whole_when_every_point_is_there(sweep, out, tmp_path):
    h5py = pytest.importorskip("h5py")
    sweep(drive=[4, 9], measure=lambda p, drive: p.record(read=2**60 + drive)).go(out)
    with orvane.DataSet(out) as data:
        data.to_hdf5(tmp_path / "it.h5")
    with h5py.File(tmp_path / "it.h5") as file:
        assert file["values/read"][:, :, 0].tolist() == [[2**60 + 4, 2**60 + 9]] * 2
        assert file["conditions/drive"][:].tolist() == [4, 9]
        assert [each.keys() for each in file["values/read"].dims] == [["board"], ["drive"], ["repeat"]]


def test_library_that_is_missing_is_named(sweep, out, monkeypatch):
    sweep().go(out)
    monkeypatch.setitem(__import__("sys").modules, "pandas", None)
    with orvane.DataSet(out) as data, pytest.raises(DataSetError, match="needs pandas.*Debian: python3-pandas"):
        data.to_pandas()


@pytest.mark.parametrize("what, told", [
    ("text", "not a data set of a run, nor a database at all"),
    ("other", "not a data set of a run, but a database of another program"),
    ("newer", r"its tables are of version 99, and this program knows version 1"),
])
@pytest.mark.parametrize("resume", [True, False])
def test_file_of_another_make_is_refused_and_left_as_it_was(sweep, out, what, told, resume):
    if what == "text":
        out.write_text("my notes " * 1000)
    else:
        base = sqlite3.connect(out)
        base.execute("CREATE TABLE notes (text)")
        if what == "newer":
            base.execute(f"PRAGMA application_id = {schema.APPLICATION}")
            base.execute("PRAGMA user_version = 99")
        base.commit()
        base.close()
    before = out.read_bytes()
    with pytest.raises(DataSetError, match=told if resume else "such a data set already"):
        sweep().go(out, resume=resume)
    with pytest.raises(DataSetError, match=told):
        orvane.DataSet(out)
    assert out.read_bytes() == before


def test_file_that_is_not_there_is_named(out):
    with pytest.raises(DataSetError, match="sweep.orvrun: there is no such file"):
        orvane.DataSet(out)


def test_recipe_with_a_field_of_another_program_is_refused(sweep, out):
    sweep().go(out)
    base = sqlite3.connect(out)
    base.execute("UPDATE recipe SET json = json_set(json, '$.humidity', 3)")
    base.commit()
    base.close()
    with pytest.raises(orvane.run.RecipeError, match="^recipe: unknown field humidity$"):
        orvane.DataSet(out)


@pytest.mark.parametrize("change, told", [
    ("UPDATE array SET dtype = 'O'", r"an array of \[2\] O in 2 bytes: cannot create an OBJECT array"),
    ("UPDATE array SET shape = '[3]'", r"an array of \[3\] \|u1 in 2 bytes: cannot reshape array"),
    ("UPDATE array SET dtype = 'nonsense'", "an array of .* nonsense in 2 bytes: data type 'nonsense' not understood"),
])
def test_array_of_another_make_is_refused(sweep, out, change, told):
    sweep(boards="OV0001:0", drive=[0], measure=lambda p, drive: p.record(it=numpy.zeros(2, numpy.uint8))).go(out)
    base = sqlite3.connect(out)
    base.execute(change)
    base.commit()
    base.close()
    with orvane.DataSet(out) as data, pytest.raises(DataSetError, match=told):
        list(data.points())


def test_recipe_that_is_cut_is_refused(sweep, out):
    sweep().go(out)
    base = sqlite3.connect(out)
    base.execute("UPDATE recipe SET json = substr(json, 1, 20)")
    base.commit()
    base.close()
    with pytest.raises(orvane.run.RecipeError, match="^recipe: Unterminated string"):
        orvane.DataSet(out)


def test_second_program_is_refused_while_one_is_at_work(sweep, out):
    found = []

    def measure(p, drive):
        with pytest.raises(DataSetError) as raised:
            sweep().go(out, resume=True)
        found.append(str(raised.value))
        p.record(read=drive)

    sweep(boards="OV0001:0", drive=[0], measure=measure).go(out)
    assert found == [f"{out}: another program is at work on it"]
