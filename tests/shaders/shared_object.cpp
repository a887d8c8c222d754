// SPDX-License-Identifier: BSD-3-Clause
#include "shared_object.h"

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>

template <class T>
const T* SharedObject::at(std::uint64_t offset) const
{
    if (offset + sizeof(T) > bytes_.size())
        throw std::runtime_error("the file ends too early");
    return reinterpret_cast<const T*>(bytes_.data() + offset);
}

SharedObject::SharedObject(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(stream), {});
    const auto& header = *at<Elf64_Ehdr>(0);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64 ||
        header.e_type != ET_DYN)
        throw std::runtime_error(file + " is not a shared object");

    for (const Elf64_Phdr& segment : std::span(at<Elf64_Phdr>(header.e_phoff), header.e_phnum))
        segments_[segment.p_type] = static_cast<int>(segment.p_flags);

    const std::span sections(at<Elf64_Shdr>(header.e_shoff), header.e_shnum);
    const auto find = [&](std::uint32_t type) -> const Elf64_Shdr* {
        for (const Elf64_Shdr& section : sections)
            if (section.sh_type == type)
                return &section;
        return nullptr;
    };
    const auto rows = [&]<class T>(const Elf64_Shdr* section, const T*) {
        return section ? std::span(at<T>(section->sh_offset), section->sh_size / sizeof(T))
                       : std::span<const T>();
    };
    const auto strings = [&](const Elf64_Shdr* section) {
        return text(sections[section->sh_link].sh_offset);
    };

    const Elf64_Shdr* const dynamic = find(SHT_DYNAMIC);
    for (const Elf64_Dyn& entry : rows(dynamic, static_cast<Elf64_Dyn*>(nullptr))) {
        dynamic_[entry.d_tag] = entry.d_un.d_val;
        if (entry.d_tag == DT_NEEDED)
            needed_.emplace_back(strings(dynamic) + entry.d_un.d_val);
    }

    // Versions wanted of other objects: a chain of objects, each with a chain of versions.
    std::map<int, std::string> versions;
    if (const Elf64_Shdr* const section = find(SHT_GNU_verneed)) {
        std::uint64_t offset = section->sh_offset;
        for (unsigned object = 0; object < section->sh_info; ++object) {
            const auto& need = *at<Elf64_Verneed>(offset);
            std::uint64_t version = offset + need.vn_aux;
            for (unsigned i = 0; i < need.vn_cnt; ++i) {
                const auto& aux = *at<Elf64_Vernaux>(version);
                versions[aux.vna_other] = strings(section) + aux.vna_name;
                version += aux.vna_next;
            }
            offset += need.vn_next;
        }
    }

    const Elf64_Shdr* const dynsym = find(SHT_DYNSYM);
    const auto symbols = rows(dynsym, static_cast<Elf64_Sym*>(nullptr));
    const auto symbolVersions = rows(find(SHT_GNU_versym), static_cast<Elf64_Half*>(nullptr));
    for (std::size_t i = 1; i < symbols.size(); ++i) {
        const Elf64_Sym& symbol = symbols[i];
        const auto version =
            symbolVersions.empty() ? versions.end() : versions.find(symbolVersions[i] & 0x7fff);
        symbols_.push_back({strings(dynsym) + symbol.st_name, symbol.st_shndx != SHN_UNDEF,
                            ELF64_ST_BIND(symbol.st_info), version == versions.end() ? "" : version->second});
    }

    // What the arrays of constructors and destructors will hold is written in the relocations.
    std::map<std::uint64_t, std::string> functions;
    const Elf64_Shdr* const symtab = find(SHT_SYMTAB);
    for (const Elf64_Sym& symbol : rows(symtab, static_cast<Elf64_Sym*>(nullptr)))
        if (ELF64_ST_TYPE(symbol.st_info) == STT_FUNC)
            functions[symbol.st_value] = strings(symtab) + symbol.st_name;
    const auto collect = [&](std::uint32_t type, std::vector<std::string>& names) {
        const Elf64_Shdr* const array = find(type);
        if (!array)
            return;
        for (const Elf64_Shdr& section : sections) {
            if (section.sh_type != SHT_RELA)
                continue;
            for (const Elf64_Rela& relocation : rows(&section, static_cast<Elf64_Rela*>(nullptr)))
                if (relocation.r_offset - array->sh_addr < array->sh_size)
                    names.push_back(functions[static_cast<std::uint64_t>(relocation.r_addend)]);
        }
    };
    collect(SHT_INIT_ARRAY, constructors_);
    collect(SHT_FINI_ARRAY, destructors_);
}

std::uint64_t SharedObject::dynamic(std::int64_t tag) const
{
    const auto found = dynamic_.find(tag);
    return found == dynamic_.end() ? 0 : found->second;
}

int SharedObject::segment(std::uint32_t type) const
{
    const auto found = segments_.find(type);
    return found == segments_.end() ? -1 : found->second;
}
