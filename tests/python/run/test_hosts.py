"""Runs on many hosts by Dask distributed: three, each in a network of its own with a hundred boards.

It takes minutes: `./check runs` installs what it needs and runs it.
"""
import contextlib
import datetime
import os
import re
import signal
import sqlite3
import subprocess
import sys
import time

import pytest

import orvane

if not os.environ.get("ORVANE_CHECK_RUNS"):
    pytest.skip("takes minutes and needs distributed: ./check runs does it", allow_module_level=True)
import sites

SWEEP = """
import os
import orvane
import orvane.run.hosts

orvane.run.hosts.SILENCE = 3.0
run = orvane.Run("hosts", boards={boards!r}, phy=3, level=range({levels}), drive=range({drives}), safe_within=10,
                 patience={patience}, retries=0)

@run.setup
def bias(p, level):
    p.phy[30, 0xC050] = 0x100 + level

@run.point
def measure(p, level, drive):
    p.sleep({seconds})
    p.phy[30, 0xC051] = drive
    p.record(bias=p.phy[30, 0xC050], drive_read=p.phy[30, 0xC051], process=os.getpid())

{safe}
"""
SAFE = "run.safe_state(lambda p: p.phy.write((30, 0xC052), 1))"


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    return tmp_path_factory.mktemp("hosts")


@pytest.fixture(scope="module")
def machines(folder):
    """Three hosts."""
    with contextlib.ExitStack() as stack:
        yield [stack.enter_context(contextlib.closing(sites.Site(number, folder))) for number in (1, 2, 3)]


@pytest.fixture
def scheduler(folder):
    """The scheduler."""
    begun = sites.scheduler(folder)
    yield begun
    begun.end()


@pytest.fixture
def hosts(machines, scheduler):
    """Three hosts and the scheduler; no workers."""
    return machines


@pytest.fixture
def workers(hosts):
    """A worker on each host: workers[0], ... ; more by workers.append()."""
    begun = [host.worker() for host in hosts]
    yield begun
    for each in begun:
        each.end()


@pytest.fixture
def begin(tmp_path):
    """Begins a run: begin("OV1*:0", levels=3) gives its process and the data set's path."""
    begun = []

    def begin(boards, *words, levels=1, drives=4, seconds=0.05, patience=60, safe=SAFE, name="it"):
        program = tmp_path / "sweep.py"
        program.write_text(SWEEP.format(boards=boards, levels=levels, drives=drives, seconds=seconds,
                                        patience=patience, safe=safe))
        out = tmp_path / f"{name}.orvrun"
        begun.append(sites.Program([sys.executable, "-m", "orvane.run", program, "--dask", sites.SCHEDULER, "--out",
                                    out, *words], tmp_path / f"{name}.log"))
        return begun[-1], out

    yield begin
    for each in begun:
        each.end()


def measured(out):
    """Points that are there; 0 before there is a data set."""
    with contextlib.closing(sqlite3.connect(f"file:{out}?mode=ro", uri=True, timeout=10)) as base:
        try:
            return base.execute("SELECT count(*) FROM point WHERE state = 'done'").fetchone()[0]
        except sqlite3.OperationalError:
            return 0


def wait_for_points(run, out, points):
    sites.until(lambda: out.exists() and measured(out) >= points or run.process.poll() is not None,
                lambda: run.log.read_text())
    assert run.process.poll() is None, run.log.read_text()


def ended(run):
    return run.process.wait(300), run.log.read_text()


def assert_whole(out, boards, points):
    """Every point of every board once, with the values of its conditions."""
    with orvane.DataSet(out) as data:
        assert data.missing() == []
        found = list(data.points())
        assert len(data.boards()) == boards and len(found) == boards * points
        assert {(each.values["bias"] - 0x100, each.values["drive_read"]) == (each.conditions["level"],
                                                                             each.conditions["drive"])
                for each in found} == {True}
        assert data.not_safe() == {}
        return found


def test_three_hosts_measure_a_hundred_boards_each_while_a_worker_is_killed_and_restarted(hosts, workers, begin):
    run, out = begin("OV*:0", levels=2, drives=3)
    wait_for_points(run, out, 300)
    workers[1].kill()
    workers.append(hosts[1].worker())
    status, told = ended(run)
    assert status == 0, told
    found = assert_whole(out, 300, 6)
    assert len({each.values["process"] for each in found}) == 4
    assert all(board.value((30, 0xC052), phy=3) == 1 for host in hosts for board in host.lab.boards())


def test_worker_that_is_back_before_it_is_missed_goes_on(hosts, begin):
    worker = hosts[0].worker()
    slow_look = "\norvane.run.hosts._BEAT, orvane.run.hosts.SILENCE = 15.0, 60.0\n"
    run, out = begin("OV?0[1-2]?:0", drives=20, safe=SAFE + slow_look)
    wait_for_points(run, out, 20)
    worker.kill()
    again = hosts[0].worker()
    status, told = ended(run)
    again.end()
    assert status == 0, told
    assert_whole(out, 20, 20)


def test_plan_tells_how_many_boards_are_measured_at_a_time(workers, begin):
    run, _ = begin("OV?00[1-3]:0", "--plan")
    assert ended(run)[1].splitlines()[1] == (
        "  boards      OV1001:0, OV1002:0, OV1003:0, OV2001:0, OV2002:0, OV2003:0, OV3001:0, OV3002:0, ... (9), PHY 3, "
        "6 at a time")


def test_point_that_was_measured_twice_is_one_row(hosts, begin, tmp_path):
    board = hosts[0].lab["OV1001"]
    worker = hosts[0].worker()
    before = board.executions("mdio_write")
    marker = tmp_path / "killed"
    slow = f"""
import signal, time
measure_once = run.steps.point.function
def measure(p, level, drive):
    measure_once(p, level, drive)
    if drive == 2 and not os.path.exists({str(marker)!r}):
        open({str(marker)!r}, "w").close()
        os.kill(os.getpid(), signal.SIGKILL)
run.steps.point = None
run.point(measure)
"""
    run, out = begin("OV1001:0", safe=SAFE + slow)
    assert worker.process.wait(120) == -signal.SIGKILL
    again = hosts[0].worker()
    status, told = ended(run)
    again.end()
    worker.end()
    assert status == 0, told
    assert_whole(out, 1, 4)
    writes_of_points, set_ups, safe_state = 5, 2, 1
    assert board.executions("mdio_write") - before == writes_of_points + set_ups + safe_state


def test_board_that_two_workers_reach_goes_on_when_one_of_them_dies(hosts, begin):
    first, second = hosts[0].worker(), hosts[0].worker()
    run, out = begin("OV100[1-4]:0", drives=40)
    wait_for_points(run, out, 40)
    first.kill()
    status, told = ended(run)
    second.end()
    assert status == 0, told
    found = assert_whole(out, 4, 40)
    assert len({each.values["process"] for each in found}) == 2
    changes = [one.port for one, other in zip(found, found[1:])
               if one.port == other.port and one.values["process"] != other.values["process"]]
    assert len(changes) == len(set(changes))  # a board stays where it is set up


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM])
def test_signal_brings_the_boards_of_all_hosts_to_their_safe_state(hosts, workers, begin, number):
    boards = [host.lab[f"OV{host.number}001"] for host in hosts]
    for board in boards:
        board.set_value((30, 0xC050), 0, phy=3)
        board.set_value((30, 0xC052), 0, phy=3)
    run, out = begin("OV?001:0", drives=2, seconds=60)
    sites.until(lambda: all(board.value((30, 0xC050), phy=3) == 0x100 for board in boards),
                lambda: run.log.read_text())  # they are set up: within the points, which take a minute
    run.process.send_signal(number)
    start = time.monotonic()
    assert ended(run)[0] == 130
    assert time.monotonic() - start < 30
    assert [board.value((30, 0xC052), phy=3) for board in boards] == [1, 1, 1]
    with orvane.DataSet(out) as data:
        assert (data.sessions()[0].how, data.not_safe(), len(data.missing())) == ("interrupted", {}, 6)


def test_hosts_make_boards_safe_by_themselves_when_the_run_is_killed(hosts, workers, begin):
    boards = [host.lab[f"OV{host.number}002"] for host in hosts]
    for board in boards:
        board.set_value((30, 0xC052), 0, phy=3)
    run, out = begin("OV?002:0", drives=1000)
    wait_for_points(run, out, 20)
    run.kill()
    sites.until(lambda: [board.value((30, 0xC052), phy=3) for board in boards] == [1, 1, 1], "no host has done it")
    again, _ = begin("OV?002:0", "--resume", drives=1000)
    wait_for_points(again, out, measured(out) + 20)
    again.kill(signal.SIGINT)
    assert again.process.returncode == 130


def test_long_shared_set_up_is_no_silence(hosts, workers, begin):
    for host in hosts:
        host.lab[f"OV{host.number}005"].set_value((30, 0xC052), 0, phy=3)
    chamber = """
import time
run.steps.point = None

@run.shared_setup
def chamber(level):
    time.sleep(6 * level)

@run.point
def measure(p, level, drive):
    p.record(made_safe=p.phy[30, 0xC052])

"""
    run, out = begin("OV?005:0", levels=2, drives=1, safe=chamber + SAFE)
    assert ended(run)[0] == 0, run.log.read_text()
    with orvane.DataSet(out) as data:
        assert [point.values["made_safe"] for point in data.points()] == [0] * 6


def test_safe_state_that_hangs_on_another_host_is_left_behind_and_told(hosts, workers, begin):
    safe = "import time\nrun.safe_state(lambda p: time.sleep(600) if p.board == 'OV2006' else None)"
    run, out = begin("OV?006:0", drives=1, safe=safe)
    status, told = ended(run)
    assert (status, told.splitlines()[-1]) == (
        3, "orvane: run: NOT IN A SAFE STATE: OV2006:0: it did not end in time")
    with orvane.DataSet(out) as data:
        assert data.not_safe() == {"OV2006:0": "it did not end in time"}


def test_board_that_cannot_be_opened_any_more_is_told_as_not_safe(hosts, begin):
    board = hosts[0].lab["OV1007"]
    worker = hosts[0].worker()
    run, out = begin("OV1007:0", drives=1000)
    wait_for_points(run, out, 5)
    board.inject("refuse-open", count=-1)
    worker.kill()
    again = hosts[0].worker()
    try:
        status, told = ended(run)
    finally:
        board.clear()
        again.end()
    assert status == 3, told
    assert told.splitlines()[-1].startswith("orvane: run: NOT IN A SAFE STATE: OV1007:0: OV1007:0 PHY 3: open: "), told


def test_scheduler_that_dies_ends_the_run_and_the_hosts_make_their_boards_safe(hosts, workers, scheduler, begin):
    boards = [host.lab[f"OV{host.number}004"] for host in hosts]
    for board in boards:
        board.set_value((30, 0xC052), 0, phy=3)
    run, out = begin("OV?004:0", drives=1000)
    wait_for_points(run, out, 20)
    scheduler.kill()
    status, told = ended(run)
    assert (status, told.splitlines()[-1]) == (3, "orvane: run: NOT IN A SAFE STATE: " + "; ".join(
        f"OV{number}004:0: the scheduler does not answer" for number in (1, 2, 3))), told
    sites.until(lambda: [board.value((30, 0xC052), phy=3) for board in boards] == [1, 1, 1], "no host has done it")
    with orvane.DataSet(out) as data:
        assert (len(list(data.points())) + len(data.missing()), data.sessions()[0].ended is not None) == (3000, True)


def test_boards_of_a_host_that_is_gone_are_given_up_and_told_first(hosts, workers, begin):
    run, out = begin("OV?003:0", drives=30, patience=2)
    wait_for_points(run, out, 9)
    workers[2].kill()
    status, told = ended(run)
    assert status == 3, told
    assert told.splitlines()[-1] == "orvane: run: NOT IN A SAFE STATE: OV3003:0: no worker reaches it"
    shown = subprocess.run([sys.executable, "-m", "orvane.run", "show", out], text=True, stdout=subprocess.PIPE).stdout
    assert shown.startswith("NOT IN A SAFE STATE: OV3003:0: no worker reaches it\n")
    with orvane.DataSet(out) as data:
        assert {task.port for task in data.missing()} == {"OV3003:0"}
        assert [each.kind for each in data.errors() if each.step == "lost"] == ["RuntimeError"]
    workers.append(hosts[2].worker())
    again, _ = begin("OV?003:0", "--resume", drives=30, patience=2)
    assert ended(again)[0] == 0
    assert_whole(out, 3, 30)


def test_two_boards_of_one_serial_on_two_hosts_are_refused(hosts, workers, begin, folder):
    twin = sites.Site(4, folder, serials=["OV1001"])
    worker = twin.worker()
    try:
        status, told = ended(begin("OV1001:0")[0])
    finally:
        worker.end()
        twin.close()
    assert status == 1
    assert re.search(r"^orvane: run: boards: there are several OV1001, at 10\.83\.[14]\.1 of \S+ and 10\.83\.[14]\.1",
                     told, re.MULTILINE), told


@pytest.mark.parametrize("boards, told", [
    ("XX*:0", "orvane: run: boards: no port that answers matches XX*:0"),
    (["OV1001:0", "XX0001:0"], "orvane: run: boards: XX0001:0: no worker reaches it"),
])
def test_board_that_no_host_has_is_told(workers, begin, boards, told):
    status, text = ended(begin(boards)[0])
    assert (status, text.splitlines()[-1]) == (1, told)


def test_scheduler_without_workers_is_told(hosts, begin):
    status, text = ended(begin("OV1001:0")[0])
    assert status == 1
    assert re.search(r"orvane: run: no worker is connected to tcp://127\.0\.0\.1:8786\n$", text)


def test_steps_that_cannot_be_sent_are_told(workers, begin):
    status, text = ended(begin("OV1001:0", safe="import threading\nlock = threading.Lock()\n"
                                                "run.safe_state(lambda p: lock.acquire())")[0])
    assert status == 1
    assert "orvane: run: the steps cannot be sent to other hosts: cannot pickle '_thread.lock' object" in text


def test_fault_of_the_program_on_another_host_ends_the_run(workers, begin):
    slip = "run.steps.point = None\nrun.point(lambda p, level, drive: p.nothing())\n"
    status, text = ended(begin("OV?001:0", safe=slip + SAFE)[0])
    assert status == 1
    assert text.splitlines()[-1] == "AttributeError: 'Point' object has no attribute 'nothing'"


def test_three_hosts_measure_two_and_a_half_times_as_much_as_one(hosts, begin):
    """Points that wait 50 ms. The best of up to three of each: another program on this machine takes from either."""

    def rate(number, name):
        workers = [host.worker() for host in hosts[:number]]
        run, out = begin(f"OV[1-{number}]0[0-3]?:0", drives=5, safe=SAFE, name=name)
        assert ended(run)[0] == 0
        for worker in workers:
            worker.end()
        with orvane.DataSet(out) as data:
            points = list(data.points(with_values=False))
        return len(points) / seconds_between(min(each.begun for each in points), max(each.ended for each in points))

    ones, threes = [], []
    while len(ones) < 3 and not (ones and max(threes) >= 2.5 * max(ones)):
        ones.append(rate(1, f"one{len(ones)}"))
        threes.append(rate(3, f"three{len(threes)}"))
    print(f"points a second on one host: {max(ones):.0f}, on three: {max(threes):.0f}", file=sys.__stderr__)
    assert max(threes) >= 2.5 * max(ones), (ones, threes)


def seconds_between(first, second):
    first, second = (datetime.datetime.fromisoformat(each.rstrip("Z")) for each in (first, second))
    return (second - first).total_seconds()
