# Build options and the flags that every target of ours shares.
option(ORVEX_BUILD_APPS "Build the command line and the examples" ON)
option(ORVEX_BUILD_TESTS "Build the tests" ON)
option(ORVEX_BUILD_BENCHMARKS "Build the benchmarks" ON)
option(ORVEX_BUILD_PYTHON "Build the Python package" ON)
option(ORVEX_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)

include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

find_program(ORVEX_CCACHE ccache)
if(ORVEX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_SLOPPINESS=pch_defines,time_macros;${ORVEX_CCACHE}")
  # ccache can only reuse a precompiled header whose content it is told to trust.
  add_compile_options(-fpch-preprocess)
endif()

# An interface target: linking it means "this is our own code", held to the warnings.
add_library(orvex_own_code INTERFACE)
target_compile_options(orvex_own_code INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wcast-qual -Wformat=2 -Wold-style-cast
  -Woverloaded-virtual -Wundef -Wunused -Werror)
if(ORVEX_SANITIZE)
  # Enough for readable reports, and quicker to build than full debug information.
  set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -DNDEBUG")
  target_compile_options(orvex_own_code INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    # The optimiser reports variables of the instrumented code that are not there.
    -Wno-maybe-uninitialized)
  target_link_options(orvex_own_code INTERFACE -fsanitize=address,undefined)
endif()
