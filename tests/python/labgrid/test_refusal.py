"""What a Refused says of the holder, and that it asks nobody where no coordinator is named."""
import pickle

import pytest

import orvane

pytest.importorskip("labgrid.driver", reason="needs labgrid (Debian package python3-labgrid)")


@pytest.fixture
def refused(board, rack):
    """The refusal of a board that somebody holds."""
    with orvane.Rack() as other:
        holder = other.open("OV0001:0", exclusive=0x4711).phy(3)
        holder.open()
        with pytest.raises(orvane.Refused) as raised:
            rack.open("OV0001:0").phy(3).open()
        yield raised.value


def test_refusal_names_nobody_where_no_coordinator_is_named(refused, monkeypatch):
    monkeypatch.delenv("LG_CROSSBAR", raising=False)
    monkeypatch.delenv("LG_COORDINATOR", raising=False)
    assert refused.holder == ""
    assert str(refused).endswith("wait for its end.")


def test_refusal_stands_by_itself_when_the_coordinator_does_not_answer(refused, monkeypatch):
    monkeypatch.setenv("LG_CROSSBAR", "ws://127.0.0.1:9/ws")
    assert str(refused).endswith("wait for its end.")


def test_refusal_that_travelled_says_the_same(refused):
    assert str(pickle.loads(pickle.dumps(refused))) == str(refused)
