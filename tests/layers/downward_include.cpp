// Everything the hiding layer may include: its own folder and those below it.
#include "base/value.hpp"
#include "core/config.hpp"
#include "hiding/session_hooks.hpp"
#include "host/hook.hpp"
#include "rt/runtime.hpp"
#include "sys/process_state.hpp"
#include "ui/alerts.hpp"
