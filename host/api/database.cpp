// SPDX-License-Identifier: BSD-3-Clause
// The scene database as shaders see it.
#include "host/report/message.h"
#include "host/session.h"
#include "host/shading/call.h"

#include <geoshader.h>

#include <string>

namespace {

using host::Fault;

// Handed out for what is not there. As large as any record that a shader may look into.
alignas(16) char nothing[4096];

host::Database* database()
{
    host::Session* const session = host::Session::current();
    return session ? &session->database : nullptr;
}

// Once for each instance, so that a mistake in every sample does not fill the disk.
void complain(Fault fault, const std::string& text)
{
    host::Function* const culprit = host::runningFunction();
    if (!culprit)
        host::message(host::Level::error, "RC", text);
    else if (host::firstTime(*culprit, fault))
        host::message(host::Level::error, "RC", culprit->title() + ": " + text);
}

// The element's record, pinned; or null, after a message.
void* pinned(miTag tag)
{
    host::Database* const all = database();
    if (all && all->find(tag)) {
        if (void* const data = all->pin(tag))
            return data;
        complain(Fault::badAccess,
                 "this host has no record of the element behind tag " + std::to_string(tag));
    } else {
        complain(Fault::badAccess, tag == miNULLTAG
                                       ? std::string("accessed the null tag")
                                       : "accessed tag " + std::to_string(tag) + ", which is unknown");
    }
    return nullptr;
}

} // namespace

void* mi_db_access(miTag tag)
{
    if (tag != miNULLTAG) // nothing is behind it to be pinned; some shaders give it back, others do not
        ++host::running().pins;
    void* const data = pinned(tag);
    return data ? data : nothing;
}

void mi_db_unpin(miTag tag)
{
    if (tag != miNULLTAG)
        --host::running().pins;
    host::Database* const all = database();
    if (all && all->find(tag) && !all->unpin(tag))
        complain(Fault::badUnpin, "unpinned tag " + std::to_string(tag) + ", which is not pinned");
}

int mi_db_type(miTag tag)
{
    const host::Database* const all = database();
    const host::Element* const element = all ? all->find(tag) : nullptr;
    return element ? element->kind : miSCENE_NONE;
}

const char* mi_api_tag_lookup(miTag tag)
{
    const host::Database* const all = database();
    const host::Element* const element = all ? all->find(tag) : nullptr;
    return element && !element->name.empty() ? element->name.c_str() : nullptr;
}

// Nothing is cached that a change would have to be told to: preparing a rendering reads the elements anew.
void* mi_scene_edit(const miTag tag)
{
    host::Function* const editor = host::runningFunction();
    if (const miTs* const thread = host::runningThread(); thread && thread->render) // others read it just now
        throw host::Error(editor->where, editor->title() + ": edits the scene while it is rendered; only "
                                                           "geometry shaders can");
    void* const data = pinned(tag);
    if (!data)
        return nothing;
    host::Session::current()->edits.begin(tag, editor);
    return data;
}

void mi_scene_edit_end(const miTag tag)
{
    host::Database* const all = database();
    if (!all || !all->find(tag))
        return; // it has been told when the edit began
    if (host::Session::current()->edits.end(tag))
        all->unpin(tag);
    else
        complain(Fault::badUnpin, "ended an edit of tag " + std::to_string(tag) + ", which is not open");
}
