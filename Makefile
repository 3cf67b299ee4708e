# SPDX-License-Identifier: Apache-2.0
# What people type. Each target sets up, builds and goes; cmake --list-presets shows what lies beneath.

.PHONY: run test check fuzz mutate bench package package-test abi-check abi-baseline clean
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

fuzz: ## look for inputs that break something, FUZZ_SECONDS (20) for each target
	@sh scripts/setup.sh check
	$(call build,fuzz)
	@sh scripts/fuzz.sh

mutate: ## change the library in one place at a time and see the tests fail: MUTANTS=200 SEED=1 for a sample
	@sh scripts/setup.sh test
	@python3 scripts/mutate.py

bench: ## print the benchmarks
	@sh scripts/setup.sh bench
	$(call build,bench)
	build/bench/bin/reeldb_bench

package: ## make the Debian packages, in build/package
	@sh scripts/setup.sh package
	rm -rf build/package/*.deb build/package/_CPack_Packages
	$(call build,package)

package-test: package ## install, use and remove them in a bare Debian root (needs root)
	@sh scripts/test-packages.sh build/package

abi-check: ## fail when programs or hosts that were built before would break
	@sh scripts/setup.sh check
	$(call build,abi)
	@sh scripts/abi.sh check build/abi/lib/libreeldb.so

abi-baseline: ## take what is now as what is promised: for a new major version
	@sh scripts/setup.sh check
	$(call build,abi)
	@sh scripts/abi.sh baseline build/abi/lib/libreeldb.so

clean: ## remove everything that was built
	rm -rf build
