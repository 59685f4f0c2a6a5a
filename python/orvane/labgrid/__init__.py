"""Boards in a lab that labgrid shares: loaded by an environment's `imports: [orvane.labgrid]`.

    targets:
      main:
        resources:
          RemotePlace:
            name: wren
        drivers:
          OrvaneDriver: {}

OrvanePort          a PHY of a board that this host reaches
NetworkOrvanePort   the same, as an exporter tells of it
OrvaneDriver        its port and PHY, held exclusively for the acquisition
OrvaneStrategy      off and on, by any PowerProtocol

Needs labgrid (Debian package python3-labgrid); the rest of the package does not.
"""
from orvane.labgrid.driver import OrvaneDriver
from orvane.labgrid.resources import BoardManager, NetworkOrvanePort, OrvanePort
from orvane.labgrid.strategy import OrvaneStrategy, Status

__all__ = ["BoardManager", "NetworkOrvanePort", "OrvaneDriver", "OrvanePort", "OrvaneStrategy", "Status"]
