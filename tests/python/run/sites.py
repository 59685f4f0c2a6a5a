"""Hosts with boards: each a network of its own with a worker of Dask, joined to the scheduler's by a virtual cable."""
import json
import os
import pathlib
import signal
import subprocess
import sys
import time

import orvane.lab

SCHEDULER = "tcp://127.0.0.1:8786"
BOARDS = 100
THREADS = 2
_WAIT = 120


def until(what, told):
    """Waits for something to be true."""
    end = time.monotonic() + _WAIT
    while not what():
        assert time.monotonic() < end, told() if callable(told) else told
        time.sleep(0.02)


class Program:
    """A process of its own, whose output is in a file."""

    def __init__(self, command, log):
        self.log = log
        with open(log, "ab") as output:
            self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=output, stderr=subprocess.STDOUT)

    def wait_for(self, text):
        """Until its log has a text that many times as it has processes; fails with the log."""
        until(lambda: text in self.log.read_text() or self.process.poll() is not None, lambda: self.log.read_text())
        assert self.process.poll() is None, self.log.read_text()

    def kill(self, number=signal.SIGKILL):
        """Ends it, and waits for that."""
        self.process.send_signal(number)
        self.process.wait(60)

    def end(self):
        """Whatever it does now."""
        if self.process.poll() is None:
            self.kill()
        self.process.stdin.close()


class Site:
    """A host, number 1 to 9, with boards OV1001, OV1002, ... of its own."""

    def __init__(self, number, folder, boards=BOARDS, serials=None):
        self.number = number
        self._folder = folder
        self._workers = 0
        names = serials or [f"OV{number}{index + 1:03}" for index in range(boards)]
        described = [{"serial": serial, "address": f"10.83.{number}.{index + 1}", "devices": [f"{serial}:0"]}
                     for index, serial in enumerate(names)]
        file, control = folder / f"site{number}.json", folder / f"site{number}.sock"
        file.write_text(json.dumps({"boards": described}))
        self._lab = Program([os.environ["ORVANE_LAB"], "--lab", file, "--control", control, "--",
                             "sh", "-c", "echo there; exec cat"], folder / f"site{number}.log")
        self._lab.wait_for("there")
        self.lab = orvane.lab.Lab(str(control))
        children = pathlib.Path(f"/proc/{self._lab.process.pid}/task/{self._lab.process.pid}/children")
        self._inside = ["nsenter", f"--net=/proc/{children.read_text().split()[0]}/ns/net", "--"]
        cable, near, far = f"site{number}", f"10.99.{number}.1", f"10.99.{number}.2"
        run = subprocess.check_call
        run(["ip", "link", "add", cable, "type", "veth", "peer", "name", f"{cable}w"])
        run(["ip", "link", "set", f"{cable}w", "netns", self._inside[1].split("/")[2]])
        run(["ip", "address", "add", f"{near}/24", "dev", cable])
        run(["ip", "link", "set", cable, "up"])
        run([*self._inside, "ip", "address", "add", f"{far}/24", "dev", f"{cable}w"])
        run([*self._inside, "ip", "link", "set", f"{cable}w", "up"])
        self._near, self._far = near, far

    def worker(self):
        """Begins a worker that is connected when this returns."""
        self._workers += 1
        log = self._folder / f"site{self.number}-worker{self._workers}.log"
        worker = Program([*self._inside, sys.executable, "-m", "distributed.cli.dask_worker",
                          f"tcp://{self._near}:8786", "--host", self._far, "--nthreads", str(THREADS), "--no-nanny",
                          "--no-dashboard", "--memory-limit", "0", "--local-directory", log.with_suffix(".files")],
                         log)
        worker.wait_for("Registered to:")
        return worker

    def close(self):
        """Ends the boards, and with them the network."""
        self.lab.close()
        self._lab.end()


def scheduler(folder):
    """A scheduler that listens when this returns."""
    program = Program([sys.executable, "-m", "distributed.cli.dask_scheduler", "--host", "0.0.0.0", "--port", "8786",
                       "--no-dashboard"], folder / f"scheduler{len(list(folder.iterdir()))}.log")
    program.wait_for("Scheduler at:")
    return program
