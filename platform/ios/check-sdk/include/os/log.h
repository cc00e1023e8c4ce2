// The unified log, as <os/log.h> declares it for the calls the backend makes:
// the default log, the default type, and os_log_with_type, which clang turns
// into a call of _os_log_impl with a buffer built by its os_log builtins (so
// the format's {public}/{private} annotations are checked as Xcode checks them).
#pragma once

#include <stdbool.h>
#include <stdint.h>

typedef struct os_log_s *os_log_t;
typedef uint8_t os_log_type_t;
#define OS_LOG_TYPE_DEFAULT ((os_log_type_t)0x00)

#ifdef __cplusplus
extern "C" {
#endif
extern struct os_log_s _os_log_default;
extern void *__dso_handle;
bool os_log_type_enabled(os_log_t oslog, os_log_type_t type);
void _os_log_impl(void *dso, os_log_t log, os_log_type_t type, const char *format, uint8_t *buf,
                  uint32_t size);
#ifdef __cplusplus
}
#endif
#define OS_LOG_DEFAULT (&_os_log_default)

#define os_log_with_type(log, type, format, ...)                                               \
  __extension__({                                                                              \
    os_log_t _qb_log = (log);                                                                  \
    os_log_type_t _qb_type = (type);                                                           \
    if (os_log_type_enabled(_qb_log, _qb_type)) {                                              \
      __attribute__((aligned(16))) uint8_t                                                     \
          _qb_buf[__builtin_os_log_format_buffer_size(format, ##__VA_ARGS__)];                 \
      _os_log_impl((void *)&__dso_handle, _qb_log, _qb_type, format,                           \
                   (uint8_t *)__builtin_os_log_format(_qb_buf, format, ##__VA_ARGS__),         \
                   (uint32_t)sizeof(_qb_buf));                                                 \
    }                                                                                          \
  })
