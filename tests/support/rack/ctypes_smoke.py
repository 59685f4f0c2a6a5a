#!/usr/bin/env python3
"""Uses the C interface of Rack by ctypes alone, beside a simulated board: ctypes_smoke.py LIBRARY."""
import ctypes
import sys

DONE, INVALID_ARGUMENT, CLAUSE45, SIMPLE = 0, 1, 0, 2


class Failure(ctypes.Structure):
    """struct orvane_failure"""
    _fields_ = [("kind", ctypes.c_int), ("code", ctypes.c_int), ("port", ctypes.c_int), ("phy", ctypes.c_int),
                ("attempts", ctypes.c_uint), ("seconds", ctypes.c_double), ("code_name", ctypes.c_char * 24),
                ("board", ctypes.c_char * 64), ("operation", ctypes.c_char * 32), ("location", ctypes.c_char * 64),
                ("advice", ctypes.c_char * 256), ("message", ctypes.c_char * 512)]


class Register(ctypes.Structure):
    """struct orvane_register"""
    _fields_ = [("space", ctypes.c_uint32), ("mmd", ctypes.c_uint32), ("number", ctypes.c_uint32)]


class Access(ctypes.Structure):
    """struct orvane_access"""
    _fields_ = [("mode", ctypes.c_uint32), ("key", ctypes.c_uint16), ("queues", ctypes.c_int)]


class Limits(ctypes.Structure):
    """struct orvane_limits"""
    _fields_ = [("seconds", ctypes.c_double), ("read_repeats", ctypes.c_uint), ("write_repeats", ctypes.c_uint),
                ("heals", ctypes.c_int), ("cancellation", ctypes.c_void_p)]


HOOK = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.POINTER(Failure))


def main():
    orvane = ctypes.CDLL(sys.argv[1])
    orvane.orvane_within.restype = Limits
    orvane.orvane_within.argtypes = [ctypes.c_double]
    orvane.orvane_bytes_data.restype = ctypes.c_char_p
    for name in ("orvane_phy_free", "orvane_rack_free", "orvane_bytes_free", "orvane_bytes_data"):
        getattr(orvane, name).argtypes = [ctypes.c_void_p]
    failure = Failure()

    def check(status, wanted=DONE):
        assert status == wanted, (status, failure.message)

    rack, phy = ctypes.c_void_p(), ctypes.c_void_p()
    limits = orvane.orvane_within(10.0)
    assert limits.seconds == 10.0 and limits.read_repeats == 0xFFFFFFFF and limits.heals == 1
    check(orvane.orvane_rack_new(ctypes.byref(rack), ctypes.byref(failure)))
    check(orvane.orvane_rack_phy(rack, b"OV0001:0", Access(SIMPLE, 0, 0), 3, ctypes.byref(limits), ctypes.byref(phy),
                                 ctypes.byref(failure)))

    value = ctypes.c_uint32()
    register = Register(CLAUSE45, 30, 0xC010)
    check(orvane.orvane_phy_write(phy, register, 0xCAFE, None, ctypes.byref(failure)))
    check(orvane.orvane_phy_read(phy, register, ctypes.byref(limits), ctypes.byref(value), ctypes.byref(failure)))
    assert value.value == 0xCAFE, value
    check(orvane.orvane_phy_read(phy, Register(CLAUSE45, 40, 0), None, ctypes.byref(value), ctypes.byref(failure)),
          INVALID_ARGUMENT)
    assert failure.board == b"OV0001" and failure.location == b"40.0x0000", failure.message

    eeprom = (ctypes.c_uint8 * 6)()
    check(orvane.orvane_i2c_read_register(phy, 0, 0x50, 0, 1, 6, None, eeprom, ctypes.byref(failure)))
    assert bytes(eeprom) == b"OV0001", bytes(eeprom)

    status, output = ctypes.c_int(-1), ctypes.c_void_p()
    check(orvane.orvane_shell_run(phy, b"hostname", 5, None, ctypes.byref(status), ctypes.byref(output), None,
                                  ctypes.byref(failure)))
    assert status.value == 0 and orvane.orvane_bytes_data(output) == b"OV0001\n"
    orvane.orvane_bytes_free(output)

    hook = HOOK(lambda context, said: DONE)
    check(orvane.orvane_phy_on_reopen(phy, hook, None, ctypes.byref(failure)))
    orvane.orvane_phy_free(phy)
    orvane.orvane_rack_free(rack)


main()
