"""A lab that labgrid's own programs share: two exporters' hosts with boards and a user's host, each with a network of
its own, a coordinator, and an exporter of either kind."""
from hosts import PYTHON, SUPPORT, Host

import orvane.lab

COUNT = 20
KEYED = "NetworkOrvanePort"


class SharedLab:
    """The three hosts, and labgrid on them."""

    def __init__(self, folder):
        names = folder / "hosts"
        names.write_text("127.0.0.1 localhost\n10.99.1.2 lab1\n10.99.2.2 lab2\n10.99.1.1 desk\n")
        files = [(names, "/etc/hosts")]
        self.folder = folder
        self.desk, self.lab1, self.lab2 = (Host(name, folder, files) for name in ("desk", "lab1", "lab2"))
        self.hosts = [self.desk, self.lab1, self.lab2]
        self.labs = {}
        self.desk.cable(self.lab1, "10.99.1.1", "10.99.1.2")
        self.desk.cable(self.lab2, "10.99.2.1", "10.99.2.2")
        for number, host in ((1, self.lab1), (2, self.lab2)):
            self.desk.run("ip", "route", "add", f"10.83.{number}.0/24", "via", f"10.99.{number}.2")
            self.labs[host.name] = self._boards(host, number)
        for host, near in ((self.desk, "10.99.1.1"), (self.lab1, "10.99.1.1"), (self.lab2, "10.99.2.1")):
            host.environment["LG_CROSSBAR"] = f"ws://{near}:20408/ws"
        self.desk.start(PYTHON, SUPPORT / "wamp_router.py", "0.0.0.0", "20408", until="ready", log="router")
        self.desk.start(PYTHON, "-m", "labgrid.remote.coordinator", until="Coordinator ready", log="coordinator",
                        WS="ws://10.99.1.1:20408/ws")
        self.exporter = self.start_exporter()
        written = self.lab2.run(PYTHON, "-m", "orvane.labgrid.exporter", "--phy", "3", "--write", "10.83.2.1-20")
        (folder / "lab2.yaml").write_text(written)
        self.lab2.start(PYTHON, "-m", "labgrid.remote.exporter", folder / "lab2.yaml", log="exporter")

    def _boards(self, host, number):
        serials = [f"{host.name.upper()}B{each:02}" for each in range(1, COUNT + 1)]
        control = self.folder / f"control-{host.name}"
        host.boards(control, serials, [f"10.83.{number}.{each}" for each in range(1, COUNT + 1)])
        return orvane.lab.Lab(str(control))

    def start_exporter(self):
        """Our exporter, on the first lab's host."""
        return self.lab1.start(PYTHON, "-m", "orvane.labgrid.exporter", "--phy", "3", "--every", "1",
                               "10.83.1.1-30", log="exporter")

    def board(self, serial):
        """A simulated board."""
        return self.labs[serial[:4].lower()][serial]

    def client(self, *words, user="ann", **how):
        """labgrid-client, as a user on the desk."""
        return self.desk.run(PYTHON, "-m", "labgrid.remote.client", *words, LG_USERNAME=user, **how)

    def python(self, text, user="ann", **how):
        """A program on the desk."""
        return self.desk.run(PYTHON, "-c", text, LG_USERNAME=user, **how)

    def resources(self):
        """Those that the coordinator takes for available: (exporter, group)."""
        return {tuple(line.split("/")[:2]) for line in self.client("resources").split()}

    def shown(self, place):
        """What labgrid-client shows of a place."""
        return self.client("-p", place, "show")

    def place_of(self, serial):
        """A place with a board's PHY 3, named after it."""
        name = serial.lower()
        self.client("-p", name, "create")
        self.client("-p", name, "add-match", f"{serial[:4].lower()}/{serial}/{KEYED}/port0-phy3")
        return name

    def environment(self, place):
        """An environment file for a place."""
        file = self.folder / f"{place}.yaml"
        file.write_text(f"""
imports: [orvane.labgrid]
targets:
  main:
    resources:
      RemotePlace: {{name: {place}}}
    drivers:
      OrvaneDriver: {{python: {PYTHON}}}
""")
        return file

    def pytest(self, place, text, **how):
        """labgrid's plugin for pytest, as a user on the desk: the ended run."""
        file = self.folder / f"test_{place.replace('-', '_')}.py"
        file.write_text(text)
        return self.desk.run(PYTHON, "-m", "pytest", "-p", "no:cacheprovider", "-q", "-vv", "--lg-env",
                             self.environment(place), file, check=False, PYTEST_ADDOPTS="",
                             LG_USERNAME="ann", **how)

    def close(self):
        for lab in self.labs.values():
            lab.close()
        for host in self.hosts:
            host.close()
