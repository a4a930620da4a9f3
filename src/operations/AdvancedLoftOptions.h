// How a loft is made of its sections and guides.
#pragma once

struct AdvancedLoftOptions
{
  // A solid, closed by the end sections, instead of a shell.
  bool solid = false;
  // Straight from section to section instead of smooth over all of them.
  bool ruled = false;
  // Whether sections are brought to the same number of edges, start and direction first.
  bool checkCompatibility = true;
  // In model units; 1e-6 instead of what is not finite or not above 0.
  double tolerance = 1e-6;
  // Whether the surface is fitted by least squares, which needs not meet the inner sections.
  bool smoothing = true;
  // Of the surface across the sections: 0 in position, 1 in tangent, 2 in curvature.
  int continuity = 1;
  // Of the surface across the sections, from 2 to 14.
  int maxDegree = 8;
  // 0: even; 1: by the length of chords; 2: by the square root of that length.
  int parametrization = 1;
  // What guides do to the inner sections. 0: nothing; 1: draw them halfway; 2: draw them all the
  // way, and only from close by.
  int guideMode = 1;
};
