// SPDX-License-Identifier: MIT
// From the command line to the main loop.
#pragma once

/// Runs the program and returns its exit status: 0 after the window was closed, 1 when the service
/// is not running or the owner check failed. A first argument "--help" or "--version" is answered
/// before a display is needed.
int start_up(int argc, char** argv);
