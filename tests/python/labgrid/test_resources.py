"""Resources: what they refuse, and how `avail` follows boards."""
import pytest

pytest.importorskip("labgrid.driver", reason="needs labgrid (Debian package python3-labgrid)")

from labgrid import Target, target_factory  # noqa: E402
from labgrid.exceptions import NoResourceFoundError  # noqa: E402

from orvane.labgrid import BoardManager, NetworkOrvanePort, OrvanePort  # noqa: E402


def follow(resource, avail):
    """Waits for rounds of questions until the resource is said to be there, or gone."""
    for _ in range(20):
        assert BoardManager.get().watch.next_round()
        resource.poll()
        if resource.avail is avail:
            return
    pytest.fail(f"{resource} is still {'gone' if avail else 'there'}")


@pytest.fixture
def port(board):
    """Port 0 of OV0001 as a resource."""
    return OrvanePort(Target("test"), None, "OV0001", "10.83.0.1")


def test_board_that_is_killed_is_gone_until_it_starts(port, board):
    follow(port, True)
    board.do("kill")
    try:
        follow(port, False)
    finally:
        board.do("start")
    follow(port, True)


def test_board_of_another_name_at_the_address_is_not_the_board(board):
    port = OrvanePort(Target("test"), None, "OV0001", "10.83.0.2")
    follow(port, False)


def test_port_that_the_board_does_not_have_is_not_there(board):
    port = OrvanePort(Target("test"), None, "OV0001", "10.83.0.1", 7)
    follow(port, False)


def test_board_without_an_address_is_found(board):
    port = OrvanePort(Target("test"), None, "OV0003")
    follow(port, True)


def test_target_waits_for_the_board(port):
    port.target.await_resources([port])
    assert port.avail


def test_target_gives_up_on_a_board_that_is_not_there():
    port = OrvanePort(Target("test"), None, "OV9999", "10.83.0.99")
    with pytest.raises(NoResourceFoundError, match="OV9999"):
        port.target.await_resources([port], timeout=0.2)


@pytest.mark.parametrize("wrong", [{"device": 1}, {"port": -1}, {"port": "0"}, {"phy": 128}, {"address": None}])
def test_value_that_no_board_has_is_refused(wrong):
    with pytest.raises((TypeError, ValueError)):
        OrvanePort(None, None, **{"device": "OV0001", **wrong})


@pytest.fixture
def remote(board):
    """OV0001 as an exporter that says that it is there tells of it."""
    port = target_factory.make_resource(
        Target("test"), "NetworkOrvanePort", "wren",
        {"host": "lab1", "device": "OV0001", "address": "10.83.0.1", "port": 0, "phy": 3, "key": 0x4711})
    port.avail = True
    return port


def test_remote_board_is_there_when_exporter_and_board_say_so(remote, board):
    watch = BoardManager.get().watch
    assert remote.avail or (watch.next_round() and remote.avail)
    remote.avail = False
    assert not remote.avail
    remote.avail = True
    board.do("kill")
    try:
        assert watch.next_round()
        assert not remote.avail
    finally:
        board.do("start")


def test_remote_board_behind_its_exporter_is_there_when_the_exporter_says_so(board):
    port = NetworkOrvanePort(Target("test"), None, "lab1", "OV0001", "203.0.113.1")
    port.extra = {"proxy": "lab1", "proxy_required": True}
    assert not port.avail
    port.avail = True
    assert port.avail


@pytest.mark.parametrize("key", [0, 0x10000, "1"])
def test_key_that_no_session_has_is_refused(key):
    with pytest.raises((TypeError, ValueError)):
        NetworkOrvanePort(None, None, "lab1", "OV0001", key=key)
