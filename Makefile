# SPDX-License-Identifier: Apache-2.0
# The commands for developers. Each target installs what it needs, builds and runs; cmake --list-presets shows the
# builds.

.PHONY: run test check check-long test-long second-compiler tidy tsan memcheck asan coverage threads instructions instructions-baseline fuzz mutate bench package package-test abi-check abi-baseline reference clean
JOBS ?= $(shell nproc)
LIBRARY_TESTS := reeltypes_test reelrec_test labelmaps_test reeldb_test_core reeldb_test_changes reeldb_test_first_use

# $(call build,PRESET[,OPTIONS[,TARGET]]): configures one preset, and builds it or one target of it
define build
	cmake --preset $(1) $(2) >/dev/null
	cmake --build --preset $(1) -j $(JOBS) $(if $(3),--target $(3))
endef

# $(call test,PRESET): runs the tests of one preset, and says why some were skipped
define test
	ctest --preset $(1); status=$$?; sh scripts/skipped.sh build/$(1); exit $$status
endef

run: ## build and run the main job: import the example lists and show their reels
	@sh scripts/setup.sh run
	$(call build,release,-DREELDB_TESTS=OFF,reeldb_command)
	@sh scripts/run.sh

test: ## build and pass every test
	@sh scripts/setup.sh test
	$(call build,release,-DREELDB_TESTS=ON)
	$(call test,release)

check: test tidy asan coverage threads instructions abi-check reference ## make all checks that take minutes: clang-tidy, sanitizers, coverage, counts, ABI, reference, valgrind, fuzzing, mutants
	@PROGRAMS="$(LIBRARY_TESTS)" $(MAKE) --no-print-directory memcheck
	@FUZZ_SECONDS=5 $(MAKE) --no-print-directory fuzz
	@MUTANTS=20 SEED=1 $(MAKE) --no-print-directory mutate
	@if [ "$$(id -u)" = 0 ]; then $(MAKE) --no-print-directory package-test; \
	  else echo "check: the packages are not tried: that needs root (make package-test)"; fi

check-long: check test-long second-compiler tsan memcheck ## make all checks that take hours, from which docs/reliability.md has its figures
	@FUZZ_SECONDS=300 $(MAKE) --no-print-directory fuzz
	@$(MAKE) --no-print-directory mutate

test-long: export REELDB_LONG_TESTS = 1
test-long: ## pass every test, with hundreds of power cuts instead of some
	@sh scripts/setup.sh test
	$(call build,release,-DREELDB_TESTS=ON)
	$(call test,release)

second-compiler: ## test an optimised build by the second compiler
	@sh scripts/setup.sh check
	$(call build,clang-release)
	$(call test,clang-release)

tsan: ## test with ThreadSanitizer
	@sh scripts/setup.sh check
	$(call build,tsan)
	$(call test,tsan)

memcheck: ## test under valgrind: PROGRAMS="reelrec_test store_test" for some programs
	@sh scripts/setup.sh check
	$(call build,release,-DREELDB_TESTS=ON)
	@sh scripts/memcheck.sh build/release $(PROGRAMS)

tidy: ## check the sources with clang-tidy: TIDY_ROOMS="lists cli" for some rooms
	@sh scripts/setup.sh check
	cmake --preset tidy >/dev/null
	@python3 scripts/tidy.py build/tidy $(TIDY_ROOMS)

asan: ## test with AddressSanitizer, LeakSanitizer and UndefinedBehaviorSanitizer
	@sh scripts/setup.sh check
	$(call build,asan)
	$(call test,asan)

coverage: ## test with the second compiler, and measure the lines and branches that the tests run
	@sh scripts/setup.sh check
	$(call build,coverage)
	rm -rf build/coverage/profiles
	$(call test,coverage)
	python3 scripts/coverage.py build/coverage

threads: ## test the code with several threads under ThreadSanitizer, a part of tsan
	@sh scripts/setup.sh check
	cmake --preset tsan >/dev/null
	cmake --build --preset tsan -j $(JOBS) --target reeldb_test_changes reeldb_test_workers values_test
	for test in reeldb_test_changes reeldb_test_workers values_test; do build/tsan/bin/$$test --gtest_brief=1 || exit 1; done

instructions: ## compare the library's instruction counts with the stored ones
	@sh scripts/setup.sh bench
	$(call build,bench)
	python3 scripts/instructions.py build/bench

instructions-baseline: ## store the current instruction counts
	@sh scripts/setup.sh bench
	$(call build,bench)
	python3 scripts/instructions.py build/bench --renew

fuzz: ## search for inputs that cause faults, FUZZ_SECONDS (20) per target
	@sh scripts/setup.sh check
	$(call build,fuzz)
	@sh scripts/fuzz.sh

mutate: ## change the library in one place at a time and see the tests fail: MUTANTS=200 SEED=1 for a sample, MUTATE=standalone/store for a folder
	@sh scripts/setup.sh check
	@python3 tests/mutants/mutate_test.py
	@python3 scripts/mutate.py $(MUTATE)

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

abi-check: ## fail if programs or hosts that were built earlier would break
	@sh scripts/setup.sh check
	$(call build,abi)
	@sh scripts/abi.sh check build/abi/lib/libreeldb.so

abi-baseline: ## store the current interface as the promised one, for a new major version
	@sh scripts/setup.sh check
	$(call build,abi)
	@sh scripts/abi.sh baseline build/abi/lib/libreeldb.so

reference: ## build the reference of the headers in build/reference, without warnings of doxygen
	@sh scripts/setup.sh check
	rm -rf build/reference
	mkdir -p build/reference
	doxygen docs/Doxyfile
	@echo "reference: build/reference/index.html"

clean: ## remove everything that was built
	rm -rf build
