# A thin driver over CMake and CTest. `make demo` and `make test` work on a
# fresh Debian machine: they install what is missing first.

BUILD        ?= build
BUILD_SAN    ?= build-sanitize
BUILD_TSAN   ?= build-tsan
BUILD_BENCH  ?= build-bench
BUILD_FUZZ   ?= build-fuzz
BUILD_COV    ?= build-coverage
FUZZ_SECONDS ?= 60
JOBS         ?= $(shell nproc 2>/dev/null || echo 2)
CMAKE_GEN    := -G Ninja

.PHONY: all deps build demo test docs bench sanitize tsan fuzz coverage clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

demo: build
	$(BUILD)/tools/scoremodel demo

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# The HTML API reference, from the headers' comments, in $(BUILD)/docs/html.
docs: build
	@cmake --build $(BUILD) --target docs

bench:
	@scripts/install-deps.sh --bench
	@cmake -S . -B $(BUILD_BENCH) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DSCOREMODEL_BUILD_BENCH=ON \
	    -DSCOREMODEL_BUILD_TESTS=OFF >/dev/null
	@cmake --build $(BUILD_BENCH) -j $(JOBS)
	@for b in $(BUILD_BENCH)/bench/bench_*; do echo "== $$b"; $$b || exit 1; done

sanitize: deps
	@cmake -S . -B $(BUILD_SAN) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DSCOREMODEL_SANITIZE=ON >/dev/null
	@cmake --build $(BUILD_SAN) -j $(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	    ctest --test-dir $(BUILD_SAN) --output-on-failure -j $(JOBS)

# The threaded tests under ThreadSanitizer (the library and those tests only).
tsan: deps
	@cmake -S . -B $(BUILD_TSAN) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DSCOREMODEL_TSAN=ON \
	    -DSCOREMODEL_BUILD_TOOLS=OFF >/dev/null
	@cmake --build $(BUILD_TSAN) -j $(JOBS)
	ctest --test-dir $(BUILD_TSAN) --output-on-failure -j $(JOBS)

fuzz:
	@scripts/install-deps.sh --fuzz
	@CXX=clang++ cmake -S . -B $(BUILD_FUZZ) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DCMAKE_CXX_COMPILER=clang++ -DSCOREMODEL_SANITIZE=ON -DSCOREMODEL_FUZZ=ON \
	    -DSCOREMODEL_BUILD_TESTS=OFF -DSCOREMODEL_BUILD_TOOLS=OFF >/dev/null
	@cmake --build $(BUILD_FUZZ) -j $(JOBS)
	@for f in $(BUILD_FUZZ)/fuzz/fuzz_*; do \
	    name=$${f##*/fuzz_}; work=$(BUILD_FUZZ)/corpus-$$name; mkdir -p $$work; \
	    echo "== fuzzing $$name for $(FUZZ_SECONDS) s"; \
	    $$f -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
	        $$work fuzz/corpus/$$name || exit 1; \
	done

# Line and branch coverage of the library by the tests, per folder, with an
# HTML report in $(BUILD_COV)/coverage/index.html. Branches that only a thrown
# exception takes are left out: they are the compiler's, not the code's. That
# includes the clean-up after a throwing constructor in the object factories
# that IMPLEMENT_SERIAL and IMPLEMENT_DYNCREATE write, which gcov does not
# mark as exception branches.
coverage:
	@scripts/install-deps.sh --coverage
	@cmake -S . -B $(BUILD_COV) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS=--coverage \
	    -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
	@cmake --build $(BUILD_COV) -j $(JOBS)
	@find $(BUILD_COV) -name '*.gcda' -delete
	ctest --test-dir $(BUILD_COV) --output-on-failure -j $(JOBS) -E package_consumer
	@mkdir -p $(BUILD_COV)/coverage
	@gcovr --root . --object-directory $(BUILD_COV) --filter '$(CURDIR)/scoremodel/' -j $(JOBS) \
	    --exclude-throw-branches --exclude-unreachable-branches \
	    --exclude-branches-by-pattern '.*IMPLEMENT_(SERIAL|DYNCREATE)\(.*' \
	    --html-details $(BUILD_COV)/coverage/index.html --html-title 'scoremodel coverage' \
	    --json-summary $(BUILD_COV)/coverage/summary.json --json $(BUILD_COV)/coverage/full.json
	@scripts/coverage-report.py $(BUILD_COV)/coverage/summary.json $(BUILD_COV)/coverage/full.json
	@echo "HTML report: $(BUILD_COV)/coverage/index.html"

clean:
	rm -rf $(BUILD) $(BUILD_SAN) $(BUILD_TSAN) $(BUILD_BENCH) $(BUILD_FUZZ) $(BUILD_COV)
