"""The driver: sessions, registers, steps, and a strategy that switches a simulated board off and on."""
import pytest

pytest.importorskip("labgrid.driver", reason="needs labgrid (Debian package python3-labgrid)")

from labgrid.binding import StateError  # noqa: E402
from labgrid.step import steps  # noqa: E402

import orvane  # noqa: E402
from orvane.labgrid import BoardManager  # noqa: E402
from orvane.labgrid.keys import derived_key, key_of  # noqa: E402


def test_driver_reads_and_writes_its_phy(driver, board):
    driver.write((30, 0xC010), 0xCAFE)
    assert driver.read(30, 0xC010) == 0xCAFE == driver.phy[30, 0xC010]
    assert driver.modify((30, 0xC010), 0x00FF, 0x0012) == 0xCA12
    assert board.value((30, 0xC010), phy=3) == 0xCA12
    assert driver.read((1, 2)) == 0x0A5C
    assert list(driver.read(1, range(2, 4))) == [0x0A5C, 0x1E83]


def test_driver_gives_the_services_of_the_port(driver):
    driver.port.i2c.write(0, 0x50, b"\x10hello")
    assert driver.phy.i2c.read(0, 0x50, 0x10, 5) == b"hello"
    assert driver.run("uname").errors == b"uname: command not found\n"


def test_active_driver_keeps_others_out(driver, board, rack):
    assert board.sessions == 1
    with pytest.raises(orvane.Refused):
        rack.open("OV0001:0").phy(3).open()
    rack.open("OV0001:0", exclusive=driver.phy.key).phy(3).open()


def test_deactivated_driver_leaves_no_session_and_gives_nothing_more(target, driver, board):
    target.deactivate(driver)
    assert board.sessions == 0
    with pytest.raises(StateError, match="has not been activated"):
        driver.phy
    with pytest.raises(StateError, match="has not been activated"):
        driver.read(1, 2)
    target.activate(driver)
    assert driver.read(1, 2) == 0x0A5C


def test_driver_is_deactivated_though_its_board_is_gone(target, driver, board):
    board.do("kill")
    try:
        target.deactivate(driver)
    finally:
        board.do("restart", forgetSessions=True)
    target.activate(driver)
    assert driver.read(1, 2) == 0x0A5C


def test_board_that_goes_deactivates_the_driver(target, driver, board):
    board.do("kill")
    try:
        assert BoardManager.get().watch.next_round()
        target.last_update = 0.0
        target.update_resources()
        with pytest.raises(StateError):
            driver.read(1, 2)
    finally:
        board.do("restart", forgetSessions=True)


def test_refused_driver_stays_inactive_and_leaves_no_session(target, board, rack):
    mine = rack.open("OV0001:0", exclusive=0x4711).phy(3)
    mine.open()
    with pytest.raises(orvane.Refused):
        target.get_driver("OrvaneDriver")
    assert board.sessions == 1
    mine.close()
    assert target.get_driver("OrvaneDriver").read(1, 2) == 0x0A5C


def test_steps_are_told_with_arguments_results_and_failures(target, driver):
    told = []
    steps.subscribe(told.append)
    try:
        driver.read(1, 2)
        with pytest.raises(ValueError):
            driver.write((40, 0), 1)
        target.deactivate(driver)
    finally:
        steps.unsubscribe(told.append)
    ends = [(each.step.title, each.step.args, each.data.get("result"), type(each.data.get("exception")))
            for each in told if each.data["state"] == "stop"]
    assert ends == [("read", {"where": 1, "number": 2}, 0x0A5C, type(None)),
                    ("write", {"where": (40, 0), "value": 1}, None, ValueError),
                    ("on_deactivate", None, None, type(None))]


def test_key_without_a_place_is_the_sessions_own(target, driver):
    assert key_of(driver.board) == 0
    assert driver.phy.key != 0


def test_derived_key_is_the_same_for_a_holder_and_differs_for_another():
    assert derived_key("wren", "desk/ann") == derived_key("wren", "desk/ann")
    assert len({derived_key("wren", f"desk/user{number}") for number in range(100)}) > 95
    assert all(1 <= derived_key("wren", f"desk/user{number}") <= 0xFFFF for number in range(1000))


@pytest.fixture
def strategy(environment, board, tmp_path):
    """The strategy of a board whose power is that of the lab."""
    (tmp_path / "labpower.py").write_text("""
import attr
import orvane.lab
from labgrid import target_factory
from labgrid.driver import Driver
from labgrid.protocol import PowerProtocol

@target_factory.reg_driver
@attr.s(eq=False)
class LabPower(Driver, PowerProtocol):
    bindings = {"port": "OrvanePort"}

    def on_activate(self):
        self.simulated = orvane.lab.Lab()[self.port.device]

    def resolve_conflicts(self, client):
        pass

    def on(self):
        self.simulated.do("restart", forgetSessions=True)

    def off(self):
        self.simulated.do("kill")

    def cycle(self):
        self.off()
        self.on()
""") if "LabPower" not in _drivers() else None
    imports = "orvane.labgrid" if "LabPower" in _drivers() else f"orvane.labgrid, {tmp_path / 'labpower.py'}"
    yield environment("""
        targets:
          main:
            resources:
              OrvanePort: {device: OV0001, address: 10.83.0.1, phy: 3}
            drivers:
              OrvaneDriver: {}
              LabPower: {}
              OrvaneStrategy: {boot_timeout: 20}
    """, imports).get_target().get_driver("OrvaneStrategy")
    board.do("start")


def _drivers():
    from labgrid import target_factory
    return target_factory.drivers


def test_strategy_cycles_the_power_of_a_board(strategy, board):
    strategy.transition("on")
    assert strategy.driver.read(1, 2) == 0x0A5C
    assert board.sessions == 1


def test_strategy_switches_a_board_off_and_on(strategy, board):
    strategy.transition("on")
    strategy.transition("off")
    assert BoardManager.get().watch.next_round()
    strategy.driver.board.poll()
    assert not strategy.driver.board.avail
    strategy.transition("on")
    assert strategy.driver.read(1, 2) == 0x0A5C


def test_strategy_does_nothing_for_the_state_that_is(strategy, board):
    strategy.force("on")
    strategy.transition("on")
    assert board.received("open_connection") >= 1
    assert strategy.driver.read(1, 2) == 0x0A5C


def test_strategy_refuses_an_unknown_state(strategy):
    from labgrid.strategy import StrategyError

    with pytest.raises(StrategyError):
        strategy.transition("unknown")
