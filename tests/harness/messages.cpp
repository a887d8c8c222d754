// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/messages.h"

#include "host/report/message.h"

#include <algorithm>

namespace test {

Messages::Messages(int verbosity) : outerVerbosity_(host::verbosity())
{
    host::setVerbosity(verbosity);
    host::setMessageSink([this](host::Level, std::string_view line) { lines_.emplace_back(line); });
}

Messages::~Messages()
{
    host::setMessageSink({});
    host::setVerbosity(outerVerbosity_);
}

std::vector<std::string> Messages::lines() const { return lines_; }

int Messages::count(const std::string& text) const
{
    return static_cast<int>(std::count_if(lines_.begin(), lines_.end(), [&text](const std::string& line) {
        return line.find(text) != std::string::npos;
    }));
}

} // namespace test
