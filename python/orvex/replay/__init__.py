"""Runs the scripts that rebuild a model, against a host that really rebuilds.

    >>> import orvex, orvex.replay
    >>> model = orvex.read_step("bracket.step")
    >>> for outcome in orvex.replay.rebuild(model, strategy=True):
    ...     print(outcome)

A script asks its host for an object `CAD`; `Host` is one, and `run_script` brings both together.
With `strategy` the host rebuilds each solid the way its plan says: as a primitive, from parts that
are extruded, revolved or lofted and then fused and cut, or from its trimmed faces. What comes out
is compared with the source. A solid that is not equivalent is told, and replaced by the exact one.

From the shell: `python -m orvex.replay MODEL.step --strategy`, or a script in place of the model.
"""

from .host import COMMANDS, Built, Host
from .run import Outcome, as_record, rebuild, run_script, table

__all__ = ["Built", "COMMANDS", "Host", "Outcome", "as_record", "rebuild", "run_script", "table"]
