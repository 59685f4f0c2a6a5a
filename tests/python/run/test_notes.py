"""What another host has measured: it is sent as it is, and kept once however often it was measured."""
import pickle

import pytest

import orvane
from orvane.run.notes import Notes
from orvane.run.recorder import Measured, Mishap, Recorder


@pytest.fixture
def recorder(sweep, out):
    """The data set of a run whose points failed, in a session of its own."""
    def fail(p, drive):
        raise RuntimeError("no reading")

    run = sweep(boards="OV0001:0", retries=0, measure=fail)
    run.go(out)
    recorder = Recorder(out)
    (identity, key), = recorder.boards().values()
    recorder.keep_recipe(run.recipe())
    recorder.keep_board(identity, key)
    recorder.begin({})
    yield recorder
    recorder.close()


def notes(value):
    """A host's, for the point of drive 1, after one attempt that failed."""
    kept = Notes()
    kept.keep_step("prepare", "setup", "OV0001:0", {"drive": 1}, "2026-01-01T00:00:00Z", 0.5)
    kept.keep(Measured("OV0001:0", {"drive": 1}, 0, "2026-01-01T00:00:00Z", "2026-01-01T00:00:01Z", 1.0, 2,
                       {"read": value}, [Mishap.of("measure", 1, RuntimeError("first"))]))
    kept.tell("OV0001:0: half way")
    return pickle.loads(pickle.dumps(kept.taken()))


def test_point_that_two_hosts_have_measured_is_kept_once_with_the_first_values(recorder, out):
    told = []
    for value in (7, 8):
        notes(value).pass_on(recorder, told.append)
    assert (recorder.finished, recorder.failed) == (1, 0)
    with orvane.DataSet(out) as data:
        done = [(point.conditions, point.values, point.attempts) for point in data.points() if point.done]
        assert done == [({"drive": 1}, {"read": 7}, 1 + 2)]
        assert [each.text for each in data.errors() if each.conditions == {"drive": 1}] == ["no reading", "first"]
        assert [each.name for each in data.steps() if each.kind == "setup"] == ["prepare"] * 2
    assert told == ["OV0001:0: half way"] * 2


def test_notes_that_were_taken_are_not_there_any_more():
    kept = Notes()
    kept.tell("once")
    told = []
    for each in (kept.taken(), kept.taken()):
        each.pass_on(None, told.append)
    assert told == ["once"]
