// SPDX-License-Identifier: BSD-3-Clause
// A shared object as the loader sees it.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// Read once, whole. Throws std::runtime_error for a file that is not a 64-bit ELF shared object.
class SharedObject {
public:
    struct Symbol {
        std::string name;
        bool defined;
        int binding;         ///< STB_...
        std::string version; ///< of an import that another object gives with a version, "GLIBC_2.2.5"
        bool operator==(const Symbol&) const = default;
    };

    explicit SharedObject(const std::string& file);

    const std::vector<Symbol>& dynamicSymbols() const { return symbols_; }
    const std::vector<std::string>& needed() const { return needed_; }

    /// Names of the functions that run when it is loaded, and when it is unloaded.
    const std::vector<std::string>& constructors() const { return constructors_; }
    const std::vector<std::string>& destructors() const { return destructors_; }

    /// The value of an entry of the dynamic section (DT_...), 0 without one.
    std::uint64_t dynamic(std::int64_t tag) const;

    /// The flags (PF_...) of the segment of a type (PT_...), -1 without one.
    int segment(std::uint32_t type) const;

private:
    template <class T>
    const T* at(std::uint64_t offset) const;
    const char* text(std::uint64_t offset) const { return bytes_.data() + offset; }

    std::string bytes_;
    std::vector<Symbol> symbols_;
    std::vector<std::string> needed_;
    std::vector<std::string> constructors_;
    std::vector<std::string> destructors_;
    std::map<std::int64_t, std::uint64_t> dynamic_;
    std::map<std::uint32_t, int> segments_;
};
