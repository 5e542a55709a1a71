// Deadline-bounded pumping and the Xt application-context pump.
#include "harness/pump.h"

#include <poll.h>

#include <string>
#include <vector>

namespace om::test
{

using Clock = std::chrono::steady_clock;

bool waitUntil(const std::function<bool()> &cond, std::chrono::milliseconds deadline,
               const Pump &pumpOnce)
{
    const auto end = Clock::now() + deadline;
    while (!cond()) {
        if (Clock::now() >= end)
            return cond();
        pumpOnce();
    }
    return true;
}

bool pumpUntil(const std::function<bool()> &cond, std::chrono::milliseconds deadline,
               const Pump &pumpOnce, std::string_view what, std::source_location where)
{
    if (waitUntil(cond, deadline, pumpOnce))
        return true;
    ADD_FAILURE_AT(where.file_name(), static_cast<int>(where.line()))
        << "Condition not met within " << deadline.count() << " ms: " << what;
    return false;
}

void pumpFor(std::chrono::milliseconds duration, const Pump &pumpOnce)
{
    const auto end = Clock::now() + duration;
    while (Clock::now() < end)
        pumpOnce();
}

void XtPump::operator()() const
{
    // Enough for any burst a test produces; the bound only guarantees that
    // the caller gets to look at its deadline again.
    constexpr int kMaxItems = 1000;
    bool dispatched = false;
    for (int i = 0; i < kMaxItems; ++i) {
        XtInputMask pending = XtAppPending(app_);
        if (!pending)
            break;
        XtAppProcessEvent(app_, pending);
        dispatched = true;
    }
    if (dispatched)
        return;

    // XtAppPending has flushed output and found Xlib's queue empty, so data
    // arriving from now on wakes the poll.
    Display **displays = nullptr;
    Cardinal count = 0;
    XtGetDisplays(app_, &displays, &count);
    std::vector<pollfd> fds;
    for (Cardinal i = 0; i < count; ++i)
        fds.push_back(pollfd{ConnectionNumber(displays[i]), POLLIN, 0});
    XtFree(reinterpret_cast<char *>(displays));
    poll(fds.data(), fds.size(), static_cast<int>(idleWait_.count()));
}

void XlibPump::operator()() const
{
    // XPending flushes and reads what is already on the socket, so an empty
    // queue afterwards means the poll below is woken by the next event.
    if (XPending(dpy_)) {
        for (int i = 0; i < 1000 && XPending(dpy_); ++i) {
            XEvent event;
            XNextEvent(dpy_, &event);
            if (onEvent_)
                onEvent_(event);
        }
        return;
    }
    pollfd fd{ConnectionNumber(dpy_), POLLIN, 0};
    poll(&fd, 1, static_cast<int>(idleWait_.count()));
}

} // namespace om::test
