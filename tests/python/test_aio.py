"""Calls that an asyncio loop waits for."""
import asyncio
import threading

import pytest

import orvane


def test_many_reads_are_under_way_at_once_without_a_thread(rack, lab):
    phys = [port.phy(3) for port in rack.open_all("OV*:0")]
    for number, phy in enumerate(phys):
        phy[30, 0x40] = number
    threads = threading.active_count()

    async def read():
        values = await asyncio.gather(*(phy.aread(30, 0x40) for phy in phys for _ in range(10)))
        return values, threading.active_count()

    values, during = asyncio.run(read())
    assert values == [number for number in range(8) for _ in range(10)]
    assert during == threads


def test_write_and_batch_can_be_waited_for(phy):
    batch = orvane.Batch()
    reading = batch.read((30, 0x41))

    async def use():
        await phy.awrite((30, 0x41), 0x4141)
        return (await phy.arun(batch))[reading]

    assert asyncio.run(use()) == 0x4141


def test_failure_is_raised_where_it_is_waited_for(phy, board):
    board.inject("result", code=-5, procedure="mdio_read")
    with pytest.raises(orvane.BoardError):
        asyncio.run(phy.aread((1, 2)))


def test_waiter_that_gives_up_leaves_the_others_alone(phy, board):
    board.inject("lose-reply", procedure="mdio_read", count=1)

    async def use():
        with pytest.raises(asyncio.TimeoutError):
            await asyncio.wait_for(phy.aread(1, 2), 0.001)
        return await phy.aread(1, 2)

    assert asyncio.run(use()) == phy[1, 2]


def test_register_out_of_range_is_a_value_error(phy):
    with pytest.raises(ValueError):
        asyncio.run(phy.aread(32, 0))
