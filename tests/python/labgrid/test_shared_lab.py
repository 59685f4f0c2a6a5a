"""labgrid's own programs beside boards: two exporters' hosts with twenty boards each, and a user's host, each with a
network of its own. Run by ./check labgrid."""
import os
import pathlib
import re
import signal
import sys

import pytest

if not os.environ.get("ORVANE_CHECK_LABGRID"):
    pytest.skip("run by ./check labgrid", allow_module_level=True)
pytest.importorskip("labgrid.remote.client", reason="needs labgrid (Debian package python3-labgrid)")
pytest.importorskip("autobahn.asyncio.websocket", reason="needs autobahn (Debian package python3-autobahn)")
sys.path.insert(0, str(pathlib.Path(os.environ["ORVANE_PYTHON_SOURCE"], "tests/support/labgrid")))

from hosts import PYTHON, wait_for  # noqa: E402
from shared_lab import COUNT, KEYED, SharedLab  # noqa: E402

import orvane.lab  # noqa: E402


@pytest.fixture(scope="module")
def lab(tmp_path_factory):
    """The hosts, with every board told of."""
    lab = SharedLab(tmp_path_factory.mktemp("lab"))
    try:
        wait_for(lambda: len(lab.resources()) == 2 * COUNT, "all boards are told of", 60)
        yield lab
        for each in lab.labs.values():
            for board in each.boards():
                wait_for(lambda: board.sessions == 0, f"no session is left on {board.serial}")
    except BaseException:
        for host in lab.hosts:
            for process in host.started:
                print(f"== {process.log.name}\n{process.log.read_text()[-3000:]}")
        raise
    finally:
        lab.close()


@pytest.fixture
def place(lab):
    """Makes places of boards, that are given back and deleted with the test: place("LAB1B01") is a name."""
    made = []

    def make(serial):
        made.append(lab.place_of(serial))
        return made[-1]

    yield make
    for each in made:
        if "acquired: None" not in lab.shown(each):
            lab.client("-p", each, "release", "--kick")
        lab.client("-p", each, "delete")


BYPASS = "import orvane; print(orvane.open('{0}:0').phy(3)[1, 2])"


def bypass(lab, serial, address, **how):
    """A colleague's program that knows nothing of labgrid's places."""
    return lab.python(f"import orvane; orvane.rack().know('{serial}', '{address}'); " + BYPASS.format(serial),
                      user="eve", check=False, **how)


def test_both_exporters_tell_of_their_boards(lab):
    assert lab.resources() >= {(f"lab{host}", f"LAB{host}B{number:02}")
                               for host in (1, 2) for number in range(1, COUNT + 1)}


def test_second_user_is_locked_out_until_the_place_is_released(lab, place):
    name = place("LAB1B01")
    assert lab.client("-p", name, "acquire") == f"acquired place {name}\n"
    second = lab.client("-p", name, "acquire", user="bob", check=False)
    assert second.returncode == 1
    assert f"place {name} is already acquired by desk/ann" in second.stdout
    lab.client("-p", name, "release")
    assert lab.client("-p", name, "acquire", user="bob") == f"acquired place {name}\n"


def test_board_refuses_who_bypasses_labgrid_and_the_message_names_place_and_holder(lab, place):
    name = place("LAB1B02")
    assert bypass(lab, "LAB1B02", "10.83.1.2").stdout == "2652\n"
    lab.client("-p", name, "acquire")
    assert lab.board("LAB1B02").sessions == 1
    refused = bypass(lab, "LAB1B02", "10.83.1.2")
    assert refused.returncode == 1
    assert "orvane.errors.Refused: LAB1B02:0 PHY 3: read 1.0x0002: refused, EACCES (-13)." in refused.stdout
    assert refused.stdout.endswith(f"It is labgrid's place {name}, acquired by desk/ann.\n")
    lab.client("-p", name, "release")
    assert bypass(lab, "LAB1B02", "10.83.1.2").stdout == "2652\n"


def test_place_of_a_board_that_a_bypasser_holds_is_not_acquired(lab, place):
    name = place("LAB1B03")
    with orvane_session(lab, "LAB1B03", "10.83.1.3"):
        refused = lab.client("-p", name, "acquire", check=False)
        assert refused.returncode == 1 and f"failed to acquire place {name}" in refused.stdout
        wait_for(lambda: "'lock': 'refused since" in lab.client("-v", "resources", f"lab1/LAB1B03/{KEYED}"),
                 "the refusal is shown")
    wait_for(lambda: "'lock': 'free'" in lab.client("-v", "resources", f"lab1/LAB1B03/{KEYED}"), "the lock is free")
    lab.client("-p", name, "acquire")


class orvane_session:
    """A program on the desk that holds a board."""

    def __init__(self, lab, serial, address):
        self.lab, self.serial = lab, serial
        self.process = lab.desk.start(PYTHON, "-c", f"""
import orvane, signal, sys
signal.signal(signal.SIGTERM, lambda *_: sys.exit())
orvane.rack().know('{serial}', '{address}')
with orvane.open('{serial}:0', exclusive=0x4711) as port:
    port.phy(3).open()
    print('holding')
    signal.pause()
""", until="holding", log="bypass")

    def __enter__(self):
        return self

    def __exit__(self, *raised):
        self.process.terminate()
        self.process.wait(20)


def test_reservation_waits_until_a_place_with_its_tags_is_free(lab, place):
    name = place("LAB1B04")
    lab.client("-p", name, "set-tags", "serial=lab1b04", "phy_id=0a5c1e83")
    first = token(lab.client("reserve", "--shell", "--wait", "serial=lab1b04", "phy_id=0a5c1e83"))
    lab.client("-p", f"+{first}", "acquire")
    waiting = lab.desk.start(PYTHON, "-m", "labgrid.remote.client", "reserve", "--shell", "--wait", "serial=lab1b04",
                             until="LG_TOKEN", log="reserve", LG_USERNAME="bob")
    assert "state: waiting" in lab.client("reservations")
    lab.client("-p", name, "release")
    lab.client("cancel-reservation", first)
    assert waiting.wait(60) == 0
    second = token(waiting.log.read_text())
    assert lab.client("-p", f"+{second}", "acquire", user="bob") == f"acquired place {name}\n"
    lab.client("-p", name, "release", user="bob")
    lab.client("cancel-reservation", second, user="bob")


def token(text):
    """What `reserve --shell` says."""
    return text.split("LG_TOKEN=")[1].split()[0]


@pytest.mark.parametrize("serial", ["LAB1B05", "LAB2B05"])
def test_pytest_plugin_reads_and_writes_through_the_driver(lab, place, serial):
    name = place(serial)
    lab.client("-p", name, "acquire")
    ran = lab.pytest(name, """
def test_phy(target):
    driver = target.get_driver("OrvaneDriver")
    driver.write((30, 0xC010), 0xCAFE)
    assert driver.read(30, 0xC010) == 0xCAFE
    assert driver.phy[1, 2] == 0x0A5C
""")
    assert ran.returncode == 0, ran.stdout
    assert "1 passed" in ran.stdout
    assert lab.board(serial).value((30, 0xC010), phy=3) == 0xCAFE
    lab.client("-p", name, "release")
    assert lab.board(serial).sessions == 0


def test_place_that_nobody_acquired_gives_pytest_no_board(lab, place):
    ran = lab.pytest(place("LAB1B06"), "def test_phy(target):\n    pass\n")
    assert ran.returncode != 0
    assert "is not acquired" in ran.stdout


def test_killed_board_turns_unavailable_and_returns(lab, place):
    board = lab.board("LAB1B07")
    board.do("kill")
    wait_for(lambda: ("lab1", "LAB1B07") not in lab.resources(), "the board is gone")
    board.do("restart", forgetSessions=True)
    wait_for(lambda: ("lab1", "LAB1B07") in lab.resources(), "the board is back")


def test_killed_board_of_labgrids_own_exporter_turns_unavailable_for_its_user(lab, place):
    name = place("LAB2B07")
    lab.client("-p", name, "acquire")
    look = f"""
from labgrid import Environment
target = Environment({str(lab.environment(name))!r}).get_target()
board = target.get_resource("NetworkOrvanePort", wait_avail=False)
from orvane.labgrid import BoardManager
BoardManager.get().watch.next_round()
board.poll()
print("there" if board.avail else "gone")
"""
    assert lab.python(look).endswith("there\n")
    lab.board("LAB2B07").do("kill")
    assert lab.python(look).endswith("gone\n")
    lab.board("LAB2B07").do("restart", forgetSessions=True)
    assert lab.python(look).endswith("there\n")


def test_board_that_restarts_is_locked_again(lab, place):
    name = place("LAB1B08")
    lab.client("-p", name, "acquire")
    lab.board("LAB1B08").do("restart", forgetSessions=True)
    wait_for(lambda: lab.board("LAB1B08").sessions == 1, "the lock is there again")
    assert bypass(lab, "LAB1B08", "10.83.1.8").returncode == 1


def test_board_that_is_added_or_moved_appears_without_a_restart(lab):
    lab.lab1.run("ip", "address", "add", "10.83.1.29/32", "dev", "lo")
    added = lab.lab1.boards(lab.folder / "control-added", ["LAB1NEW"], ["10.83.1.28"])
    try:
        wait_for(lambda: ("lab1", "LAB1NEW") in lab.resources(), "the board is told of")
        moving = orvane.lab.Lab(str(lab.folder / "control-added"))
        moving["LAB1NEW"].do("move", address="10.83.1.29")
        wait_for(lambda: "'address': '10.83.1.29'" in lab.client("-v", "resources", f"lab1/LAB1NEW/{KEYED}"),
                 "its new address is told")
        moving.close()
    finally:
        added.terminate()
        added.wait(20)
    wait_for(lambda: ("lab1", "LAB1NEW") not in lab.resources(), "the board is gone")


def test_lock_of_a_crashed_holder_is_shown_and_cleared(lab, place):
    name = place("LAB1B09")
    lab.client("-p", name, "acquire")
    holder = lab.desk.start(PYTHON, "-c", f"""
import time
from labgrid import Environment
target = Environment({str(lab.environment(name))!r}).get_target()
print("reads", target.get_driver("OrvaneDriver").read(1, 2))
time.sleep(600)
""", until="reads 2652", log="holder", LG_USERNAME="ann")
    assert lab.board("LAB1B09").sessions == 2
    holder.send_signal(signal.SIGKILL)
    holder.wait(20)
    assert f"ann   desk  {name}" in lab.client("who")
    lab.client("-p", name, "release", "--kick", user="bob")
    wait_for(lambda: "'lock': 'stale since" in lab.shown(name), "the lock is stale")
    assert lab.client("-p", name, "acquire", user="bob", check=False).returncode == 1
    lab.board("LAB1B09").do("forget-sessions")  # as a board does that misses a session's pings
    wait_for(lambda: "'lock': 'free'" in lab.shown(name), "the lock is free")
    lab.client("-p", name, "acquire", user="bob")


def test_exporter_that_crashed_finds_its_lock_again(lab, place):
    name = place("LAB1B10")
    lab.client("-p", name, "acquire")
    key = lab.shown(name).split("'key': ")[1].split(",")[0]
    lab.exporter.kill()
    lab.exporter.wait(20)
    wait_for(lambda: ("lab1", "LAB1B11") not in lab.resources(), "the exporter is gone")
    assert bypass(lab, "LAB1B10", "10.83.1.10").returncode == 1
    lab.exporter = lab.start_exporter()
    wait_for(lambda: f"'key': {key}," in lab.client("-v", "resources", "-a"), "the lock is held with its key")
    lab.client("-p", name, "release")
    lab.board("LAB1B10").do("forget-sessions")


def test_page_about_sharing_a_lab_does_what_it_says(lab):
    """Its samples run in their order, on the hosts that they are marked with, for a board of the first lab."""
    page = pathlib.Path(os.environ["ORVANE_PYTHON_SOURCE"], "docs/howto/share-a-lab.md").read_text()
    for told, here in (("OV0001", "LAB1B12"), ("ov0001", "lab1b12"), ("10.0.7.10", "10.83.1.12"),
                       ("phy_id=0a5c1e83)", "serial=lab1b12)")):
        page = page.replace(told, here)
    marked = re.findall(
        r"<!-- run: skip \((desk|lab1|file [\w.]+): ./check labgrid\) -->\n```(\w+)\n(.*?)```", page, re.DOTALL)
    assert [where for where, _, _ in marked] == ["desk", "lab1", "desk", "desk", "desk", "file lab.yaml",
                                                 "file test_phy.py"]
    scripts = {"desk": "", "lab1": ""}
    exporter = f'orvane-labgrid-exporter() {{ {PYTHON} -m orvane.labgrid.exporter "$@"; }}\n'
    for where, _, text in marked:
        if where.startswith("file "):
            (lab.folder / where[5:]).write_text(text)
        else:
            scripts[where] += text
    places = lab.lab1.run("bash", "-ec", exporter + scripts["lab1"])
    assert places in page
    told = lab.desk.run("bash", "-ec", scripts["desk"], LG_USERNAME="ann", PYTEST_ADDOPTS="-p no:cacheprovider")
    assert "1 passed" in told and "held for place lab1b12-0-3" in told
    assert lab.board("LAB1B12").value((30, 0xC010), phy=3) == 0xCAFE
    lab.client("-p", "lab1b12-0-3", "delete")


@pytest.fixture
def isolated(lab):
    """Boards that the desk has no way to, behind an isolated exporter with an ssh server on the second lab's host."""
    keys = lab.folder / "ssh"
    keys.mkdir(mode=0o700)
    for name in ("host", "user"):
        lab.desk.run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", keys / name)
    (keys / "authorized_keys").write_text((keys / "user.pub").read_text())
    public = (keys / "host.pub").read_text()
    (keys / "known_hosts").write_text(f"10.99.2.2 {public}")
    (keys / "config").write_text(f"Host *\n  HostName 10.99.2.2\n  User root\n  IdentityFile {keys}/user\n"
                                 f"  HostKeyAlias 10.99.2.2\n  UserKnownHostsFile {keys}/known_hosts\n")
    path = os.environ["PYTHONPATH"]
    (keys / "sshd_config").write_text(f"HostKey {keys}/host\nAuthorizedKeysFile {keys}/authorized_keys\n"
                                      f"StrictModes no\nUsePAM no\nPidFile none\nListenAddress 10.99.2.2\n"
                                      f"PermitRootLogin prohibit-password\nSetEnv PYTHONPATH={path}\n")
    lab.lab2.run("sh", "-c", "mount -t tmpfs none /run && mkdir /run/sshd")
    server = lab.lab2.start("/usr/sbin/sshd", "-D", "-e", "-f", keys / "sshd_config", until="Server listening",
                            log="sshd")
    boards = lab.lab2.boards(lab.folder / "control-hidden", ["HIDDEN1"], ["10.83.3.1"])
    exporter = lab.lab2.start(PYTHON, "-m", "orvane.labgrid.exporter", "-i", "-n", "hidden", "--phy", "3", "--every",
                              "1", "10.83.3.1", log="exporter")
    wait_for(lambda: ("hidden", "HIDDEN1") in lab.resources(), "the board is told of")
    with orvane.lab.Lab(str(lab.folder / "control-hidden")) as hidden:
        yield hidden["HIDDEN1"], keys
        wait_for(lambda: hidden["HIDDEN1"].sessions == 0, "no session is left")
    for process in (exporter, boards, server):
        process.terminate()
        process.wait(20)


def test_client_without_a_way_to_the_board_uses_it_by_ssh(lab, isolated):
    board, keys = isolated
    unreachable = bypass(lab, "HIDDEN1", "10.83.3.1")
    assert unreachable.returncode == 1 and "Unreachable" in unreachable.stdout
    lab.client("-p", "hidden", "create")
    lab.client("-p", "hidden", "add-match", f"hidden/HIDDEN1/{KEYED}/port0-phy3")
    lab.client("-p", "hidden", "acquire")
    # ssh looks into the home of the user that the system knows
    home = os.path.expanduser("~root")
    mounted = f"mount -t tmpfs none {home} && mkdir {home}/.ssh && mount --bind {keys} {home}/.ssh && "
    file = lab.folder / "test_hidden.py"
    file.write_text("""
def test_phy(target):
    driver = target.get_driver("OrvaneDriver")
    driver.write((30, 0xC010), 0xCAFE)
    assert driver.read(30, 0xC010) == 0xCAFE
    assert list(driver.phy.read(1, range(2, 4))) == [0x0A5C, 0x1E83]
    driver.port.i2c.write(0, 0x50, b"\\x10hello")
    assert driver.port.i2c.read(0, 0x50, 0x10, 5) == b"hello"
""")
    ran = lab.desk.run("unshare", "--mount", "sh", "-c", mounted + f"exec {PYTHON} -m pytest -p no:cacheprovider -q "
                       f"--lg-env {lab.environment('hidden')} {file}", check=False, PYTEST_ADDOPTS="",
                       LG_USERNAME="ann", timeout=120)
    assert ran.returncode == 0, ran.stdout
    assert board.value((30, 0xC010), phy=3) == 0xCAFE
    lab.client("-p", "hidden", "release")
    lab.client("-p", "hidden", "delete")
