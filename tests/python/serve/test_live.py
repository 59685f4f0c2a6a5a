"""What viewers see, and what that costs the boards."""
import asyncio
import contextlib
import json
import time

import pytest

import orvane
from conftest import WAIT, Refusal

CONTROL = "PMA.CONTROL1"
STATUS = "PMA.STATUS1"  # its link bit latches


def calls(board):
    """MDIO calls that the board has received."""
    return sum(each["received"] for each in board.do("counts") if each["procedure"].startswith("mdio"))


def place(names, **more):
    return {"port": "OV0001:0", "phy": 3, "names": names, "interval": 0.1, **more}


def test_table_has_every_board_with_its_address_and_ports(serve):
    async def act(served):
        async with served.viewer() as viewer:
            rack = await viewer.find(*(f"OV000{number}" for number in range(1, 9)))
            return viewer.values[rack]["OV0001"]
    row = asyncio.run(act(serve()))
    assert (row["address"], row["ports"], row["state"]) == ("10.83.0.1", [0, 1, 10], "found")


def test_only_the_boards_that_were_named_are_shown(serve):
    async def act(served):
        async with served.viewer() as viewer:
            rack = await viewer.find("OV0002", "OV0003")
            await viewer.ask("search")
            return sorted(viewer.values[rack])
    assert asyncio.run(act(serve("OV000[23]"))) == ["OV0002", "OV0003"]


def test_board_in_sight_tells_its_round_trip_and_temperature_and_others_are_not_asked(serve, lab):
    lab["OV0002"].forget_requests()

    async def act(served):
        async with served.viewer() as viewer:
            rack = await viewer.find("OV0001", "OV0002")
            await viewer.ask("look", boards=["OV0001"])
            rows = await viewer.until(rack, lambda rows: rows["OV0001"]["temperatures"] and rows["OV0001"]["sessions"])
            return rows["OV0001"]
    row = asyncio.run(act(serve()))
    assert row["state"] == "up"
    assert 0 < row["now"] < 5_000 and 0 < row["median"] <= row["p99"]
    assert row["temperatures"] == [25.0]
    assert row["sessions"] == ["0 PHY 0"]
    assert lab["OV0002"].requests() == []


def test_board_that_goes_and_comes_back_is_seen_doing_so(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            rack = await viewer.find("OV0001")
            await viewer.ask("look", boards=["OV0001"])
            await viewer.until(rack, lambda rows: rows["OV0001"]["state"] == "up")
            board.do("stop")
            away = (await viewer.until(rack, lambda rows: rows["OV0001"]["state"] == "away"))["OV0001"]
            board.do("start")
            await viewer.until(rack, lambda rows: rows["OV0001"]["state"] == "up")
            return away
    away = asyncio.run(act(serve()))
    assert "OV0001" in away["problem"]
    assert (away["now"], away["temperatures"]) == (None, [])  # what it told before is not true now


def test_temperatures_go_on_after_somebody_disconnected_the_unit(serve, board, rack):
    async def act(served):
        async with served.viewer() as viewer:
            topic = await viewer.find("OV0001")
            await viewer.ask("look", boards=["OV0001"])
            await viewer.until(topic, lambda rows: rows["OV0001"]["temperatures"])
            other = rack.open("OV0001:0").phy(5).thermal
            other.connect()
            connected = board.executions("thrm_connect")
            other.disconnect()
            await viewer.until(topic, lambda rows: board.executions("thrm_connect") > connected)
            return (await viewer.until(topic, lambda rows: rows["OV0001"]["temperatures"]))["OV0001"]
    assert asyncio.run(act(serve()))["temperatures"] == [25.0]


def test_value_that_changes_on_the_board_is_told_with_its_time(serve, board):
    board.set_value((1, 0), 0x0001, phy=3)

    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            topic = await viewer.watch("registers", **place([CONTROL]))
            await viewer.until(topic, lambda values: values.get("0") == 0x0001)
            began = time.time()
            board.set_value((1, 0), 0x4001, phy=3)
            await viewer.until(topic, lambda values: values["0"] == 0x4001)
            told = viewer.messages[-1]
            return told["at"] - began, time.time() - told["at"]
    sampled, delivered = asyncio.run(act(serve()))
    assert sampled < WAIT
    assert delivered < 2  # milliseconds on a quiet machine


def test_fifty_viewers_of_a_register_cost_the_board_the_calls_of_one(serve, board):
    async def watch(served, viewers):
        async with contextlib.AsyncExitStack() as stack:
            pages = [await stack.enter_async_context(served.viewer()) for _ in range(viewers)]
            topics = []
            for page in pages:
                await page.find("OV0001")
                topics.append(await page.watch("registers", **place([CONTROL])))
            for page, topic in zip(pages, topics):
                await page.until(topic, lambda values: "0" in values)
            assert len(set(topics)) == 1
            before, began = calls(board), time.monotonic()
            await asyncio.sleep(2)
            return (calls(board) - before) / (time.monotonic() - began)
    served = serve()
    assert 0 < asyncio.run(watch(served, 50)) < 12  # ten a second


def test_register_that_nobody_watches_any_more_is_not_read(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            topic = await viewer.watch("registers", **place([CONTROL]))
            await viewer.until(topic, lambda values: "0" in values)
            await viewer.ask("unwatch", topic=topic)
            await viewer.ask("hello")
            await asyncio.sleep(0.5)  # what was under way
            before = calls(board)
            await asyncio.sleep(1)
            return calls(board) - before
    assert asyncio.run(act(serve())) == 0


def test_viewer_that_vanishes_leaves_nothing_watched(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            topic = await viewer.watch("registers", **place([CONTROL]))
            await viewer.until(topic, lambda values: "0" in values)
            viewer.socket._response.connection.transport.abort()
        async with served.viewer() as other:
            await other.find("OV0001")
            await asyncio.sleep(0.5)
            before = calls(board)
            await asyncio.sleep(1)
            return calls(board) - before
    assert asyncio.run(act(serve())) == 0


def test_viewer_that_does_not_read_delays_nobody(serve, board):
    names = [f"PMA.{name}" for name in ("CONTROL1", "CONTROL2", "DEVICES1", "DEVICES2")]

    async def act(served):
        async with served.viewer() as slow, served.viewer() as quick:
            await slow.find("OV0001")
            await quick.find("OV0001")
            await slow.watch("registers", **place(names))
            transport = slow.socket._response.connection.transport
            transport.pause_reading()
            topic = await quick.watch("registers", **place(names))
            longest = 0.0
            for value in range(20):
                board.set_value((1, 0), value, phy=3)
                await quick.until(topic, lambda values, value=value: values.get("0") == value)
                longest = max(longest, time.time() - quick.messages[-1]["at"])
            transport.resume_reading()  # to say good-bye
            return longest
    assert asyncio.run(act(serve())) < 2


def test_register_that_a_read_changes_is_read_by_a_click_alone(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            with pytest.raises(Refusal, match="changes something"):
                await viewer.watch("registers", **place([CONTROL, STATUS]))
            board.set_value((1, 1), 0x0004, phy=3)
            before = calls(board)
            value = await viewer.ask("read", port="OV0001:0", phy=3, name=STATUS)
            return value, calls(board) - before
    assert asyncio.run(act(serve())) == (0x0004, 1)


def test_server_that_only_shows_refuses_every_change(serve, board):
    board.set_value((1, 0), 0, phy=3)

    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            for request in ({"do": "write", "port": "OV0001:0", "phy": 3, "name": CONTROL, "value": 1},
                            {"do": "capture", "board": "OV0001", "count": 4},
                            {"do": "temperature", "board": "OV0001", "channel": 0, "celsius": 85}):
                with pytest.raises(Refusal, match="only shows"):
                    await viewer.ask(**request)
    asyncio.run(act(serve()))
    assert board.value((1, 0), phy=3) == 0


def test_server_that_may_write_does(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            where = {"port": "OV0001:0", "phy": 3}
            await viewer.ask("write", **where, name=CONTROL, value=0x0040)
            await viewer.ask("write", **where, name=f"{CONTROL}.LOOPBACK", value=1)
            await viewer.ask("temperature", board="OV0001", channel=0, celsius=60)
            samples = await viewer.ask("capture", board="OV0001", count=64)
            page = await viewer.watch("board", board="OV0001")
            details = await viewer.until(page, lambda values: len(values["requests"]) == 4)
            return samples, details
    samples, details = asyncio.run(act(serve("--write")))
    assert board.value((1, 0), phy=3) == 0x0041
    assert len(samples) == 64 and len(set(samples)) > 1
    assert details["setPoints"] == {"0": 60.0}
    assert [each[1:3] for each in details["requests"][:1]] == [[f"OV0001:0 PHY 3 write {CONTROL} = 64", "done"]]


def test_scan_is_kept_for_the_page_of_the_board(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            await viewer.ask("scan", port="OV0001:0")
            page = await viewer.watch("board", board="OV0001")
            return (await viewer.until(page, lambda values: values["phys"]))["phys"]["0"]
    found = asyncio.run(act(serve()))
    assert [each[1] for each in found] == ["0x0A5C1E83"] * len(found) and [3, "0x0A5C1E83"] in found


def test_scan_of_an_smbus_asks_its_devices_for_their_identifiers_and_for_nothing_else(serve, lab):
    served = serve("--write")
    lab["OV0003"].forget_requests()

    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0003")
            await viewer.ask("scan", port="OV0003:10")
            page = await viewer.watch("board", board="OV0003")
            return (await viewer.until(page, lambda values: values["phys"]))["phys"]["10"]
    found = asyncio.run(act(served))
    assert found == [[device, "0x0A5C1E83"] for device in range(3, 32)]  # beyond them nobody answers
    sent = [each.arguments for each in lab["OV0003"].requests("i2c_write")]
    assert {each["address"] for each in sent} == set(range(3, 120))  # no reserved address of I2C
    assert {tuple(each["data"]) for each in sent} == {(1, 2, 0), (1, 3, 0)}  # MMD, register


def test_live_log_has_the_accesses_while_it_is_watched(serve, board):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            topic = await viewer.watch("log")
            await viewer.ask("read", port="OV0001:0", phy=3, name=CONTROL)
            rows = await viewer.until(topic, lambda rows: any(row[2] == "MR" for row in rows.values()))
            return next(row for row in rows.values() if row[2] == "MR")
    row = asyncio.run(act(serve()))
    assert row[1:5] == ["3", "MR", "01", "0000"] and row[7:9] == ["OV0001:0", "done"]


def test_log_of_the_command_line_is_shown_as_it_grows(serve, rack, board, tmp_path):
    file = tmp_path / "session.csv"
    phy = rack.open("OV0001:0").phy(3)
    rack.log_to(file)
    phy[30, 0xC010] = 0xCAFE

    async def act(served):
        async with served.viewer() as viewer:
            before = await viewer.ask("log", first=0, words="C010")
            phy.read(30, 0xC010)
            return before, await viewer.ask("log", first=0, words="c010 mr")
    before, after = asyncio.run(act(serve("--log", str(file))))
    assert [each[1][2:6] for each in before["rows"]] == [["MW", "1E", "C010", "CAFE"]]
    assert [each[1][2:6] for each in after["rows"]] == [["MR", "1E", "C010", "CAFE"]]


def test_run_is_shown_with_its_points(serve, lab, tmp_path):
    run = orvane.Run("sweep", boards=["OV0001:0"], phy=3, drive=range(3))

    @run.point
    def measure(p, drive):
        p.record(eye=drive * 2.0, label="good")
    run.go(str(tmp_path / "it.orvrun"))

    async def act(served):
        async with served.viewer() as viewer:
            topic = await viewer.watch("run", run=0)
            return await viewer.until(topic, lambda values: "2" in values)
    told = asyncio.run(act(serve("--run", str(tmp_path / "it.orvrun"))))
    assert told["summary"]["name"] == "sweep" and told["summary"]["conditions"] == ["drive"]
    assert told["2"] == ["OV0001:0", [2], 0, True, {"eye": 4.0, "label": "good"}]


@pytest.mark.parametrize("request_, says", [
    ({"do": "explode"}, "no request explode"),
    ({}, "no request None"),
    ({"do": "watch", "kind": "everything"}, "nothing of the kind"),
    ({"do": "watch", "kind": "board", "board": "../../etc"}, "no board"),
    ({"do": "watch", "kind": "run", "run": 7}, "no run 7"),
    ({"do": "watch", "kind": "run", "run": -1}, "out of range"),
    ({"do": "log", "log": "0"}, "whole number"),
    ({"do": "map", "map": ["x"]}, "a text"),
    ({"do": "map", "words": "x" * 1000}, "256 characters"),
    ({"do": "describe", "names": ["x"] * 1000}, "256 texts at most"),
    ({"do": "scan", "port": "OV0001:7"}, "no port"),
    ({"do": "scan", "port": "OV0001:10"}, "an SMBus is scanned by writing"),
    ({"do": "read", "port": "OV0001:0", "phy": 200, "name": CONTROL}, "out of range"),
    ({"do": "read", "port": "OV0001:0", "phy": 3, "name": "PMA.CONTROLS"}, "is PMA.CONTROL1 meant"),
    ({"do": "watch", "kind": "registers", "port": "OV0001:0", "phy": 3, "names": [CONTROL], "interval": 0.0001},
     "an interval is one of"),
    ({"do": "unwatch", "topic": "x"}, "whole number"),
])
def test_request_that_makes_no_sense_is_answered_with_what_is_wrong(serve, request_, says):
    async def act(served):
        async with served.viewer() as viewer:
            await viewer.find("OV0001")
            await viewer.socket.send_json({"id": 99, **request_})
            while True:
                message = await viewer.receive()
                if message.get("id") == 99:
                    return message["error"]
    assert says in asyncio.run(act(serve()))


@pytest.mark.parametrize("text", ["[]", "no JSON", "[" * 50_000, '"' + "x" * 300_000 + '"'],
                         ids=["no object", "no JSON", "deep", "long"])
def test_message_that_is_no_request_ends_its_connection_and_no_other(serve, text):
    async def act(served):
        async with served.viewer() as bad, served.viewer() as good:
            await bad.socket.send_str(text)
            message = await asyncio.wait_for(bad.socket.receive(), WAIT)
            return message.type.name, await good.ask("hello")
    kind, hello = asyncio.run(act(serve()))
    assert kind in ("CLOSE", "CLOSED", "CLOSING")
    assert hello["maps"] == ["ieee8023"]


def test_huge_map_is_listed_in_part_and_searched(serve, tmp_path):
    file = tmp_path / "huge.json"
    registers = {f"REGISTER{number}": {"at": f"ext32:{number * 4:#x}", "fields": {"LOW": "7:0"}}
                 for number in range(60_000)}
    file.write_text(json.dumps({"format": "orvane-map-1", "name": "huge", "registers": registers}))

    async def act(served):
        async with served.viewer() as viewer:
            return (await viewer.ask("map"), await viewer.ask("map", words="REGISTER4711"),
                    await viewer.ask("describe", names=["REGISTER4711"]))
    listed, found, described = asyncio.run(act(serve("--map", str(file))))
    assert (listed["total"], len(listed["registers"])) == (60_000, 5_000)
    assert "REGISTER4711" in [each[0] for each in found["registers"]]
    assert [each["name"] for each in described["REGISTER4711"]["fields"]] == ["LOW"]
