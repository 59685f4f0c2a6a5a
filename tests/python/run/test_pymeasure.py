"""A sweep that pymeasure's own Procedure drives; ./check runs installs it, elsewhere it may be missing."""
import importlib
import os

import pytest

import orvane


def drive_sweep(experiment):
    """A procedure that writes a setting to a PHY and reads it back."""

    class DriveSweep(experiment.Procedure):
        """Writes a setting to a PHY and reads it back."""

        levels = experiment.IntegerParameter("Levels", default=4)
        DATA_COLUMNS = ["drive", "read"]

        def startup(self):
            self.port = orvane.Rack().open("OV0001:0", exclusive=0x4711)

        def execute(self):
            phy = self.port.phy(3)
            for drive in range(self.levels):
                phy[30, 0xC070] = drive
                self.emit("results", {"drive": drive, "read": phy[30, 0xC070]})

        def shutdown(self):
            self.port.close()

    return DriveSweep


def test_procedure_of_pymeasure_drives_a_sweep(tmp_path, board):
    if not os.environ.get("ORVANE_CHECK_RUNS"):
        pytest.importorskip("pymeasure", reason="needs pymeasure: ./check runs installs it")
    experiment = importlib.import_module("pymeasure.experiment")
    results = experiment.Results(drive_sweep(experiment)(levels=6), str(tmp_path / "it.csv"))
    worker = experiment.Worker(results)
    worker.start()
    worker.join(timeout=60)
    assert results.procedure.status == experiment.Procedure.FINISHED
    told = results.data
    assert list(zip(told["drive"], told["read"])) == [(drive, drive) for drive in range(6)]
    assert board.sessions == 0
