/* SPDX-License-Identifier: MIT
 * One exchange with the station service in plain C: what an exchange costs at the very least. */
#pragma once

/* Sends GET /api/state. Returns the reply, header and body, ended by a zero byte, which the caller
 * frees with free(); NULL when there was none. */
#ifdef __cplusplus
extern "C"
#endif
    char*
    plain_exchange(const char* socket_path);
