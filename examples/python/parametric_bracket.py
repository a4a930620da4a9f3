"""A bracket whose numbers hang on a wall thickness, for three of them.

    PYTHONPATH=build/release/python python3 examples/python/parametric_bracket.py
"""

import orvex

with orvex.Document() as document:
    document.parameters["wall"] = 4
    foot = document.add("box", length=60, width=30, height=4)
    foot["height"] = "wall"
    back = document.add("box", length=4, width=30, height=50)
    back["length"] = "1.5*wall"
    drill = document.add("cylinder", base_point=(40, 15, -50), bottom_radius=3, height=100)
    drill["bottom_radius"] = "wall*0.75"

    for wall in (4, 6, 8):
        document.parameters["wall"] = wall
        bracket = foot.shape + back.shape - drill.shape
        print(f"wall {wall}: volume {bracket.volume:9.2f}, "
              f"{'valid' if bracket.is_valid else 'broken'}")
