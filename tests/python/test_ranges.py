"""Arguments out of range: a ValueError that says the limits, before anything is sent."""
import pytest
from hypothesis import given, strategies

import orvane
from orvane import Shift, Transfer, Within, clause22, ext32

WORD, LONG, BYTE = 0xFFFF, 0xFFFFFFFF, 0xFF

# What is called, and the least and most that its argument may be.
CALLS = {
    "MMD": (lambda phy, n: phy[n, 0], 0, 31),
    "register": (lambda phy, n: phy[1, n], 0, WORD),
    "last of a range": (lambda phy, n: phy.read(1, range(n, n + 1)), 0, WORD),
    "Clause 22": (lambda phy, n: phy[clause22(n)], 0, 31),
    "extension": (lambda phy, n: phy[ext32(n)], 0, LONG),
    "list": (lambda phy, n: phy.read([(1, 2), (n, 0)]), 0, 31),
    "value": (lambda phy, n: phy.write((30, 0), n), 0, WORD),
    "value of the extension": (lambda phy, n: phy.write(ext32(0), n), 0, LONG),
    "row of values": (lambda phy, n: phy.__setitem__((30, slice(0, 2)), [0, n]), 0, WORD),
    "mask": (lambda phy, n: phy.modify((30, 0), n, 0), 0, WORD),
    "bits": (lambda phy, n: phy.modify((30, 0), 0, n), 0, WORD),
    "routed register": (lambda phy, n: phy.routed()[27, n], 0, WORD),
    "routed value": (lambda phy, n: phy.routed().write((27, 0x40), n), 0, WORD),
    "routed mask": (lambda phy, n: phy.routed().modify((27, 0x40), n, 0), 0, WORD),
    "I2C bus": (lambda phy, n: phy.i2c.read(n, 0x50, 0, 1), 0, 9),
    "I2C device": (lambda phy, n: phy.i2c.write(0, n, b"\0"), 0, 0x7F),
    "I2C command": (lambda phy, n: phy.i2c.read(0, 0x50, n, 1), 0, BYTE),
    "I2C length": (lambda phy, n: phy.i2c.read(0, 0x50, 0, n), 1, 255),
    "I2C register": (lambda phy, n: phy.i2c.read_register(0, 0x50, n, 1, 1), 0, LONG),
    "I2C register's bytes": (lambda phy, n: phy.i2c.read_register(0, 0x50, 0, n, 1), 0, 4),
    "I2C register's length": (lambda phy, n: phy.i2c.read_register(0, 0x50, 0, 1, n), 1, 255),
    "I2C mask": (lambda phy, n: phy.i2c.write_block([Transfer(0, 0x50, 0, data=b"\0")], mask=n), 0, BYTE),
    "I2C transfer": (lambda phy, n: phy.i2c.read_block([Transfer(n, 0x50, 0, length=1)]), 0, 9),
    "GPIO line": (lambda phy, n: phy.gpio[n], 0, BYTE),
    "GPIO state": (lambda phy, n: phy.gpio.write([1], [n]), 0, 1),
    "GPIO enable": (lambda phy, n: phy.gpio.enable_output([1], [n]), 0, 1),
    "GPIO list": (lambda phy, n: phy.gpio.bit_bang([1], [n], [1]), 0, BYTE),
    "ADC channels": (lambda phy, n: phy.adc.capture(1, channels=n), 0, LONG),
    "ADC mask": (lambda phy, n: phy.adc.set_channels(n), 0, LONG),
    "ADC count": (lambda phy, n: phy.adc.data(n), 0, LONG),
    "thermal channel": (lambda phy, n: phy.thermal[n].temperature, 0, LONG),
    "thermal flag": (lambda phy, n: phy.thermal[0].set(25, flag=n), 0, BYTE),
    "command's seconds": (lambda phy, n: phy.shell.run("true", seconds=n), 0, LONG),
    "board's code": (lambda phy, n: phy.shell.error_record(n), -0x80000000, 0),
    "preamble": (lambda phy, n: phy.mdio.set_preamble_count(n), 0, LONG),
    "next word": (lambda phy, n: phy.mdio.write_next(n), 0, LONG),
    "word": (lambda phy, n: phy.mdio.write_current(n), 0, LONG),
    "interrupt's first": (lambda phy, n: phy.mdio.request_interrupt(n, 0, 0, 0), 0, BYTE),
    "interrupt's third": (lambda phy, n: phy.mdio.request_interrupt(0, 0, n, 0), -0x80000000, 0x7FFFFFFF),
    "interrupt's fourth": (lambda phy, n: phy.mdio.request_interrupt(0, 0, 0, n), -0x80000000, 0x7FFFFFFF),
    "interrupt": (lambda phy, n: phy.mdio.wait_for_interrupt(n), 0, LONG),
}


@pytest.fixture(scope="module")
def phy(lab):
    with orvane.Rack() as rack:
        phy = rack.open("OV0004:0").phy(3)
        phy.open()
        phy.thermal.connect()
        yield phy


def received(lab):
    """Calls that reached the board, but pings, which come by themselves."""
    return sum(each["received"] for each in lab["OV0004"].do("counts") if "ping" not in each["procedure"])


@pytest.mark.parametrize("name", CALLS)
@given(data=strategies.data())
def test_number_out_of_range_is_a_value_error_and_sends_nothing(phy, lab, name, data):
    call, least, most = CALLS[name]
    number = data.draw(strategies.one_of(strategies.integers(max_value=least - 1),
                                         strategies.integers(min_value=most + 1)))
    before = received(lab)
    with pytest.raises(ValueError, match="out of range"):
        call(phy, number)
    assert received(lab) == before


@pytest.mark.parametrize("celsius", [float("nan"), float("inf"), -300, 1e39])
def test_temperature_that_there_is_not_is_a_value_error_and_sends_nothing(phy, lab, celsius):
    before = received(lab)
    with pytest.raises(ValueError, match="out of range: -273.15 to"):
        phy.thermal[0].target = celsius
    assert received(lab) == before


@pytest.mark.parametrize("shift", [Shift("2", "0"), Shift("", "x"), Shift("0", "0", "1 ")])
def test_shift_of_other_characters_is_a_value_error_and_sends_nothing(phy, lab, shift):
    before = received(lab)
    with pytest.raises(ValueError):
        phy.jtag.shift(shift)
    assert received(lab) == before


@pytest.mark.parametrize("call", [
    lambda phy: phy.gpio.write([1, 2], [1]), lambda phy: phy.gpio.enable_output([1], []),
    lambda phy: phy.gpio.bit_bang([1], [1, 2], [1])])
def test_lists_of_different_lengths_are_value_errors_and_send_nothing(phy, lab, call):
    before = received(lab)
    with pytest.raises(ValueError):
        call(phy)
    assert received(lab) == before


@given(seconds=strategies.floats(max_value=-1e-9))
def test_time_limit_below_zero_is_a_value_error(seconds):
    with pytest.raises(ValueError, match="0 seconds or more"):
        Within(seconds)


@given(seconds=strategies.floats(min_value=0), reads=strategies.integers(0), writes=strategies.integers(0))
def test_every_other_limit_is_taken(seconds, reads, writes):
    assert Within(seconds, reads, writes).seconds == seconds
