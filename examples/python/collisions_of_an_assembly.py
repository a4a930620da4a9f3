"""Which solids of an assembly overlap or touch, as a table, the largest overlap first.

    PYTHONPATH=build/release/python python3 examples/python/collisions_of_an_assembly.py examples/gear-reducer.step
"""

import sys

import orvex

model = orvex.read_step(sys.argv[1])
solids = [(part.name, solid) for part in model for solid in part.shape.solids]
found = orvex.collisions([solid for _, solid in solids])
found.sort(key=lambda one: (-one.overlap_volume, one.first, one.second))
overlaps = [one for one in found if not one.is_contact]

print(f"{len(solids)} solids, {len(overlaps)} overlaps, {len(found) - len(overlaps)} contacts")
for one in found[:5]:
    kind = "contact" if one.is_contact else "overlap"
    print(f"{one.first:5} {one.second:5}  {kind} {one.overlap_volume:12.3f}")
