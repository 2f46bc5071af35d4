# What a person types; each target installs what is missing first.
BUILD_JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
ELEVATE := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all run test bench lint fuzz proof install bootstrap clean

all: bootstrap
	@cmake --preset release --log-level=WARNING
	@cmake --build build/release -j $(BUILD_JOBS)

bootstrap:
	@scripts/bootstrap

# Starts Velorin; without a display it shows a dictation in a private desktop.
run: all
	@scripts/run

test: bootstrap
	@cmake --preset test --log-level=WARNING
	@cmake --build build/test -j $(BUILD_JOBS)
	@ctest --preset test

bench: all
	@build/release/bin/velorin-bench

lint: all
	@scripts/lint

install: all
	@$(ELEVATE) cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build
