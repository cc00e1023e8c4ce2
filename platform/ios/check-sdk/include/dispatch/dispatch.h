// Check-build stand-in: the libdispatch calls the backend makes.
#pragma once

#include <stdint.h>

typedef uint64_t dispatch_time_t;
#define DISPATCH_TIME_NOW (0ull)
#define NSEC_PER_SEC 1000000000ull

typedef struct dispatch_queue_s *dispatch_queue_t;
typedef long dispatch_queue_priority_t;
#define QOS_CLASS_UTILITY 0x11
typedef void (^dispatch_block_t)(void);

extern "C" {
extern struct dispatch_queue_s _dispatch_main_q;
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
dispatch_queue_t dispatch_get_global_queue(long identifier, unsigned long flags);
}

static inline dispatch_queue_t dispatch_get_main_queue(void) { return &_dispatch_main_q; }
