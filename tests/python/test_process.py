"""How the package gets along with the process around it: Ctrl-C, exit, fork, threads, interpreters."""
import os
import signal
import threading
import time

import pytest

import orvane
import orvane.lab

INTERRUPTED = """
import asyncio, os, signal, threading, time
import orvane.lab

rack = orvane.Rack()
port = rack.open("OV0001:0")
phy = port.phy(3)
phy.open()
batch = orvane.Batch()
batch.read((1, 2))
lab = orvane.lab.Lab()
before = lab["OV0001"].received("{procedure}")
lab["OV0001"].inject("silent", count=-1, procedure="{procedure}")
sent = []

def interrupt():
    while lab["OV0001"].received("{procedure}") == before:
        time.sleep(0.01)
    sent.append(time.monotonic())
    {signal}

threading.Thread(target=interrupt, daemon=True).start()
try:
    {call}
except KeyboardInterrupt:
    late = time.monotonic() - sent[0]
    print("interrupted", late < 0.2 or late, signal.getsignal(signal.SIGINT).__name__)
"""


def undisturbed(lab):
    """Leaves neither faults nor the sessions of programs that were interrupted."""
    lab["OV0001"].clear()
    lab["OV0001"].do("forget-sessions")


TO_PROCESS = "os.kill(os.getpid(), signal.SIGINT)"
TO_OTHER_THREAD = "signal.pthread_kill(threading.get_ident(), signal.SIGINT)"


@pytest.mark.parametrize("send", [TO_PROCESS, TO_OTHER_THREAD])
@pytest.mark.parametrize("call, procedure", [
    ("phy.read(1, 2, within=30)", "mdio_read"),
    ("phy.read(1, range(4096), within=30)", "mdio_read"),
    ("orvane.read_all([phy], (1, 2), within=30)", "mdio_read"),
    ("phy.shell.run('sleep', seconds=30)", "execute_command"),
])
def test_ctrl_c_ends_a_call_at_once(program, lab, call, procedure, send):
    text = INTERRUPTED.format(call=call, procedure=procedure, signal=send)
    ended = program(text)
    undisturbed(lab)
    assert ended.stdout == "interrupted True default_int_handler\n", ended.stderr


# What else waits for a board: everything that may be called.
@pytest.mark.parametrize("call, procedure", [
    ("port.phy(4).open(within=30)", "open_connection"),
    ("port.close()", "close_connection"),
    ("port.__exit__(None, None, None)", "close_connection"),
    ("rack.close()", "close_connection"),
    ("rack.close_sessions(within=30)", "close_connection"),
    ("phy.close(within=30)", "close_connection"),
    ("rack.open_all('OV0001:0', phys=[5], within=30)", "open_connection"),
    ("phy.write((30, 1), 2, within=30)", "mdio_write"),
    ("phy.modify((30, 1), 2, 2, within=30)", "mdio_read"),
    ("phy.run(batch, within=30)", "mdio_read"),
    ("phy.snapshot('PMA', within=30)", "mdio_read"),
    ("phy.AN.STATUS.read(within=30)", "mdio_read"),
    ("phy.routed().read(27, 0x40, within=30)", "mdio_read"),
    ("phy.i2c.read(0, 0x50, 0, 1, within=30)", "i2c_read"),
    ("phy.adc.capture(10, within=30)", "adc_initialize"),
    ("phy.thermal[0].settled(within=30)", "thrm_getsettledtemperature"),
    ("phy.shell.ping_session(within=30)", "pingclient"),
    ("asyncio.run(phy.aread(1, 2, within=30))", "mdio_read"),
    ("asyncio.run(asyncio.sleep(0)); phy.read(1, 2, within=30)", "mdio_read"),
])
def test_ctrl_c_ends_whatever_waits_for_a_board(program, lab, call, procedure):
    ended = program(INTERRUPTED.format(call=call, procedure=procedure, signal=TO_PROCESS))
    undisturbed(lab)
    assert ended.stdout == "interrupted True default_int_handler\n", ended.stderr


def test_ctrl_c_ends_the_wait_for_another_threads_call(program, lab):
    ended = program("""
import os, signal, threading, time
import orvane.lab
phy = orvane.open("OV0001:0").phy(3)
phy.open()
board = orvane.lab.Lab()["OV0001"]
before = board.received("mdio_read")
board.inject("silent", count=-1, procedure="mdio_read")
enough = orvane.Cancellation()
sent = []

def read():
    try:
        phy.read(1, 2, within=orvane.Within(30, cancellation=enough))
    except orvane.Cancelled:
        pass

def interrupt():
    sent.append(time.monotonic())
    os.kill(os.getpid(), signal.SIGINT)

threading.Thread(target=read).start()
while board.received("mdio_read") == before:
    time.sleep(0.01)
threading.Timer(0.3, interrupt).start()
try:
    phy.is_open
except KeyboardInterrupt:
    late = time.monotonic() - sent[0]
    print("interrupted", late < 0.2 or late)
enough.cancel()
""")
    undisturbed(lab)
    assert ended.stdout == "interrupted True\n", ended.stderr


def test_ctrl_c_ends_a_search(program):
    ended = program("""
import os, signal, threading, time
import orvane
import orvane.lab
sent = []

def interrupt():
    sent.append(time.monotonic())
    os.kill(os.getpid(), signal.SIGINT)

rack = orvane.Rack()
threading.Timer(0.3, interrupt).start()
try:
    rack.discover(within=30)
except KeyboardInterrupt:
    print(time.monotonic() - sent[0] < 0.2)
""")
    assert ended.stdout == "True\n", ended.stderr


def test_programs_own_handler_runs_and_the_call_is_cancelled(phy, board):
    board.inject("silent", count=-1, procedure="mdio_read")
    told = []
    former = signal.signal(signal.SIGINT, lambda number, frame: told.append(number))
    before = board.received("mdio_read")

    def interrupt():
        with orvane.lab.Lab() as lab:
            while lab["OV0001"].received("mdio_read") == before:
                time.sleep(0.01)
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=interrupt)
    thread.start()
    try:
        with pytest.raises(orvane.Cancelled):
            phy.read(1, 2, within=30)
        assert told == [signal.SIGINT]
        board.clear()
        assert isinstance(phy[1, 2], int)  # the next call is not
    finally:
        signal.signal(signal.SIGINT, former)
        thread.join()


def test_interrupt_between_calls_is_the_programs_own(phy, board):
    told = []
    former = signal.signal(signal.SIGINT, lambda number, frame: told.append(number))
    try:
        value = phy[1, 2]
        os.kill(os.getpid(), signal.SIGINT)
        assert phy[1, 2] == value
        assert told == [signal.SIGINT]
    finally:
        signal.signal(signal.SIGINT, former)


def test_interrupt_is_left_to_the_system_where_the_program_says_so(program, lab):
    ended = program("""
import os, signal
import orvane
phy = orvane.open("OV0001:0").phy(3)
phy[1, 2]
signal.signal(signal.SIGINT, signal.SIG_DFL)
phy[1, 2]
os.kill(os.getpid(), signal.SIGINT)
""")
    undisturbed(lab)
    assert ended.returncode == -signal.SIGINT, ended.stderr


def test_program_that_ends_with_open_sessions_closes_them(program, lab):
    ended = program("""
import orvane
import orvane.lab
phys = [orvane.open(f"OV000{number}:0", exclusive=0x4711).phy(3) for number in (1, 2)]
print([phy[1, 2] == phys[0][1, 2] for phy in phys])
""")
    assert ended.stdout == "[True, True]\n", ended.stderr
    assert [lab[serial].sessions for serial in ("OV0001", "OV0002")] == [0, 0]


def test_program_that_ends_in_an_error_closes_its_sessions(program, lab):
    ended = program("""
import orvane
import orvane.lab
rack = orvane.Rack()
rack.on_event(print)
phy = rack.open("OV0001:0").phy(3)
phy[1, 2]
phy.on_reopen(lambda: phy[1, 2])
raise SystemExit(3)
""")
    assert (ended.returncode, ended.stderr) == (3, "")
    assert lab["OV0001"].sessions == 0


def test_child_raises_at_once_and_leaves_the_parents_session_alone(program, lab):
    ended = program("""
import os, time
import orvane
import orvane.lab
rack = orvane.Rack()
port = rack.open("OV0001:0", exclusive=0x4711)
phy = port.phy(3)
phy[30, 5] = 1
child = os.fork()
if child == 0:
    begun = time.monotonic()
    problems = []
    for use in (lambda: phy[30, 5], lambda: rack.discover(), lambda: port.phy(4), lambda: phy.routed()):
        try:
            use()
        except RuntimeError as problem:
            problems.append(str(problem)[:20])
    port.close()
    rack.close()
    del phy, port, rack
    status = 0 if problems == ["opened before fork()"] * 4 and time.monotonic() - begun < 0.5 else 1
    raise SystemExit(status)
print(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), orvane.lab.Lab()["OV0001"].sessions, phy[30, 5])
""")
    assert ended.stdout == "0 1 1\n", ended.stderr


def test_child_opens_boards_itself(program):
    ended = program("""
import multiprocessing
import orvane
import orvane.lab
phy = orvane.open("OV0001:0").phy(3)
phy[30, 6] = 0x66

def read(queue):
    queue.put(orvane.open("OV0001:0").phy(3)[30, 6])

context = multiprocessing.get_context("fork")
queue = context.Queue()
process = context.Process(target=read, args=(queue,))
process.start()
print(queue.get(timeout=20), phy[30, 6])
process.join()
print(process.exitcode)
""")
    assert ended.stdout == "102 102\n0\n", ended.stderr


def test_other_threads_run_while_a_call_waits(phy, board):
    board.inject("delay", milliseconds=1000, procedure="mdio_read", count=-1)
    steps = []
    thread = threading.Thread(target=phy.read, args=(1, 2))
    thread.start()
    while thread.is_alive():
        steps.append(time.monotonic())
        time.sleep(0.001)
    thread.join()
    assert len(steps) > 50
    assert max(after - before for before, after in zip(steps, steps[1:])) < 0.5


def test_sub_interpreter_cannot_import_it(program):
    ended = program("""
import _xxsubinterpreters as interpreters
other = interpreters.create()
try:
    interpreters.run_string(other, "import orvane")
except interpreters.RunFailedError as problem:
    print(problem)
""")
    assert "orvane works in the main interpreter only" in ended.stdout, ended.stderr
