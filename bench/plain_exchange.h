/* SPDX-License-Identifier: MIT
 * One exchange with the station service in plain C: what an exchange costs at the very least. Does
 * not check more than the length of the reply. */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Sends GET /api/state. Returns the body, ended by a zero byte, which the caller frees with free();
   NULL when there was none.
 */
char* plain_exchange(const char* socket_path, size_t* size);

#ifdef __cplusplus
}
#endif
