"""Takes the script that rebuilds a plate, makes its hole larger by hand, and runs it.

    PYTHONPATH=build/release/python python3 examples/python/edit_a_replay.py
"""

import json
import pathlib
import tempfile

import orvex
import orvex.replay

plate = orvex.box(60, 40, 10) - orvex.cylinder(5, 30, origin=(20, 20, -10))
with tempfile.TemporaryDirectory() as folder:
    path = pathlib.Path(folder) / "plate.step"
    plate.write(path)
    script = orvex.read_step(path).script(solid=1)

# The bundle is one JSON text in the script. Its exact text would win over what is edited.
scope = {}
exec(script, scope)
bundle = scope["REPLAY_BUNDLE"]
bundle["payload"]["exactBrep"] = ""


def widen(curve, factor):
    """Circles of the hole, in space: centre, axis, X direction, radius, parameters."""
    if curve["kind"] == "circle":
        curve["analyticParameters"][9] *= factor


for face in bundle["payload"]["shells"][0]["faces"]:
    if face["surface"]["kind"] == "cylinder_surface":
        face["surface"]["analyticParameters"][9] *= 1.2
    for loop in face["trim"]["loops"]:
        for coedge in loop["coedges"]:
            widen(coedge["curve3d"], 1.2)
            if coedge["curve3d"]["kind"] == "line" and coedge["isSeam"]:
                line = coedge["curve3d"]["analyticParameters"]
                line[0] = line[3] = 20 + 6
            for end in ("startVertexPoint", "endVertexPoint"):
                if abs(coedge[end]["x"] - 25) < 1e-6 and abs(coedge[end]["y"] - 20) < 1e-6:
                    coedge[end]["x"] = 26

edited = script + f"\nREPLAY_BUNDLE = json.loads({json.dumps(bundle)!r})\n"
result, host = orvex.replay.run_script(edited, strategy=True, name="edited plate")
print("strategy", result["strategy"], "built", host.built.forms)
print(f"volume {plate.volume:.3f} before, {host.built.shape.volume:.3f} after, "
      f"{24000 - 360 * 3.141592653589793:.3f} by hand")
