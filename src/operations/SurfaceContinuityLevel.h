// How closely a surface follows a face at an edge: in position, in tangent plane, in curvature. A
// number out of range counts as position.
#pragma once

enum class SurfaceContinuityLevel : int { Position = 0, Tangent = 1, Curvature = 2 };
