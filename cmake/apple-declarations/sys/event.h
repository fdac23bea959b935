#pragma once

#include <stdint.h>
#include <time.h>

#define EVFILT_READ (-1)
#define EVFILT_VNODE (-4)
#define EVFILT_PROC (-5)
#define EVFILT_USER (-10)

#define EV_ADD 0x0001
#define EV_DELETE 0x0002
#define EV_ONESHOT 0x0010
#define EV_CLEAR 0x0020

#define NOTE_WRITE 0x00000002
#define NOTE_TRIGGER 0x01000000
#define NOTE_EXIT 0x80000000

struct kevent {
    uintptr_t ident;
    int16_t filter;
    uint16_t flags;
    uint32_t fflags;
    intptr_t data;
    void* udata;
};

#define EV_SET(event, a, b, c, d, e, f)                                                            \
    do {                                                                                           \
        struct kevent* set = (event);                                                              \
        set->ident = (a);                                                                          \
        set->filter = (b);                                                                         \
        set->flags = (c);                                                                          \
        set->fflags = (d);                                                                         \
        set->data = (e);                                                                           \
        set->udata = (f);                                                                          \
    } while (0)

#ifdef __cplusplus
extern "C" {
#endif

int kqueue(void);
int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* events,
           int eventCount, const struct timespec* timeout);

#ifdef __cplusplus
}
#endif
