"""orvane run: carries out the runs of a program, shows data sets and compares them."""
from __future__ import annotations

import argparse
import os
import runpy
import sqlite3
import sys
from collections import abc
from typing import Any, List, Optional

from orvane.errors import Error
from orvane.run import compare, dryrun
from orvane.run.dataset import DataSet
from orvane.run.engine import Summary
from orvane.run.options import Options, options_for
from orvane.run.recipe import RecipeError
from orvane.run.run import Run
from orvane.run.safety import NotSafe
from orvane.run.storage import DataSetError

__all__ = ["main"]

SUCCESS, FAILED, USAGE, NOT_SAFE, INTERRUPTED = 0, 1, 2, 3, 130
_EXAMPLES = """\
  orvane run sweep.py --plan
  orvane run sweep.py --out drive-sweep.orvrun --resume
  orvane run sweep.py --dask tcp://lab-server:8786
  orvane run show drive-sweep.orvrun
  orvane run diff monday.orvrun today.orvrun --tolerance eye=2 --tolerance temp=1%

PROGRAM is a program of Python that makes an orvane.Run; whether it calls go() does not matter.

Exit status: 0 success, 1 points are missing, what was compared differs or something failed, 2 wrong usage, 3 boards
could not be brought to their safe state, 130 after a signal.
"""


def main(arguments: Optional[abc.Sequence[str]] = None) -> int:
    """The command line without its name; returns the exit status."""
    given = list(sys.argv[1:] if arguments is None else arguments)
    try:
        verb = {"show": _show, "diff": _diff}.get(given[0] if given else "")
        status = _run(given) if verb is None else verb(given[1:])
        sys.stdout.flush()
        return status
    except BrokenPipeError:  # a reader that has left, as head does
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        return SUCCESS
    except NotSafe as problem:
        return _complain(problem, NOT_SAFE)
    except (DataSetError, RecipeError, Error, OSError, sqlite3.Error) as problem:
        return _complain(problem, FAILED)
    except KeyboardInterrupt:
        return INTERRUPTED


def _complain(problem: Exception, status: int) -> int:
    sys.stderr.write(f"orvane: run: {problem}\n")
    return status


def _parser(name: str, summary: str) -> argparse.ArgumentParser:
    return argparse.ArgumentParser(prog=f"orvane run{name}", description=summary, epilog=_EXAMPLES,
                                   formatter_class=argparse.RawDescriptionHelpFormatter)


def _run(given: List[str]) -> int:
    parser = _parser("", "Measure the points of a sweep, or of what is missing of one.")
    parser.add_argument("program", metavar="PROGRAM", help="a program of Python that makes an orvane.Run")
    parser.add_argument("--out", metavar="FILE", help="the data set; the run's name with .orvrun unless told")
    parser.add_argument("--resume", action="store_true", help="go on with a data set that is there")
    parser.add_argument("--extend", action="store_true",
                        help="likewise, with conditions, repeats or boards that it has not yet")
    parser.add_argument("--dask", metavar="ADDRESS",
                        help="measure on the hosts whose workers a scheduler of Dask distributed has there")
    parser.add_argument("--plan", action="store_true", help="print what would be measured, and how long it takes")
    parser.add_argument("--dry-run", action="store_true", help="print what would be sent; nothing is")
    told = parser.parse_args(given)
    act = _print_plan if told.plan else dryrun.print_steps if told.dry_run else None
    options = Options(told.out, told.resume, told.extend, told.dask, act)
    done: List[Any] = []
    options.done = done.append
    if not os.path.isfile(told.program):
        raise RecipeError(f"{told.program}: there is no such program")
    with options_for(options):
        runpy.run_path(told.program, run_name="__main__")
        if not done:
            if len(options.runs) != 1:
                raise RecipeError(f"{told.program}: it makes {len(options.runs) or 'no'} runs, and calls go() of none")
            options.runs[0].go()
    return SUCCESS if all(_is_complete(each) for each in done) else FAILED


def _is_complete(summary: Optional[Summary]) -> bool:
    if summary is None:
        return True
    print(summary)
    return summary.complete


def _print_plan(run: Run) -> None:
    print(run.plan().text())


def _show(given: List[str]) -> int:
    parser = _parser(" show", "Show what a data set has, what is missing, and what went wrong.")
    parser.add_argument("file", metavar="FILE")
    parser.add_argument("--csv", metavar="FILE", help="write its points as CSV")
    parser.add_argument("--hdf5", metavar="FILE", help="write its values over boards and conditions as HDF5")
    parser.add_argument("--report", metavar="FILE", help="write a page with a plot of each value")
    told = parser.parse_args(given)
    with DataSet(told.file) as data:
        print(data.text())
        if told.csv:
            data.to_csv(told.csv)
        if told.hdf5:
            data.to_hdf5(told.hdf5)
        if told.report:
            data.to_html(told.report)
    return SUCCESS


def _diff(given: List[str]) -> int:
    parser = _parser(" diff", "Compare two data sets, point by point.")
    parser.add_argument("first", metavar="A")
    parser.add_argument("second", metavar="B")
    parser.add_argument("--tolerance", metavar="NAME=X", action="append", default=[],
                        help="how far values of that name may differ: 0.5, or 1%% of the larger one")
    told = parser.parse_args(given)
    with DataSet(told.first) as first, DataSet(told.second) as second:
        found = compare.differences(first, second, compare.tolerances_of(told.tolerance))
    for line in found:
        print(line)
    return FAILED if found else SUCCESS


if __name__ == "__main__":
    sys.exit(main())
