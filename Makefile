# A thin front over the CMake presets; see README.md and CONTRIBUTING.md.
JOBS ?= $(shell nproc)
SECONDS ?= 60

.PHONY: all setup dll demo test coverage bench fuzz soak docs dist reproduce format check-format clean
all: dll

setup:
	@cmake/setup.sh build test

build/dll/build.ninja:
	@cmake/setup.sh build test
	@cmake --preset dll

build/core-asan/build.ninja:
	@cmake/setup.sh build test
	@cmake --preset core-asan

dll: setup build/dll/build.ninja
	@cmake --build --preset dll -j $(JOBS)

demo: dll
	@cmake/setup.sh demo
	@samples/demo.sh

# One closing line for both halves: ctest runs the two build trees as one.
test: dll build/core-asan/build.ninja
	@cmake --build --preset core-asan -j $(JOBS)
	@cmake/run-wine.sh --prefix
	@mkdir -p build/test
	@printf 'subdirs("%s" "%s")\n' "$(CURDIR)/build/core-asan" "$(CURDIR)/build/dll" >build/test/CTestTestfile.cmake
	@ctest --test-dir build/test --output-on-failure -j $(JOBS)

docs:
	@cmake/setup.sh docs
	@docs/build.sh

dist: setup build/dll/build.ninja docs
	@cmake/setup.sh dist
	@cmake --build --preset dll -j $(JOBS) --target products
	@cmake/run-wine.sh --prefix
	@cmake/dist.sh
	@tests/package/check.sh

reproduce: setup
	@tests/package/reproduce.sh

coverage:
	@cmake/setup.sh build test coverage
	@cmake --preset core-coverage
	@cmake --build --preset core-coverage -j $(JOBS)
	@find build/core-coverage -name '*.gcda' -delete
	@ctest --test-dir build/core-coverage --output-on-failure -j $(JOBS) -E format
	@tests/coverage.py

bench: dll
	@bench/run.sh

fuzz:
	@cmake/setup.sh build fuzz
	@cmake --preset fuzz
	@cmake --build --preset fuzz -j $(JOBS)
	@fuzz/run.sh $(SECONDS)

soak: dll build/core-asan/build.ninja
	@cmake --build --preset core-asan -j $(JOBS)
	@cmake/run-wine.sh --prefix
	@cmake/setup.sh build fuzz
	@cmake --preset fuzz
	@cmake --build --preset fuzz -j $(JOBS)
	@tests/soak.sh

SOURCES = $(shell git ls-files -co --exclude-standard '*.cpp' '*.h' '*.c')
format:
	@clang-format -i $(SOURCES)

check-format:
	@clang-format --dry-run -Werror $(SOURCES)

clean:
	@rm -rf build
