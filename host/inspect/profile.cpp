// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/profile.h"

#include "host/inspect/phenomena.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>

namespace host {

namespace {

using Clock = std::chrono::steady_clock;
using Figures = Profile::Figures;

std::int64_t nanoseconds(Clock::duration time)
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
}

/// The figures of one instance or shader in one thread.
struct Account {
    Figures figures;
    int running = 0; ///< calls that have begun and not ended

    void begin() { ++running; }
    void end(std::int64_t elapsed, std::int64_t own)
    {
        ++figures.calls;
        figures.exclusive += own;
        if (--running == 0)
            figures.inclusive += elapsed;
    }
};

std::vector<Profile::Row> sorted(std::vector<Profile::Row> rows)
{
    const auto idle = [](const Profile::Row& row) { return row.figures.calls == 0 && row.figures.init == 0; };
    rows.erase(std::remove_if(rows.begin(), rows.end(), idle), rows.end());
    std::stable_sort(rows.begin(), rows.end(), [](const Profile::Row& a, const Profile::Row& b) {
        return a.figures.exclusive > b.figures.exclusive;
    });
    return rows;
}

/// `whole`: nanoseconds that are 100 %.
std::string table(const char* title, const std::vector<Profile::Row>& rows, std::int64_t whole)
{
    std::array<char, 160> line;
    std::string text = title;
    text.resize(40, ' ');
    std::snprintf(line.data(), line.size(), "%12s %12s %10s %6s %10s %8s\n", "calls", "reused", "own s",
                  "own %", "total s", "init s");
    text += line.data();
    for (const Profile::Row& row : rows) {
        const Figures& f = row.figures;
        std::string name = row.name;
        name.resize(std::max<std::size_t>(40, name.size() + 1), ' ');
        std::snprintf(line.data(), line.size(), "%12llu %12llu %10.3f %6.1f %10.3f %8.3f",
                      static_cast<unsigned long long>(f.calls), static_cast<unsigned long long>(f.reused),
                      double(f.exclusive) * 1e-9,
                      whole > 0 ? 100.0 * double(f.exclusive) / double(whole) : 0.0,
                      double(f.inclusive) * 1e-9, double(f.init) * 1e-9);
        text += name + line.data() + (row.place.empty() ? "" : "  " + row.place) + "\n";
    }
    return text;
}

} // namespace

void Profile::Figures::add(const Figures& other)
{
    calls += other.calls;
    reused += other.reused;
    inclusive += other.inclusive;
    exclusive += other.exclusive;
    init += other.init;
}

/// The calls of one thread.
class Profile::Watch : public Observer {
public:
    explicit Watch(const Profile& profile)
        : instances(profile.rows_.size()), shaders(profile.shaderNames_.size()),
          phenomena(profile.rows_.size()), shaderOf_(profile.shaders_), around_(profile.around_)
    {
    }

    void enter(const Function& function, Entry entry, const miState& state) override
    {
        std::size_t levels = 0;
        if (entry == Entry::execute) {
            instances[function.number].begin();
            shaders[shaderOf_[function.number]].begin();
            const bool called = !open_.empty() && open_.back().state == &state;
            levels = called ? entered(around_[function.number], around_[open_.back().number])
                            : around_[function.number].size();
            for (std::size_t k = 0; k < levels; ++k)
                phenomena[around_[function.number][k]].begin();
        }
        open_.push_back({function.number, &state, levels, Clock::now(), 0});
    }

    void leave(const Function& function, Entry entry, const void*, miBoolean) override
    {
        const std::int64_t elapsed = nanoseconds(Clock::now() - open_.back().begin);
        const std::int64_t own = elapsed - open_.back().within;
        for (std::size_t k = 0; k < open_.back().levels; ++k)
            phenomena[around_[function.number][k]].end(elapsed, 0);
        open_.pop_back();
        if (!open_.empty())
            open_.back().within += elapsed;
        Account& instance = instances[function.number];
        Account& shader = shaders[shaderOf_[function.number]];
        if (entry == Entry::execute) {
            instance.end(elapsed, own);
            shader.end(elapsed, own);
        } else {
            instance.figures.init += elapsed;
            shader.figures.init += elapsed;
        }
    }

    void evaluating(const Function&, const Connection&) override {}

    void evaluated(const Function& user, const Connection& connection, const void*, bool remembered) override
    {
        if (!remembered)
            return;
        const std::size_t source = connection.source->number;
        ++instances[source].figures.reused;
        ++shaders[shaderOf_[source]].figures.reused;
        for (std::size_t k = entered(around_[source], around_[user.number]); k-- > 0;)
            ++phenomena[around_[source][k]].figures.reused;
    }

    std::vector<Account> instances;
    std::vector<Account> shaders;
    std::vector<Account> phenomena; ///< by the number of their definition

private:
    struct Call {
        std::size_t number; ///< of the function
        const miState* state;
        std::size_t levels; ///< phenomena that it goes into
        Clock::time_point begin;
        std::int64_t within; ///< nanoseconds of calls that it has brought about
    };
    std::vector<Call> open_;
    const std::vector<std::size_t>& shaderOf_;
    const std::vector<std::vector<std::size_t>>& around_;
};

Profile::Profile() = default;
Profile::~Profile() = default;

bool Profile::ready(const Stage&, Network& network)
{
    rows_.clear();
    shaders_.clear();
    around_.clear();
    shaderNames_.clear();
    watches_.clear();
    std::map<std::string, std::size_t> numbers;
    for (const Function* const function : network.functions()) {
        const std::string& shader = function->declaration().name;
        rows_.push_back({function->name.empty() ? shader : inQuotes(function->name) + " " + shader,
                         function->where.text(),
                         {}});
        const auto [known, added] = numbers.emplace(shader, shaderNames_.size());
        if (added)
            shaderNames_.push_back(shader);
        shaders_.push_back(known->second);
        std::vector<std::size_t>& around = around_.emplace_back();
        for (const Function* const phenomenon : phenomenaAround(*function))
            around.push_back(phenomenon->number);
    }
    return true;
}

Observer* Profile::observer(int)
{
    watches_.push_back(std::make_unique<Watch>(*this));
    return watches_.back().get();
}

std::vector<Profile::Row> Profile::byShader() const
{
    std::vector<Row> rows;
    for (const std::string& name : shaderNames_)
        rows.push_back({name, {}, {}});
    for (const auto& watch : watches_)
        for (std::size_t k = 0; k < rows.size(); ++k)
            rows[k].figures.add(watch->shaders[k].figures);
    return sorted(std::move(rows));
}

std::vector<Profile::Row> Profile::byInstance() const
{
    std::vector<Row> rows = rows_;
    for (const auto& watch : watches_)
        for (std::size_t k = 0; k < rows.size(); ++k)
            rows[k].figures.add(watch->instances[k].figures);
    return sorted(std::move(rows));
}

std::vector<Profile::Row> Profile::byPhenomenon() const
{
    std::vector<Row> rows = rows_;
    for (const auto& watch : watches_)
        for (std::size_t k = 0; k < rows.size(); ++k) {
            rows[k].figures.add(watch->phenomena[k].figures);
            for (const std::size_t phenomenon : around_[k]) {
                rows[phenomenon].figures.exclusive += watch->instances[k].figures.exclusive;
                rows[phenomenon].figures.init += watch->instances[k].figures.init;
            }
        }
    return sorted(std::move(rows));
}

std::string Profile::text() const
{
    const std::vector<Row> shaders = byShader(), phenomena = byPhenomenon();
    std::int64_t whole = 0;
    for (const Row& row : shaders)
        whole += row.figures.exclusive;
    return table("shader", shaders, whole) + "\n" +
           (phenomena.empty() ? std::string() : table("phenomenon", phenomena, whole) + "\n") +
           table("shader instance", byInstance(), whole);
}

} // namespace host
