"""What is in a STEP file, what is wrong with it, and whether it survives being written.

    PYTHONPATH=build/release/python python3 examples/python/check_a_file.py examples/gear-reducer.step
"""

import pathlib
import sys
import tempfile

import orvex

model = orvex.read_step(sys.argv[1])
report = model.report
print(f"{pathlib.Path(model.path).name}: {report['schema'].split()[0]}, {report['length_unit']}, "
      f"{report['solids_out']} distinct solids")

whole = orvex.compound([part.shape for part in model])
low, high = whole.bounding_box
print("size", " x ".join(f"{end - begin:.1f}" for begin, end in zip(low, high)),
      f"volume {whole.volume:.0f}")

check = orvex.check(whole.solids[0], short_edge=2.0)
print(f"solid 1: {check.critical_count} critical, {check.warning_count} warnings")
for issue in check.issues[:3]:
    print(f"  {issue.code}: {issue.message} {issue.value:.2f}, limit {issue.threshold:g}")

with tempfile.TemporaryDirectory() as folder:
    copy = pathlib.Path(folder) / "copy.step"
    whole.solids[0].write(copy)
    print("written and read again:", orvex.compare(whole.solids[0], orvex.read(copy)))
