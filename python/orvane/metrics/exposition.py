"""The text that Prometheus reads."""
from __future__ import annotations

from collections import abc
from typing import Dict, List, Tuple, Union

__all__ = ["CONTENT_TYPE", "Exposition"]

CONTENT_TYPE = "text/plain; version=0.0.4; charset=utf-8"
Labels = abc.Mapping[str, str]


class Exposition:
    """Collects samples of metrics; each metric's are written together, whichever order they come in."""

    def __init__(self) -> None:
        self._families: Dict[str, Tuple[str, str, List[str]]] = {}

    def counter(self, name: str, help_: str, value: float, **labels: str) -> None:
        """A count that only grows; its name ends in _total."""
        self._sample(name, "counter", help_, name, labels, value)

    def gauge(self, name: str, help_: str, value: float, **labels: str) -> None:
        """A value that goes up and down."""
        self._sample(name, "gauge", help_, name, labels, value)

    def histogram(self, name: str, help_: str, buckets: abc.Sequence[Tuple[float, int]], sum_: float, count: int,
                  **labels: str) -> None:
        """How many were not above each bound, of all `count`, which sum up to `sum_`."""
        for bound, within in buckets:
            self._sample(name, "histogram", help_, f"{name}_bucket", {**labels, "le": _number(bound)}, within)
        self._sample(name, "histogram", help_, f"{name}_bucket", {**labels, "le": "+Inf"}, count)
        self._sample(name, "histogram", help_, f"{name}_sum", labels, sum_)
        self._sample(name, "histogram", help_, f"{name}_count", labels, count)

    def text(self) -> str:
        """Everything, in the order in which metrics first came."""
        lines: List[str] = []
        for name, (kind, help_, samples) in self._families.items():
            lines += [f"# HELP {name} {help_}", f"# TYPE {name} {kind}", *samples]
        return "".join(f"{line}\n" for line in lines)

    def _sample(self, family: str, kind: str, help_: str, name: str, labels: Labels, value: float) -> None:
        samples = self._families.setdefault(family, (kind, help_, []))[2]
        told = ",".join(f'{label}="{_escaped(text)}"' for label, text in labels.items())
        samples.append(f"{name}{{{told}}} {_number(value)}" if told else f"{name} {_number(value)}")


def _escaped(text: str) -> str:
    return text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n")


def _number(value: Union[int, float]) -> str:
    return str(value) if isinstance(value, int) else repr(float(value))
