// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/database.h"

#include "host/scene/relocated_strings.h"

namespace host {

std::string Scope::qualified(std::string_view name) const
{
    return name.substr(0, 2) == "::" ? std::string(name.substr(2)) : inside + std::string(name);
}

Database::Database() = default;
Database::~Database() = default;

miTag Database::add(std::unique_ptr<Element> element)
{
    Entry& entry = entries_.emplace_back();
    entry.element = std::move(element);
    const miTag tag = static_cast<miTag>(entries_.size());
    entry.element->tag = tag;
    if (!entry.element->name.empty())
        names_[entry.element->name] = tag;
    return tag;
}

void Database::replace(miTag tag, std::unique_ptr<Element> element)
{
    element->tag = tag;
    entries_[tag - 1].element = std::move(element);
}

void Database::remove(miTag tag)
{
    Element* const element = find(tag);
    if (!element)
        return;
    const auto named = names_.find(element->name);
    if (named != names_.end() && named->second == tag)
        names_.erase(named);
    entries_[tag - 1].element.reset();
}

miTag Database::named(const std::string& name) const
{
    const auto found = names_.find(name);
    return found == names_.end() ? miNULLTAG : found->second;
}

miTag Database::lookup(std::string_view name, const Scope& scope) const
{
    if (name.substr(0, 2) == "::")
        return named(std::string(name.substr(2)));
    if (!scope.inside.empty())
        if (const miTag tag = named(scope.inside + std::string(name)))
            return tag;
    for (std::string_view around = scope.around;;) {
        const miTag tag = named(std::string(around) + std::string(name));
        if (tag != miNULLTAG || around.size() < 3)
            return tag;
        const std::size_t end = around.rfind("::", around.size() - 3);
        around = around.substr(0, end == std::string_view::npos ? 0 : end + 2);
    }
}

Element* Database::find(miTag tag) const noexcept
{
    return tag == miNULLTAG || tag > entries_.size() ? nullptr : entries_[tag - 1].element.get();
}

void* Database::pin(miTag tag) noexcept
{
    Element* const element = find(tag);
    if (!element)
        return nullptr;
    if (relocated_ && element->kind == miSCENE_STRING)
        return relocated_->pin(static_cast<const Text&>(*element), entries_[tag - 1].pins);
    entries_[tag - 1].pins.fetch_add(1, std::memory_order_relaxed);
    return element->data();
}

bool Database::unpin(miTag tag) noexcept
{
    const Element* const element = find(tag);
    if (!element)
        return false;
    std::atomic<long>& pins = entries_[tag - 1].pins;
    if (relocated_ && element->kind == miSCENE_STRING)
        return relocated_->unpin(tag, pins);
    long before = pins.load(std::memory_order_relaxed);
    while (before > 0)
        if (pins.compare_exchange_weak(before, before - 1, std::memory_order_relaxed))
            return true;
    return false;
}

long Database::pins(miTag tag) const noexcept
{
    return find(tag) ? entries_[tag - 1].pins.load(std::memory_order_relaxed) : 0;
}

void Database::relocateStrings(bool on) { relocated_ = on ? std::make_unique<RelocatedStrings>() : nullptr; }

miTag Database::last() const noexcept { return static_cast<miTag>(entries_.size()); }

} // namespace host
