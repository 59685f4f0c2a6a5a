"""What a run would send: its steps are carried out on a board that only writes down what it is asked for."""
from __future__ import annotations

from typing import TYPE_CHECKING, Any, Callable, Dict

from orvane.names import Map
from orvane.run.point import Point
from orvane.run.steps import Step
from orvane.run.writtendown import board_written_down

if TYPE_CHECKING:
    from orvane.run.run import Run as _Run

__all__ = ["print_steps"]


def print_steps(run: _Run, tell: Callable[[str], object] = print) -> None:
    """Prints what each step would send, in order. What is read is 0, so that a step may go another way than on a
    board."""
    plan = run.plan()
    for port, tasks in plan.tasks.items():
        on = board_written_down(port, run.phy, run.map or Map.ieee8023(), tell)
        set_up: Dict[Step, Dict[str, Any]] = {}
        for task in tasks:
            for step in (*run.steps.shared, *run.steps.setups):
                chosen = step.chosen(task.conditions)
                if set_up.get(step) != chosen:
                    set_up[step] = chosen
                    tell(f"{port} {step.name} {_conditions(chosen)}".rstrip())
                    if step in run.steps.setups:
                        step.function(on, **chosen)
            assert run.steps.point is not None
            tell(f"{port} {run.steps.point.name} {_conditions(task.conditions)}")
            point = Point(on, task.conditions, task.repeat, 1)
            run.steps.point.function(point, **run.steps.point.chosen(task.conditions))
            tell(f"  records {', '.join(point.values) or 'nothing'}")
        if run.steps.safe is not None:
            tell(f"{port} {run.steps.safe.name}")
            run.steps.safe.function(on)


def _conditions(chosen: Any) -> str:
    return ", ".join(f"{name} {value}" for name, value in chosen.items())
