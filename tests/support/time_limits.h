// SPDX-License-Identifier: MIT
// Makes the time limits of the program's sockets shorter, by standing in for setsockopt(2). For
// the tests of what comes of a service that is slow.
#pragma once

/// In milliseconds, for sockets that are given a time limit from now on; 0: as they say.
extern long shorter_time_limit_ms;
