"""What the tests of runs share."""
import pytest

import orvane


@pytest.fixture
def out(tmp_path):
    """Where a data set is to be."""
    return tmp_path / "sweep.orvrun"


@pytest.fixture
def sweep(lab):
    """Makes runs on OV0001:0 and OV0002:0 whose points write a condition and read it back."""
    for board in lab.boards():
        board.clear()

    def make(name="sweep", *, boards=("OV0001:0", "OV0002:0"), measure=None, **options):
        options.setdefault("drive", range(4))
        run = orvane.Run(name, boards=boards, phy=3, **options)

        def measured(p, drive):
            p.phy[30, 0xC010] = drive
            p.record(read=p.phy[30, 0xC010])

        run.point(measure or measured)
        return run

    yield make
    for board in lab.boards():
        board.clear()


@pytest.fixture
def table():
    """What a data set has: table(path) gives values by board, conditions and repeat."""

    def read(path):
        with orvane.DataSet(path) as data:
            return {(point.port, tuple(sorted(point.conditions.items())), point.repeat): point.values
                    for point in data.points() if point.done}

    return read
