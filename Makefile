# The two set-up commands: `make run` and `make test`.
BUILD        ?= build
ASAN_BUILD   ?= build-asan
FUZZ_BUILD   ?= build-fuzz
CROSS_BUILD  ?= build-cross
JOBS         ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_SECONDS ?= 10
SCENARIO     ?= scenarios/demo.json
TIMELINE     ?=
CMAKE_ARGS   ?=
SWEEP_SEEDS  ?= 1000
SWEEP_HOURS  ?= 1
ARCH          = armhf mipsel s390x  # not from the environment: make cross-test ARCH=mipsel

.PHONY: all deps build run test test-plain test-asan fuzz cross-test bench callgrind mutate size sweep clean

all: build

deps:
	@tools/install-deps

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_ARGS)
	cmake --build $(BUILD) -j $(JOBS)

run: build
	$(BUILD)/lynd-check examples/lynd-with-mistakes.json
	$(BUILD)/lynd-sim run $(if $(TIMELINE),--timeline $(TIMELINE)) $(SCENARIO)

test: fuzz test-asan test-plain

test-plain: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

test-asan: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DLYND_SANITIZE=ON -DLYND_OPENWRT=OFF $(CMAKE_ARGS)
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

# Each parser's fuzz target runs for a short bounded time when clang is here.
fuzz: deps
	@if command -v clang++ >/dev/null 2>&1; then \
		CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DLYND_FUZZ=ON -DLYND_TESTS=OFF -DLYND_SANITIZE=ON -DLYND_OPENWRT=AUTO $(CMAKE_ARGS) >/dev/null && \
		cmake --build $(FUZZ_BUILD) -j $(JOBS) && \
		tools/run-fuzzers $(FUZZ_BUILD) $(FUZZ_SECONDS); \
	else echo "fuzz: clang++ not found, fuzz targets skipped"; fi

# The suite on other CPUs: Debian cross compilers, run under qemu-user.
cross-test:
	BUILD=$(BUILD) CROSS_BUILD=$(CROSS_BUILD) JOBS=$(JOBS) tools/cross-test $(ARCH)

bench: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLYND_BENCH=ON $(CMAKE_ARGS)
	cmake --build $(BUILD) -j $(JOBS) --target lynd_bench
	$(BUILD)/lynd_bench

# Instructions of one period run, by callgrind (installs valgrind if missing).
callgrind: bench
	tools/period-instructions $(BUILD)

# What lynd-check and every device build's lynd cost a router: stripped size,
# text, data and bss, the libraries they need.
size: build
	tools/size $(BUILD) $(filter-out $(BUILD)/lynd,$(wildcard build*/lynd))

# Faults seeded one at a time, and those the tests miss (hours for the default
# set; MUTATE_FILES=... and MUTATE_SECONDS=... narrow it).
mutate: deps
	tools/mutate

# A thousand random virtual hours through the daemon, every invariant
# checked after each period run; one table (SWEEP_SEEDS=... SWEEP_HOURS=...).
sweep: build
	$(BUILD)/lynd-sim sweep --seeds $(SWEEP_SEEDS) --hours $(SWEEP_HOURS) --jobs $(JOBS)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD) $(CROSS_BUILD) build-mutate
