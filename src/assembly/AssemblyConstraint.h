// A mate between parts, as the application keeps it.
#pragma once

#include <string>

struct AssemblyConstraint
{
  // One of its own; the solver makes one if it is empty.
  std::string id;
  // The application's code; never read here, nor are the fields below.
  int kind = 0;
  // References to geometry and to nodes of the tree, as the application likes.
  std::string firstText;
  std::string secondText;
  std::string thirdText;
  std::string fourthText;
  // An angle or a distance, for the kinds that have one.
  double value = 0;
};
