"""What the tests beside labgrid share: targets with resources of simulated boards."""
import textwrap

import pytest


@pytest.fixture
def environment(tmp_path):
    """Makes labgrid's environment of a file: environment(text). Its targets end with the test."""
    from labgrid import Environment

    made = []

    def make(text, imports="orvane.labgrid"):
        file = tmp_path / "environment.yaml"
        file.write_text(f"imports: [{imports}]\n" + textwrap.dedent(text))
        made.append(Environment(str(file)))
        return made[-1]

    yield make
    for each in made:
        each.cleanup()


@pytest.fixture
def target(environment, board):
    """A target with PHY 3 of OV0001:0."""
    return environment("""
        targets:
          main:
            resources:
              OrvanePort: {device: OV0001, address: 10.83.0.1, phy: 3}
            drivers:
              OrvaneDriver: {}
    """).get_target()


@pytest.fixture
def driver(target):
    """Its driver, active."""
    return target.get_driver("OrvaneDriver")
