// Placeholders: functions that are declared and exported but not carried
// out yet.  Each registers itself at load time; its first call gives
// warning 141 with its Windows name, and every call returns the neutral
// value.  The README's porting-status table is made from this registry.
//
//     OM_PLACEHOLDER(BOOL, SetCaretPos, (int x, int y), FALSE)
#pragma once

#include <olmo/platform.h>

#include <atomic>
#include <cstdlib>

struct OmPlaceholder {
    const char *name;
    std::atomic<bool> called{false};
    OmPlaceholder *next = nullptr;
    explicit OmPlaceholder(const char *n);
};

extern "C" {
// Gives warning 141 on the first call of p.
OLMO_API void omPlaceholderCalled(OmPlaceholder *p);
// The registered placeholders of every loaded library, in no set order.
OLMO_API const OmPlaceholder *omPlaceholderFirst(void);
OLMO_API void omPlaceholderRegister(OmPlaceholder *p);
}

inline OmPlaceholder::OmPlaceholder(const char *n) : name(n)
{
    omPlaceholderRegister(this);
}

// Parameters are named as in the public header and left unused.
#define OM_PLACEHOLDER(ret, fn, params, neutral)                                       \
    static OmPlaceholder om_placeholder_##fn(#fn);                                     \
    extern "C" ret WINAPI fn params                                                    \
    {                                                                                  \
        omPlaceholderCalled(&om_placeholder_##fn);                                     \
        return neutral;                                                                \
    }

#define OM_PLACEHOLDER_VOID(fn, params)                                                \
    static OmPlaceholder om_placeholder_##fn(#fn);                                     \
    extern "C" void WINAPI fn params                                                   \
    {                                                                                  \
        omPlaceholderCalled(&om_placeholder_##fn);                                     \
    }

// A function that never returns on Windows cannot return here either.
#define OM_PLACEHOLDER_NORETURN(fn, params)                                            \
    static OmPlaceholder om_placeholder_##fn(#fn);                                     \
    extern "C" void WINAPI fn params                                                   \
    {                                                                                  \
        omPlaceholderCalled(&om_placeholder_##fn);                                     \
        abort();                                                                       \
    }
