// Bounded waiting for X tests: pump events until a condition holds or a
// deadline passes, never sleeping and hoping.  The pump is a callable that
// dispatches whatever is pending and otherwise blocks briefly on the X
// connection, so a waiting test reacts as soon as the event arrives.
#pragma once

#include <gtest/gtest.h> // first: Xlib's None macro breaks gtest if defined before it

#include <X11/Intrinsic.h>

#include <chrono>
#include <functional>
#include <source_location>
#include <string_view>
#include <utility>

namespace om::test
{

using Pump = std::function<void()>;

// Calls pumpOnce() until cond() holds or `deadline` has passed; cond() is
// checked first and once more after the deadline.  Returns whether it held.
// No gtest failure is recorded: for callers that handle a timeout themselves.
bool waitUntil(const std::function<bool()> &cond, std::chrono::milliseconds deadline,
               const Pump &pumpOnce);

// The same, but a timeout records a non-fatal gtest failure at the caller's
// location: "Condition not met within N ms: <what>".  Prefer OM_PUMP_UNTIL,
// which passes the condition's source text as `what`.
bool pumpUntil(const std::function<bool()> &cond, std::chrono::milliseconds deadline,
               const Pump &pumpOnce, std::string_view what = "condition",
               std::source_location where = std::source_location::current());

// Pumps for exactly `duration`: for checks whose expected outcome is that
// nothing happens (no extra message, no repaint), so that the waiting is
// visibly deliberate.
void pumpFor(std::chrono::milliseconds duration, const Pump &pumpOnce);

// The standard pump of an Xt application context.  Each call dispatches
// everything pending (X events, expired timers, inputs, signals; at most a
// bounded number of items so a self-rearming zero timer cannot trap the
// caller) and, if nothing was pending, waits up to `idleWait` in poll() on
// the context's display connections.  Xt timers have no queryable expiry,
// so `idleWait` also bounds how late a timer is seen.
class XtPump
{
  public:
    explicit XtPump(XtAppContext app,
                    std::chrono::milliseconds idleWait = std::chrono::milliseconds(5))
        : app_(app), idleWait_(idleWait)
    {
    }
    void operator()() const;

  private:
    XtAppContext app_;
    std::chrono::milliseconds idleWait_;
};

// The pump of a plain Xlib connection (no Xt): hands every queued event to
// `onEvent` (dropped when empty) and, if none was queued, waits up to
// `idleWait` in poll() on the connection.
class XlibPump
{
  public:
    explicit XlibPump(Display *dpy, std::function<void(const XEvent &)> onEvent = {},
                      std::chrono::milliseconds idleWait = std::chrono::milliseconds(5))
        : dpy_(dpy), onEvent_(std::move(onEvent)), idleWait_(idleWait)
    {
    }
    void operator()() const;

  private:
    Display *dpy_;
    std::function<void(const XEvent &)> onEvent_;
    std::chrono::milliseconds idleWait_;
};

} // namespace om::test

// Bool result; on timeout records a non-fatal failure naming `cond`.
#define OM_PUMP_UNTIL(cond, ms, pump)                                                              \
    ::om::test::pumpUntil([&]() -> bool { return static_cast<bool>(cond); },                       \
                          std::chrono::milliseconds(ms), (pump), #cond)

// Statement form: on timeout records a fatal failure naming `cond` and
// returns from the current (void) function, like ASSERT_*.
#define OM_ASSERT_PUMP_UNTIL(cond, ms, pump)                                                       \
    switch (0)                                                                                     \
    case 0:                                                                                        \
    default:                                                                                       \
        if (::om::test::waitUntil([&]() -> bool { return static_cast<bool>(cond); },               \
                                  std::chrono::milliseconds(ms), (pump))) {                        \
        } else                                                                                     \
            GTEST_FAIL() << "Condition not met within " << (ms) << " ms: " #cond
