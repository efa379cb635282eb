# Front door: `make run` and `make test` work on a new Debian 12 machine.
PRESET ?= default
BUILD  := build/$(PRESET)

PREFIX ?= /usr/local

.PHONY: run test build configure sanitize tsan fuzz bench clean install package

run: build
	cd "$(CURDIR)" && ./$(BUILD)/merida

test: build
	ctest --preset $(PRESET)

build: configure
	cmake --build --preset $(PRESET)

configure:
	scripts/setup
	@test -f $(BUILD)/build.ninja || cmake --preset $(PRESET)

install: build
	cmake --install $(BUILD) --prefix "$(PREFIX)"

# A Debian package of the build in $(BUILD)/package/, checked by lintian (errors fail).
package: build
	scripts/setup dpkg-dev file lintian
	rm -f $(BUILD)/package/*.deb
	cd $(BUILD) && cpack -G DEB
	lintian --fail-on error --info $(BUILD)/package/*.deb

# Engine and tool-logic tests under AddressSanitizer and UBSan.
sanitize:
	scripts/setup
	@test -f build/sanitize/build.ninja || cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize

# The job runner's tests under ThreadSanitizer: work on worker threads shares nothing unguarded.
tsan:
	scripts/setup
	@test -f build/tsan/build.ninja || cmake --preset tsan
	cmake --build --preset tsan
	ctest --preset tsan

# The libFuzzer targets for a short bounded time; scripts/fuzz SECONDS runs them longer.
fuzz:
	scripts/fuzz 60

bench:
	scripts/setup libmuparser-dev primesieve
	@test -f build/bench/build.ninja || cmake --preset bench
	cmake --build --preset bench
	./build/bench/bench/engine_bench
	./build/bench/bench/graph_bench
	./build/bench/bench/integration_bench
	./build/bench/bench/roots_bench
	./build/bench/bench/polynomial_bench
	./build/bench/bench/signal_bench
	./build/bench/bench/fft_bench
	./build/bench/bench/graph_chart_bench
	./build/bench/bench/diff_bench
	./build/bench/bench/contour_bench
	./build/bench/bench/job_bench
	./build/bench/bench/window_bench
	bench/primes_vs_primesieve.sh build/bench/merida-cli

clean:
	rm -rf build
