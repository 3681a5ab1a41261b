# The two commands of the README, and the benchmarks.
BUILD ?= build
JOBS ?= $(shell nproc)
SAMPLE = $(BUILD)/sample.abc

.PHONY: all deps build run test test-asan bench fuzz clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/CMakeCache.txt:
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo

build: deps $(BUILD)/CMakeCache.txt
	cmake --build $(BUILD) -j $(JOBS)

# The program works on a copy of the sample, so that the shipped file stays as it is.
run: build
	@test -f $(SAMPLE) || cp data/sample.abc $(SAMPLE)
	$(BUILD)/fenwork $(SAMPLE)

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j 1

test-asan: deps
	cmake -S . -B build-asan -DCMAKE_BUILD_TYPE=Debug -DFENWORK_ASAN=ON
	cmake --build build-asan -j $(JOBS)
	cd build-asan && QT_QPA_PLATFORM=offscreen ASAN_OPTIONS=detect_leaks=0 ctest --output-on-failure -j 1

bench: build
	@bash bench/run.sh $(BUILD)

# libFuzzer on the tune store: clang, address and undefined-behaviour sanitizers.
FUZZ_SECONDS ?= 600
fuzz: deps
	cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DFENWORK_FUZZ=ON \
	  -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer" \
	  -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined"
	cmake --build build-fuzz -j $(JOBS) --target fuzz_store
	bash fuzz/run.sh build-fuzz $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD) build-asan build-fuzz
