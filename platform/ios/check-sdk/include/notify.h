// notify(3): Darwin notifications, from libSystem.
#pragma once

#include <stdint.h>

#define NOTIFY_STATUS_OK 0

#ifdef __cplusplus
extern "C" {
#endif

uint32_t notify_post(const char *name);
uint32_t notify_register_check(const char *name, int *out_token);
uint32_t notify_check(int token, int *check);

#ifdef __cplusplus
}
#endif
