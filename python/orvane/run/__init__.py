"""Runs: sweeps of conditions over boards, whose data sets survive the program; see orvane.Run.

python3 -m orvane.run, or `orvane run` of the command line, carries out, shows and compares them.
"""
from orvane.run.dataset import (DataSet, RecordedBoard, RecordedError, RecordedPoint, RecordedSession,
                                RecordedStep)
from orvane.run.engine import Summary
from orvane.run.plan import Plan, Task
from orvane.run.point import OnBoard, Point, Stopped
from orvane.run.recipe import Recipe, RecipeError
from orvane.run.run import Run
from orvane.run.safety import NotSafe
from orvane.run.storage import DataSetError

__all__ = ["DataSet", "DataSetError", "NotSafe", "OnBoard", "Plan", "Point", "Recipe", "RecipeError", "RecordedBoard",
           "RecordedError", "RecordedPoint", "RecordedSession", "RecordedStep", "Run", "Stopped", "Summary", "Task"]
