// SPDX-License-Identifier: Apache-2.0
//
// The library calls its host through a table of addresses that the dynamic linker fills in. Each address is replaced by
// a door, which passes the call on or throws instead. A door only needs its own number; it does not change the
// arguments.
#include "faults/library_calls.h"

#if defined(__x86_64__) && defined(__linux__)

#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>

namespace {

constexpr std::size_t mostDoors = 256;

std::array<void*, mostDoors> behind;               // the function behind each door
std::array<std::string, mostDoors> behindIsCalled; // mangled
bool counting = false;
std::int64_t left = 0, armedAt = 0;
bool failedYet = false, failsAlways = false;

} // namespace

/// Called by a door with its number. Returns the address of the function to call.
extern "C" __attribute__((visibility("hidden"))) void* reeldb_tests_pass(std::size_t door)
{
  if (counting && (left > 0 ? --left == 0 : failsAlways && failedYet)) {
    failedYet = true;
    throw reeldb_tests::LibraryCallFault{armedAt, behindIsCalled[door].c_str()};
  }
  return behind[door];
}

extern "C" __attribute__((visibility("hidden"))) const char reeldb_tests_doors[];

// Each door has sixteen bytes and pushes its number. The code after the doors saves the arguments, calls the function
// above, restores the arguments and jumps to the callee. The frame is described, so that exceptions can be unwound.
asm(R"(
  .pushsection .text
  .hidden reeldb_tests_doors
  .globl reeldb_tests_doors
  .p2align 4
reeldb_tests_doors:
  .set door, 0
  .rept 256
  .cfi_startproc
  pushq $door
  .cfi_adjust_cfa_offset 8
  jmp reeldb_tests_through
  .cfi_endproc
  .p2align 4
  .set door, door + 1
  .endr

  .type reeldb_tests_through, @function
reeldb_tests_through:
  .cfi_startproc
  .cfi_def_cfa_offset 16
  pushq %rbp
  .cfi_def_cfa_offset 24
  .cfi_offset %rbp, -24
  movq %rsp, %rbp
  .cfi_def_cfa_register %rbp
  pushq %rax
  pushq %rdi
  pushq %rsi
  pushq %rdx
  pushq %rcx
  pushq %r8
  pushq %r9
  pushq %r10
  subq $136, %rsp
  movups %xmm0, 0(%rsp)
  movups %xmm1, 16(%rsp)
  movups %xmm2, 32(%rsp)
  movups %xmm3, 48(%rsp)
  movups %xmm4, 64(%rsp)
  movups %xmm5, 80(%rsp)
  movups %xmm6, 96(%rsp)
  movups %xmm7, 112(%rsp)
  movq 8(%rbp), %rdi
  call reeldb_tests_pass
  movq %rax, %r11
  movups 0(%rsp), %xmm0
  movups 16(%rsp), %xmm1
  movups 32(%rsp), %xmm2
  movups 48(%rsp), %xmm3
  movups 64(%rsp), %xmm4
  movups 80(%rsp), %xmm5
  movups 96(%rsp), %xmm6
  movups 112(%rsp), %xmm7
  addq $136, %rsp
  popq %r10
  popq %r9
  popq %r8
  popq %rcx
  popq %rdx
  popq %rsi
  popq %rdi
  popq %rax
  popq %rbp
  .cfi_def_cfa %rsp, 16
  addq $8, %rsp
  .cfi_def_cfa_offset 8
  jmp *%r11
  .cfi_endproc
  .size reeldb_tests_through, . - reeldb_tests_through
  .popsection
)");

namespace reeldb_tests {

namespace {

std::string demangled(const std::string& symbol)
{
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                         &std::free);
  return status == 0 ? name.get() : symbol;
}

/// Whether the host promises that the operation never fails.
bool neverFails(const std::string& symbol)
{
  static const std::set<std::string> promised = {"OS()", "EditPtr::i_close()", "Zr::InternalRefCount::addRef() const",
                                                 "Zr::InternalRefCount::release() const"};
  const std::string name = demangled(symbol);
  const bool isMove = name.find("&&)") != std::string::npos;
  return promised.count(name) != 0 || isMove || name.find("::~") != std::string::npos;
}

std::set<std::string> hostOperations()
{
  std::ifstream list(REELDB_IMPORTS);
  std::set<std::string> operations;
  for (std::string symbol; std::getline(list, symbol);)
    if (!neverFails(symbol))
      operations.insert(symbol);
  return operations;
}

/// The tables of the library's imports.
struct Tables {
  const Elf64_Sym* symbols = nullptr;
  const char* names = nullptr;
  const Elf64_Rela *calls = nullptr, *others = nullptr;
  std::size_t callsSize = 0, othersSize = 0;

  explicit Tables(const link_map& library)
  {
    for (const Elf64_Dyn* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry) {
      const auto address = reinterpret_cast<const void*>(entry->d_un.d_ptr);
      switch (entry->d_tag) {
      case DT_SYMTAB:
        symbols = static_cast<const Elf64_Sym*>(address);
        break;
      case DT_STRTAB:
        names = static_cast<const char*>(address);
        break;
      case DT_JMPREL:
        calls = static_cast<const Elf64_Rela*>(address);
        break;
      case DT_PLTRELSZ:
        callsSize = entry->d_un.d_val;
        break;
      case DT_RELA:
        others = static_cast<const Elf64_Rela*>(address);
        break;
      case DT_RELASZ:
        othersSize = entry->d_un.d_val;
        break;
      default:
        break;
      }
    }
  }
};

void replace(void** slot, void* address)
{
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(slot) & ~(page - 1);
  // The linker has filled the table and made it read-only.
  if (mprotect(reinterpret_cast<void*>(start), page, PROT_READ | PROT_WRITE) == 0)
    *slot = address;
}

} // namespace

LibraryCalls::LibraryCalls()
{
  void* const handle = dlopen(REELDB_SONAME, RTLD_NOLOAD | RTLD_NOW);
  link_map* library = nullptr;
  if (!handle || dlinfo(handle, RTLD_DI_LINKMAP, &library) != 0) {
    unavailable_ = REELDB_SONAME ": not loaded";
    return;
  }
  const Tables tables(*library);
  const std::set<std::string> operations = hostOperations();
  notLed_ = operations;
  std::size_t doors = 0;
  const auto lead = [&](const Elf64_Rela* first, std::size_t size) {
    for (const Elf64_Rela* entry = first; entry < first + size / sizeof *first; ++entry) {
      const auto type = ELF64_R_TYPE(entry->r_info);
      const std::string name = tables.names + tables.symbols[ELF64_R_SYM(entry->r_info)].st_name;
      if ((type != R_X86_64_JUMP_SLOT && type != R_X86_64_GLOB_DAT) || operations.count(name) == 0)
        continue;
      if (doors == mostDoors) {
        unavailable_ = "more operations of the host than there are doors";
        return;
      }
      void** const slot = reinterpret_cast<void**>(library->l_addr + entry->r_offset);
      behind[doors] = *slot;
      behindIsCalled[doors] = name;
      replace(slot, const_cast<char*>(reeldb_tests_doors + 16 * doors));
      notLed_.erase(name);
      ++doors;
    }
  };
  lead(tables.calls, tables.callsSize);
  lead(tables.others, tables.othersSize);
  if (doors == 0)
    unavailable_ = "the library's calls were not found";
}

void LibraryCalls::failAt(std::int64_t n)
{
  left = armedAt = n;
  failedYet = failsAlways = false;
  counting = true;
}

void LibraryCalls::failFrom(std::int64_t n)
{
  failAt(n);
  failsAlways = true;
}

void LibraryCalls::stop()
{
  counting = false;
}

bool LibraryCalls::failed() const
{
  return failedYet;
}

} // namespace reeldb_tests

#else

namespace reeldb_tests {

LibraryCalls::LibraryCalls() : unavailable_("calls can be intercepted only on x86-64 under Linux") {}
void LibraryCalls::failAt(std::int64_t) {}
void LibraryCalls::failFrom(std::int64_t) {}
void LibraryCalls::stop() {}
bool LibraryCalls::failed() const
{
  return false;
}

} // namespace reeldb_tests

#endif

namespace reeldb_tests {

LibraryCalls& LibraryCalls::the()
{
  static LibraryCalls& instance = *new LibraryCalls;
  return instance;
}

} // namespace reeldb_tests
