// SPDX-License-Identifier: Apache-2.0
#include "host_check/dynamic_symbols.h"

#include <elf.h>
#include <link.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace host_check {

namespace {

using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);
using DynamicEntry = ElfW(Dyn);
using Version = ElfW(Versym);

constexpr Version hiddenVersion = 0x8000;
constexpr Version firstNamedVersion = 2; // 0 is local, 1 is without a version

constexpr unsigned char ownClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
constexpr unsigned char ownData = __BYTE_ORDER == __LITTLE_ENDIAN ? ELFDATA2LSB : ELFDATA2MSB;

/// The bytes of a file. Values are copied out of it, and must lie within it.
class Image {
public:
  explicit Image(const std::filesystem::path& file) : name_(file.string())
  {
    if (std::filesystem::is_directory(file))
      fail("is a folder");
    std::ifstream in(file, std::ios::binary);
    if (!in)
      fail(std::string("cannot be opened (") + std::strerror(errno) + ")");
    bytes_.assign(std::istreambuf_iterator<char>(in), {});
    if (in.bad())
      fail("cannot be read");
  }

  [[noreturn]] void fail(const std::string& what) const { throw std::runtime_error(name_ + ": " + what); }

  template <class T>
  T at(std::uint64_t offset) const
  {
    if (offset > bytes_.size() || bytes_.size() - offset < sizeof(T))
      fail("is cut off (byte " + std::to_string(offset) + " of " + std::to_string(bytes_.size()) + ")");
    T value;
    std::memcpy(&value, bytes_.data() + offset, sizeof value);
    return value;
  }

  /// The text from @p offset up to a NUL.
  std::string_view text(std::uint64_t offset) const
  {
    const std::size_t end = offset < bytes_.size() ? bytes_.find('\0', offset) : std::string::npos;
    if (end == std::string::npos)
      fail("is cut off (a name at byte " + std::to_string(offset) + " of " + std::to_string(bytes_.size()) + ")");
    return std::string_view(bytes_).substr(offset, end - offset);
  }

  std::size_t size() const { return bytes_.size(); }

private:
  std::string name_;
  std::string bytes_;
};

/// The table of sections. A stripped library has it, too.
class Sections {
public:
  explicit Sections(const Image& image) : image_(image), header_(image.at<Header>(0))
  {
    if (header_.e_shoff == 0 || header_.e_shentsize != sizeof(Section))
      image.fail("has no sections to read");
  }

  /// The first section of this type; a section of type null if there is none.
  Section find(unsigned type) const
  {
    for (unsigned i = 0; i < header_.e_shnum; ++i)
      if (const Section section = number(i); section.sh_type == type)
        return section;
    return {};
  }

  Section number(unsigned i) const { return image_.at<Section>(header_.e_shoff + std::uint64_t{i} * sizeof(Section)); }

  template <class T>
  T entry(const Section& section, std::uint64_t i) const
  {
    return image_.at<T>(section.sh_offset + i * sizeof(T));
  }

  template <class T>
  std::uint64_t count(const Section& section) const
  {
    if (section.sh_size > image_.size())
      image_.fail("is cut off (a section of " + std::to_string(section.sh_size) + " bytes)");
    return section.sh_size / sizeof(T);
  }

private:
  const Image& image_;
  Header header_;
};

void requireOwnKind(const Image& image)
{
  const Header header = image.size() < sizeof(Header) ? Header() : image.at<Header>(0);
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
    image.fail("is not a shared library");
  if (header.e_ident[EI_CLASS] != ownClass || header.e_ident[EI_DATA] != ownData)
    image.fail("is a library for another kind of machine");
  if (header.e_type != ET_DYN && header.e_type != ET_EXEC)
    image.fail("is neither a shared library nor a program (an object file or a core)");
}

bool begins(std::string_view name, std::string_view with)
{
  return name.substr(0, with.size()) == with;
}

/// Whether a host has to provide this undefined symbol.
bool asksHost(const Symbol& symbol, Version version, std::string_view name)
{
  const bool allocation = begins(name, "_Znw") || begins(name, "_Zna") || begins(name, "_Zdl") || begins(name, "_Zda");
  return ELF64_ST_BIND(symbol.st_info) == STB_GLOBAL && (version & ~hiddenVersion) < firstNamedVersion &&
         begins(name, "_Z") && !allocation;
}

/// Whether other files link to this symbol by its name without a version.
bool isOffered(const Symbol& symbol, Version version)
{
  const auto binding = ELF64_ST_BIND(symbol.st_info);
  const auto visibility = ELF64_ST_VISIBILITY(symbol.st_other);
  return (binding == STB_GLOBAL || binding == STB_WEAK || binding == STB_GNU_UNIQUE) &&
         (visibility == STV_DEFAULT || visibility == STV_PROTECTED) && (version & hiddenVersion) == 0;
}

} // namespace

DynamicSymbols readDynamicSymbols(const std::filesystem::path& file)
{
  const Image image(file);
  requireOwnKind(image);
  const Sections sections(image);

  const Section symbols = sections.find(SHT_DYNSYM);
  if (symbols.sh_type != SHT_DYNSYM)
    image.fail("has no dynamic symbols (is it linked as a shared library?)");
  const Section names = sections.number(symbols.sh_link);
  const Section versions = sections.find(SHT_GNU_versym);
  const bool versioned = versions.sh_type == SHT_GNU_versym;

  DynamicSymbols result;
  for (std::uint64_t i = 1; i < sections.count<Symbol>(symbols); ++i) { // the first entry is not a symbol
    const Symbol symbol = sections.entry<Symbol>(symbols, i);
    const Version version = versioned ? sections.entry<Version>(versions, i) : Version{1};
    const std::string_view name = image.text(names.sh_offset + symbol.st_name);
    if (symbol.st_shndx == SHN_UNDEF) {
      if (asksHost(symbol, version, name))
        result.asked.emplace(name);
    } else if (isOffered(symbol, version)) {
      result.offered.emplace(name);
    }
  }

  const Section dynamic = sections.find(SHT_DYNAMIC);
  const Section dynamicNames = sections.number(dynamic.sh_link);
  for (std::uint64_t i = 0; i < sections.count<DynamicEntry>(dynamic); ++i)
    if (const auto entry = sections.entry<DynamicEntry>(dynamic, i); entry.d_tag == DT_NEEDED)
      result.libraries.emplace_back(image.text(dynamicNames.sh_offset + entry.d_un.d_val));
  return result;
}

} // namespace host_check
