"""A data set in other forms. pandas, xarray and h5py are needed only for theirs."""
from __future__ import annotations

import csv
import importlib
import json
import math
from typing import TYPE_CHECKING, Any, Dict, List, Tuple

import numpy

from orvane.run.storage import DataSetError, PathLike

if TYPE_CHECKING:
    from orvane.run.dataset import DataSet as _DataSet, RecordedPoint as _RecordedPoint

__all__ = ["to_csv", "to_hdf5", "to_pandas", "to_xarray"]


def to_csv(data: _DataSet, path: PathLike) -> None:
    """A row for each point."""
    rows = _rows(data)
    names = list(dict.fromkeys(name for row in rows for name in row))
    with open(path, "w", newline="", encoding="utf-8") as file:
        writer = csv.writer(file)
        writer.writerow(names)
        writer.writerows([_cell(row.get(name, "")) for name in names] for row in rows)


def to_pandas(data: _DataSet) -> Any:
    """A DataFrame."""
    rows = _rows(data)
    return _library("pandas").DataFrame(rows) if rows else _library("pandas").DataFrame(
        columns=["board", *data.recipe.conditions, "repeat"])


def to_xarray(data: _DataSet) -> Any:
    """A Dataset."""
    dimensions, coordinates, grids = _grids(data)
    return _library("xarray").Dataset(
        {name: (dimensions + [f"{name}_{axis}" for axis in range(grid.ndim - len(dimensions))], grid)
         for name, grid in grids.items()}, coords=coordinates,
        attrs={"name": data.recipe.name, "recipe": data.hash})


def to_hdf5(data: _DataSet, path: PathLike) -> None:
    """A file."""
    h5py = _library("h5py")
    dimensions, coordinates, grids = _grids(data)
    with h5py.File(path, "w") as file:
        file.attrs.update({"name": data.recipe.name, "recipe": data.recipe.json(), "hash": data.hash})
        for name in dimensions:
            file.create_dataset(f"conditions/{name}", data=_storable(h5py, coordinates[name]))
            file[f"conditions/{name}"].make_scale(name)
        for name, grid in grids.items():
            kept = file.create_dataset(f"values/{name}", data=_storable(h5py, grid))
            for axis, dimension in enumerate(dimensions):
                kept.dims[axis].attach_scale(file[f"conditions/{dimension}"])


def _library(name: str) -> Any:
    try:
        return importlib.import_module(name)
    except ImportError as problem:
        raise DataSetError(f"this needs {name}, which is not installed (Debian: python3-{name})") from problem


def _rows(data: _DataSet) -> List[Dict[str, Any]]:
    return [{"board": point.port, **_in_order(data, point), "repeat": point.repeat, "begun": point.begun,
             "seconds": point.seconds, "attempts": point.attempts, **point.values}
            for point in data.points() if point.done]


def _in_order(data: _DataSet, point: _RecordedPoint) -> Dict[str, Any]:
    return {name: point.conditions[name] for name in data.recipe.conditions}


def _cell(value: Any) -> Any:
    if isinstance(value, numpy.ndarray):
        return json.dumps(value.tolist(), default=str)
    return value.hex() if isinstance(value, bytes) else value


def _grids(data: _DataSet) -> Tuple[List[str], Dict[str, Any], Dict[str, Any]]:
    """Dimensions, their coordinates, and an array over them for each value."""
    recipe = data.recipe
    coordinates: Dict[str, List[Any]] = {
        "board": [each.port for each in data.boards()],
        **{name: list(values) for name, values in recipe.conditions.items()}, "repeat": list(range(recipe.repeat))}
    places = {name: {value: index for index, value in enumerate(values)} for name, values in coordinates.items()}
    found: Dict[str, Dict[Tuple[int, ...], Any]] = {}
    for point in data.points():
        where = {"board": point.port, **point.conditions, "repeat": point.repeat}
        place = tuple(places[name][where[name]] for name in coordinates)
        for name, value in point.values.items():
            found.setdefault(name, {})[place] = value
    shape = tuple(map(len, coordinates.values()))
    return list(coordinates), dict(coordinates), {name: _grid(name, shape, cells) for name, cells in found.items()}


def _grid(name: str, shape: Tuple[int, ...], cells: Dict[Tuple[int, ...], Any]) -> Any:
    """Numbers as they are, or as floats that are NaN where nothing was measured; else objects, None there."""
    shapes = {numpy.shape(value) for value in cells.values()}
    if len(shapes) > 1:
        raise DataSetError(f"{name}: its arrays are of several shapes, and have no common table")
    inner = shapes.pop()
    common = numpy.result_type(*(numpy.asarray(value).dtype for value in cells.values()))
    if common.kind not in "biuf":
        common = numpy.dtype(object)
    elif len(cells) < math.prod(shape):
        common = numpy.result_type(common, numpy.float64)
    grid: Any = numpy.full(shape + inner, None if common.kind == "O" else 0 if common.kind in "biu" else numpy.nan,
                           dtype=common)
    for place, value in cells.items():
        grid[place] = value
    return grid


def _storable(h5py: Any, values: Any) -> Any:
    array = numpy.asarray(values)
    if array.dtype.kind in "biufc":
        return array
    texts = numpy.array(["" if each is None else str(each) for each in array.ravel()], dtype=object)
    return texts.reshape(array.shape).astype(h5py.string_dtype())
