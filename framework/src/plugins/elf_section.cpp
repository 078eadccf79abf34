// Reads one section of an ELF file straight from its bytes, so that the host can learn what a
// plugin library offers without loading it (and running its code). Every offset and size read
// from the file is checked against the file before use.
#include <elf.h>

#include <bit>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

#include "ts/format.h"
#include "ts/pluginloader.h"
#include "ts/text.h"

namespace ts {

namespace {

// A definition is a few hundred bytes; anything this large is not one.
constexpr std::uint64_t kMaxSectionSize = 4u << 20;

struct Elf32 {
    using Ehdr = Elf32_Ehdr;
    using Shdr = Elf32_Shdr;
};
struct Elf64 {
    using Ehdr = Elf64_Ehdr;
    using Shdr = Elf64_Shdr;
};

class ElfFile {
public:
    explicit ElfFile(const std::string& path) : in_(path, std::ios::binary) {
        if (!in_) return;
        in_.seekg(0, std::ios::end);
        auto end = in_.tellg();
        size_ = end < 0 ? 0 : static_cast<std::uint64_t>(end);
    }
    bool IsOpen() const { return static_cast<bool>(in_); }
    std::uint64_t Size() const { return size_; }

    bool Read(std::uint64_t offset, void* out, std::uint64_t length) {
        if (offset > size_ || length > size_ - offset) return false;
        in_.clear();
        in_.seekg(static_cast<std::streamoff>(offset));
        in_.read(static_cast<char*>(out), static_cast<std::streamsize>(length));
        return static_cast<std::uint64_t>(in_.gcount()) == length;
    }

private:
    std::ifstream in_;
    std::uint64_t size_ = 0;
};

template <class Elf>
bool ReadSection(ElfFile& file, std::string_view wanted, std::string& bytes,
                 std::u16string& error) {
    typename Elf::Ehdr header;
    if (!file.Read(0, &header, sizeof header)) {
        error = u"the file is too short for an ELF header";
        return false;
    }
    if (header.e_type != ET_DYN) {
        error = u"the file is not a shared library";
        return false;
    }
    if (header.e_shoff == 0 || header.e_shentsize != sizeof(typename Elf::Shdr)) {
        error = u"the file has no usable section table";
        return false;
    }
    // Section 0 holds the real count and string-table index when they don't fit the header.
    typename Elf::Shdr first;
    if (!file.Read(header.e_shoff, &first, sizeof first)) {
        error = u"the section table lies outside the file";
        return false;
    }
    std::uint64_t count = header.e_shnum ? header.e_shnum : first.sh_size;
    std::uint64_t namesIndex = header.e_shstrndx == SHN_XINDEX ? first.sh_link : header.e_shstrndx;
    if (count == 0 || count > file.Size() / sizeof(typename Elf::Shdr) || namesIndex >= count) {
        error = u"the section table is damaged";
        return false;
    }
    std::vector<typename Elf::Shdr> sections(count);
    if (!file.Read(header.e_shoff, sections.data(), count * sizeof(typename Elf::Shdr))) {
        error = u"the section table lies outside the file";
        return false;
    }
    const auto& names = sections[namesIndex];
    if (names.sh_type != SHT_STRTAB || names.sh_size > kMaxSectionSize) {
        error = u"the section names are damaged";
        return false;
    }
    std::string nameTable(names.sh_size, '\0');
    if (!file.Read(names.sh_offset, nameTable.data(), names.sh_size)) {
        error = u"the section names lie outside the file";
        return false;
    }
    for (const auto& section : sections) {
        if (section.sh_name >= nameTable.size()) continue;
        const char* name = nameTable.data() + section.sh_name;
        std::size_t length = strnlen(name, nameTable.size() - section.sh_name);
        if (std::string_view(name, length) != wanted) continue;
        if (section.sh_type == SHT_NOBITS || section.sh_size > kMaxSectionSize) {
            error = Format(u"the section %s is empty or too large", wanted);
            return false;
        }
        bytes.assign(section.sh_size, '\0');
        if (!file.Read(section.sh_offset, bytes.data(), section.sh_size)) {
            error = Format(u"the section %s lies outside the file", wanted);
            return false;
        }
        return true;
    }
    error = Format(u"the library has no section %s", wanted);
    return false;
}

}  // namespace

bool ReadElfSection(const std::string& path, std::string_view section, std::string& bytes,
                    std::u16string& error) {
    bytes.clear();
    ElfFile file(path);
    if (!file.IsOpen()) {
        error = Format(u"cannot open the file: %s", std::strerror(errno));
        return false;
    }
    unsigned char ident[EI_NIDENT];
    if (!file.Read(0, ident, sizeof ident) || std::memcmp(ident, ELFMAG, SELFMAG) != 0) {
        error = u"the file is not an ELF library";
        return false;
    }
    constexpr unsigned char kNativeOrder =
        std::endian::native == std::endian::little ? ELFDATA2LSB : ELFDATA2MSB;
    if (ident[EI_DATA] != kNativeOrder) {
        error = u"the library is built for another byte order";
        return false;
    }
    if (ident[EI_CLASS] == ELFCLASS64) return ReadSection<Elf64>(file, section, bytes, error);
    if (ident[EI_CLASS] == ELFCLASS32) return ReadSection<Elf32>(file, section, bytes, error);
    error = u"the library has an unknown ELF class";
    return false;
}

}  // namespace ts
