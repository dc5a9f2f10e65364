# Set-up of Tolvik: `make run` builds and starts the window, `make test` builds and runs the tests.
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: all deps deps-sanitizer build run test bench package check-office fuzz test-asan clean

all: build

deps:
	@bash tools/installer-pakker.sh

# clang with libFuzzer and the sanitizer runtimes, only for make fuzz and make test-asan.
deps-sanitizer: deps
	@bash tools/installer-pakker.sh --sanitizer

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -z "$$DISPLAY$$WAYLAND_DISPLAY" ]; then \
	  echo "Ingen skjerm (DISPLAY er ikke satt): vinduet kan ikke vises her."; \
	  echo "Bruk $(BUILD)/dist/tolvik-batch for kommandoene uten vindu, eller: xvfb-run make run"; \
	  exit 1; fi
	cd $(BUILD)/dist && ./tolvik

test: build
	cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The Debian package build/tolvik_VERSION_ARCH.deb (dpkg -i installs it; see pakke/).
package: build
	cd $(BUILD) && cpack -G DEB

bench: build
	@bash bench/run.sh $(BUILD)

# Independent spreadsheet readers over every kind of written workbook (not run by CI).
check-office: build
	@bash tests/office/sjekk_office.sh $(BUILD)

# Every fuzz target for FUZZ_S seconds, one after another (FUZZ_S=600 make fuzz: ten minutes each).
FUZZ_S ?= 60
fuzz: deps-sanitizer
	@CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOLVIK_FUZZ=ON >/dev/null
	@cmake --build build-fuzz -j $(JOBS) --target fuzzmaal
	@bash fuzz/kjor.sh build-fuzz $(FUZZ_S)

# The whole test suite built with the address and undefined-behaviour sanitizers.
test-asan: deps-sanitizer
	@cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTOLVIK_SANITIZE=ON >/dev/null
	@cmake --build build-asan -j $(JOBS)
	cd build-asan && ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD) build-fuzz build-asan
