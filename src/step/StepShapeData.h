// One shape that a STEP read brought in.
#pragma once

#include <TopoDS_Shape.hxx>

#include <string>

struct StepShapeData
{
  TopoDS_Shape shape;    // located
  std::string name;      // final and unique, UTF-8; its key among the imported shapes
  double r = -1.0;       // colour, linear RGB in 0..1 as the kernel's documents hold it;
  double g = -1.0;       // -1 each when there is none
  double b = -1.0;       //
  bool hasColor = false; // true when a colour was found
  std::string extraText; // for the application; no reader fills it
};
