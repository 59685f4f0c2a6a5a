"""What a rack counts, for Prometheus: orvane metrics, and /metrics of orvane serve.

Labels are boards, the board's programs, outcomes, channels: never a register. Boards beyond a number are counted
together.
"""
from orvane.metrics.events import EventCounts
from orvane.metrics.exposition import Exposition
from orvane.metrics.rack import expose

__all__ = ["EventCounts", "Exposition", "expose"]
