# What a person types; each target installs what is missing first.
BUILD_JOBS ?= $(shell nproc)
PREFIX ?= /usr/local
ELEVATE := $(shell [ "$$(id -u)" = 0 ] || echo sudo)

.PHONY: all run test bench lint fuzz proof speech-proof session-proof overlay-proof tap-proof matrix install bootstrap clean

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
	@ctest --preset test -j $(BUILD_JOBS)

bench: all
	@build/release/bin/velorin-bench

# Compares the cleanup with its reference on ten million texts; takes most of an hour on two processors.
proof: all
	@cmake --build build/release --target velorin-proof -j $(BUILD_JOBS)
	@build/release/bin/velorin-proof

# The long measurements of recognition, about two hours; RECORDINGS is a folder of recordings with a transcripts.tsv.
speech-proof: all
	@scripts/speech-proof $(if $(RECORDINGS),--recordings $(RECORDINGS))

# Dictations that overlap: 100,000 steps of random walks over the model, and a hundred pairs on the private
# desktop, half an hour.
session-proof: bootstrap
	@cmake --preset test --log-level=WARNING
	@cmake --build build/test -j $(BUILD_JOBS) --target core_test velorin velorin-guard press say sentences
	@QT_QPA_PLATFORM=offscreen VELORIN_WALK_STEPS=100000 build/test/bin/core_test --gtest_filter='DictationWalk.*'
	@VELORIN_DESKTOP_TOOLS=$(CURDIR)/build/test/libexec/desktop VELORIN_PROGRAM=$(CURDIR)/build/test/bin/velorin \
	    VELORIN_OVERLAPS=100 scripts/desktop /usr/bin/python3 -B $(CURDIR)/tests/desktop/OverlapTest.py

# What the shortcuts promise, measured under each window manager, about an hour; on a machine that does nothing else.
tap-proof: bootstrap
	@scripts/tap-proof

# What the overlay costs and promises, on a machine that does nothing else: a quarter of an hour.
overlay-proof: bootstrap
	@cmake --preset test --log-level=WARNING
	@cmake --build build/test -j $(BUILD_JOBS) --target velorin velorin-guard velorin-hurried velorin-transcribe \
	    overlay-stage press say sentences
	@VELORIN_DESKTOP_TOOLS=$(CURDIR)/build/test/libexec/desktop VELORIN_PROGRAM=$(CURDIR)/build/test/bin/velorin \
	    VELORIN_HURRIED=$(CURDIR)/build/test/bin/velorin-hurried VELORIN_OVERLAY_SHOWS=1000 \
	    VELORIN_TRANSCRIBE=$(CURDIR)/build/test/bin/velorin-transcribe \
	    scripts/desktop /usr/bin/python3 -B $(CURDIR)/tests/desktop/OverlayProof.py

# Each target for so long. What libFuzzer finds interesting is kept in build/fuzz/corpus from one run to the next.
FUZZ_SECONDS ?= 300
FUZZ_TARGETS ?= cleanup replies forms accessibility names models
fuzz: bootstrap
	@cmake --preset fuzz --log-level=WARNING
	@cmake --build build/fuzz -j $(BUILD_JOBS)
	@for target in $(FUZZ_TARGETS); do \
	    mkdir -p build/fuzz/corpus/$$target fuzz/seeds/$$target; \
	    [ $$target = cleanup ] && longest=400 || longest=4096; \
	    echo "$$target, $(FUZZ_SECONDS) s"; \
	    build/fuzz/bin/velorin-fuzz-$$target -max_len=$$longest -timeout=60 -max_total_time=$(FUZZ_SECONDS) \
	        -artifact_prefix=build/fuzz/ build/fuzz/corpus/$$target fuzz/seeds/$$target || exit 1; \
	done

lint: all
	@scripts/lint

# Texts into every application of docs/applications.md, which it writes; installs the applications (1 GB).
matrix: bootstrap
	@scripts/matrix

install: all
	@$(ELEVATE) cmake --install build/release --prefix $(PREFIX)

clean:
	rm -rf build
