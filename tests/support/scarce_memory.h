// SPDX-License-Identifier: MIT
// Lets memory run out, by standing in for the program's operator new.
#pragma once

/// On the thread that sets it: pieces of 30,000 bytes and more are refused.
extern thread_local bool memory_is_scarce;
