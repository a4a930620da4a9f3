# What one types. Each target is a script in scripts/ that can also be run by hand.
.DEFAULT_GOAL := help
.PHONY: help demo test python bench format format-check lint sanitize deps clean

help:  ## show this list
	@grep -hE '^[a-z-]+:.*## ' $(MAKEFILE_LIST) | sed -E 's/:[^#]*## /\t/' | expand -t 16

demo:  ## install what is needed, build, and show the sample assembly
	@scripts/demo.sh

test:  ## install what is needed, build, and run all tests
	@scripts/test.sh

python:  ## install what is needed, and build the Python package
	@scripts/python.sh

bench:  ## build and run the benchmarks, one table in docs/benchmarks.md
	@scripts/bench.sh

format:  ## format all C++ sources in place
	@scripts/format.sh

format-check:  ## fail if a source is not formatted
	@scripts/format.sh --check

lint:  ## run clang-tidy over the sources
	@scripts/lint.sh

sanitize:  ## run the tests under AddressSanitizer and UndefinedBehaviorSanitizer
	@scripts/sanitize.sh

deps:  ## install the Debian packages that the build needs
	@scripts/install-deps.sh

clean:  ## remove everything that was built
	@rm -rf build
