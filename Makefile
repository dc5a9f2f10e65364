# Set-up of Tolvik: `make run` builds and starts the window, `make test` builds and runs the tests.
BUILD ?= build
JOBS ?= $(shell nproc)

.PHONY: all deps build run test bench package check-office clean

all: build

deps:
	@bash tools/installer-pakker.sh

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

clean:
	rm -rf $(BUILD)
