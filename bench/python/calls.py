"""Measures the package beside C++ in one process, with boards around it; prints a line of JSON for each measure.

    orvane-lab --boards 1000 -- calls.py LOOPS ROUNDS     LOOPS: bench_python_loops of the build
"""
import ctypes
import json
import sys
import threading
import time

import orvane
import orvane.lab

READS = 200  # in a round
THREADS = 8
DELAY = 5  # milliseconds that a board takes


def loops_of(path):
    """The loops, with the types of their arguments."""
    loops = ctypes.CDLL(path)
    loops.bench_open.restype = ctypes.c_void_p
    loops.bench_close.argtypes = [ctypes.c_void_p]
    loops.bench_reads.restype = loops.bench_read_all.restype = ctypes.c_double
    loops.bench_reads.argtypes = [ctypes.c_void_p, ctypes.c_uint]
    loops.bench_read_all.argtypes = [ctypes.c_void_p]
    return loops


def timed(work, clock=time.perf_counter):
    """Seconds that it took."""
    begin = clock()
    work()
    return clock() - begin


def told(name, **figures):
    print(json.dumps({"name": name, **figures}), flush=True)


def side_by_side(rounds, ours, theirs):
    """Seconds of both, which take turns."""
    pairs = []
    for number in range(rounds + 1):
        pair = (timed(ours), theirs())
        if number > 0:  # the first one warms up
            pairs.append(pair)
    return [pair[0] for pair in pairs], [pair[1] for pair in pairs]


def measure_read(loops, rounds):
    boards = loops.bench_open(b"OV0001:0")
    phy = orvane.open("OV0001:0").phy(3)

    def ours():
        for _ in range(READS):
            phy[1, 2]

    def theirs():
        return loops.bench_reads(boards, READS)

    def processor(work):
        return timed(work, time.process_time)

    python, cpp = side_by_side(rounds, ours, theirs)
    told("read, Python beside C++", **{side: [seconds / READS * 1e9 for seconds in times]
                                       for side, times in (("ours", python), ("bare", cpp))})
    # Of a round trip's time the most is waiting, and how long a sleeping processor takes to wake differs by more.
    told("a read in Python costs more than in C++",
         **{"processor microseconds": [(processor(ours) - processor(theirs)) / READS * 1e6 for _ in range(rounds)]})
    loops.bench_close(boards)


def measure_read_all(loops, rounds):
    boards = loops.bench_open(b"OV*:0")
    ports = orvane.rack().open_all("OV*:0", phys=[3])
    phys = [port.phy(3) for port in ports]
    assert len(phys) >= 1000 and not ports.failures
    python, cpp = side_by_side(rounds, lambda: orvane.read_all(phys, (1, 2)), lambda: loops.bench_read_all(boards))
    loops.bench_close(boards)
    told(f"read_all of {len(phys)} boards, Python beside C++", ours=[each * 1e9 for each in python],
         bare=[each * 1e9 for each in cpp])


def measure_threads(rounds):
    lab = orvane.lab.Lab()
    ports = [orvane.open(f"OV{number:04}:0") for number in range(1, THREADS + 1)]
    phys = [port.phy(3) for port in ports]
    for port, phy in zip(ports, phys):
        phy.open()
        lab[port.board].inject("delay", milliseconds=DELAY, procedure="mdio_read", count=-1)
    start, end = threading.Barrier(THREADS + 1), threading.Barrier(THREADS + 1)

    def read(phy):
        for _ in range(rounds):
            start.wait()
            phy[1, 2]
            end.wait()

    threads = [threading.Thread(target=read, args=(phy,)) for phy in phys]
    for thread in threads:
        thread.start()
    lasted = []
    for _ in range(rounds):
        start.wait()
        lasted.append(timed(end.wait) * 1e3)
    for thread in threads:
        thread.join()
    for port in ports:
        lab[port.board].clear()
    told(f"{THREADS} Python threads on {THREADS} boards that take {DELAY} ms", **{"round milliseconds": lasted})


def main():
    loops, rounds = loops_of(sys.argv[1]), int(sys.argv[2])
    measure_read(loops, rounds)
    measure_threads(rounds)
    measure_read_all(loops, max(rounds // 4, 20))


if __name__ == "__main__":
    main()
