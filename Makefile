# SPDX-License-Identifier: Apache-2.0
# What people type. Each target sets up, builds and goes; cmake --list-presets shows what lies beneath.

.PHONY: run test check bench clean
JOBS ?= $(shell nproc)

# $(call build,PRESET): configures and builds one preset
define build
	cmake --preset $(1) >/dev/null
	cmake --build --preset $(1) -j $(JOBS)
endef

run: ## build and run the main job: import the example lists and show their reels
	@sh scripts/setup.sh run
	cmake --preset release -DREELDB_TESTS=OFF >/dev/null
	cmake --build --preset release -j $(JOBS)
	@sh scripts/run.sh

test: ## build and pass every test
	@sh scripts/setup.sh test
	cmake --preset release -DREELDB_TESTS=ON >/dev/null
	cmake --build --preset release -j $(JOBS)
	ctest --preset release

check: test ## test again under the sanitizers and with the second compiler
	@sh scripts/setup.sh check
	$(call build,asan)
	ctest --preset asan
	$(call build,tsan)
	ctest --preset tsan
	$(call build,clang-release)
	ctest --preset clang-release

bench: ## print the benchmarks
	@sh scripts/setup.sh bench
	$(call build,bench)
	build/bench/bin/reeldb_bench

clean: ## remove everything that was built
	rm -rf build
