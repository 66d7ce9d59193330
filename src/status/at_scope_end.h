// SPDX-License-Identifier: MIT
// Draws the rows that were read before a broken record, although the error stops the reading.
#pragma once

/// Calls a function when its scope is left, by an error too. The function must not throw.
template <class Function> class AtScopeEnd {
public:
    explicit AtScopeEnd(Function function) : function_{function} {}
    ~AtScopeEnd() { function_(); }
    AtScopeEnd(const AtScopeEnd&) = delete;
    AtScopeEnd& operator=(const AtScopeEnd&) = delete;

private:
    Function function_;
};
