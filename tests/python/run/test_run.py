"""A run: order, set-up, failures, resuming, what is refused before anything is sent."""
import signal
import threading

import pytest

import orvane
from orvane.run import DataSetError, NotSafe, RecipeError


def told_of(run, out, **how):
    with pytest.raises((RecipeError, DataSetError)) as raised:
        run.go(out, **how)
    return str(raised.value)


def test_every_point_of_every_board_is_measured(sweep, out, table):
    summary = sweep().go(out)
    assert (summary.done, summary.missing, summary.complete) == (8, 0, True)
    assert table(out) == {(board, (("drive", drive),), 0): {"read": drive}
                          for board in ("OV0001:0", "OV0002:0") for drive in range(4)}


def test_pattern_finds_the_boards(sweep, out):
    assert sweep(boards="OV000[1-3]:0").go(out).done == 12


def test_condition_of_a_set_up_step_changes_least(sweep, out):
    called = []
    run = orvane.Run("slow", boards="OV0001:0", phy=3, drive=[0, 1], temperature=[0, 25])
    run.setup(lambda p, temperature: called.append(("heat", temperature)))
    run.point(lambda p, drive, temperature: called.append((drive, temperature)))
    run.go(out)
    assert called == [("heat", 0), (0, 0), (1, 0), ("heat", 25), (0, 25), (1, 25)]


def test_shared_set_up_waits_for_every_board(sweep, out):
    called = []
    run = orvane.Run("shared", boards=["OV0001:0", "OV0002:0"], phy=3, drive=[0, 1], chamber=[0, 25])

    @run.shared_setup
    def settle(chamber):
        called.append(("settle", chamber))

    @run.point
    def measure(p, drive, chamber):
        called.append((p.board, drive, chamber))

    run.go(out)
    assert [called.index(("settle", 0)), called.index(("settle", 25)), len(called)] == [0, 5, 10]
    assert {each[2] for each in called[1:5]} == {0}


def test_boards_are_measured_side_by_side(sweep, out):
    both = threading.Barrier(2)

    def measure(p, drive):
        both.wait(20)
        p.record(read=drive)

    assert sweep(measure=measure).go(out).complete


def test_points_of_higher_priority_come_first(sweep, out):
    order = []
    sweep(boards="OV0001:0", priority=lambda drive: drive in (2, 3),
          measure=lambda p, drive: order.append(drive)).go(out)
    assert order == [2, 3, 0, 1]


def test_repeated_points_have_a_number(sweep, out, table):
    sweep(boards="OV0001:0", drive=[5], repeat=3, measure=lambda p, drive: p.record(which=p.repeat)).go(out)
    assert [values["which"] for values in table(out).values()] == [0, 1, 2]


def test_point_that_fails_is_tried_again_and_its_errors_are_kept(sweep, out):
    def measure(p, drive):
        if drive == 1 and p.attempt < 3:
            raise RuntimeError(f"attempt {p.attempt}")
        p.record(read=drive)

    assert sweep(boards="OV0001:0", measure=measure).go(out).complete
    with orvane.DataSet(out) as data:
        assert [point.attempts for point in data.points()] == [1, 3, 1, 1]
        assert [(each.conditions, each.attempt, each.kind, each.text) for each in data.errors()] == [
            ({"drive": 1}, 1, "RuntimeError", "attempt 1"), ({"drive": 1}, 2, "RuntimeError", "attempt 2")]


def test_point_that_keeps_failing_leaves_the_others_alone_and_is_measured_when_resumed(sweep, out, table):
    broken = [True]

    def measure(p, drive):
        if drive == 1 and broken[0]:
            raise RuntimeError("no reading")
        p.record(read=drive)

    summary = sweep(boards="OV0001:0", measure=measure).go(out)
    assert (summary.done, summary.failed, summary.missing) == (3, 1, 1)
    broken[0] = False
    assert sweep(boards="OV0001:0", measure=measure).go(out, resume=True).complete
    assert len(table(out)) == 4
    with orvane.DataSet(out) as data:
        assert [each.how for each in data.sessions()] == ["incomplete", "complete"]
        assert max(point.attempts for point in data.points()) == 4


def test_fault_of_the_program_ends_the_run_at_once(sweep, out):
    called = []

    def measure(p, drive):
        called.append(drive)
        p.no_such_thing()

    with pytest.raises(AttributeError, match="no_such_thing"):
        sweep(boards="OV0001:0", measure=measure).go(out)
    assert called == [0]
    with orvane.DataSet(out) as data:
        assert data.sessions()[0].how.startswith("AttributeError: ")


def test_name_that_is_recorded_twice_is_refused(sweep, out):
    def measure(p, drive):
        p.record(read=1)
        p.record(read=2)

    assert sweep(boards="OV0001:0", retries=0, drive=[0], measure=measure).go(out).failed == 1
    with orvane.DataSet(out) as data:
        assert data.errors()[0].text == "read is recorded already: a value needs a name of its own"


def test_resumed_run_measures_what_is_missing_and_sets_up_again(sweep, out, table):
    called = []

    interrupts = [KeyboardInterrupt]

    def measure(p, drive):
        if drive == 2 and interrupts:
            raise interrupts.pop()
        called.append(drive)
        p.record(read=drive)

    def run():
        made = sweep(boards="OV0001:0", measure=measure)

        @made.setup
        def prepare(p):
            called.append("prepare")

        return made

    with pytest.raises(KeyboardInterrupt):
        run().go(out)
    assert run().go(out, resume=True).complete
    assert called == ["prepare", 0, 1, "prepare", 2, 3]
    assert len(table(out)) == 4


def test_complete_data_set_is_left_alone(sweep, out, lab):
    sweep().go(out)
    before = lab["OV0001"].executions("mdio_write")
    assert sweep().go(out, resume=True).done == 8
    assert lab["OV0001"].executions("mdio_write") == before


def test_existing_data_set_is_not_gone_on_with_unasked(sweep, out):
    sweep().go(out)
    assert told_of(sweep(), out) == f"{out}: there is such a data set already; resume goes on with it"


@pytest.mark.parametrize("change, told", [
    ({"drive": range(5)}, "condition: drive is [0, 1, 2, 3] in the data set, [0, 1, 2, 3, 4] now"),
    ({"name": "other"}, "name: 'sweep' in the data set, 'other' now"),
    ({"boards": "OV0001:0"}, "boards: OV0001:0, OV0002:0 in the data set, OV0001:0 now"),
    ({"repeat": 2}, "repeat: 1 in the data set, 2 now"),
    ({"measure": lambda p, drive: p.record(read=1)}, "step: point <lambda> is not in the data set; "
                                                     "step: point measured is not there now"),
    ({"map": orvane.Map.ieee8023()}, "map: that of IEEE 802.3 in the data set, ieee8023 ("),
])
def test_other_recipe_is_refused_with_what_differs(sweep, out, table, change, told):
    sweep().go(out)
    assert told_of(sweep(**change), out, resume=True).startswith(f"{out}: not the same run: {told}")
    assert len(table(out)) == 8


def test_other_phy_is_refused(sweep, out, lab):
    sweep().go(out)
    lab["OV0002"].set_value((1, 3), 0x1111, phy=3)
    try:
        assert told_of(sweep(), out, resume=True) == (
            f"{out}: not the same run: PHY: OV0002:0 PHY 3 is 0x0a5c1e83 in the data set, 0x0a5c1111 now")
    finally:
        lab["OV0002"].set_value((1, 3), 0x1E83, phy=3)


def test_other_identity_is_refused(sweep, out):
    def identified(firmware):
        run = sweep(boards="OV0001:0")

        @run.identity
        def identify(p):
            return {"firmware": firmware[0]}

        return run

    firmware = ["1.0"]
    identified(firmware).go(out)
    firmware[0] = "1.1"
    assert told_of(identified(firmware), out, resume=True) == (
        f'{out}: not the same run: board: OV0001:0 is {{"firmware": "1.0"}} in the data set, {{"firmware": "1.1"}} now')


def test_comments_and_layout_of_steps_make_no_other_recipe():
    def first(p):
        p.record(a=1)  # now

    def second(p):

        p.record(
            a=1)

    second.__name__ = "first"
    assert orvane.run.recipe.source_of(first).replace("first", "second") == orvane.run.recipe.source_of(second)


def test_data_set_is_extended_by_conditions_repeats_and_boards(sweep, out, table):
    sweep(boards="OV0001:0").go(out)
    summary = sweep(drive=range(6), repeat=2).go(out, extend=True)
    assert (summary.done, summary.complete) == (24, True)
    assert sorted({key[0] for key in table(out)}) == ["OV0001:0", "OV0002:0"]
    assert told_of(sweep(drive=range(3)), out, extend=True).startswith(
        f"{out}: not the same run: repeat: 2 in the data set, 1 now")


@pytest.mark.parametrize("options, told", [
    ({"drive": []}, "drive: no values, so that there is no point to measure"),
    ({"drive": 3}, "drive: 3 is no option of a run, and no list of values of a condition"),
    ({"drive": [1, 2, 1]}, "drive: 1 is there twice; repeat=2 measures each point twice"),
    ({"drive": [float("nan")]}, "drive: nan is no condition that could be reached"),
    ({"drive": [object]}, "drive: <class 'object'> is no number, text, True, False or None"),
    ({"boards": "OV0001"}, "boards: 'OV0001' is no name of a port, such as OV0001:0, or pattern, such as OV*:0"),
    ({"repeat": 0}, "repeat: 0 times is no measurement"),
])
def test_recipe_that_makes_no_points_is_refused(sweep, options, told):
    with pytest.raises(RecipeError) as raised:
        sweep(**options)
    assert str(raised.value) == told


def test_condition_that_no_step_takes_is_refused(sweep, out):
    assert told_of(sweep(tmperature=[0]), out) == (
        "tmperature: no step takes that condition; measured() takes drive")
    assert not out.exists()


def test_step_that_takes_what_is_no_condition_is_refused(sweep):
    with pytest.raises(RecipeError, match=r"^<lambda>\(\): drve is no condition of the run; its conditions: drive$"):
        sweep(measure=lambda p, drve: None)


def test_run_without_a_step_to_measure_is_refused(out):
    assert told_of(orvane.Run("none", boards="OV0001:0"), out) == "there is no step to measure: @run.point"


def test_pattern_that_nothing_matches_is_refused(sweep, out):
    assert told_of(sweep(boards="XY*:0"), out) == "boards: no port that answers matches XY*:0"


def test_two_boards_of_one_serial_are_refused(sweep, out, rack, monkeypatch):
    twins = [orvane.FoundBoard("OV0001", address, (0,)) for address in ("10.83.0.1", "10.83.0.9")]
    monkeypatch.setattr(rack, "discover", lambda: twins)
    assert told_of(sweep(boards="OV*:0", rack=rack), out) == (
        "boards: there are several OV0001, at 10.83.0.1, 10.83.0.9")


def test_board_that_restarts_has_its_set_up_and_point_done_again(sweep, out, lab, table):
    called = []

    def measure(p, drive):
        called.append(("measure", drive))
        if called.count(("measure", 1)) == 1 and drive == 1:
            lab["OV0001"].do("restart", forgetSessions=True)
        p.record(read=p.phy[30, 0xC020])

    run = sweep(boards="OV0001:0", drive=range(3), measure=measure)

    @run.setup
    def prepare(p):
        called.append("prepare")
        p.phy[30, 0xC020] = 0x55

    assert run.go(out).complete
    assert called == ["prepare", ("measure", 0), ("measure", 1), "prepare", ("measure", 1), ("measure", 2)]
    assert {values["read"] for values in table(out).values()} == {0x55}
    with orvane.DataSet(out) as data:
        assert [(each.kind, each.conditions) for each in data.errors()] == [("Restarted", {"drive": 1})]


def test_board_that_is_lost_is_given_up_and_the_others_go_on(sweep, out, lab):
    dying = ["OV0001"]

    def measure(p, drive):
        if drive == 1 and p.board in dying:
            lab[dying.pop()].do("kill")
        p.phy.write((30, 0xC010), drive, within=0.5)
        p.record(read=drive)

    run = sweep(measure=measure, retries=0, patience=0.5, safe_within=1.0)
    run.safe_state(lambda p: p.phy.write((30, 0xC010), 0, within=0.3))
    try:
        with pytest.raises(NotSafe) as raised:
            run.go(out)
    finally:
        lab["OV0001"].do("start")
    assert list(raised.value.boards) == ["OV0001:0"]
    assert str(raised.value).startswith("NOT IN A SAFE STATE: OV0001:0: OV0001:0 PHY 3: write 30.0xC010: ")
    with orvane.DataSet(out) as data:
        assert list(data.not_safe()) == ["OV0001:0"]
        assert sorted(task.port for task in data.missing()) == ["OV0001:0"] * 3
    assert run.go(out, resume=True).complete


@pytest.mark.parametrize("ending", ["end", "error", "fault"])
def test_safe_state_is_made_however_the_run_ends(sweep, out, ending, lab):
    def measure(p, drive):
        p.phy[30, 0xC030] = 1
        if ending == "error":
            raise RuntimeError("no reading")
        if ending == "fault":
            raise TypeError("a slip")

    run = sweep(measure=measure, retries=0)

    @run.safe_state
    def off(p):
        p.phy[30, 0xC030] = 0x0FF

    try:
        run.go(out)
    except TypeError:
        assert ending == "fault"
    with orvane.DataSet(out) as data:
        used = {each.port for each in data.steps() if each.kind == "safe" and each.problem is None}
        assert data.not_safe() == {}
    assert used == ({"OV0001:0", "OV0002:0"} if ending != "fault" else used) and used
    assert all(lab[port[:6]].value((30, 0xC030), phy=3) == 0x0FF for port in used)


def test_safe_state_that_fails_at_first_is_made_again(sweep, out):
    failures = [3]
    run = sweep(boards="OV0001:0")

    @run.safe_state
    def off(p):
        if failures[0]:
            failures[0] -= 1
            raise RuntimeError("not yet")

    assert run.go(out).complete


def test_safe_state_that_hangs_is_left_behind_and_told(sweep, out):
    hanging = threading.Event()
    run = sweep(boards=["OV0001:0", "OV0002:0"], safe_within=0.5)

    @run.safe_state
    def off(p):
        if p.board == "OV0002":
            hanging.wait(60)

    with pytest.raises(NotSafe, match="^NOT IN A SAFE STATE: OV0002:0: it did not end in time$"):
        run.go(out)
    hanging.set()


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_signal_ends_calls_and_brings_boards_to_their_safe_state(sweep, out, lab, number):
    safe = []

    def measure(p, drive):
        lab["OV0001"].inject("silent", count=-1, procedure="mdio_read")
        signal.pthread_kill(threading.main_thread().ident, number)
        p.phy.read(30, 0xC010, within=60)

    run = sweep(boards="OV0001:0", measure=measure)

    @run.safe_state
    def off(p):
        lab["OV0001"].clear()
        safe.append(p.phy[1, 2])

    with pytest.raises(KeyboardInterrupt, match=signal.Signals(number).name):
        run.go(out)
    assert safe == [0x0A5C]
    with orvane.DataSet(out) as data:
        assert (data.sessions()[0].how, len(data.missing())) == ("interrupted", 4)


def test_plan_tells_order_changes_and_duration_and_opens_nothing(sweep, out, lab):
    run = orvane.Run("drive", boards=["OV0001:0", "OV0002:0"], phy=3, drive=range(8), temperature=[0, 25, 70])
    run.point(seconds=2)(lambda p, drive, temperature: None)

    @run.setup(seconds=600)
    def heat(p, temperature):
        pass

    before = lab["OV0001"].received("open")
    assert run.plan(out).text() == """\
drive: 48 points to measure, 0 are there
  boards      OV0001:0, OV0002:0, PHY 3, side by side
  temperature 0, 25, 70
  drive       0, 1, 2, 3, 4, 5, 6, 7
  set-up      heat: 3 times, 600 s each
  expected    31 min, 2 s each"""
    assert lab["OV0001"].received("open") == before
    assert not out.exists()


def test_plan_of_a_data_set_counts_what_is_there(sweep, out):
    sweep(drive=range(3)).go(out)
    plan = sweep(drive=range(3)).plan(out)
    assert (plan.missing, plan.done, plan.expected()) == (0, 6, 0.0)
