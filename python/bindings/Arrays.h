// Vectors as numpy arrays that own them: nothing is copied.
#pragma once

#include <pybind11/numpy.h>

#include <memory>
#include <utility>
#include <vector>

// An array of the given number of columns; one-dimensional for one column.
template <typename Number>
pybind11::array_t<Number> AsArray(std::vector<Number>&& numbers, pybind11::ssize_t columns)
{
  auto owner = std::make_unique<std::vector<Number>>(std::move(numbers));
  const auto rows = static_cast<pybind11::ssize_t>(owner->size()) / columns;
  Number* data = owner->data();
  const pybind11::capsule keeper(
    owner.release(), [](void* kept) { delete static_cast<std::vector<Number>*>(kept); });
  if (columns == 1)
    return pybind11::array_t<Number>(rows, data, keeper);
  return pybind11::array_t<Number>({rows, columns}, data, keeper);
}
