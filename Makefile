# What a person types; each target installs what is missing first.
BUILD_JOBS ?= $(shell nproc)

.PHONY: all run test bench lint fuzz install bootstrap clean

all: bootstrap
	@cmake --preset release --log-level=WARNING
	@cmake --build build/release -j $(BUILD_JOBS)

bootstrap:
	@scripts/bootstrap

run: all
	@scripts/run

test: bootstrap
	@cmake --preset test --log-level=WARNING
	@cmake --build build/test -j $(BUILD_JOBS)
	@ctest --preset test

clean:
	rm -rf build
