"""Registers of Ethernet PHYs on evaluation boards.

    import orvane

    with orvane.open("OV0001:0", exclusive=0x4711) as port:
        phy = port.phy(3)
        phy[1, 2]                     # a register of Clause 45
        phy[30, 0xC010] = 0xCAFE
        phy.read(1, range(4096))      # a numpy array
        port.thermal[0].target = 85.0

open(), discover() and read_all() are all that a small program needs; a Rack has boards, events and counters of its own.
Registers are (mmd, number), clause22(number) or ext32(address). Every call ends within its limits: within=0.5, or a
Within. What goes wrong is an orvane.Error, of a class for each kind; what was not read is not returned.

Values out of range are a ValueError with the limits, before anything is sent. The GIL is released while a call waits,
and Ctrl-C ends it. Sessions are closed when what holds them ends, and when the program does. A child that came by
fork() opens its boards itself: those of its parent raise RuntimeError there.
"""
import atexit as _atexit

from orvane import _orvane
from orvane.batch import Batch, BatchResult, Outcome, Reading, Readings as BatchReadings
from orvane.codes import (AccessMode, Code, EventKind, EventLevel, FailureKind, OperationState, SmbusProtocol,
                          Space)
from orvane.errors import (BadReply, BoardError, Busy, Cancelled, Error, InvalidArgument, LostSession, MapError,
                           NoSuchPort, Refused, TimedOut, Unreachable)
from orvane.events import BoardCounters, Event, Latency, ProgramCounters
from orvane.limits import Cancellation, Within
from orvane.names import Change, Decoded, Diff, Map, Place, Restored, Snapshot
from orvane.phy import Phy, Routed
from orvane.rack import Discovery, FoundBoard, Port, Ports, Rack, Readings, discover, open, rack, read_all
from orvane.registers import Register, clause22, clause45, ext32
from orvane.run import DataSet, Run
from orvane.services import (Adc, Capture, CommandOutcome, ErrorRecord, Gpio, I2c, Jtag, Mdio, Shell, Shift, Thermal,
                             ThermalChannel, Transfer)

__version__ = _orvane.version
__all__ = ["AccessMode", "Adc", "BadReply", "Batch", "BatchReadings", "BatchResult", "BoardCounters", "BoardError",
           "Busy", "Cancellation", "Cancelled", "Capture", "Change", "Code", "CommandOutcome", "DataSet", "Decoded",
           "Diff", "Discovery", "Error", "ErrorRecord", "Event", "EventKind", "EventLevel", "FailureKind",
           "FoundBoard", "Gpio", "I2c", "InvalidArgument", "Jtag", "Latency", "LostSession", "Map", "MapError", "Mdio",
           "NoSuchPort", "OperationState", "Outcome", "Phy", "Place", "Port", "Ports", "ProgramCounters", "Rack",
           "Reading", "Readings", "Refused", "Register", "Restored", "Routed", "Run", "Shell", "Shift",
           "SmbusProtocol", "Snapshot", "Space", "Thermal", "ThermalChannel", "TimedOut", "Transfer", "Unreachable",
           "Within", "clause22", "clause45", "discover", "ext32", "open", "rack", "read_all"]

_atexit.register(_orvane.close_all)
