// SPDX-License-Identifier: BSD-3-Clause
#include "host/session.h"

#include <algorithm>

namespace host {

namespace {

std::vector<Session*>& alive()
{
    static std::vector<Session*> sessions;
    return sessions;
}

Session* currentSession = nullptr;

} // namespace

Session::Session()
{
    alive().push_back(this);
    currentSession = this;
}

Session::~Session()
{
    std::vector<Session*>& sessions = alive();
    sessions.erase(std::find(sessions.begin(), sessions.end(), this));
    currentSession = sessions.empty() ? nullptr : sessions.back();
}

Session* Session::current() { return currentSession; }

} // namespace host
