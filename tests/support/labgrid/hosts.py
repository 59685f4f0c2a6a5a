"""Hosts of a test: a network name space, a name and an /etc/hosts of its own each, joined by cables."""
import os
import pathlib
import subprocess
import time

PYTHON = "/usr/bin/python3"
SUPPORT = pathlib.Path(__file__).parent


class Host:
    """A network name space with a process that keeps it; commands run in it."""

    def __init__(self, name, folder, files=()):
        self.name = name
        self.folder = folder
        self.environment = {**os.environ, "HOME": str(folder), "XDG_STATE_HOME": str(folder / f"state-{name}")}
        binds = "".join(f"mount --bind {have} {want} && " for have, want in files)
        script = f"{binds}hostname {name} && ip link set lo up && echo ready && exec sleep infinity"
        self._keeper = subprocess.Popen(
            ["unshare", "--net", "--uts", "--mount", "--propagation", "private", "sh", "-c", script],
            stdout=subprocess.PIPE, text=True)
        assert self._keeper.stdout.readline() == "ready\n"
        self.started = []

    def command(self, *words):
        """The command line that runs a command in it."""
        return ["nsenter", f"--target={self._keeper.pid}", "--net", "--uts", "--mount",
                f"--wd={self.folder}", "--", *map(str, words)]

    def run(self, *words, check=True, timeout=60, **environment):
        """Runs a command to its end; its output, with what it said of failures, as text."""
        ended = subprocess.run(self.command(*words), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                               timeout=timeout, cwd=self.folder, env={**self.environment, **environment})
        if check and ended.returncode:
            raise AssertionError(f"{' '.join(map(str, words))} ended with {ended.returncode}:\n{ended.stdout}")
        return ended.stdout if check else ended

    def start(self, *words, until=None, log=None, within=40.0, **environment):
        """Starts a program; waits for a line in its output that contains `until`."""
        file = self.folder / f"{log or pathlib.Path(str(words[0])).name}-{self.name}-{len(self.started)}.log"
        with open(file, "w") as output:
            process = subprocess.Popen(self.command(*words), stdout=output, stderr=subprocess.STDOUT, cwd=self.folder,
                                       env={**self.environment, "PYTHONUNBUFFERED": "1", **environment})
        process.log = file
        self.started.append(process)
        if until is not None:
            wait_for(lambda: until in file.read_text() or process.poll() is not None, f"{words}: {until}", within)
            assert process.poll() is None, file.read_text()
        return process

    def cable(self, peer, address, peer_address):
        """A cable to another host, with the addresses of both ends."""
        mine, theirs = f"to-{peer.name}", f"to-{self.name}"
        subprocess.run(["ip", "link", "add", mine, "netns", str(self._keeper.pid), "type", "veth", "peer", "name",
                        theirs, "netns", str(peer._keeper.pid)], check=True)
        for host, link, where in ((self, mine, address), (peer, theirs, peer_address)):
            host.run("ip", "address", "add", f"{where}/24", "dev", link)
            host.run("ip", "link", "set", link, "up")

    def boards(self, control, serials, addresses):
        """Boards of these names at these addresses of the host, in a lab."""
        for address in addresses:
            self.run("ip", "address", "add", f"{address}/32", "dev", "lo")
        file = self.folder / f"{control.name}.json"
        boards = ",".join(f'{{"serial": "{serial}", "address": "{address}"}}'
                          for serial, address in zip(serials, addresses))
        file.write_text(f'{{"boards": [{boards}]}}')
        simulator = pathlib.Path(os.environ["ORVANE_LAB"]).with_name("orvane-sim")
        return self.start(simulator, "--lab", file, "--control", control, until="ready")

    def close(self):
        """Ends what it started, and the host."""
        for process in reversed(self.started):
            process.terminate()
        for process in self.started:
            try:
                process.wait(20)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self._keeper.kill()
        self._keeper.wait()
        self._keeper.stdout.close()


def wait_for(said, what, within=40.0):
    """Waits until something is so: said() is asked ten times a second."""
    end = time.monotonic() + within
    while time.monotonic() < end:
        if said():
            return
        time.sleep(0.1)
    raise AssertionError(f"not within {within} s: {what}")


def possible():
    """Why hosts cannot be made here; empty when they can."""
    tried = subprocess.run(["unshare", "--net", "--uts", "--mount", "true"], stderr=subprocess.PIPE, text=True)
    return tried.stderr.strip() if tried.returncode else ""
