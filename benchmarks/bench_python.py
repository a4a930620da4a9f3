"""What Python costs: a call into an empty C++ function, and a million mesh vertices as numpy.

Each beside its floor in the same run: a call of an empty Python function, and numpy's own copy of
as many numbers. Best of several rounds.
"""

import time

import numpy

import orvex
from orvex import _orvex

ROUNDS = 7


def best(action):
    times = []
    for _ in range(ROUNDS):
        begin = time.perf_counter()
        action()
        times.append(time.perf_counter() - begin)
    return min(times)


def calls(function, count=1_000_000):
    def run():
        for _ in range(count):
            function()
    return best(run) / count


def nothing():
    pass


def a_million_vertices(deflection):
    """One ring over and over, meshed once."""
    ring = orvex.torus(10, 3)
    times = 1_000_000 // len(ring.mesh(deflection).vertices) + 1
    return orvex.compound([ring.translated((40 * at, 0, 0)) for at in range(times)])


def main():
    bound, plain, loop = calls(_orvex._nothing), calls(nothing), calls(int)
    print(f"empty C++ function   {bound * 1e9:8.1f} ns a call")
    print(f"empty Python one     {plain * 1e9:8.1f} ns a call, ratio {bound / plain:.2f}")
    print(f"int()                {loop * 1e9:8.1f} ns a call, ratio {bound / loop:.2f}")
    deflection = 0.02
    shape = a_million_vertices(deflection)
    mesh = shape.mesh(deflection)
    read = best(lambda: shape.mesh_arrays(deflection, 0.5))
    numbers = mesh.vertices.size + mesh.triangles.size + mesh.faces.size
    floor = best(lambda: (mesh.vertices.copy(), mesh.triangles.copy(), mesh.faces.copy()))
    print(f"{len(mesh.vertices)} vertices, {len(mesh.triangles)} triangles, {numbers} numbers")
    print(f"read into numpy      {read * 1e3:8.1f} ms, a copy within numpy {floor * 1e3:.1f} ms, "
          f"ratio {read / floor:.1f}; it is meshed already")
    view = best(lambda: numpy.asarray(mesh.vertices))
    print(f"looked at again      {view * 1e9:8.1f} ns")


if __name__ == "__main__":
    main()
