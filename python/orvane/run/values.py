"""Values and arrays as they stand in a data set."""
from __future__ import annotations

import json
import math
from typing import Any, Dict, List, Tuple

import numpy

from orvane.run.storage import DataSetError

__all__ = ["array_from_row", "array_row", "checked", "value_from_row", "value_row"]

_KINDS = {bool: "bool", int: "int", float: "float", str: "text", bytes: "bytes", type(None): "none"}


def checked(name: str, value: Any) -> Any:
    """A plain value, or an array of its own, of what a point records. Raises TypeError for anything else."""
    if isinstance(value, numpy.generic):
        value = value.item()
    if isinstance(value, (bytearray, memoryview)):
        value = bytes(value)
    for kind in _KINDS:
        if isinstance(value, kind):
            return value if kind in (bool, type(None)) else kind(value)
    if not isinstance(value, (numpy.ndarray, list, tuple)):
        raise TypeError(f"{name}: a value is a number, text, bytes, True, False, None or an array, "
                        f"not {type(value).__name__}")
    if isinstance(value, numpy.ma.MaskedArray) and numpy.ma.is_masked(value):  # type: ignore[no-untyped-call]
        raise TypeError(f"{name}: a masked array has values that were not read")
    array = numpy.array(value)
    if array.dtype.kind not in "biufcSU":
        raise TypeError(f"{name}: an array has numbers or texts, not {array.dtype}")
    return checked(name, array[()]) if array.ndim == 0 else array


def value_row(value: Any) -> Tuple[str, Any]:
    """Kind and value as the table has them."""
    kind = _KINDS[type(value)]
    if kind == "int" and not -2**63 <= value < 2**63:
        return kind, str(value)
    if kind == "float" and math.isnan(value):
        return kind, None
    return kind, int(value) if kind == "bool" else value


def value_from_row(kind: str, value: Any) -> Any:
    """The same back."""
    if kind == "float":
        return math.nan if value is None else float(value)
    return bool(value) if kind == "bool" else int(value) if kind == "int" else value


def array_row(array: Any) -> Tuple[str, str, bytes]:
    """Type, shape and bytes as the table has them."""
    return array.dtype.str, json.dumps(array.shape), array.tobytes()


def array_from_row(dtype: str, shape: str, data: bytes) -> Any:
    """The same back, to be changed at will. Raises DataSetError for what is no array."""
    try:
        return numpy.frombuffer(data, numpy.dtype(dtype)).reshape(json.loads(shape)).copy()
    except (TypeError, ValueError) as problem:
        raise DataSetError(f"an array of {shape} {dtype} in {len(data)} bytes: {problem}") from problem


def split(values: Dict[str, Any]) -> Tuple[List[Tuple[str, Any]], List[Tuple[str, Any]]]:
    """Plain values, and arrays."""
    arrays = [each for each in values.items() if isinstance(each[1], numpy.ndarray)]
    return [each for each in values.items() if not isinstance(each[1], numpy.ndarray)], arrays
