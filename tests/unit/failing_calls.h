// Calls of the system that a test can make fail, one at a time (Linux only).
#pragma once

#include <functional>

// Makes call number `number` of those that can fail (from 1 on) fail with `error` as errno while `operation` runs. Returns
// false when the operation made fewer calls than that.
bool runWithFailingCall(int number, int error, const std::function<void()>& operation);
